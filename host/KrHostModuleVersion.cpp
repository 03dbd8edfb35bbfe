#include "host/KrHostModuleVersion.h"

#include <windows.h>

#include <cwchar>
#include <vector>

namespace {

// One text of the block's first language, or nothing.
KrHostValue stringOf(const void* block, const wchar_t* name) {
  struct Translation {
    WORD language;
    WORD codePage;
  }* translation = nullptr;
  UINT size = 0;
  if (!VerQueryValueW(block, L"\\VarFileInfo\\Translation", reinterpret_cast<void**>(&translation), &size) ||
      size < sizeof(Translation))
    return KrHostValue();
  wchar_t path[64];
  swprintf(path, 64, L"\\StringFileInfo\\%04x%04x\\%ls", translation->language, translation->codePage, name);
  wchar_t* text = nullptr;
  if (!VerQueryValueW(block, path, reinterpret_cast<void**>(&text), &size) || !size) return KrHostValue();
  return KrHostValue(std::wstring(text, wcsnlen(text, size)));
}

}  // namespace

KrHostModuleVersion krhostVersionOfBlock(const void* block) {
  if (!block) return {};
  return {stringOf(block, L"FileVersion"), stringOf(block, L"FileDescription")};
}

KrHostModuleVersion krhostVersionOfFile(const std::wstring& path) {
  DWORD size = GetFileVersionInfoSizeW(path.c_str(), nullptr);
  std::vector<char> block(size);
  if (!size || !GetFileVersionInfoW(path.c_str(), 0, size, block.data())) return {};
  return krhostVersionOfBlock(block.data());
}

void krhostReportVersion(KrHostReport& report, const KrHostModuleVersion& version) {
  report.field("version", L"Version", version.version);
  report.field("description", L"Description", version.description);
}
