// A module that registers what real modules do, for the soak: on
// kAppMsgInit the classes "SoakShape" (a root's child) and "SoakCircle" (its
// child), the service "SoakService", and the same service as "SoakEntry" in
// the system registry; on kAppMsgUnload it takes them all back. No C++ library code of its own, so that loading and freeing it
// costs the heap nothing beyond what the runtime does.
#include "kr1st.h"

namespace {

KrRxClass* sShape = nullptr;
KrRxClass* sCircle = nullptr;
KrRxObject* sService = nullptr;

KrRx::AppRetCode initialise(void* self) {
  sShape = newKrRxClass(L"SoakShape", L"KrRxObject", 0, nullptr, nullptr, nullptr);
  sCircle = newKrRxClass(L"SoakCircle", L"SoakShape", 0, nullptr, nullptr, nullptr);
  krrxBuildClassHierarchy();
  sService = krrxRegisterService(L"SoakService");
  krrxSysRegistry()->atPut(L"SoakEntry", sService);
  krrxUnlockApplication(self);
  return KrRx::kRetOK;
}

KrRx::AppRetCode unload() {
  krrxSysRegistry()->remove(L"SoakEntry");
  if (auto* services = static_cast<KrRxDictionary*>(krrxSysRegistry()->at(L"ServiceDictionary")))
    services->remove(L"SoakService");
  delete sService;
  deleteKrRxClass(sCircle);
  deleteKrRxClass(sShape);
  sService = nullptr;
  sCircle = sShape = nullptr;
  return KrRx::kRetOK;
}

}  // namespace

extern "C" __declspec(dllexport) KrRx::AppRetCode krrxEntryPoint(KrRx::AppMsgCode message, void* packet) {
  if (message == KrRx::kAppMsgInit) return initialise(packet);
  if (message == KrRx::kAppMsgUnload) return unload();
  return KrRx::kRetOK;
}
