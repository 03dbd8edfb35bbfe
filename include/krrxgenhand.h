#pragma once
// The record of one loaded module: its handle and entry point, file name and
// status, and the module's identity in lock and MDI calls. The statics name
// the module whose code the runtime is calling and the message it handles.

#include "krrxgenvoid.h"
#include "krrxmodulemessages.h"

class KR1ST_API KrRxGenHand : public KrRxGenVoid {
  KRRX_DECLARE_MEMBERS(KrRxGenHand);

 public:
  enum StatusFlags : unsigned int { kLocked = 0x1, kVetoed = 0x2, kMDIAware = 0x4 };

  KrRxGenHand();
  ~KrRxGenHand() override;

  // Stores the module handle and looks up its "krrxEntryPoint".
  void setVal(void* moduleHandle);
  KrRxAppEntryPoint entryPoint() const { return mpEntryPoint; }

  // The module's file name without directory.
  const wchar_t* FileName() const;
  void setfileName(const wchar_t* name);

  unsigned int appStatusFlags() const { return mStatusFlags; }

  // Calls the entry point with (code, packet) as the current module; true
  // when it returns 0, and when there is no entry point.
  bool sendAppMessage(KrRx::AppMsgCode code, void* packet);
  // Calls function(argument) with this module current.
  bool executeInAppContext(void (*function)(void*), void* argument);

  static KrRxGenHand* curModule() { return mCurModule; }
  // Makes module current; returns the previous one.
  static KrRxGenHand* setCurModule(KrRxGenHand* module);
  static KrRx::AppMsgCode curMsgCode() { return mCurMsgCode; }

  static KrRxGenHand* mCurModule;
  static KrRx::AppMsgCode mCurMsgCode;

 private:
  wchar_t* mpFileName;
  unsigned int mStatusFlags;
  KrRxAppEntryPoint mpEntryPoint;
};
