// The value-type classes of the library, in the order they are registered,
// and what is attached to them.

#include "values/KrVtValueClasses.h"

#include "values/KrRxTextStringFormattable.h"
#include "krrfarray.h"
#include "krrfproxy.h"
#include "krrfrangecheck.h"
#include "krrfvalue.h"
#include "krrxdictionary.h"
#include "krrxsystem.h"
#include "krrxtextstring.h"
#include "krvtcurrency.h"
#include "krvtdaytime.h"
#include "krvtratio.h"
#include "runtime/KrRxImpClass.h"
#include "values/KrVtNumberFormattable.h"

namespace {

// The registration of each value class, in order. The date, time and ratio
// classes come first: the values below name them as parents.
typedef void (*RxInit)();

const RxInit kValueClasses[] = {
    &KrVtRatio::rxInit,
    &KrVtDaytime::rxInit,
    &KrVtDateTime::rxInit,
    &KrVtDate::rxInit,
    &KrVtTime::rxInit,
    &KrVtBool::rxInit,
    &KrVtInt8::rxInit,
    &KrVtInt16::rxInit,
    &KrVtInt32::rxInit,
    &KrVtInt64::rxInit,
    &KrVtUInt8::rxInit,
    &KrVtUInt16::rxInit,
    &KrVtUInt32::rxInit,
    &KrVtUInt64::rxInit,
    &KrVtFloat32::rxInit,
    &KrVtFloat64::rxInit,
    &KrVtChar::rxInit,
    &KrVtPercentage::rxInit,
    &KrVtPermille::rxInit,
    &KrVtCurrency::rxInit,
    &KrVtFloat64Array::rxInit,
    &KrVtPercentageArray::rxInit,
    &KrVtCurrencyArray::rxInit,
    &KrVtDateTimeArray::rxInit,
};

// The formattables made at start-up, by the class they are attached to,
// with the registration of the formattable's own class.
struct Formattable {
  KrRxClass* (*cls)();
  RxInit rxInit;
  KrRxClass* (*formattableClass)();
};

#define KRVT_FORMATTABLE(VALUE, FORMATTABLE) {&VALUE::desc, &FORMATTABLE::rxInit, &FORMATTABLE::desc}

const Formattable kFormattables[] = {
    KRVT_FORMATTABLE(KrVtBool, KrVtBoolFormattable),
    KRVT_FORMATTABLE(KrVtUInt8, KrVtUInt8Formattable),
    KRVT_FORMATTABLE(KrVtInt8, KrVtInt8Formattable),
    KRVT_FORMATTABLE(KrVtUInt16, KrVtUInt16Formattable),
    KRVT_FORMATTABLE(KrVtInt16, KrVtInt16Formattable),
    KRVT_FORMATTABLE(KrVtUInt32, KrVtUInt32Formattable),
    KRVT_FORMATTABLE(KrVtInt32, KrVtInt32Formattable),
    KRVT_FORMATTABLE(KrVtUInt64, KrVtUInt64Formattable),
    KRVT_FORMATTABLE(KrVtInt64, KrVtInt64Formattable),
    KRVT_FORMATTABLE(KrVtFloat64, KrVtFloat64Formattable),
    KRVT_FORMATTABLE(KrRxTextString, KrRxTextStringFormattable),
    KRVT_FORMATTABLE(KrVtPermille, KrVtPermilleFormattable),
    KRVT_FORMATTABLE(KrVtPercentage, KrVtPercentageFormattable),
    KRVT_FORMATTABLE(KrVtRatio, KrVtRatioFormattable),
    KRVT_FORMATTABLE(KrVtCurrency, KrVtCurrencyFormattable),
    KRVT_FORMATTABLE(KrVtDateTime, KrVtDateTimeFormattable),
    KRVT_FORMATTABLE(KrVtDate, KrVtDateFormattable),
    KRVT_FORMATTABLE(KrVtTime, KrVtTimeFormattable),
};

#undef KRVT_FORMATTABLE

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
  for (RxInit rxInit : kValueClasses) rxInit();
  for (const Formattable& entry : kFormattables) entry.rxInit();
  KrRxImpClass::connectNewClasses(sysClasses);
  KrRfNumber::desc()->addX(KrRfRangeCheckPE::desc(), new KrRfNumberRangeCheckPE());
  KrRfProxy::desc()->addX(KrRfProxyInterfacePE::desc(), new KrRfProxyInterfacePE());
  for (const Formattable& entry : kFormattables)
    entry.cls()->addX(KrRxFormattablePE::desc(), entry.formattableClass()->create());
}

void krvtKillValueClasses() {
  deleteExtension(L"KrRfNumber", KrRfRangeCheckPE::desc());
  for (const wchar_t* name : kFormattableClassesAtShutdown) deleteExtension(name, KrRxFormattablePE::desc());
  deleteExtension(L"KrRfProxy", KrRfProxyInterfacePE::desc());
  for (const wchar_t* name : kValueClassesAtShutdown)
    if (KrRxClass* cls = krrxFindKrRxClass(name)) KrRxImpClass::deleteClass(cls);
  for (const Formattable& entry : kFormattables) KrRxImpClass::deleteClass(entry.formattableClass());
  KrRxImpClass::clearDeletedClassesArray();
}
