#include "modules/KrRxImportBinding.h"

#include <cstdlib>
#include <vector>

#include "krrxdynamiclinker.h"

namespace {

constexpr char kRuntimeLibrary[] = "kr1st20.dll";

// The address that name (or "#<ordinal>") has in library, or null.
FARPROC exportedAddress(HMODULE library, const std::string& name) {
  if (name.size() > 1 && name[0] == '#')
    return GetProcAddress(library, MAKEINTRESOURCEA(std::strtoul(name.c_str() + 1, nullptr, 10)));
  return GetProcAddress(library, name.c_str());
}

bool bindsFrom(const KrRxPeImage& image, const std::string& libraryName, HMODULE library, std::string& missing) {
  std::vector<std::string> functions;
  image.importedFunctionNames(libraryName, functions);
  for (const std::string& function : functions) {
    if (exportedAddress(library, function)) continue;
    missing = function;
    return false;
  }
  return true;
}

}  // namespace

KrRxPeImage krrxMappedImage(HMODULE module) {
  auto* base = reinterpret_cast<const unsigned char*>(module);
  auto* dosHeader = reinterpret_cast<const IMAGE_DOS_HEADER*>(base);
  auto* headers = reinterpret_cast<const IMAGE_NT_HEADERS64*>(base + dosHeader->e_lfanew);
  return KrRxPeImage(base, headers->OptionalHeader.SizeOfImage, KrRxPeImage::kMappedLayout);
}

HMODULE krrxLoadedExtensionModule(const std::string& name) {
  HMODULE module = GetModuleHandleA(name.c_str());
  return module && GetProcAddress(module, KRRX_ENTRY_POINT) ? module : nullptr;
}

bool krrxImportsBind(HMODULE module, std::string& missing) {
  KrRxPeImage image = krrxMappedImage(module);
  HMODULE runtime = GetModuleHandleA(kRuntimeLibrary);
  if (runtime && !bindsFrom(image, kRuntimeLibrary, runtime, missing)) return false;
  std::vector<std::string> libraries;
  image.importNames(libraries);
  for (const std::string& library : libraries) {
    HMODULE extension = krrxLoadedExtensionModule(library);
    if (extension && extension != module && !bindsFrom(image, library, extension, missing))
      return false;
  }
  return true;
}
