#include "runtime/KrRxCurrentModule.h"

KrRxGenHand* krrxCurrentModule = nullptr;
KrRx::AppMsgCode krrxCurrentMessage = KrRx::kNullMsg;

namespace {
const KrRxModuleCalls* moduleCalls = nullptr;
}

bool krrxSetModuleCalls(const KrRxModuleCalls* calls) {
  moduleCalls = calls;
  return true;
}

void krrxRunInModuleContext(KrRxGenHand* module, void (*function)(void*), void* argument) {
  if (module) {
    moduleCalls->runInContext(module, function, argument);
    return;
  }
  KrRxGenHand* resumed = krrxCurrentModule;
  krrxCurrentModule = nullptr;
  function(argument);
  krrxCurrentModule = resumed;
}

void krrxAddModuleAppName(KrRxGenHand* module, const wchar_t* name) { moduleCalls->addAppName(module, name); }

void krrxRemoveModuleAppName(KrRxGenHand* module, const wchar_t* name) { moduleCalls->removeAppName(module, name); }
