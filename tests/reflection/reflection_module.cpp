// A module that describes a class of its own: during kAppMsgInit it
// registers "ReflModuleDog" (derived from the tests' "Dog") and adds the
// symbols "bark" and "wag" to it; during kAppMsgUnload it removes and
// deletes them, then deletes the class, as every describing module does. It
// refuses to unload (and so stays loaded) when the class's extension
// outlived its last symbol or a symbol was not destroyed.

#include "kr1st.h"

namespace {

int sLiveSymbols = 0;

class ModuleSymbol : public KrRfSymbol {
 public:
  explicit ModuleSymbol(const wchar_t* name) : mpName(name) { ++sLiveSymbols; }
  ~ModuleSymbol() override { --sLiveSymbols; }
  KrRxClass* valueType() const override { return nullptr; }
  GUID* getGuid(GUID* buffer) const override {
    *buffer = GUID{};
    buffer->Data1 = mpName[0];
    return buffer;
  }
  const wchar_t* displayName() const override { return mpName; }
  const wchar_t* name() const override { return mpName; }
  const wchar_t* description() const override { return nullptr; }

 private:
  const wchar_t* mpName;
};

const wchar_t* const kClassName = L"ReflModuleDog";
ModuleSymbol* sSymbols[2];

KrRx::AppRetCode initialise(void* self) {
  KrRxClass* cls = newKrRxClass(kClassName, L"Dog", 0, nullptr, nullptr, nullptr);
  krrxBuildClassHierarchy();
  KrRfReflectionPE* pe = krrfReflectionService()->reflectionPE(cls, true);
  sSymbols[0] = new ModuleSymbol(L"bark");
  sSymbols[1] = new ModuleSymbol(L"wag");
  for (ModuleSymbol* symbol : sSymbols) pe->addSymbol(symbol);
  krrxUnlockApplication(self);
  return KrRx::kRetOK;
}

KrRx::AppRetCode unload() {
  KrRxClass* cls = krrxFindKrRxClass(kClassName);
  for (ModuleSymbol*& symbol : sSymbols) {
    krrfReflectionService()->reflectionPE(cls, false)->removeSymbol(symbol);
    delete symbol;
    symbol = nullptr;
  }
  bool clean = sLiveSymbols == 0 && !krrfReflectionService()->reflectionPE(cls, false);
  deleteKrRxClass(cls);
  return clean ? KrRx::kRetOK : KrRx::kRetError;
}

}  // namespace

extern "C" __declspec(dllexport) unsigned int krrxGetApiVersion() { return 0x00140005; }

extern "C" __declspec(dllexport) KrRx::AppRetCode krrxEntryPoint(KrRx::AppMsgCode message, void* packet) {
  if (message == KrRx::kAppMsgInit) return initialise(packet);
  if (message == KrRx::kAppMsgUnload) return unload();
  return KrRx::kRetOK;
}

extern "C" __declspec(dllexport) int testLiveSymbols() { return sLiveSymbols; }
