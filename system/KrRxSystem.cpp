// Start-up and shutdown of the runtime, run from the library's load and
// unload notifications.

#include "krrxsystem.h"

#include "extensions/KrRxProtocolReactorManagerFactory.h"
#include "kesuappregistry.h"
#include "krrxclass.h"
#include "krrxcopyonwrite.h"
#include "krrfarray.h"
#include "krrfproxy.h"
#include "krrfrangecheck.h"
#include "krrfvalue.h"
#include "krrxdictionary.h"
#include "krrxevent.h"
#include "krrxformatcontext.h"
#include "krrxformattable.h"
#include "krrxgenhand.h"
#include "krrxiterator.h"
#include "krrxlinkedlist.h"
#include "krrxset.h"
#include "krrfpropertyextensions.h"
#include "krrfprotocolreactors.h"
#include "krrxtextstring.h"
#include "modules/KrRxImpDynamicLinker.h"
#include "reflection/KrRfImpReflectionPE.h"
#include "reflection/KrRfImpSymbolIterator.h"
#include "reflection/KrRfReflectionService.h"
#include "runtime/KrRxCoreClass.h"
#include "runtime/KrRxClassDictionary.h"
#include "runtime/KrRxImpClass.h"
#include "runtime/KrRxImpDictionary.h"
#include "runtime/KrRxImpDictionaryIterator.h"
#include "runtime/KrRxImpSet.h"
#include "system/KrRxImpKernel.h"
#include "system/KrRxServiceDictionary.h"
#include "values/KrVtValueClasses.h"

KrRxDictionary* sysRegistry = nullptr;
KrRxKernel* sysKernel = nullptr;

namespace {

KrRxImpKernel* sKernel = nullptr;
KrRxImpDynamicLinker* sDynamicLinker = nullptr;
KrRxDictionary* sServiceDictionary = nullptr;
KrRxImpProtocolReactorManagerFactory* sReactorManagerFactory = nullptr;
KrRfImpReflectionService* sReflectionService = nullptr;

// The library's descriptors in creation order; shutdown deletes them in the same order.
KrRxGrowArray<KrRxClass*> sLibraryClasses;

// One class of the library: either a C++ class with its own rxInit, or a
// class known so far by name and parent only.
struct LibraryClass {
  void (*rxInit)();
  KrRxClass* (*desc)();
  const wchar_t* name;
  const wchar_t* parentName;
};

#define KR_CLASS(CLASS) {&CLASS::rxInit, &CLASS::desc, nullptr, nullptr}
#define KR_NAMED(NAME, PARENT) {nullptr, nullptr, L## #NAME, L## #PARENT}

const LibraryClass kLibraryClasses[] = {
    KR_CLASS(KrRxClass),
    KR_CLASS(KrRxCopyOnWriteObject),
    KR_CLASS(KrRxService),
    KR_CLASS(KrRxKernel),
    KR_CLASS(KrRxImpKernel),
    KR_CLASS(KrRxTextString),
    KR_CLASS(KrRxSet),
    KR_CLASS(KrRxImpSet),
    KR_CLASS(KrRxGenTypedSet),
    KR_CLASS(KrRxGenLinkedList),
    KR_CLASS(KrRxDictionary),
    KR_CLASS(KrRxImpDictionary),
    KR_NAMED(KrRxGenTableEntry, KrRxObject),
    KR_CLASS(KrRxIterator),
    KR_CLASS(KrRxDictionaryIterator),
    KR_CLASS(KrRxImpDictionaryIterator),
    KR_CLASS(KrRxGenLinkedListIterator),
    KR_CLASS(KrRxDLinkerReactor),
    KR_CLASS(KrRxDLinkerReactor2),
    KR_CLASS(KrRxDynamicLinker),
    KR_CLASS(KrRxImpDynamicLinker),
    KR_CLASS(KrRxEvent),
    KR_CLASS(KrRxEventReactor),
    KR_CLASS(KrRxGenVoid),
    KR_CLASS(KrRxGenHand),
    KR_CLASS(KrRxOverruleBase),
    KR_CLASS(KrRxOverrule),
    KR_CLASS(KrRxQueryXOverrule),
    KR_CLASS(KrRxOverruleInternals),
    KR_CLASS(KesuAppInfo),
    KR_CLASS(KesuAppRegistry),
    KR_NAMED(KrRxClassDetailsPE, KrRxObject),
    KR_NAMED(KrRxObjectDetailsPE, KrRxObject),
    KR_NAMED(KrRxObjectSummaryPE, KrRxObject),
    KR_NAMED(KrRxObjectCategoryPE, KrRxObject),
    KR_CLASS(KrRfReflectionService),
    KR_CLASS(KrRfImpReflectionService),
    KR_CLASS(KrRfReflectionPE),
    KR_CLASS(KrRfImpReflectionPE),
    KR_CLASS(KrRfReflectionReactor),
    KR_CLASS(KrRfReflectionProviderPR),
    KR_CLASS(KrRfSymbolIterator),
    KR_CLASS(KrRfImpSymbolIterator),
    KR_CLASS(KrRfSymbol),
    KR_CLASS(KrRfProperty),
    KR_CLASS(KrRxSymbolFilterPR),
    KR_CLASS(KrRfPropertyEnumPE),
    KR_CLASS(KrRfPropertyRangePE),
    KR_CLASS(KrRfPropertyDerivationPE),
    KR_CLASS(KrRfArrayPropertyDetailsPE),
    KR_CLASS(KrRfArrayPropertyDerivationPE),
    KR_CLASS(KrRfProxyInterfacePE),
    KR_CLASS(KrRfValue),
    KR_CLASS(KrRfNumber),
    KR_CLASS(KrRfValuePointer),
    KR_CLASS(KrRfProxy),
    KR_CLASS(KrRfReference),
    KR_CLASS(KrRfPointer),
    KR_CLASS(KrRxObjectPointer),
    KR_CLASS(KrRxClassPointer),
    KR_CLASS(KrRfArray),
    KR_CLASS(KrRfRangeCheckPE),
    KR_CLASS(KrRxFormatContext),
    KR_CLASS(KrRxNumberFormat),
    KR_CLASS(KrRxNumberFormat2),
    KR_CLASS(KrRxFormattablePE),
    KR_CLASS(KrRxProtocolReactor),
    KR_CLASS(KrRxProtocolReactorIterator),
    KR_CLASS(KrRxImpProtocolReactorIterator),
    KR_CLASS(KrRxProtocolReactorList),
    KR_CLASS(KrRxImpProtocolReactorList),
    KR_CLASS(KrRxProtocolReactorListIterator),
    KR_CLASS(KrRxImpProtocolReactorListIterator),
    KR_CLASS(KrRxProtocolReactorManager),
    KR_CLASS(KrRxImpProtocolReactorManager),
    KR_CLASS(KrRxProtocolReactorManagerFactory),
    KR_CLASS(KrRxImpProtocolReactorManagerFactory),
};

#undef KR_CLASS
#undef KR_NAMED

KrRxClass* initLibraryClass(const LibraryClass& entry) {
  if (!entry.rxInit) return krrxInitCoreClass(nullptr, entry.name, entry.parentName, nullptr);
  entry.rxInit();
  return entry.desc();
}

void initLibraryClasses() {
  sLibraryClasses.append(KrRxObject::desc());
  for (const LibraryClass& entry : kLibraryClasses) sLibraryClasses.append(initLibraryClass(entry));
  // Linked at once: the service dictionary's class test below needs the tree.
  KrRxImpClass::connectNewClasses(sysClasses);
}

void deleteLibraryClasses() {
  delete KrRxObject::desc()->delX(krrxFindKrRxClass(L"KrRxObjectSummaryPE"));
  for (int32_t i = 0; i < sLibraryClasses.count; ++i) KrRxImpClass::deleteClass(sLibraryClasses.data[i]);
  KrRxImpClass::clearDeletedClassesArray();
  sLibraryClasses.release();
}

// Reads every entry once in id order, changing nothing.
void walkClassDictionary() {
  KrRxDictionaryIterator* it = sysClasses->newIterator(KrRx::kDictById);
  while (!it->done()) it->next();
  delete it;
}

template <typename T>
void removeAndDelete(KrRxDictionary* dictionary, const wchar_t* key, T*& object) {
  dictionary->remove(key);
  delete object;
  object = nullptr;
}

}  // namespace

void krrxInitSystem() {
  sKernel = new KrRxImpKernel();
  sysKernel = sKernel;
  sysRegistry = sKernel->newKrRxDictionary(16, false, false, false);
  sysClasses = sKernel->newKrRxDictionary(256, false, true, false);
  sysRegistry->atPut(L"ClassDictionary", sysClasses);
  initLibraryClasses();
  sDynamicLinker = new KrRxImpDynamicLinker();
  sysRegistry->atPut(L"DynamicLinker", sDynamicLinker);
  sServiceDictionary = sKernel->newKrRxDictionary(KrRxService::desc());
  sysRegistry->atPut(L"ServiceDictionary", sServiceDictionary);
  sDynamicLinker->registerService(L"KernelServices", sKernel);
  sReactorManagerFactory = new KrRxImpProtocolReactorManagerFactory();
  sDynamicLinker->registerService(L"ProtocolReactorManager", sReactorManagerFactory);
  krvtInitValueClasses();
  sReflectionService = new KrRfImpReflectionService();
  sDynamicLinker->registerService(L"ReflectionServices", sReflectionService);
}

void krrxKillSystem() {
  KrRxGenHand::setCurModule(nullptr);
  KrRxGenHand::mCurMsgCode = KrRx::kNullMsg;
  removeAndDelete(sServiceDictionary, L"ReflectionServices", sReflectionService);
  krvtKillValueClasses();
  removeAndDelete(sServiceDictionary, L"ProtocolReactorManager", sReactorManagerFactory);
  removeAndDelete(sServiceDictionary, L"KernelServices", sKernel);
  sysKernel = nullptr;
  removeAndDelete(sysRegistry, L"ServiceDictionary", sServiceDictionary);
  removeAndDelete(sysRegistry, L"DynamicLinker", sDynamicLinker);
  deleteLibraryClasses();
  walkClassDictionary();
  removeAndDelete(sysRegistry, L"ClassDictionary", sysClasses);
  delete sysRegistry;
  sysRegistry = nullptr;
  KrRxImpClass::releaseGlobalTables();
}

KrRxDictionary* krrxServiceDictionary() {
  return sysRegistry ? static_cast<KrRxDictionary*>(sysRegistry->at(L"ServiceDictionary")) : nullptr;
}

KrRxDictionary* krrxSysRegistry() { return sysRegistry; }
const KrRxDictionary* krrxSysClasses() { return sysClasses; }
