#include "host/KrHostServices.h"

#include <windows.h>

#include "host/KrHostPlatform.h"

namespace {

constexpr wchar_t kLibraryFolder[] = L"krhost-services\\";

typedef void (*SetMessageSink)(KrHostMessageSink sink, void* context);
typedef void (*SetProductKey)(const wchar_t* key);

template <typename T>
T libraryFunction(void* library, const char* name) {
  return library ? reinterpret_cast<T>(reinterpret_cast<void*>(GetProcAddress(static_cast<HMODULE>(library), name)))
                 : nullptr;
}

std::wstring libraryPath() {
  std::wstring path = krhostProgramPath();
  path.resize(path.find_last_of(L"\\/") + 1);
  return path + kLibraryFolder + L"KRDB20.DLL";
}

}  // namespace

KrHostServices& KrHostServices::instance() {
  static KrHostServices services;
  return services;
}

KrHostServices::KrHostServices() : mLibrary(LoadLibraryW(libraryPath().c_str())) {
  if (auto setSink = libraryFunction<SetMessageSink>(mLibrary, "krhostSetMessageSink")) setSink(&collect, this);
}

void KrHostServices::setProductKey(const std::wstring& key) {
  if (auto set = libraryFunction<SetProductKey>(mLibrary, "krhostSetProductKey")) set(key.c_str());
}

std::vector<std::wstring> KrHostServices::takeMessages() {
  std::vector<std::wstring> taken;
  taken.swap(mMessages);
  return taken;
}

void KrHostServices::collect(const wchar_t* text, int length, void* context) {
  static_cast<KrHostServices*>(context)->mMessages.emplace_back(text, size_t(length > 0 ? length : 0));
}
