// greeter.kra: a sample module that answers a host-defined message. The host
// sends code 100 (kGreet) with a buffer of kGreetingCapacity wide characters
// as the packet; the module writes its greeting into it. Packets cross module
// boundaries, so they are plain data. The module also keeps a named object in its application
// data, where any code can find it with krrxGetAppData.

#include <cwchar>

#include "kr1st.h"

// The message this module understands; codes beyond the runtime's own are the host's to define.
constexpr KrRx::AppMsgCode kGreet = static_cast<KrRx::AppMsgCode>(100);
constexpr size_t kGreetingCapacity = 128;

class KrSampleGreeting : public KrRxObject {
  KRRX_DECLARE_MEMBERS(KrSampleGreeting);

 public:
  const wchar_t* text() const { return L"Hello from greeter.kra"; }
};

KRRX_CONS_DEFINE_MEMBERS(KrSampleGreeting, KrRxObject)

namespace {

const wchar_t kServiceName[] = L"SampleGreeterService";
KrRxObject* sService = nullptr;
KrRxTextString* sMotto = nullptr;

KrRx::AppRetCode initialise(void* self) {
  KrSampleGreeting::rxInit();
  krrxBuildClassHierarchy();
  sService = krrxRegisterService(kServiceName);
  // Application data: a named object that belongs to this module.
  sMotto = new KrRxTextString(L"Greetings are free", -1);
  krrxAddAppData(L"Motto", sMotto);
  krrxUnlockApplication(self);
  return KrRx::kRetOK;
}

KrRx::AppRetCode unload() {
  krrxRemoveAppData(L"Motto", sMotto);
  delete sMotto;
  auto* services = static_cast<KrRxDictionary*>(krrxSysRegistry()->at(L"ServiceDictionary"));
  if (services) services->remove(kServiceName);
  delete sService;
  deleteKrRxClass(KrSampleGreeting::desc());
  return KrRx::kRetOK;
}

KrRx::AppRetCode greet(wchar_t* reply) {
  if (!reply) return KrRx::AppRetCode(1);
  wcsncpy(reply, KrSampleGreeting().text(), kGreetingCapacity - 1);
  return KrRx::kRetOK;
}

}  // namespace

// The version function, spelled out: a constant, nothing imported.
KRRX_DEFINE_API_VERSION()

extern "C" __declspec(dllexport) KrRx::AppRetCode krrxEntryPoint(KrRx::AppMsgCode message, void* packet) {
  if (message == kGreet) return greet(static_cast<wchar_t*>(packet));
  switch (message) {
    case KrRx::kAppMsgInit:
      return initialise(packet);
    case KrRx::kAppMsgUnload:
      return unload();
    default:
      return KrRx::kRetOK;
  }
}
