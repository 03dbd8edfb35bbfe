// shapes.krx: a sample module that adds a small class family and a service
// to the runtime while it is loaded, overrules the protocol lookup for large
// shapes, attaches a protocol reactor to the shape class and describes the
// shapes' width and height as properties that any code can read by name.
//
// A module exports two functions, krrxGetApiVersion and krrxEntryPoint. The
// runtime loads it in two steps: it first maps the file without running any
// of its code (nor resolving its imports) and calls krrxGetApiVersion, then
// loads it for real and sends kAppMsgInit to krrxEntryPoint. Before the
// runtime releases the module it sends kAppMsgUnload, and the module takes
// back everything it added. This module writes only krrxEntryPoint:
// kestrune_add_module() adds the SDK's krrxGetApiVersion.

#include "kr1st.h"

// An abstract shape and two concrete kinds. Each class carries the run-time
// type members (desc, isA, cast, rxInit) that the KRRX_ macros supply.
class KrSampleShape : public KrRxObject {
  KRRX_DECLARE_MEMBERS(KrSampleShape);

 public:
  virtual double area() const = 0;
  virtual double width() const = 0;
  virtual double height() const = 0;
};

class KrSampleCircle : public KrSampleShape {
  KRRX_DECLARE_MEMBERS(KrSampleCircle);

 public:
  double area() const override { return 3.14159265358979 * mRadius * mRadius; }
  double width() const override { return 2.0 * mRadius; }
  double height() const override { return 2.0 * mRadius; }

 private:
  double mRadius = 1.0;
};

class KrSampleSquare : public KrSampleShape {
  KRRX_DECLARE_MEMBERS(KrSampleSquare);

 public:
  double area() const override { return mSide * mSide; }
  double width() const override { return mSide; }
  double height() const override { return mSide; }

 private:
  double mSide = 20.0;
};

// A protocol: behaviour attached to a class from outside, found at run time
// with queryX. Any class can be given a describer without changing it.
class KrSampleDescriber : public KrRxObject {
  KRRX_DECLARE_MEMBERS(KrSampleDescriber);

 public:
  virtual const wchar_t* describe(const KrRxObject* object) const = 0;
};

// The describer this module attaches to every shape (circles and squares inherit it).
class KrSampleShapeDescriber : public KrSampleDescriber {
  KRRX_DECLARE_MEMBERS(KrSampleShapeDescriber);

 public:
  const wchar_t* describe(const KrRxObject*) const override { return L"a shape with an area"; }
};

// What a large shape is described as; handed out by the overrule below.
class KrSampleLargeShapeDescriber : public KrSampleDescriber {
  KRRX_DECLARE_MEMBERS(KrSampleLargeShapeDescriber);

 public:
  const wchar_t* describe(const KrRxObject*) const override { return L"a large shape"; }
};

// An overrule changes behaviour of an existing class without deriving from
// it: while overruling is on, queryX on a shape larger than 100 square units
// (a square, not a circle) answers the large-shape describer instead of the
// one attached to the class. Its class is registered like the others, so
// that a host can name the overrule that decided.
class KrSampleLargeShapeOverrule : public KrRxQueryXOverrule {
  KRRX_DECLARE_MEMBERS(KrSampleLargeShapeOverrule);

 public:
  bool isApplicable(const KrRxObject* object) const override {
    const KrSampleShape* shape = KrSampleShape::cast(object);
    return shape && shape->area() > 100.0;
  }
  KrRxObject* queryX(const KrRxObject* object, const KrRxClass* protocolClass) const override {
    if (protocolClass != KrSampleDescriber::desc()) return KrRxQueryXOverrule::queryX(object, protocolClass);
    return const_cast<KrSampleLargeShapeDescriber*>(&mDescriber);
  }

 private:
  KrSampleLargeShapeDescriber mDescriber;
};

// A protocol reactor class: listeners that code working on shapes may ask
// the shape class's reactor manager for and notify.
class KrSampleShapeReactor : public KrRxProtocolReactor {
  KRRX_DECLARE_MEMBERS(KrSampleShapeReactor);

 public:
  virtual void shapeChanged(KrSampleShape*) {}
};

// A read-only property of every shape: one of its lengths, handed out as a
// KrVtFloat64. Symbols are found by name and identified by their GUID.
class KrSampleLengthProperty : public KrRfProperty {
 public:
  typedef double (KrSampleShape::*Length)() const;

  KrSampleLengthProperty(const wchar_t* name, const wchar_t* displayName, const GUID& guid, Length length)
      : mName(name), mDisplayName(displayName), mGuid(guid), mLength(length) {}

  KrRxClass* valueType() const override { return KrVtFloat64::desc(); }
  GUID* getGuid(GUID* buffer) const override { return &(*buffer = mGuid); }
  const wchar_t* displayName() const override { return mDisplayName; }
  const wchar_t* name() const override { return mName; }
  const wchar_t* description() const override { return L"a length of the shape, in drawing units"; }
  // eInvalidInput unless object is a shape and value a KrVtFloat64.
  Kesu::ErrorStatus getValue(const KrRxObject* object, KrRxObject* value) const override {
    const KrSampleShape* shape = KrSampleShape::cast(object);
    KrVtFloat64* length = KrVtFloat64::cast(value);
    if (!shape || !length) return Kesu::eInvalidInput;
    *length = (shape->*mLength)();
    return Kesu::eOk;
  }

 private:
  const wchar_t* mName;
  const wchar_t* mDisplayName;
  GUID mGuid;
  Length mLength;
};

KRRX_NO_CONS_DEFINE_MEMBERS(KrSampleShape, KrRxObject)
KRRX_CONS_DEFINE_MEMBERS(KrSampleCircle, KrSampleShape)
KRRX_CONS_DEFINE_MEMBERS(KrSampleSquare, KrSampleShape)
KRRX_NO_CONS_DEFINE_MEMBERS(KrSampleDescriber, KrRxObject)
KRRX_CONS_DEFINE_MEMBERS(KrSampleShapeDescriber, KrSampleDescriber)
KRRX_CONS_DEFINE_MEMBERS(KrSampleLargeShapeDescriber, KrSampleDescriber)
KRRX_CONS_DEFINE_MEMBERS(KrSampleLargeShapeOverrule, KrRxQueryXOverrule)
KRRX_CONS_DEFINE_MEMBERS(KrSampleShapeReactor, KrRxProtocolReactor)

namespace {

const wchar_t kServiceName[] = L"SampleShapeService";
KrRxObject* sService = nullptr;
KrSampleShapeDescriber* sDescriber = nullptr;
KrSampleLargeShapeOverrule* sOverrule = nullptr;
bool sWasOverruling = false;
KrSampleShapeReactor* sReactor = nullptr;
const GUID kWidthGuid = {0x6b1d2c41, 0x52a3, 0x4e0f, {0x9a, 0x11, 0x3c, 0x5e, 0x27, 0x80, 0x14, 0x01}};
const GUID kHeightGuid = {0x6b1d2c41, 0x52a3, 0x4e0f, {0x9a, 0x11, 0x3c, 0x5e, 0x27, 0x80, 0x14, 0x02}};
KrSampleLengthProperty* sProperties[2] = {};

// The shape class's list of shape reactors, through the service "ProtocolReactorManager".
KrRxProtocolReactorList* shapeReactors() {
  auto* services = KrRxDictionary::cast(krrxSysRegistry()->at(L"ServiceDictionary"));
  auto* factory = services ? KrRxProtocolReactorManagerFactory::cast(services->at(L"ProtocolReactorManager"))
                           : nullptr;
  KrRxProtocolReactorManager* manager = factory ? factory->createReactorManager(KrSampleShape::desc()) : nullptr;
  return manager ? manager->createReactorList(KrSampleShapeReactor::desc()) : nullptr;
}

KrRx::AppRetCode initialise(void* self) {
  // Classes made now belong to this module; the hierarchy pass links them into the tree.
  KrSampleShape::rxInit();
  KrSampleCircle::rxInit();
  KrSampleSquare::rxInit();
  KrSampleDescriber::rxInit();
  KrSampleShapeDescriber::rxInit();
  KrSampleLargeShapeDescriber::rxInit();
  KrSampleLargeShapeOverrule::rxInit();
  KrSampleShapeReactor::rxInit();
  krrxBuildClassHierarchy();
  // Attached to the shape class, the describer answers queryX on every circle and square too.
  sDescriber = new KrSampleShapeDescriber();
  KrSampleShape::desc()->addX(KrSampleDescriber::desc(), sDescriber);
  // The overrule acts for every shape once overruling is switched on.
  sOverrule = new KrSampleLargeShapeOverrule();
  KrRxOverrule::addOverrule(KrSampleShape::desc(), sOverrule);
  sWasOverruling = KrRxOverrule::isOverruling();
  KrRxOverrule::setIsOverruling(true);
  // The reactor waits in the shape class's list until the module unloads.
  sReactor = new KrSampleShapeReactor();
  if (KrRxProtocolReactorList* reactors = shapeReactors()) reactors->addReactor(sReactor);
  // The shape class's properties; circles and squares inherit them.
  sProperties[0] = new KrSampleLengthProperty(L"width", L"Width", kWidthGuid, &KrSampleShape::width);
  sProperties[1] = new KrSampleLengthProperty(L"height", L"Height", kHeightGuid, &KrSampleShape::height);
  KrRfReflectionPE* symbols = krrfReflectionService()->reflectionPE(KrSampleShape::desc(), true);
  for (KrSampleLengthProperty* property : sProperties) symbols->addSymbol(property);
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
  KrRxOverrule::setIsOverruling(sWasOverruling);
  KrRxOverrule::removeOverrule(KrSampleShape::desc(), sOverrule);
  delete sOverrule;
  if (KrRxProtocolReactorList* reactors = shapeReactors()) reactors->removeReactor(sReactor);
  delete sReactor;
  // Symbols go before their class. Removing the last one takes the class's
  // reflection extension along, so it is asked for anew each time.
  for (KrSampleLengthProperty*& property : sProperties) {
    KrRfReflectionService* reflection = krrfReflectionService();
    if (KrRfReflectionPE* symbols = reflection ? reflection->reflectionPE(KrSampleShape::desc(), false) : nullptr)
      symbols->removeSymbol(property);
    delete property;
    property = nullptr;
  }
  // Classes can only be deleted while their module hears kAppMsgUnload; children first.
  // The shape class takes its reactor manager and overrule list along.
  deleteKrRxClass(KrSampleCircle::desc());
  deleteKrRxClass(KrSampleSquare::desc());
  deleteKrRxClass(KrSampleShape::desc());
  deleteKrRxClass(KrSampleShapeDescriber::desc());
  deleteKrRxClass(KrSampleLargeShapeDescriber::desc());
  deleteKrRxClass(KrSampleDescriber::desc());
  deleteKrRxClass(KrSampleLargeShapeOverrule::desc());
  deleteKrRxClass(KrSampleShapeReactor::desc());
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
