// Built without optimisation, as a module author's debug build is: the
// inline members of the value and pointer templates and the class
// boilerplate must need nothing from the library that it does not export.
// A missing export fails the link of this test.

#include <gtest/gtest.h>

#include "kr1st.h"

TEST(KrRfUnoptimisedUseTest, ValueAndPointerTemplatesLinkAndWork) {
  KrVtFloat64 width(1.5), copy(width), assigned;
  assigned = width;
  assigned = 2.0;
  KrVtInt32 count(3);
  KrVtBool flag(true);
  KrVtChar letter(L'x');
  EXPECT_EQ(copy.value(), 1.5);
  EXPECT_EQ(double(assigned), 2.0);
  EXPECT_EQ(count.value() + flag.value(), 4);
  EXPECT_EQ(letter.value(), L'x');

  KrRxObject* object = &width;
  EXPECT_EQ(KrVtFloat64::cast(object), &width);
  EXPECT_EQ(KrVtInt32::cast(static_cast<const KrRxObject*>(object)), nullptr);

  KrRxObjectPointer toObject(&width);
  KrRxClassPointer toClass(KrVtFloat64::desc());
  KrRfValuePointer toValue(&count);
  EXPECT_EQ(toObject.object(), &width);
  EXPECT_EQ(toClass.object(), KrVtFloat64::desc());
  EXPECT_EQ(toValue.object(), &count);
}
