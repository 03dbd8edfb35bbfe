// A module that registers one of everything, for the soak: on kAppMsgInit
// the class "SoakPart" with the properties "width" and "label" and the
// symbol "hinge", the service "EverythingService" and its system-registry
// entry "EverythingEntry", a query overrule and a protocol reactor on the
// class; on kAppMsgUnload it takes them all back. soakNewPart makes a part
// for the host to format, evaluate and walk.
#include "kr1st.h"

class SoakPart : public KrRxObject {
  KRRX_DECLARE_MEMBERS(SoakPart);

 public:
  double mWidth = 2.5;
};
KRRX_CONS_DEFINE_MEMBERS(SoakPart, KrRxObject)

namespace {

class Described : public KrRfProperty {
 public:
  Described(const wchar_t* name, KrRxClass* valueType) : mpName(name), mpValueType(valueType) {}
  KrRxClass* valueType() const override { return mpValueType; }
  GUID* getGuid(GUID* buffer) const override {
    *buffer = GUID{0x534F414B, 0, 0, {}};
    buffer->Data4[7] = static_cast<unsigned char>(mpName[0]);
    return buffer;
  }
  const wchar_t* displayName() const override { return mpName; }
  const wchar_t* name() const override { return mpName; }
  const wchar_t* description() const override { return nullptr; }
  Kesu::ErrorStatus getValue(const KrRxObject* object, KrRxObject* value) const override {
    const SoakPart* part = SoakPart::cast(object);
    if (!part) return Kesu::eWrongObjectType;
    if (KrVtFloat64* width = KrVtFloat64::cast(value)) width->value() = part->mWidth;
    if (KrRxTextString* label = KrRxTextString::cast(value)) *label = L"soak part";
    return Kesu::eOk;
  }

 private:
  const wchar_t* mpName;
  KrRxClass* mpValueType;
};

class PlainQueryX : public KrRxQueryXOverrule {
 public:
  bool isApplicable(const KrRxObject*) const override { return true; }
};

Described* sSymbols[3];
KrRxObject* sService = nullptr;
PlainQueryX sOverrule;
KrRxProtocolReactor sReactor;

KrRxProtocolReactorList* reactorList() {
  auto* services = KrRxDictionary::cast(krrxSysRegistry()->at(L"ServiceDictionary"));
  auto* factory = KrRxProtocolReactorManagerFactory::cast(services->at(L"ProtocolReactorManager"));
  return factory->createReactorManager(SoakPart::desc())->createReactorList(KrRxProtocolReactor::desc());
}

KrRx::AppRetCode initialise(void* self) {
  SoakPart::rxInit();
  krrxBuildClassHierarchy();
  KrRfReflectionPE* pe = krrfReflectionService()->reflectionPE(SoakPart::desc(), true);
  sSymbols[0] = new Described(L"width", KrVtFloat64::desc());
  sSymbols[1] = new Described(L"label", KrRxTextString::desc());
  sSymbols[2] = new Described(L"hinge", nullptr);
  for (Described* symbol : sSymbols) pe->addSymbol(symbol);
  sService = krrxRegisterService(L"EverythingService");
  krrxSysRegistry()->atPut(L"EverythingEntry", sService);
  KrRxOverrule::addOverrule(SoakPart::desc(), &sOverrule);
  reactorList()->addReactor(&sReactor);
  krrxUnlockApplication(self);
  return KrRx::kRetOK;
}

KrRx::AppRetCode unload() {
  reactorList()->removeReactor(&sReactor);
  KrRxOverrule::removeOverrule(SoakPart::desc(), &sOverrule);
  krrxSysRegistry()->remove(L"EverythingEntry");
  KrRxDictionary::cast(krrxSysRegistry()->at(L"ServiceDictionary"))->remove(L"EverythingService");
  delete sService;
  for (Described*& symbol : sSymbols) {
    krrfReflectionService()->reflectionPE(SoakPart::desc(), false)->removeSymbol(symbol);
    delete symbol;
    symbol = nullptr;
  }
  deleteKrRxClass(SoakPart::desc());
  return KrRx::kRetOK;
}

}  // namespace

extern "C" __declspec(dllexport) KrRxObject* soakNewPart() { return new SoakPart(); }

extern "C" __declspec(dllexport) KrRx::AppRetCode krrxEntryPoint(KrRx::AppMsgCode message, void* packet) {
  if (message == KrRx::kAppMsgInit) return initialise(packet);
  if (message == KrRx::kAppMsgUnload) return unload();
  return KrRx::kRetOK;
}
