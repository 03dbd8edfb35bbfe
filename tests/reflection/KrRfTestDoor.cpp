#include "KrRfTestDoor.h"

#include "KrRfTestSymbols.h"

KRRX_CONS_DEFINE_MEMBERS(TestDoor, KrRxObject)

namespace {

const TestDoor* door(const KrRxObject* object) { return static_cast<const TestDoor*>(object); }

// Every value class of a double (dates, ratios, currency) keeps it in the same place.
template <double TestDoor::*field>
Kesu::ErrorStatus readDouble(const KrRxObject* object, KrRxObject* value) {
  static_cast<KrVtFloat64*>(value)->value() = door(object)->*field;
  return Kesu::eOk;
}
Kesu::ErrorStatus readCount(const KrRxObject* object, KrRxObject* value) {
  *KrVtInt32::cast(value) = door(object)->mCount;
  return Kesu::eOk;
}
Kesu::ErrorStatus readName(const KrRxObject* object, KrRxObject* value) {
  *KrRxTextString::cast(value) = door(object)->mName.c_str();
  return Kesu::eOk;
}
Kesu::ErrorStatus readFrame(const KrRxObject* object, KrRxObject* value) {
  return KrRfPointer::cast(value)->setObject(door(object)->mpFrame, false);
}
Kesu::ErrorStatus readNothing(const KrRxObject*, KrRxObject*) { return Kesu::eOk; }

// The properties stay described for the whole run.
bool describe() {
  TestDoor::rxInit();
  krrxBuildClassHierarchy();
  KrRfReflectionPE* pe = krrfReflectionService()->reflectionPE(TestDoor::desc(), true);
  for (KrRfProperty* property : {
           new TestProperty(L"width", KrVtFloat64::desc(), readDouble<&TestDoor::mWidth>),
           new TestProperty(L"count", KrVtInt32::desc(), readCount),
           new TestProperty(L"name", KrRxTextString::desc(), readName),
           new TestProperty(L"frame", KrRxObjectPointer::desc(), readFrame),
           new TestProperty(L"installed", KrVtDate::desc(), readDouble<&TestDoor::mInstalled>),
           new TestProperty(L"slope", KrVtRatio::desc(), readDouble<&TestDoor::mSlope>),
           new TestProperty(L"share", KrVtPercentage::desc(), readDouble<&TestDoor::mShare>),
           new TestProperty(L"price", KrVtCurrency::desc(), readDouble<&TestDoor::mPrice>),
           new TestProperty(L"unreadable", KrVtFloat64::desc()),
           new TestProperty(L"abstract", KrRfSymbol::desc(), readNothing),
           new TestProperty(L"plain", TestDoor::desc(), readNothing),
       })
    pe->addSymbol(property);
  return true;
}

}  // namespace

void describeTestDoor() {
  static const bool described = describe();
  (void)described;
}

KrRxClass* testDoorValueType(const wchar_t* name) {
  describeTestDoor();
  KrRfProperty* property = krrfReflectionService()->reflectionPE(TestDoor::desc(), false)->propertyAt(name);
  return property ? property->valueType() : nullptr;
}
