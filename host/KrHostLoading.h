#pragma once
// Loading modules for krhost's commands the way a user's load command does
// (through the dynamic linker, as a command, messages on), and telling what
// each load added to the runtime.
//
//   KrHostLoad load = krhostLoadModule(L"shapes.krx");
//   if (load.loaded) ... load.classes, load.services, load.appData ...
//   krhostUnloadModule(load.module, messages);

#include <string>
#include <vector>

#include "host/KrHostCommand.h"
#include "host/KrHostModuleVersion.h"

class KrRxDynamicLinker;
class KrRxGenHand;

struct KrHostLoad {
  std::wstring name;    // as asked
  std::wstring module;  // the file name in the loaded-module table ("" when it failed)
  bool loaded = false;
  std::vector<std::wstring> messages;  // what the linker wrote, one line each
  KrHostModuleVersion version;         // read from the module handle's version block
  std::vector<std::wstring> classes;   // classes that joined the class dictionary
  std::vector<std::wstring> services;  // services that joined the service dictionary
  std::vector<std::wstring> appData;   // the module's application data: "key (class)"
  std::vector<std::wstring> modules;   // other modules loaded with it (its dependencies)
};

KrRxDynamicLinker* krhostLinker();
// The module's table entry as a KrRxGenHand, or null.
KrRxGenHand* krhostModule(const wchar_t* name);
// The owner of a service: its module's file name, or "runtime".
std::wstring krhostServiceOwner(const wchar_t* serviceName);

KrHostLoad krhostLoadModule(const std::wstring& name);
// Unloads by command; false when the module stays. The linker's messages are appended.
bool krhostUnloadModule(const std::wstring& module, std::vector<std::wstring>& messages);

// The runtime's messages since the last call, split into lines (empty lines dropped).
std::vector<std::wstring> krhostTakeMessageLines();

// The modules named by --with, loaded for the life of a command and then
// unloaded in reverse order. Each is reported in the "with" table of report.
class KrHostWithModules {
 public:
  static const KrHostOption kOption;

  KrHostWithModules(const KrHostInvocation& invocation, KrHostReport& report);
  KrHostWithModules(const KrHostWithModules&) = delete;
  KrHostWithModules& operator=(const KrHostWithModules&) = delete;
  ~KrHostWithModules();

  // False when one of them did not load.
  bool allLoaded() const { return mAllLoaded; }

 private:
  std::vector<std::wstring> mLoaded;
  bool mAllLoaded = true;
};
