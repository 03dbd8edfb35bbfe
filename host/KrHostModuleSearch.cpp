#include "host/KrHostModuleSearch.h"

#include <windows.h>

#include <cwchar>

#include "host/KrHostPlatform.h"

namespace {

constexpr DWORD kPathCapacity = 32768;

// The folders a name without a directory is looked for in, in the order of
// the system's standard search: the program's folder, the system folders,
// the current folder, then PATH; each once.
std::vector<std::wstring> searchDirectories() {
  std::vector<std::wstring> directories = {krhostDirectoryOf(krhostProgramPath())};
  wchar_t folder[MAX_PATH];
  if (GetSystemDirectoryW(folder, MAX_PATH)) directories.push_back(std::wstring(folder) + L"\\");
  if (GetWindowsDirectoryW(folder, MAX_PATH)) directories.push_back(std::wstring(folder) + L"\\");
  DWORD size = GetCurrentDirectoryW(0, nullptr);
  std::wstring current(size, L'\0');
  current.resize(GetCurrentDirectoryW(size, &current[0]));
  directories.push_back(current + L"\\");
  size = GetEnvironmentVariableW(L"PATH", nullptr, 0);
  std::wstring path(size, L'\0');
  path.resize(GetEnvironmentVariableW(L"PATH", &path[0], size));
  for (size_t start = 0; start < path.size();) {
    size_t end = path.find(L';', start);
    if (end == std::wstring::npos) end = path.size();
    if (end > start) directories.push_back(path.substr(start, end - start) + L"\\");
    start = end + 1;
  }
  std::vector<std::wstring> distinct;
  for (const std::wstring& directory : directories) {
    bool seen = false;
    for (const std::wstring& earlier : distinct) seen = seen || _wcsicmp(earlier.c_str(), directory.c_str()) == 0;
    if (!seen) distinct.push_back(directory);
  }
  return distinct;
}

bool hasDirectory(const std::wstring& name) { return name.find_first_of(L"\\/") != std::wstring::npos; }

bool fileExists(const std::wstring& path) {
  DWORD attributes = GetFileAttributesW(path.c_str());
  return attributes != INVALID_FILE_ATTRIBUTES && !(attributes & FILE_ATTRIBUTE_DIRECTORY);
}

}  // namespace

std::wstring krhostDirectoryOf(const std::wstring& path) { return path.substr(0, path.find_last_of(L"\\/") + 1); }

KrHostModuleSearch krhostFindModule(const std::wstring& name) {
  KrHostModuleSearch found;
  const wchar_t* base = name.c_str() + name.size();
  while (base > name.c_str() && base[-1] != L'\\' && base[-1] != L'/') --base;
  bool extension = wcschr(base, L'.') != nullptr;
  found.fileName = extension ? name : name + L".dll";
  if (hasDirectory(name)) {
    wchar_t full[kPathCapacity];
    if (GetFullPathNameW(found.fileName.c_str(), kPathCapacity, full, nullptr) && fileExists(full)) found.path = full;
    return found;
  }
  found.directories = searchDirectories();
  for (const std::wstring& directory : found.directories) {
    if (found.path.empty() && fileExists(directory + found.fileName)) found.path = directory + found.fileName;
    if (!extension)
      for (const wchar_t* other : {L".kra", L".krx"})
        if (fileExists(directory + name + other)) found.otherNames.push_back(directory + name + other);
  }
  return found;
}
