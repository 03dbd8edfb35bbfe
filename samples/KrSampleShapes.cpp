// shapes.krx: a sample module that adds a small class family and a service
// to the runtime while it is loaded.
//
// A module exports two functions, krrxGetApiVersion and krrxEntryPoint. The
// runtime loads it in two steps: it first maps the file without running any
// of its code (nor resolving its imports) and calls krrxGetApiVersion, then
// loads it for real and sends kAppMsgInit to krrxEntryPoint. Before the
// runtime releases the module it sends kAppMsgUnload, and the module takes
// back everything it added. This module writes only krrxEntryPoint:
// kestrune_add_module() adds the SDK's krrxGetApiVersion.

#include "kr1st.h"

// An abstract shape and one concrete kind. Each class carries the run-time
// type members (desc, isA, cast, rxInit) that the KRRX_ macros supply.
class KrSampleShape : public KrRxObject {
  KRRX_DECLARE_MEMBERS(KrSampleShape);

 public:
  virtual double area() const = 0;
};

class KrSampleCircle : public KrSampleShape {
  KRRX_DECLARE_MEMBERS(KrSampleCircle);

 public:
  double area() const override { return 3.14159265358979 * mRadius * mRadius; }

 private:
  double mRadius = 1.0;
};

// A protocol: behaviour attached to a class from outside, found at run time
// with queryX. Any class can be given a describer without changing it.
class KrSampleDescriber : public KrRxObject {
  KRRX_DECLARE_MEMBERS(KrSampleDescriber);

 public:
  virtual const wchar_t* describe(const KrRxObject* object) const = 0;
};

// The describer this module attaches to every shape (circles inherit it).
class KrSampleShapeDescriber : public KrSampleDescriber {
  KRRX_DECLARE_MEMBERS(KrSampleShapeDescriber);

 public:
  const wchar_t* describe(const KrRxObject*) const override { return L"a shape with an area"; }
};

KRRX_NO_CONS_DEFINE_MEMBERS(KrSampleShape, KrRxObject)
KRRX_CONS_DEFINE_MEMBERS(KrSampleCircle, KrSampleShape)
KRRX_NO_CONS_DEFINE_MEMBERS(KrSampleDescriber, KrRxObject)
KRRX_CONS_DEFINE_MEMBERS(KrSampleShapeDescriber, KrSampleDescriber)

namespace {

const wchar_t kServiceName[] = L"SampleShapeService";
KrRxObject* sService = nullptr;
KrSampleShapeDescriber* sDescriber = nullptr;

KrRx::AppRetCode initialise(void* self) {
  // Classes made now belong to this module; the hierarchy pass links them into the tree.
  KrSampleShape::rxInit();
  KrSampleCircle::rxInit();
  KrSampleDescriber::rxInit();
  KrSampleShapeDescriber::rxInit();
  krrxBuildClassHierarchy();
  // Attached to the shape class, the describer answers queryX on every circle too.
  sDescriber = new KrSampleShapeDescriber();
  KrSampleShape::desc()->addX(KrSampleDescriber::desc(), sDescriber);
  sService = krrxRegisterService(kServiceName);
  // Every module starts locked; unlocking lets the user unload it by command.
  krrxUnlockApplication(self);
  return KrRx::kRetOK;
}

KrRx::AppRetCode unload() {
  // At process shutdown the service dictionary may already be gone.
  auto* services = static_cast<KrRxDictionary*>(krrxSysRegistry()->at(L"ServiceDictionary"));
  if (services) services->remove(kServiceName);
  delete sService;
  KrSampleShape::desc()->delX(KrSampleDescriber::desc());
  delete sDescriber;
  // Classes can only be deleted while their module hears kAppMsgUnload; children first.
  deleteKrRxClass(KrSampleCircle::desc());
  deleteKrRxClass(KrSampleShape::desc());
  deleteKrRxClass(KrSampleShapeDescriber::desc());
  deleteKrRxClass(KrSampleDescriber::desc());
  return KrRx::kRetOK;
}

}  // namespace

extern "C" __declspec(dllexport) KrRx::AppRetCode krrxEntryPoint(KrRx::AppMsgCode message, void* packet) {
  switch (message) {
    case KrRx::kAppMsgInit:
      return initialise(packet);  // the packet is this module's own KrRxGenHand
    case KrRx::kAppMsgUnload:
      return unload();
    default:
      return KrRx::kRetOK;  // messages a module does not know are answered with success
  }
}
