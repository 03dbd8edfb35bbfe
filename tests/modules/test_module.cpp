// The extension module that the linker tests load, built in many variants
// (see CMakeLists.txt). By default it is a well-behaved module: during
// kAppMsgInit it registers the class "<name>Thing" (application "<name>App"),
// the service "<name>Service" and the application data "<name>Data", and
// unlocks itself; during kAppMsgUnload it takes all of them back. It records
// every message it receives, for the tests to read while it is loaded, and
// traces kAppMsgUnload to stderr while KR_TEST_MODULE_TRACE is set. Its
// statics need no destruction: at process exit the runtime may still send
// kAppMsgUnload after the module's own detach.
//
// Variants: TEST_API_VERSION, TEST_NO_API_VERSION, TEST_NO_ENTRY_POINT,
// TEST_INIT_RESULT, TEST_UNLOAD_RESULT, TEST_FAULT_ON_INIT, TEST_KEEP_LOCKED,
// TEST_IMPORTS_DEPENDENCY (calls into dependency.krx), TEST_EXPORTS_DEPENDENCY,
// TEST_IMPORTS_HELPER (calls into beside_helper.dll).

#include <cstdio>
#include <cstdlib>
#include <string>

#include "kr1st.h"

#ifndef TEST_API_VERSION
#define TEST_API_VERSION 0x00140005
#endif
#ifndef TEST_INIT_RESULT
#define TEST_INIT_RESULT 0
#endif
#ifndef TEST_UNLOAD_RESULT
#define TEST_UNLOAD_RESULT 0
#endif

#define TEST_WIDE2(text) L##text
#define TEST_WIDE(text) TEST_WIDE2(text)
#define TEST_STRING2(text) #text
#define TEST_STRING(text) TEST_WIDE(TEST_STRING2(text))

#ifdef TEST_IMPORTS_DEPENDENCY
extern "C" __declspec(dllimport) int testDependencyValue();
#endif
#ifdef TEST_IMPORTS_HELPER
extern "C" __declspec(dllimport) int testHelperValue();
#endif

namespace {

const wchar_t* const kName = TEST_STRING(TEST_MODULE_NAME);
int sMessages[64];
int sMessageCount = 0;
void* sPacket = nullptr;
void* sCurrentAtInit = nullptr;
bool sAppDataAdded = false;
int sDependencyValue = 0;
KrRxObject* sService = nullptr;
KrRxTextString* sAppData = nullptr;

std::wstring named(const wchar_t* suffix) { return std::wstring(kName) + suffix; }

int dependencyValue() {
  int value = 0;
#ifdef TEST_IMPORTS_DEPENDENCY
  value += testDependencyValue();
#endif
#ifdef TEST_IMPORTS_HELPER
  value += testHelperValue();
#endif
  return value;
}

[[maybe_unused]] KrRx::AppRetCode initialise(void* self) {
#ifdef TEST_FAULT_ON_INIT
  *static_cast<volatile int*>(nullptr) = 1;
#endif
  sPacket = self;
  sCurrentAtInit = KrRxGenHand::curModule();
  newKrRxClass(named(L"Thing").c_str(), L"KrRxObject", 0, nullptr, nullptr, named(L"App").c_str());
  krrxBuildClassHierarchy();
  sService = krrxRegisterService(named(L"Service").c_str());
  sAppData = new KrRxTextString(kName, -1);
  sAppDataAdded = krrxAddAppData(named(L"Data").c_str(), sAppData);
#ifndef TEST_KEEP_LOCKED
  krrxUnlockApplication(self);
#endif
  sDependencyValue = dependencyValue();
  return KrRx::AppRetCode(TEST_INIT_RESULT);
}

[[maybe_unused]] KrRx::AppRetCode unload() {
  if (getenv("KR_TEST_MODULE_TRACE")) std::fprintf(stderr, "%ls hears kAppMsgUnload\n", kName);
  krrxRemoveAppData(named(L"Data").c_str(), sAppData);
  delete sAppData;
  sAppData = nullptr;
  auto* services = static_cast<KrRxDictionary*>(krrxSysRegistry()->at(L"ServiceDictionary"));
  if (services) services->remove(named(L"Service").c_str());
  delete sService;
  sService = nullptr;
  deleteKrRxClass(krrxFindKrRxClass(named(L"Thing").c_str()));
  return KrRx::AppRetCode(TEST_UNLOAD_RESULT);
}

}  // namespace

#ifndef TEST_NO_API_VERSION
extern "C" __declspec(dllexport) unsigned int krrxGetApiVersion() { return TEST_API_VERSION; }
#endif

#ifndef TEST_NO_ENTRY_POINT
extern "C" __declspec(dllexport) KrRx::AppRetCode krrxEntryPoint(KrRx::AppMsgCode message, void* packet) {
  if (sMessageCount < 64) sMessages[sMessageCount++] = message;
  if (message == KrRx::kAppMsgInit) return initialise(packet);
  if (message == KrRx::kAppMsgUnload) return unload();
  return KrRx::kRetOK;
}
#endif

#ifdef TEST_EXPORTS_DEPENDENCY
extern "C" __declspec(dllexport) int testDependencyValue() { return 7; }
#endif

extern "C" __declspec(dllexport) int testModuleMessageCount() { return sMessageCount; }
extern "C" __declspec(dllexport) int testModuleMessage(int index) { return sMessages[index]; }
extern "C" __declspec(dllexport) void* testModulePacket() { return sPacket; }
extern "C" __declspec(dllexport) void* testModuleCurrentAtInit() { return sCurrentAtInit; }
extern "C" __declspec(dllexport) bool testModuleAppDataAdded() { return sAppDataAdded; }
extern "C" __declspec(dllexport) int testModuleDependencyValue() { return sDependencyValue; }
