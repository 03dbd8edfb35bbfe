// Module records and the current-module state around entry-point calls.

#include "krrxgenhand.h"

#include <windows.h>

#include "runtime/KrRxCoreClass.h"

KRRX_CORE_CONS_DEFINE_MEMBERS(KrRxGenHand, KrRxGenVoid)

KrRxGenHand* KrRxGenHand::mCurModule = nullptr;
KrRx::AppMsgCode KrRxGenHand::mCurMsgCode = KrRx::kNullMsg;

namespace {

// Makes a module and message current for the lifetime of the scope, and
// restores the previous ones also when an exception passes.
class CurrentModuleScope {
 public:
  CurrentModuleScope(KrRxGenHand* module, KrRx::AppMsgCode code)
      : mSavedModule(KrRxGenHand::mCurModule), mSavedCode(KrRxGenHand::mCurMsgCode) {
    KrRxGenHand::mCurModule = module;
    KrRxGenHand::mCurMsgCode = code;
  }
  ~CurrentModuleScope() {
    KrRxGenHand::mCurModule = mSavedModule;
    KrRxGenHand::mCurMsgCode = mSavedCode;
  }

 private:
  KrRxGenHand* mSavedModule;
  KrRx::AppMsgCode mSavedCode;
};

}  // namespace

KrRxGenHand::KrRxGenHand() : mpFileName(nullptr), mStatusFlags(kLocked), mpEntryPoint(nullptr) {}

KrRxGenHand::~KrRxGenHand() { __krFree(mpFileName); }

void KrRxGenHand::setVal(void* moduleHandle) {
  KrRxGenVoid::setVal(moduleHandle);
  mpEntryPoint = moduleHandle ? reinterpret_cast<KrRxAppEntryPoint>(reinterpret_cast<void*>(
                                    GetProcAddress(static_cast<HMODULE>(moduleHandle), "krrxEntryPoint")))
                              : nullptr;
}

const wchar_t* KrRxGenHand::FileName() const { return mpFileName; }

void KrRxGenHand::setfileName(const wchar_t* name) {
  __krFree(mpFileName);
  mpFileName = name ? __krStrdup(name) : nullptr;
}

bool KrRxGenHand::sendAppMessage(KrRx::AppMsgCode code, void* packet) {
  if (!mpEntryPoint) return true;
  CurrentModuleScope scope(this, code);
  return mpEntryPoint(code, packet) == KrRx::kRetOK;
}

bool KrRxGenHand::executeInAppContext(void (*function)(void*), void* argument) {
  CurrentModuleScope scope(this, mCurMsgCode);
  function(argument);
  return true;
}

KrRxGenHand* KrRxGenHand::setCurModule(KrRxGenHand* module) {
  KrRxGenHand* previous = mCurModule;
  mCurModule = module;
  return previous;
}
