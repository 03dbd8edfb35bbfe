// Where the product keeps its settings in the registry, and its locale.

#include <windows.h>

#include <cwchar>

#include "kesuappregistry.h"
#include "krrxdictionary.h"
#include "krrxdynamiclinker.h"
#include "krrxsystem.h"
#include "modules/KrRxImpDynamicLinker.h"

namespace {

wchar_t sKestruneRegistryKey[kKestruneRegistryKeySize] = L"SOFTWARE\\OrvanCAD\\Kestrune\\R20.5";

}  // namespace

const wchar_t* krrxKestruneRegistryKey() { return sKestruneRegistryKey; }

void krrxSetKestruneRegistryKey(const wchar_t* key) {
  if (key) wcscpy(sKestruneRegistryKey, key);
}

const wchar_t* krrxProductKey() {
  KrRxDynamicLinker* linker = KrRxImpDynamicLinker::registered();
  return linker ? linker->ProductKey() : nullptr;
}

unsigned int krrxProductLCID() {
  KrRxDynamicLinker* linker = KrRxImpDynamicLinker::registered();
  return linker ? linker->ProductLcid() : GetSystemDefaultLCID();
}
