// The value-type classes of the library, in the order they are registered,
// and what is attached to them. A class known here by name only gets its
// C++ class where its behaviour is written.

#include "values/KrVtValueClasses.h"

#include "foundation/KrRxTextStringFormattable.h"
#include "krrfarray.h"
#include "krrfproxy.h"
#include "krrfrangecheck.h"
#include "krrfvalue.h"
#include "krrxdictionary.h"
#include "krrxsystem.h"
#include "krrxtextstring.h"
#include "runtime/KrRxImpClass.h"
#include "values/KrVtNumberFormattable.h"

namespace {

// One value class: a C++ class with its own rxInit, or a class known so far
// by name and parent only.
struct ValueClass {
  void (*rxInit)();
  const wchar_t* name;
  const wchar_t* parentName;
};

#define KR_CLASS(CLASS) {&CLASS::rxInit, nullptr, nullptr}
#define KR_NAMED(NAME, PARENT) {nullptr, L## #NAME, L## #PARENT}

// The date, time and ratio classes come first: the values below name them as parents.
const ValueClass kValueClasses[] = {
    KR_NAMED(KrVtRatio, KrVtFloat64),
    KR_NAMED(KrVtDaytime, KrVtFloat64),
    KR_NAMED(KrVtDateTime, KrVtDaytime),
    KR_NAMED(KrVtDate, KrVtDaytime),
    KR_NAMED(KrVtTime, KrVtDaytime),
    KR_CLASS(KrVtBool),
    KR_CLASS(KrVtInt8),
    KR_CLASS(KrVtInt16),
    KR_CLASS(KrVtInt32),
    KR_CLASS(KrVtInt64),
    KR_CLASS(KrVtUInt8),
    KR_CLASS(KrVtUInt16),
    KR_CLASS(KrVtUInt32),
    KR_CLASS(KrVtUInt64),
    KR_CLASS(KrVtFloat32),
    KR_CLASS(KrVtFloat64),
    KR_CLASS(KrVtChar),
    KR_NAMED(KrVtPercentage, KrVtRatio),
    KR_NAMED(KrVtPermille, KrVtRatio),
    KR_NAMED(KrVtCurrency, KrVtFloat64),
    {[] { KrVtFloat64Array::rxInit(L"KrRfArray"); }, nullptr, nullptr},
    KR_NAMED(KrVtPercentageArray, KrVtFloat64Array),
    KR_NAMED(KrVtCurrencyArray, KrVtFloat64Array),
    KR_NAMED(KrVtDateTimeArray, KrVtFloat64Array),
};

#undef KR_CLASS
#undef KR_NAMED

// The formattables made at start-up, by the class they are attached to.
struct Formattable {
  KrRxClass* (*cls)();
  KrRxFormattablePE* (*make)();
};

template <typename F>
KrRxFormattablePE* make() {
  return new F();
}

const Formattable kFormattables[] = {
    {&KrVtBool::desc, make<KrVtBoolFormattable>},
    {&KrVtUInt8::desc, make<KrVtUInt8Formattable>},
    {&KrVtInt8::desc, make<KrVtInt8Formattable>},
    {&KrVtUInt16::desc, make<KrVtUInt16Formattable>},
    {&KrVtInt16::desc, make<KrVtInt16Formattable>},
    {&KrVtUInt32::desc, make<KrVtUInt32Formattable>},
    {&KrVtInt32::desc, make<KrVtInt32Formattable>},
    {&KrVtUInt64::desc, make<KrVtUInt64Formattable>},
    {&KrVtInt64::desc, make<KrVtInt64Formattable>},
    {&KrVtFloat64::desc, make<KrVtFloat64Formattable>},
    {&KrRxTextString::desc, make<KrRxTextStringFormattable>},
};

// The classes whose formattables shutdown removes, in its order.
const wchar_t* const kFormattableClassesAtShutdown[] = {
    L"KrRfPointer", L"KrRxClass",      L"KrVtBool",   L"KrVtUInt8",    L"KrVtInt8",
    L"KrVtUInt16",  L"KrVtInt16",      L"KrVtUInt32", L"KrVtInt32",    L"KrVtUInt64",
    L"KrVtInt64",   L"KrVtFloat64",    L"KrRxTextString", L"KrVtPermille", L"KrVtPercentage",
    L"KrVtRatio",   L"KrVtCurrency",   L"KrVtDateTime", L"KrVtDate",   L"KrVtTime",
};

// The value classes in the order shutdown deletes them.
const wchar_t* const kValueClassesAtShutdown[] = {
    L"KrVtBool",     L"KrVtInt8",         L"KrVtInt16",           L"KrVtInt32",         L"KrVtInt64",
    L"KrVtUInt8",    L"KrVtUInt16",       L"KrVtUInt32",          L"KrVtUInt64",        L"KrVtFloat32",
    L"KrVtFloat64",  L"KrVtChar",         L"KrVtRatio",           L"KrVtPercentage",    L"KrVtPermille",
    L"KrVtCurrency", L"KrVtDaytime",      L"KrVtDateTime",        L"KrVtDate",          L"KrVtTime",
    L"KrVtFloat64Array", L"KrVtPercentageArray", L"KrVtCurrencyArray", L"KrVtDateTimeArray",
};

// Detaches the class's own object for protocolClass and deletes it.
void deleteExtension(const wchar_t* className, const KrRxClass* protocolClass) {
  if (KrRxClass* cls = krrxFindKrRxClass(className)) delete cls->delX(protocolClass);
}

}  // namespace

void krvtInitValueClasses() {
  for (const ValueClass& entry : kValueClasses) {
    if (entry.rxInit)
      entry.rxInit();
    else
      krrfNewValueClass(entry.name, entry.parentName, nullptr);
  }
  KrRxImpClass::connectNewClasses(sysClasses);
  KrRfNumber::desc()->addX(KrRfRangeCheckPE::desc(), new KrRfNumberRangeCheckPE());
  for (const Formattable& entry : kFormattables) entry.cls()->addX(KrRxFormattablePE::desc(), entry.make());
}

void krvtKillValueClasses() {
  deleteExtension(L"KrRfNumber", KrRfRangeCheckPE::desc());
  for (const wchar_t* name : kFormattableClassesAtShutdown) deleteExtension(name, KrRxFormattablePE::desc());
  deleteExtension(L"KrRfProxy", KrRfProxyInterfacePE::desc());
  for (const wchar_t* name : kValueClassesAtShutdown)
    if (KrRxClass* cls = krrxFindKrRxClass(name)) KrRxImpClass::deleteClass(cls);
  KrRxImpClass::clearDeletedClassesArray();
}
