#include "KrRxModuleTestSupport.h"

#include <windows.h>

#include "modules/KrRxFileBytes.h"
#include "runtime/KrRxImpDictionary.h"

KrRxImpDynamicLinker* krTestLinker() {
  return KrRxImpDynamicLinker::cast(krrxSysRegistry()->at(L"DynamicLinker"));
}

long long krSystemTableBytes() {
  const KrRxImpDictionary* tables[] = {
      KrRxImpDictionary::cast(krrxSysRegistry()), KrRxImpDictionary::cast(krrxSysClasses()),
      KrRxImpDictionary::cast(krrxSysRegistry()->at(L"ServiceDictionary")), krTestLinker()->loadedModules()};
  long long bytes = 0;
  for (const KrRxImpDictionary* table : tables)
    bytes += table->entryBlockBytes() + table->keyIndex().capacity * sizeof(uint32_t);
  return bytes;
}

std::wstring krSystemText(unsigned long error) {
  wchar_t* text = nullptr;
  FormatMessageW(0x1300, nullptr, error, 0x400, reinterpret_cast<wchar_t*>(&text), 0, nullptr);
  std::wstring copy = text ? text : L"";
  LocalFree(text);
  return copy;
}

std::string krUtf16le(const std::wstring& text) {
  std::string bytes;
  for (wchar_t unit : text) {
    bytes.push_back(char(unit & 0xFF));
    bytes.push_back(char(unit >> 8));
  }
  return bytes;
}

void krWriteFile(const std::wstring& path, const std::string& bytes) {
  HANDLE file = CreateFileW(path.c_str(), GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS, 0, nullptr);
  DWORD written = 0;
  WriteFile(file, bytes.data(), DWORD(bytes.size()), &written, nullptr);
  CloseHandle(file);
}

std::string krReadFile(const std::wstring& path) {
  std::string bytes;
  DWORD error;
  krrxReadFileBytes(path.c_str(), bytes, error);
  return bytes;
}

void KrRecordingReactor::rxAppLoaded(const wchar_t* name) {
  record(L"loaded", name);
  if (markVetoedWhenLoaded) static_cast<KrRxGenHand*>(krTestLinker()->moduleHandlePtr(name))->setVetoed();
}


void KrRecordingReactor::rxAppCouldBeLoaded(void* module) {
  wchar_t path[MAX_PATH];
  GetModuleFileNameW(static_cast<HMODULE>(module), path, MAX_PATH);
  record(L"couldBeLoaded", KrRxImpDynamicLinker::findFileName(path));
  if (vetoOffers) veto(vetoReason.c_str());
}
