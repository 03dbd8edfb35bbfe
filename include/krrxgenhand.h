#pragma once
/// @file
/// The record that the dynamic linker keeps for each loaded module: its handle
/// and entry point, file name and version resource, the application names it
/// was loaded under, its references and status flags, the modules it depends
/// on, and a dictionary in which the module keeps named objects (its
/// application data). The record is also the module's identity: the module
/// receives it with kAppMsgInit and hands it back to lock itself or to
/// declare itself MDI-aware.
///
/// The statics name the module whose code the runtime is calling and the
/// message it is handling; they are saved and restored around every call, so
/// calls may nest (on one thread).

#include <cstdint>

#include "krrxgenvoid.h"
#include "krrxmodulemessages.h"
#include "krrxtextstring.h"

class KrRxDictionary;
class KrRxDynamicLinker;
template <typename T>
struct KrRxGrowArray;
/// An application table entry that a host may attach to a module; the runtime only stores it.
struct RxTDSAppTableEntryType;

/// The linker's record of one loaded module, and the module's identity.
class KR1ST_API KrRxGenHand : public KrRxGenVoid {
  KRRX_DECLARE_MEMBERS(KrRxGenHand);

 public:
  /// The bits of appStatusFlags().
  enum StatusFlags : unsigned int { kLocked = 0x1, kVetoed = 0x2, kMDIAware = 0x4 };

  /// A record without module, locked, without references; its application
  /// data dictionary comes from the kernel service.
  KrRxGenHand();
  KrRxGenHand(const KrRxGenHand&) = delete;
  KrRxGenHand& operator=(const KrRxGenHand&) = delete;
  ~KrRxGenHand() override;

  /// Stores the module handle, looks up its "krrxEntryPoint" and reads the
  /// module file's version resource. Null clears handle and entry point but
  /// keeps the last version block.
  void setVal(void* moduleHandle);
  /// The module's krrxEntryPoint, or null.
  KrRxAppEntryPoint entryPoint() const { return mpEntryPoint; }
  /// The module file's version resource (a global memory block), or null.
  void* versionInfo() const { return mpVersionInfo; }

  /// The module's file name without directory ("" until set).
  ///@{
  const wchar_t* FileName() const { return mFileName; }
  void setfileName(const wchar_t* name);
  ///@}

  /// The status flags, one flag set or cleared, and the veto flag set or cleared.
  ///@{
  unsigned int appStatusFlags() const { return mStatusFlags; }
  void setStatusFlag(StatusFlags flag, bool on);
  void setVetoed() { setStatusFlag(kVetoed, true); }
  void clrVetoFlag() { setStatusFlag(kVetoed, false); }
  ///@}

  /// The busy flag, which the host keeps.
  ///@{
  bool isAppBusy() const { return mBusy; }
  void setAppBusy(bool busy) { mBusy = busy; }
  ///@}

  /// The application names the module was loaded under, each counted: adding
  /// a name present already (ignoring case) counts it up, removing counts it
  /// down and drops it at zero.
  ///@{
  void addLogicalAppName(const wchar_t* name);
  void removeLogicalAppName(const wchar_t* name);
  bool hasLogicalAppName(const wchar_t* name) const;
  /// The first name, or null.
  const wchar_t* logicalAppName() const;
  ///@}

  /// Why the module was loaded.
  ///@{
  KesuApp::LoadReasons loadReason() const { return mLoadReason; }
  void setLoadReason(KesuApp::LoadReasons reason) { mLoadReason = reason; }
  ///@}

  /// The UI reference: set while the module is loaded by command.
  ///@{
  bool uiAddRef() { return mUiRef = true; }
  bool uiRelease() { return mUiRef = false; }
  bool uiValue() const { return mUiRef; }
  ///@}

  /// The API reference count; returns the new count. apiAddRef throws
  /// std::overflow_error at 65535, apiRelease std::underflow_error at 0.
  ///@{
  unsigned short apiAddRef();
  unsigned short apiRelease();
  unsigned short apiValue() const { return mApiRefs; }
  ///@}

  /// The module's application data, by key; null when the kernel service was missing.
  KrRxDictionary* dictionary() const { return mpAppData; }

  /// The host's application table entry, kept and never read by the runtime.
  ///@{
  RxTDSAppTableEntryType* getAppInfoPtr() const { return mpAppInfo; }
  void setAppInfoPtr(RxTDSAppTableEntryType* appInfo) { mpAppInfo = appInfo; }
  ///@}

  /// False while a reference holds the module, or while a class of another
  /// module (or of the runtime) still derives from one of its classes.
  bool safeToUnload() const;

  /// Registers, through linker, every loaded extension module that this
  /// module imports (loading it or counting an API reference); false at the
  /// first failure, after which the caller calls unloadDependencies.
  bool loadDependencies(KrRxDynamicLinker* linker, bool printMessages);
  /// Drops those references again, the last dependency first.
  void unloadDependencies(KrRxDynamicLinker* linker);

  /// Calls the entry point with (code, packet) as the current module; true
  /// when it returns 0, and when there is no entry point. A fault caught
  /// under bCatchSendAppExceptions counts as the result 3.
  bool sendAppMessage(KrRx::AppMsgCode code, void* packet);
  /// Calls function(argument) with this module current (the message code
  /// stays); false when a fault was caught.
  bool executeInAppContext(void (*function)(void*), void* argument);

  /// The module whose code the runtime is calling, or null.
  static KrRxGenHand* curModule() { return mCurModule; }
  /// Makes module current; returns the previous one.
  static KrRxGenHand* setCurModule(KrRxGenHand* module);
  /// The message that module is handling.
  static KrRx::AppMsgCode curMsgCode() { return mCurMsgCode; }

  /// The current module and message (see curModule and curMsgCode).
  ///@{
  static KrRxGenHand* mCurModule;
  static KrRx::AppMsgCode mCurMsgCode;
  ///@}

 private:
  int32_t findLogicalAppName(const wchar_t* name) const;
  void releaseVersionInfo();

  KrRxTextString mFileName;
  unsigned int mStatusFlags;
  bool mBusy;
  KrRxGrowArray<wchar_t*>* mpAppNames;
  KrRxGrowArray<uint32_t>* mpAppNameCounts;
  KesuApp::LoadReasons mLoadReason;
  bool mUiRef;
  uint16_t mApiRefs;
  KrRxAppEntryPoint mpEntryPoint;
  KrRxDictionary* mpAppData;
  void* mpVersionInfo;
  KrRxGrowArray<void*>* mpDependencies;
  RxTDSAppTableEntryType* mpAppInfo;
};

/// Application data of the current module: false when no module is current.
KR1ST_API bool krrxAddAppData(const wchar_t* key, KrRxObject* data);
/// Removes the entry key (the object stays the caller's).
KR1ST_API bool krrxRemoveAppData(const wchar_t* key, KrRxObject* data);
/// The object kept under key by the loaded module moduleName, or null.
KR1ST_API KrRxObject* krrxGetAppData(const wchar_t* key, const wchar_t* moduleName);
