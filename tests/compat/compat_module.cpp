// A module as an author wrote it against the first 20.x headers (compiled
// against the frozen copies in include/). At kAppMsgInit it uses what module
// authors use: class registration, queryX, x, isKindOf and cast, a service,
// a system registry entry, KrString and the linker's own functions. Any
// answer that is not the runtime's documented one fails the initialisation,
// so the load itself reports it.
#include "kr1st.h"

namespace {

class CompatProtocol : public KrRxObject {
 public:
  KRRX_DECLARE_MEMBERS(CompatProtocol);
};
KRRX_NO_CONS_DEFINE_MEMBERS(CompatProtocol, KrRxObject)

class CompatShape : public KrRxObject {
 public:
  KRRX_DECLARE_MEMBERS(CompatShape);
};
KRRX_CONS_DEFINE_MEMBERS(CompatShape, KrRxObject)

CompatProtocol* sProtocol = nullptr;
KrRxObject* sService = nullptr;

bool usesObjects() {
  CompatShape::rxInit();
  CompatProtocol::rxInit();
  krrxBuildClassHierarchy();
  sProtocol = new CompatProtocol();
  CompatShape::desc()->addX(CompatProtocol::desc(), sProtocol);
  KrRxObject* shape = CompatShape::desc()->create();
  bool ok = shape && shape->isKindOf(KrRxObject::desc()) && !shape->isKindOf(CompatProtocol::desc()) &&
            shape->queryX(CompatProtocol::desc()) == sProtocol && shape->x(CompatProtocol::desc()) == sProtocol &&
            CompatProtocol::cast(shape->queryX(CompatProtocol::desc())) == sProtocol &&
            shape->queryX(CompatShape::desc()) == nullptr && krrxFindKrRxClass(L"CompatShape") == shape->isA();
  delete shape;
  return ok;
}

bool usesServicesAndRegistry() {
  sService = krrxRegisterService(L"CompatService");
  krrxSysRegistry()->atPut(L"CompatEntry", sService);
  return sService && krrxServiceIsRegistered(L"CompatService") && krrxSysRegistry()->at(L"CompatEntry") == sService;
}

bool usesStrings() {
  KrString text(L"compat");
  text.append('!');
  return text.length() == 7 && text.compare(L"compat!") == 0;
}

bool usesLinker(void* self) {
  return krrxApplicationIsLocked(L"compat.krx") && krrxUnlockApplication(self) &&
         !krrxApplicationIsLocked(L"compat.krx") &&
         static_cast<KrRxDynamicLinker*>(krrxSysRegistry()->at(L"DynamicLinker"))->moduleHandlePtr(L"compat") == self;
}

KrRx::AppRetCode unload() {
  krrxSysRegistry()->remove(L"CompatEntry");
  if (auto* services = static_cast<KrRxDictionary*>(krrxSysRegistry()->at(L"ServiceDictionary")))
    services->remove(L"CompatService");
  delete sService;
  CompatShape::desc()->delX(CompatProtocol::desc());
  delete sProtocol;
  deleteKrRxClass(CompatShape::desc());
  deleteKrRxClass(CompatProtocol::desc());
  return KrRx::kRetOK;
}

}  // namespace

extern "C" __declspec(dllexport) KrRx::AppRetCode krrxEntryPoint(KrRx::AppMsgCode message, void* packet) {
  if (message == KrRx::kAppMsgInit)
    return usesObjects() && usesServicesAndRegistry() && usesStrings() && usesLinker(packet) ? KrRx::kRetOK
                                                                                              : KrRx::AppRetCode(1);
  if (message == KrRx::kAppMsgUnload) return unload();
  return KrRx::kRetOK;
}
