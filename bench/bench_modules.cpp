// The dynamic linker beside the platform: a load plus unload of a signed
// module through the linker against a bare LoadLibraryW + WinVerifyTrustEx +
// FreeLibrary of the same file, and name lookup in a table of 500 loaded
// modules (500 copies of one signed module, each a real load) against the
// standard maps.

#include <windows.h>

#include <algorithm>
#include <cstdio>
#include <map>
#include <string>
#include <unordered_map>
#include <vector>

#include "BenchHarness.h"
#include "KrTestFiles.h"
#include "kr1st.h"

namespace {

const int kModules = 500;

// The directory of path, with its trailing separator cut.
std::wstring directoryOf(const std::wstring& path) { return path.substr(0, path.find_last_of(L"\\/")); }

// The directory calls the linker makes around the real load, with the
// directory of the module made current and searched meanwhile.
void swapDirectoriesAround(const std::wstring& directory, void (*load)(const wchar_t*), const wchar_t* path) {
  wchar_t current[MAX_PATH], dll[MAX_PATH];
  GetCurrentDirectoryW(MAX_PATH, current);
  GetDllDirectoryW(MAX_PATH, dll);
  SetCurrentDirectoryW(directory.c_str());
  SetDllDirectoryW(directory.c_str());
  if (load) load(path);
  SetDllDirectoryW(dll);
  SetCurrentDirectoryW(current);
}

// The module handle's reading of the version resource, done while the module
// is loaded: the file name in its short form, then the resource's size and
// the resource itself.
void readVersion(const wchar_t* path) {
  wchar_t shortPath[2048];
  GetShortPathNameW(path, shortPath, 2048);
  DWORD handle = 0, size = GetFileVersionInfoSizeW(shortPath, &handle);
  HGLOBAL block = size ? GlobalAlloc(GMEM_ZEROINIT, size) : nullptr;
  if (!block || !GetFileVersionInfoW(shortPath, 0, size, block)) std::abort();
  GlobalFree(block);
}

void probe(const wchar_t* path) { FreeLibrary(LoadLibraryExW(path, nullptr, DONT_RESOLVE_DLL_REFERENCES)); }
void verify(const wchar_t* path) {
  if (krVerifyTrust(path) != 0) std::abort();
}
void loadAndFree(const wchar_t* path) { FreeLibrary(LoadLibraryW(path)); }
void loadReadVersionAndFree(const wchar_t* path) {
  HMODULE handle = LoadLibraryW(path);
  readVersion(path);
  FreeLibrary(handle);
}

// Bare loads of the module: map it for real, check its signature, free it.
void bareLoad(const wchar_t* path) {
  HMODULE handle = LoadLibraryW(path);
  if (!handle) std::abort();
  verify(path);
  FreeLibrary(handle);
}

// Every platform call a load through the linker makes, in its order, with
// nothing of the linker's own around them.
void platformCalls(const wchar_t* path, const std::wstring& directory) {
  probe(path);
  verify(path);
  swapDirectoriesAround(directory, loadReadVersionAndFree, path);
}

void benchLoadAndUnload(const std::wstring& module) {
  const wchar_t* path = module.c_str();
  const std::wstring directory = directoryOf(module);
  const long long kCycles = 40;
  // The rounds of the three take turns, so that all three see the machine in
  // the same state; each keeps its best round.
  double ours = 1e300, bare = 1e300, platform = 1e300;
  for (int round = 0; round < 8; ++round) {
    ours = std::min(ours, bench::nsPerCall(
                              [&](long long) {
                                if (!krrxLoadModule(path, false, false) || !krrxUnloadModule(path, false))
                                  std::abort();
                              },
                              kCycles, 1));
    bare = std::min(bare, bench::nsPerCall([&](long long) { bareLoad(path); }, kCycles, 1));
    platform = std::min(platform, bench::nsPerCall([&](long long) { platformCalls(path, directory); }, kCycles, 1));
  }
  bench::report("load + unload of a signed module", ours, "LoadLibraryW+WinVerifyTrustEx+Free", bare);
  bench::report("load + unload of a signed module", ours, "the platform calls the linker makes", platform);

  // The platform calls one by one, for the breakdown.
  double probed = bench::nsPerCall([&](long long) { probe(path); }, kCycles, 5);
  double verified = bench::nsPerCall([&](long long) { verify(path); }, kCycles, 5);
  double loaded = bench::nsPerCall([&](long long) { loadAndFree(path); }, kCycles, 5);
  double directories = bench::nsPerCall([&](long long) { swapDirectoriesAround(directory, nullptr, path); }, kCycles, 5);
  HMODULE held = LoadLibraryW(path);
  double version = bench::nsPerCall([&](long long) { readVersion(path); }, kCycles, 5);
  FreeLibrary(held);
  std::printf("  steps: probe map+free %.0f ns, WinVerifyTrustEx %.0f ns, LoadLibraryW+FreeLibrary %.0f ns,\n"
              "         directory save/set/restore %.0f ns, version resource %.0f ns,\n"
              "         the rest (linker's own work) %.0f ns\n",
              probed, verified, loaded, directories, version, ours - platform);
}

// Copies of the module under kModules names, loaded through the linker.
std::vector<std::wstring> loadCopies(const std::wstring& module) {
  std::wstring directory = krTestBinDirectory() + L"bench\\copies\\";
  CreateDirectoryW(directory.c_str(), nullptr);
  std::vector<std::wstring> names;
  for (int i = 0; i < kModules; ++i) {
    std::wstring name = L"copy" + std::to_wstring(i) + L".krx";
    CopyFileW(module.c_str(), (directory + name).c_str(), FALSE);
    if (!krrxLoadModule((directory + name).c_str(), false, false)) std::abort();
    names.push_back(name);
  }
  return names;
}

void unloadCopies(const std::vector<std::wstring>& names) {
  std::wstring directory = krTestBinDirectory() + L"bench\\copies\\";
  for (const std::wstring& name : names) {
    krrxUnloadModule(name.c_str(), false);
    DeleteFileW((directory + name).c_str());
  }
  RemoveDirectoryW(directory.c_str());
}

void benchLookup(const std::vector<std::wstring>& names) {
  auto* linker = static_cast<KrRxDynamicLinker*>(krrxSysRegistry()->at(L"DynamicLinker"));
  std::vector<std::wstring> stems, paths;
  std::map<std::wstring, void*> map;
  std::unordered_map<std::wstring, void*> hashed;
  for (const std::wstring& name : names) {
    stems.push_back(name.substr(0, name.size() - 4));
    paths.push_back(L"C:\\some\\dir\\" + name);
    map.emplace(name, linker->moduleHandlePtr(name.c_str()));
    hashed.emplace(name, linker->moduleHandlePtr(name.c_str()));
  }
  auto at = [](long long i) { return size_t(i * 7919 % kModules); };
  double byName = bench::nsPerCall([&](long long i) { bench::keep(linker->moduleHandlePtr(names[at(i)].c_str())); });
  double byPath = bench::nsPerCall([&](long long i) { bench::keep(linker->moduleHandlePtr(paths[at(i)].c_str())); });
  double byStem = bench::nsPerCall([&](long long i) { bench::keep(linker->moduleHandlePtr(stems[at(i)].c_str())); });
  double mapped = bench::nsPerCall([&](long long i) { bench::keep(map.find(names[at(i)])->second); });
  double hashedFind = bench::nsPerCall([&](long long i) { bench::keep(hashed.find(names[at(i)])->second); });
  bench::report("moduleHandlePtr(\"copyN.krx\"), 500 modules", byName, "std::map::find", mapped);
  bench::report("moduleHandlePtr(\"copyN.krx\"), 500 modules", byName, "std::unordered_map::find", hashedFind);
  bench::report("moduleHandlePtr(\"C:\\\\some\\\\dir\\\\copyN.krx\")", byPath, "std::map::find", mapped);
  bench::report("moduleHandlePtr(\"copyN\"): .kra, then .krx", byStem, "std::map::find", mapped);
}

}  // namespace

int main() {
  std::wstring module = krTestBinDirectory() + L"bench\\bench_module.krx";
  benchLoadAndUnload(module);
  std::vector<std::wstring> names = loadCopies(module);
  benchLookup(names);
  unloadCopies(names);
  return 0;
}
