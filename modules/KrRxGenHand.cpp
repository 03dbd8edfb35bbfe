// Module records, the current-module state around calls into module code,
// module dependencies and application data.

#include "krrxgenhand.h"

#include <windows.h>

#include <cwchar>
#include <new>
#include <stdexcept>
#include <string>
#include <vector>

#include "krrxclass.h"
#include "krrxdictionary.h"
#include "krrxdynamiclinker.h"
#include "krrxservice.h"
#include "krrxsystem.h"
#include "foundation/KrModuleName.h"
#include "modules/KrRxGuardedCall.h"
#include "modules/KrRxImpDynamicLinker.h"
#include "modules/KrRxImportBinding.h"
#include "modules/KrRxLinkerSteps.h"
#include "runtime/KrRxCoreClass.h"
#include "runtime/KrRxCurrentModule.h"
#include "runtime/KrRxGrowArray.h"
#include "runtime/KrRxImpClass.h"
#include "runtime/KrRxImpDictionary.h"
#include "runtime/KrRxImpDictionaryIterator.h"
#include "system/KrRxServiceDictionary.h"

KRRX_CORE_CONS_DEFINE_MEMBERS(KrRxGenHand, KrRxGenVoid)

namespace {

const wchar_t* runningModuleName() {
  KrRxGenHand* module = KrRxGenHand::curModule();
  return module ? module->FileName() : nullptr;
}

// What the runtime asks of a module record: deleting a class in its module's
// context, and counting the application names of the module's classes.
const KrRxModuleCalls moduleCalls = {
    [](KrRxGenHand* module, void (*function)(void*), void* argument) {
      return module->executeInAppContext(function, argument);
    },
    [](KrRxGenHand* module, const wchar_t* name) { module->addLogicalAppName(name); },
    [](KrRxGenHand* module, const wchar_t* name) { module->removeLogicalAppName(name); },
};

// Diagnostics name the running module; the runtime reaches module records.
[[maybe_unused]] const bool lowerFloorsReachModules =
    (krSetModuleNameSource(runningModuleName), krrxSetModuleCalls(&moduleCalls));

using krrxLinker::modulePath;

// A module's own paths, and those of its dependencies, are read up to this length.
constexpr DWORD kPathCapacity = 2048;

// Makes a module and message current for the lifetime of the scope, and
// restores the previous ones also when an exception passes.
class CurrentModuleScope {
 public:
  CurrentModuleScope(KrRxGenHand* module, KrRx::AppMsgCode code)
      : mSavedModule(KrRxGenHand::mCurModule), mSavedCode(KrRxGenHand::mCurMsgCode) {
    KrRxGenHand::mCurModule = module;
    KrRxGenHand::mCurMsgCode = code;
  }
  CurrentModuleScope(const CurrentModuleScope&) = delete;
  CurrentModuleScope& operator=(const CurrentModuleScope&) = delete;
  ~CurrentModuleScope() {
    KrRxGenHand::mCurModule = mSavedModule;
    KrRxGenHand::mCurMsgCode = mSavedCode;
  }

 private:
  KrRxGenHand* mSavedModule;
  KrRx::AppMsgCode mSavedCode;
};

KrRxDictionary* newAppDataDictionary() {
  KrRxDictionary* services = krrxServiceDictionary();
  auto* kernel = services ? static_cast<KrRxKernel*>(services->at(L"KernelServices")) : nullptr;
  return kernel ? kernel->newKrRxDictionary(false, false) : nullptr;
}

// The version resource of the module's file in a zero-filled global block, or null.
HGLOBAL readVersionInfo(HMODULE module) {
  // The loaded image has the same resources as its file and tells at once
  // whether there is a version resource: modules without one spare the
  // (slow) file reads.
  if (!FindResourceW(module, MAKEINTRESOURCEW(VS_VERSION_INFO), RT_VERSION)) return nullptr;
  wchar_t path[kPathCapacity];
  if (!modulePath(module, path, kPathCapacity)) return nullptr;
  wchar_t shortPath[kPathCapacity];
  DWORD shortLength = GetShortPathNameW(path, shortPath, kPathCapacity);
  const wchar_t* file = shortLength > 0 && shortLength < kPathCapacity ? shortPath : path;
  DWORD size = GetFileVersionInfoSizeW(file, nullptr);
  if (!size) return nullptr;
  HGLOBAL block = GlobalAlloc(GMEM_ZEROINIT, size);
  if (block && !GetFileVersionInfoW(file, 0, size, block)) block = GlobalFree(block);
  return block;
}

// The loaded extension modules (those exporting "krrxEntryPoint") that
// module imports, each once, in import order, without module itself. The
// import table is read from the mapped image: no second read of the file.
KrRxGrowArray<HMODULE> findDependencies(HMODULE module) {
  KrRxGrowArray<HMODULE> found;
  std::vector<std::string> names;
  krrxMappedImage(module).importNames(names);
  for (const std::string& name : names) {
    HMODULE imported = krrxLoadedExtensionModule(name);
    if (!imported || imported == module) continue;
    bool seen = false;
    for (int32_t i = 0; i < found.count && !seen; ++i) seen = found.data[i] == imported;
    if (!seen) found.append(imported);
  }
  return found;
}

// True when cls or one of its ancestors belongs to module.
bool derivesFromModule(const KrRxClass* cls, const KrRxGenHand* module) {
  for (; cls; cls = cls->myParent())
    if (cls->impObj()->mpModule == module) return true;
  return false;
}

}  // namespace

KrRxGenHand::KrRxGenHand()
    : mStatusFlags(kLocked),
      mBusy(false),
      mpAppNames(nullptr),
      mpAppNameCounts(nullptr),
      mLoadReason(KesuApp::LoadReasons(0)),
      mUiRef(false),
      mApiRefs(0),
      mpEntryPoint(nullptr),
      mpAppData(nullptr),
      mpVersionInfo(nullptr),
      mpDependencies(nullptr),
      mpAppInfo(nullptr) {
  // When memory runs short part way, what was made goes again.
  try {
    mpAppNames = new KrRxGrowArray<wchar_t*>();
    mpAppNameCounts = new KrRxGrowArray<uint32_t>();
    mpAppData = newAppDataDictionary();
    mpDependencies = new KrRxGrowArray<void*>();
  } catch (const std::bad_alloc&) {
    delete mpAppNames;
    delete mpAppNameCounts;
    delete mpAppData;
    throw;
  }
}

KrRxGenHand::~KrRxGenHand() {
  for (int32_t i = 0; i < mpAppNames->count; ++i) free(mpAppNames->data[i]);
  mpAppNames->release();
  mpAppNameCounts->release();
  mpDependencies->release();
  delete mpAppNames;
  delete mpAppNameCounts;
  delete mpDependencies;
  delete mpAppData;
  releaseVersionInfo();
}

void KrRxGenHand::releaseVersionInfo() {
  if (mpVersionInfo) GlobalFree(mpVersionInfo);
  mpVersionInfo = nullptr;
}

void KrRxGenHand::setVal(void* moduleHandle) {
  KrRxGenVoid::setVal(moduleHandle);
  auto* module = static_cast<HMODULE>(moduleHandle);
  mpEntryPoint = module ? reinterpret_cast<KrRxAppEntryPoint>(
                              reinterpret_cast<void*>(GetProcAddress(module, KRRX_ENTRY_POINT)))
                        : nullptr;
  if (!module) return;
  releaseVersionInfo();
  mpVersionInfo = readVersionInfo(module);
}

void KrRxGenHand::setfileName(const wchar_t* name) { mFileName = name; }

void KrRxGenHand::setStatusFlag(StatusFlags flag, bool on) {
  mStatusFlags = on ? mStatusFlags | flag : mStatusFlags & ~flag;
}

// ---- Logical application names ----

int32_t KrRxGenHand::findLogicalAppName(const wchar_t* name) const {
  if (!name) return -1;
  for (int32_t i = 0; i < mpAppNames->count; ++i)
    if (_wcsicmp(mpAppNames->data[i], name) == 0) return i;
  return -1;
}

void KrRxGenHand::addLogicalAppName(const wchar_t* name) {
  if (!name) return;
  int32_t index = findLogicalAppName(name);
  if (index >= 0) {
    ++mpAppNameCounts->data[index];
    return;
  }
  int32_t needed = mpAppNames->count + 1;
  if (!mpAppNames->reserve(needed) || !mpAppNameCounts->reserve(needed)) return;
  if (wchar_t* copy = _wcsdup(name)) {
    mpAppNames->append(copy);
    mpAppNameCounts->append(1);
  }
}

void KrRxGenHand::removeLogicalAppName(const wchar_t* name) {
  int32_t index = findLogicalAppName(name);
  if (index < 0 || --mpAppNameCounts->data[index] > 0) return;
  free(mpAppNames->data[index]);
  mpAppNames->removeAt(index);
  mpAppNameCounts->removeAt(index);
}

bool KrRxGenHand::hasLogicalAppName(const wchar_t* name) const { return findLogicalAppName(name) >= 0; }

const wchar_t* KrRxGenHand::logicalAppName() const { return mpAppNames->count ? mpAppNames->data[0] : nullptr; }

// ---- References ----

unsigned short KrRxGenHand::apiAddRef() {
  if (mApiRefs == 0xFFFF) throw std::overflow_error("KrRxGenHand::apiAddRef overflow");
  return ++mApiRefs;
}

unsigned short KrRxGenHand::apiRelease() {
  if (mApiRefs == 0) throw std::underflow_error("KrRxGenHand::apiRelease underflow");
  return --mApiRefs;
}

bool KrRxGenHand::safeToUnload() const {
  if (mUiRef || mApiRefs) return false;
  const KrRxImpDictionary* classes = KrRxImpDictionary::cast(sysClasses);
  if (!classes) return true;
  // An iterator on the stack: deciding to unload must not need the heap.
  bool inUse = false;
  KrRxImpDictionaryIterator it(classes, KrRx::kDictById);
  for (; !it.done() && !inUse; it.next()) {
    auto* cls = static_cast<KrRxClass*>(it.object());
    inUse = cls->impObj()->mpModule != this && derivesFromModule(cls, this);
  }
  return !inUse;
}

// ---- Dependencies ----

bool KrRxGenHand::loadDependencies(KrRxDynamicLinker* linker, bool printMessages) {
  KrRxGrowArray<HMODULE> found = findDependencies(static_cast<HMODULE>(getVal()));
  bool loaded = true;
  for (int32_t i = 0; i < found.count && loaded; ++i) {
    wchar_t path[kPathCapacity];
    loaded = modulePath(found.data[i], path, kPathCapacity) && linker->loadModule(path, printMessages, false);
    // A dependency that cannot be recorded could never be unloaded: it goes again.
    if (loaded && !mpDependencies->append(found.data[i])) {
      linker->unloadModule(path, false);
      loaded = false;
    }
  }
  found.release();
  return loaded;
}

void KrRxGenHand::unloadDependencies(KrRxDynamicLinker* linker) {
  for (int32_t i = mpDependencies->count - 1; i >= 0; --i) {
    wchar_t path[kPathCapacity];
    if (modulePath(static_cast<HMODULE>(mpDependencies->data[i]), path, kPathCapacity))
      linker->unloadModule(path, false);
  }
  mpDependencies->count = 0;
}

// ---- Calls into the module ----

bool KrRxGenHand::sendAppMessage(KrRx::AppMsgCode code, void* packet) {
  if (!mpEntryPoint) return true;
  CurrentModuleScope scope(this, code);
  return krrxGuardedEntryPointCall(mpEntryPoint, code, packet) == KrRx::kRetOK;
}

bool KrRxGenHand::executeInAppContext(void (*function)(void*), void* argument) {
  CurrentModuleScope scope(this, mCurMsgCode);
  return krrxGuardedCall(function, argument);
}

KrRxGenHand* KrRxGenHand::setCurModule(KrRxGenHand* module) {
  KrRxGenHand* previous = mCurModule;
  mCurModule = module;
  return previous;
}

// ---- Application data ----

bool krrxAddAppData(const wchar_t* key, KrRxObject* data) {
  KrRxGenHand* module = KrRxGenHand::curModule();
  if (!module || !module->dictionary() || !key) return false;
  // False too when the key could not be copied: then nothing was added.
  unsigned int id = 0;
  module->dictionary()->atPut(key, data, id);
  return module->dictionary()->has(id);
}

bool krrxRemoveAppData(const wchar_t* key, KrRxObject*) {
  KrRxGenHand* module = KrRxGenHand::curModule();
  if (!module || !module->dictionary() || !key) return false;
  module->dictionary()->remove(key);
  return true;
}

KrRxObject* krrxGetAppData(const wchar_t* key, const wchar_t* moduleName) {
  KrRxDynamicLinker* linker = KrRxImpDynamicLinker::registered();
  auto* module = linker ? static_cast<KrRxGenHand*>(linker->moduleHandlePtr(moduleName)) : nullptr;
  return module && module->dictionary() ? module->dictionary()->at(key) : nullptr;
}
