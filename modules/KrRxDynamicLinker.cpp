// Linker reactors, the module entry protocol's exported data and the global
// functions through which hosts and modules reach the linker.

#include <cstdlib>
#include <cwchar>

#include "foundation/KrHostServices.h"
#include "krhostservices.h"
#include "krrxdictionary.h"
#include "krrxdynamiclinker.h"
#include "krrxgenhand.h"
#include "krrxsystem.h"
#include "modules/KrRxImpDynamicLinker.h"
#include "runtime/KrRxCoreClass.h"

KRRX_CORE_CONS_DEFINE_MEMBERS(KrRxDLinkerReactor, KrRxObject)
KRRX_CORE_CONS_DEFINE_MEMBERS(KrRxDLinkerReactor2, KrRxDLinkerReactor)
KRRX_CORE_NO_CONS_DEFINE_MEMBERS(KrRxDynamicLinker, KrRxObject)

const char* const KRRX_ENTRY_POINT = "krrxEntryPoint";
const char* const KRRX_GET_API_VERSION = "krrxGetApiVersion";
const unsigned int KRRX_CUR_API_VERSION = KRRX_SDK_API_VERSION;
const unsigned int KRRX_MIN_API_VERSION = 0x00140000;
bool bCatchSendAppExceptions = false;

void KrRxDLinkerReactor::rxAppWillBeLoaded(const wchar_t*) {}
void KrRxDLinkerReactor::rxAppLoaded(const wchar_t*) {}
void KrRxDLinkerReactor::rxAppLoadAborted(const wchar_t*) {}
void KrRxDLinkerReactor::rxAppWillBeUnloaded(const wchar_t*) {}
void KrRxDLinkerReactor::rxAppUnloaded(const wchar_t*) {}
void KrRxDLinkerReactor::rxAppUnloadAborted(const wchar_t*) {}
void KrRxDLinkerReactor2::rxAppCouldBeLoaded(void*) {}

void KrRxDLinkerReactor2::veto(const wchar_t* reason) {
  wchar_t* copy = _wcsdup(reason ? reason : L"");
  if (!copy) return;
  free(KrRxImpDynamicLinker::mLoadModuleFailReason);
  KrRxImpDynamicLinker::mLoadModuleFailReason = copy;
}

namespace {

// call(linker) when the system has a linker; false otherwise.
template <typename Call>
bool withLinker(Call call) {
  KrRxImpDynamicLinker* linker = KrRxImpDynamicLinker::registered();
  return linker && call(linker);
}

constexpr size_t kListBaseNameCapacity = 259;

}  // namespace

bool krrxLoadModule(const wchar_t* name, bool printMessages, bool asCommand) {
  return withLinker([&](auto* linker) { return linker->loadModule(name, printMessages, asCommand); });
}

bool krrxLoadApp(const wchar_t* appName, bool asCommand) {
  return withLinker([&](auto* linker) { return linker->loadApp(appName, KesuApp::kLoadByName, false, asCommand); });
}

bool krrxUnloadModule(const wchar_t* name, bool asCommand) {
  return withLinker([&](auto* linker) { return linker->unloadModule(name, asCommand); });
}

bool krrxUnloadApp(const wchar_t* appName, bool asCommand) {
  return withLinker([&](auto* linker) { return linker->unloadApp(appName, asCommand); });
}

bool krrxAppIsLoaded(const wchar_t* appName) {
  return withLinker([&](auto* linker) { return linker->appIsLoaded(appName); });
}

bool krrxSendAppMessage(const wchar_t* name, KrRx::AppMsgCode code, void* packet) {
  return withLinker([&](auto* linker) { return linker->sendAppMessage(name, code, packet, KrRxGenHand::mCurModule); });
}

bool krrxLockApplication(void* appId) {
  return withLinker([&](auto* linker) { return linker->lockApplication(appId); });
}

bool krrxUnlockApplication(void* appId) {
  return withLinker([&](auto* linker) { return linker->unlockApplication(appId); });
}

bool krrxApplicationIsLocked(const wchar_t* name) {
  return withLinker([&](auto* linker) { return linker->isApplicationLocked(name); });
}

bool krrxRegisterAppMDIAware(void* appId) {
  return withLinker([&](auto* linker) { return linker->registerAppMDIAware(appId); });
}

bool krrxRegisterAppNotMDIAware(void* appId) {
  return withLinker([&](auto* linker) { return linker->registerAppNotMDIAware(appId); });
}

bool krrxIsAppMDIAware(const wchar_t* name) {
  return withLinker([&](auto* linker) { return linker->isAppMDIAware(name); });
}

bool krrxAddDbAppMonitor(KrRxDLinkerReactor* monitor) {
  return withLinker([&](auto* linker) {
    linker->addDbAppMonitor(monitor);
    return true;
  });
}

bool krrxRemoveDbAppMonitor(KrRxDLinkerReactor* monitor) {
  return withLinker([&](auto* linker) {
    linker->removeDbAppMonitor(monitor);
    return true;
  });
}

bool krrxProcessInitFile() {
  KrRxImpDynamicLinker* linker = KrRxImpDynamicLinker::registered();
  if (!linker) return false;
  KrDbHostApplicationServices* host = krHostServices();
  const wchar_t* baseName = host ? host->listFileBaseName() : nullptr;
  wchar_t listFile[kListBaseNameCapacity + 4] = {};
  wcsncpy(listFile, baseName ? baseName : L"krrx", kListBaseNameCapacity);
  wcscat(listFile, L".rx");
  return linker->initListedModules(listFile);
}
