#pragma once
// The module whose code the runtime is calling, the message it is handling,
// and what the runtime asks of a module record. The runtime keeps them; the
// dynamic linker sets the current module and message around every call into
// a module, and the module floor installs the calls. The two variables are
// the storage behind KrRxGenHand's statics of the same meaning.
//
//   KrRxGenHand* owner = krrxCurrentModule;
//   krrxRunInModuleContext(owner, deleteIt, object);

#include "krexport.h"
#include "krrxmodulemessages.h"

class KrRxGenHand;

// The current module (null when the host's own code runs) and message.
KR1ST_API extern KrRxGenHand* krrxCurrentModule __asm__("_ZN11KrRxGenHand10mCurModuleE");
KR1ST_API extern KrRx::AppMsgCode krrxCurrentMessage __asm__("_ZN11KrRxGenHand11mCurMsgCodeE");

// What the runtime asks of a module record, installed by the module floor.
struct KrRxModuleCalls {
  // Runs function(argument) with module current; false when it faulted.
  bool (*runInContext)(KrRxGenHand* module, void (*function)(void*), void* argument);
  // Counts an application name of the module up or down.
  void (*addAppName)(KrRxGenHand* module, const wchar_t* name);
  void (*removeAppName)(KrRxGenHand* module, const wchar_t* name);
};
// Installs calls, which must outlive the library; returns true.
bool krrxSetModuleCalls(const KrRxModuleCalls* calls);

// Runs function(argument) in module's context; with no module, runs it with
// no module current.
void krrxRunInModuleContext(KrRxGenHand* module, void (*function)(void*), void* argument);
// Count name up or down among the module's application names.
void krrxAddModuleAppName(KrRxGenHand* module, const wchar_t* name);
void krrxRemoveModuleAppName(KrRxGenHand* module, const wchar_t* name);
