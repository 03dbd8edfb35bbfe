#include "host/KrHostCheck.h"

#include <windows.h>

#include <cxxabi.h>

#include <cstdlib>
#include <cwchar>
#include <string>
#include <vector>

#include "host/KrHostExportBaseline.h"
#include "host/KrHostModuleSearch.h"
#include "host/KrHostModuleVersion.h"
#include "host/KrHostPlatform.h"
#include "host/KrHostVersionProbe.h"
#include "kr1st.h"
#include "modules/KrRxFileBytes.h"
#include "modules/KrRxPeImage.h"
#include "modules/KrRxTrustCheck.h"

namespace {

constexpr int kFailure = 1;
constexpr char kRuntimeLibrary[] = "kr1st20.dll";

std::wstring widen(const std::string& text) { return std::wstring(text.begin(), text.end()); }

std::wstring versionText(unsigned int version) {
  return std::to_wstring(version >> 16) + L"." + std::to_wstring(version & 0xFFFF);
}

bool sameName(const std::string& a, const char* b) { return _stricmp(a.c_str(), b) == 0; }

// A C++ symbol in source form, any other name as it is.
std::wstring readableSymbol(const std::string& name) {
  int status = 0;
  char* demangled = abi::__cxa_demangle(name.c_str(), nullptr, nullptr, &status);
  std::wstring text = widen(status == 0 && demangled ? demangled : name);
  std::free(demangled);
  return text;
}

// ---- Signatures ----

// The verdict in a word or two, and what to do about it.
void describeTrust(LONG verdict, std::wstring& verdictText, std::wstring& fix) {
  switch (static_cast<unsigned long>(verdict)) {
    case 0:
      verdictText = L"signed and trusted";
      return;
    case 0x800B0100:  // TRUST_E_NOSIGNATURE
      verdictText = L"unsigned";
      fix = L"sign it: kestrune_add_module() signs by default, or run osslsigncode with your certificate";
      return;
    case 0x80096010:  // TRUST_E_BAD_DIGEST
      verdictText = L"tampered: the file changed after it was signed";
      fix = L"rebuild or re-sign the module; do not patch a signed file";
      return;
    case 0x800B0109:  // CERT_E_UNTRUSTEDROOT
    case 0x800B010A:  // CERT_E_CHAINING
      verdictText = L"untrusted: its certificate does not lead to a trusted root";
      fix = L"sign with a publisher certificate this system trusts, or install its root certificate";
      return;
    default:
      verdictText = L"refused";
      fix = L"sign it again with a valid code-signing certificate";
  }
}

// ---- The checks of one module ----

class ModuleCheck {
 public:
  ModuleCheck(const std::wstring& name, KrHostReport& report)
      : mName(name),
        mReport(report),
        mTable(report.table("checks", L"Checks",
                            {{"check", L"CHECK"}, {"status", L"STATUS"}, {"detail", L"DETAIL"}, {"fix", L"FIX", false}})) {}

  // Runs the checks in order; false when the module would not load.
  bool run() {
    if (!checkName() || !checkFile()) return finish();
    checkExports();
    checkVersion();
    checkSignature();
    checkImports();
    return finish();
  }

 private:
  void pass(const wchar_t* check, const std::wstring& detail) { mTable.row({check, L"ok", detail, KrHostValue()}); }

  void fail(const wchar_t* check, const std::wstring& detail, const std::wstring& fix) {
    mTable.row({check, L"FAIL", detail, fix}, 0, fix.empty() ? L"" : L"fix: " + fix);
    if (mFirstFailure.empty()) mFirstFailure = std::wstring(check) + L": " + detail;
  }

  bool finish() {
    bool loads = mFirstFailure.empty();
    mReport.field("path", L"File", mPath.empty() ? KrHostValue() : KrHostValue(mPath));
    krhostReportVersion(mReport, mPath.empty() ? KrHostModuleVersion() : krhostVersionOfFile(mPath));
    mReport.field("loads", L"Would load", KrHostValue::truth(loads));
    mReport.field("reason", L"Why not", loads ? KrHostValue() : KrHostValue(mFirstFailure));
    return loads;
  }

  bool checkName() {
    KrHostModuleSearch found = krhostFindModule(mName);
    if (!found.path.empty()) {
      mPath = found.path;
      pass(L"name", found.path);
      return true;
    }
    std::wstring tried = found.directories.empty() ? L"" : L"; looked in ";
    for (size_t i = 0; i < found.directories.size(); ++i) tried += (i ? L", " : L"") + found.directories[i];
    std::wstring fix = L"give the module's path, or copy it into one of these folders";
    if (!found.otherNames.empty())
      fix = L"name the extension: without one the system looks for \"" + found.fileName + L"\", but there is " +
            found.otherNames.front();
    fail(L"name", L"no file \"" + found.fileName + L"\"" + tried, fix);
    return false;
  }

  bool checkFile() {
    DWORD error = 0;
    if (!krrxReadFileBytes(mPath.c_str(), mBytes, error)) {
      fail(L"file", L"cannot read it: " + krhostSystemText(error), L"check the file's access rights");
      return false;
    }
    KrRxPeImage image(mBytes.data(), mBytes.size());
    if (!image.isValid()) {
      fail(L"file", L"not a 64-bit PE file", L"build the module with the x86_64 MinGW toolchain of the SDK");
      return false;
    }
    if (image.machine() != KrRxPeImage::kMachineX64) {
      fail(L"file", L"built for machine " + krhostHex(image.machine()) + L", not x64",
           L"build the module for x64 (cmake/toolchain-mingw64.cmake)");
      return false;
    }
    if (!image.isDll()) {
      fail(L"file", L"a program, not a DLL", L"build the module as a shared library (kestrune_add_module)");
      return false;
    }
    pass(L"file", L"x64 PE DLL, " + std::to_wstring(mBytes.size()) + L" bytes");
    return true;
  }

  void checkExports() {
    std::vector<std::string> exports;
    KrRxPeImage(mBytes.data(), mBytes.size()).exportNames(exports);
    std::vector<std::wstring> missing;
    for (const char* name : {KRRX_GET_API_VERSION, KRRX_ENTRY_POINT}) {
      bool present = false;
      for (const std::string& exported : exports) present = present || exported == name;
      if (!present) missing.push_back(widen(name));
    }
    if (missing.empty()) return pass(L"exports", L"krrxGetApiVersion, krrxEntryPoint");
    std::wstring names;
    for (const std::wstring& name : missing) names += (names.empty() ? L"" : L", ") + name;
    fail(L"exports", L"missing " + names,
         missing.front() == L"krrxEntryPoint"
             ? L"export it: extern \"C\" __declspec(dllexport) KrRx::AppRetCode krrxEntryPoint(KrRx::AppMsgCode, void*)"
             : L"write KRRX_DEFINE_API_VERSION() in one source, or build with kestrune_add_module()");
  }

  void checkVersion() {
    KrHostVersionProbe probe = krhostProbeVersion(mPath);
    if (probe.returned) mVersion = probe.version;
    if (!probe.returned) {
      fail(L"API version", probe.failure,
           L"krrxGetApiVersion runs before imports are resolved: return a constant and read nothing imported "
           L"(such as KRRX_CUR_API_VERSION); KRRX_DEFINE_API_VERSION() does this");
      return;
    }
    std::wstring range = L"this runtime accepts " + versionText(KRRX_MIN_API_VERSION) + L" to " +
                         versionText(KRRX_CUR_API_VERSION);
    if (probe.version - KRRX_MIN_API_VERSION <= KRRX_CUR_API_VERSION - KRRX_MIN_API_VERSION)
      return pass(L"API version", versionText(probe.version) + L" (" + range + L")");
    bool newer = probe.version > KRRX_CUR_API_VERSION;
    fail(L"API version", versionText(probe.version) + L" (" + krhostHex(probe.version) + L"): " + range,
         newer ? L"the module wants a newer runtime: run it with that runtime, or rebuild it against this SDK"
               : L"the module is older than this runtime supports: rebuild it against this SDK");
  }

  void checkSignature() {
    LONG verdict = krrxVerifyTrust(WinVerifyTrustEx, mPath.c_str());
    std::wstring text, fix;
    describeTrust(verdict, text, fix);
    if (verdict == 0) return pass(L"signature", text);
    fail(L"signature", text + L": " + krhostSystemText(DWORD(verdict)), fix);
  }

  // Every imported library as the module's real load would find it (its own
  // folder serves as the DLL directory then), the runtime functions it
  // imports, and the extension modules among the libraries.
  void checkImports() {
    KrRxPeImage image(mBytes.data(), mBytes.size());
    std::vector<std::string> libraries;
    if (!image.importNames(libraries)) {
      fail(L"imports", L"the import table is damaged", L"rebuild the module");
      return;
    }
    std::vector<std::wstring> found, missing, extensionModules;
    SetDllDirectoryW(krhostDirectoryOf(mPath).c_str());
    for (const std::string& library : libraries) {
      HMODULE mapped = LoadLibraryExW(widen(library).c_str(), nullptr, DONT_RESOLVE_DLL_REFERENCES);
      if (!mapped) {
        missing.push_back(widen(library));
        continue;
      }
      found.push_back(widen(library));
      if (GetProcAddress(mapped, KRRX_ENTRY_POINT) && !sameName(library, kRuntimeLibrary))
        extensionModules.push_back(widen(library));
      FreeLibrary(mapped);
    }
    SetDllDirectoryW(nullptr);
    if (missing.empty())
      pass(L"imports", KrHostValue::list(found).text());
    else
      fail(L"imports", L"not found: " + KrHostValue::list(missing).text() + L" (looked beside the module, in the "
                       L"program's folder, the system folders and PATH)",
           L"put the missing DLLs beside the module");
    checkRuntimeFunctions(image);
    pass(L"loads first", extensionModules.empty() ? L"no extension modules"
                                                  : KrHostValue::list(extensionModules).text());
  }

  void checkRuntimeFunctions(const KrRxPeImage& image) {
    std::vector<std::string> functions;
    image.importedFunctionNames(kRuntimeLibrary, functions);
    HMODULE runtime = GetModuleHandleW(L"kr1st20.dll");
    std::vector<std::wstring> absent;
    // A name some 20.x release exported, or any name missing for a module
    // older than this runtime, means the runtime lost it.
    bool removed = mVersion && mVersion < KRRX_CUR_API_VERSION;
    for (const std::string& function : functions) {
      if (GetProcAddress(runtime, function.c_str())) continue;
      absent.push_back(readableSymbol(function));
      removed = removed || krhostReleasedExport(function);
    }
    if (absent.empty())
      return pass(L"runtime", functions.empty() ? std::wstring(L"imports nothing from kr1st20.dll")
                                                : L"all " + std::to_wstring(functions.size()) +
                                                      L" names it imports from kr1st20.dll are present");
    if (removed)
      return fail(L"runtime",
                  L"this runtime lacks " + std::to_wstring(absent.size()) +
                      L" names the module imports; they were removed or renamed: " + KrHostValue::list(absent).text(),
                  L"use a 20.x runtime that still exports them; report the removal to the runtime's makers");
    fail(L"runtime",
         L"built against a newer runtime: this kr1st20.dll lacks " + KrHostValue::list(absent).text(),
         L"run it with the runtime it was built for, or rebuild it against this SDK");
  }

  std::wstring mName;
  KrHostReport& mReport;
  KrHostTable& mTable;
  std::wstring mPath;
  std::string mBytes;
  std::wstring mFirstFailure;
  unsigned int mVersion = 0;  // the module's API version, 0 when unread
};

int runCheck(const KrHostInvocation& invocation) {
  KrHostReport report;
  bool allLoad = true;
  for (const std::wstring& name : invocation.operands()) {
    KrHostReport& module = report.child("modules");
    module.field("module", L"Module", name);
    allLoad = ModuleCheck(name, module).run() && allLoad;
  }
  report.field("ok", L"Every module would load", KrHostValue::truth(allLoad));
  return invocation.print(report, allLoad ? 0 : kFailure);
}

}  // namespace

void krhostAddCheckCommand(KrHostCommandTable& table) {
  table.push_back({L"check", L"<module>...", L"Tells whether each module would load, and why not, without running it.",
                   L"Checks, one line each: the name resolved to a file (a name without a directory\n"
                   L"is searched in the program's folder, the system folders, the current folder\n"
                   L"and PATH; without an extension \".dll\" is looked for), a readable x64 PE DLL,\n"
                   L"the exports krrxGetApiVersion and krrxEntryPoint, the API version (read by\n"
                   L"calling krrxGetApiVersion in a child process), the signature, every imported\n"
                   L"DLL, every kr1st20.dll function it imports present in this runtime, and the\n"
                   L"extension modules it would load first. The module's entry point never runs.\n"
                   L"A failing check says what to do.",
                   {}, runCheck, 1});
  krhostAddVersionProbeCommand(table);
}
