// DllInstall: registers the module file types ".kra" and ".krx" with the
// Windows shell (identifier, friendly name, icon, the property lists that
// Explorer shows and the system property handler), and removes the
// identifiers again. Uninstalling leaves the extension keys, the
// SystemFileAssociations keys and the property-handler keys in place, and
// leaves an extension alone that points to another program.

#include <windows.h>

#include <cwchar>
#include <initializer_list>
#include <string>
#include <utility>

#include "krexport.h"

namespace {

struct ModuleFileType {
  const wchar_t* extension;
  const wchar_t* oldIdentifier;  // of an earlier layout, deleted on installation
  const wchar_t* identifier;
  const wchar_t* friendlyName;
  const wchar_t* icon;           // Windows 6.1 and later
  const wchar_t* classicIcon;    // earlier systems
};

const ModuleFileType kModuleFileTypes[] = {
    {L".kra", L"KestruneApplicationFile", L"Kestrune.Application.Extension", L"Kestrune Application",
     L"imageres.dll,63", L"shell32.dll,169"},
    {L".krx", L"KestruneModuleFile", L"Kestrune.Model.Extension", L"Kestrune Extension", L"imageres.dll,62",
     L"shell32.dll,165"},
};

const wchar_t kFullDetails[] =
    L"prop:System.PropGroup.Description;System.FileDescription;System.ItemType;System.FileVersion;"
    L"System.Software.ProductName;System.Software.ProductVersion;System.Copyright;*System.Category;"
    L"*System.Comment;System.Size;System.DateModified;System.Language;*System.Trademarks";
const wchar_t kInfoTip[] = L"prop:System.FileDescription;System.Company;System.FileVersion;System.DateCreated;System.Size";
const wchar_t kPreviewDetails[] =
    L"prop:System.FileDescription;System.FileVersion;System.Software.ProductName;System.Software.ProductVersion;"
    L"System.Copyright;*System.Category;*System.Comment;System.Size;System.DateCreated;System.DateModified;"
    L"System.Language;*System.Trademarks";
const wchar_t kTileInfo[] = L"prop:System.FileVersion;System.FileDescription";
const wchar_t kClassicTileInfo[] = L"prop:FileVersion;FileDescription";
const wchar_t kPropertyHandler[] = L"{66742402-F9B9-11D1-A202-0000F81FEDEE}";
const wchar_t kPropertyHandlersKey[] = L"SOFTWARE\\Microsoft\\Windows\\CurrentVersion\\PropertySystem\\PropertyHandlers\\";

// True when the running system's version, as major.minor, is at least the given one.
bool isWindowsAtLeast(DWORD major, DWORD minor) {
  OSVERSIONINFOEXW version = {};
  version.dwOSVersionInfoSize = sizeof version;
  version.dwMajorVersion = major;
  version.dwMinorVersion = minor;
  DWORDLONG condition = VerSetConditionMask(0, VER_MAJORVERSION, VER_GREATER_EQUAL);
  condition = VerSetConditionMask(condition, VER_MINORVERSION, VER_GREATER_EQUAL);
  return VerifyVersionInfoW(&version, VER_MAJORVERSION | VER_MINORVERSION, condition);
}

// Sets a REG_SZ value (null name: the default value) with its terminator.
void setText(HKEY key, const wchar_t* name, const wchar_t* text) {
  DWORD size = static_cast<DWORD>((wcslen(text) + 1) * sizeof(wchar_t));
  RegSetValueExW(key, name, 0, REG_SZ, reinterpret_cast<const BYTE*>(text), size);
}

// Creates the key and sets its values, given as name/text pairs; a key that
// cannot be created is skipped.
void writeKey(HKEY root, const std::wstring& path, std::initializer_list<std::pair<const wchar_t*, const wchar_t*>> values) {
  HKEY key;
  if (RegCreateKeyW(root, path.c_str(), &key) != ERROR_SUCCESS) return;
  for (const auto& value : values) setText(key, value.first, value.second);
  RegCloseKey(key);
}

void registerFileType(const ModuleFileType& type) {
  const bool classicShell = isWindowsAtLeast(5, 1) && !isWindowsAtLeast(6, 0);
  const bool propertySystem = isWindowsAtLeast(6, 0);
  const std::wstring identifier = type.identifier;

  RegDeleteTreeW(HKEY_CLASSES_ROOT, type.oldIdentifier);
  if (classicShell)
    writeKey(HKEY_CLASSES_ROOT, identifier, {{nullptr, type.friendlyName}, {L"TileInfo", kClassicTileInfo}});
  else
    writeKey(HKEY_CLASSES_ROOT, identifier, {{nullptr, type.friendlyName}});
  writeKey(HKEY_CLASSES_ROOT, identifier + L"\\DefaultIcon",
           {{nullptr, isWindowsAtLeast(6, 1) ? type.icon : type.classicIcon}});
  if (propertySystem) {
    writeKey(HKEY_CLASSES_ROOT, std::wstring(L"SystemFileAssociations\\") + type.extension,
             {{L"FullDetails", kFullDetails},
              {L"InfoTip", kInfoTip},
              {L"PreviewDetails", kPreviewDetails},
              {L"TileInfo", kTileInfo}});
    writeKey(HKEY_LOCAL_MACHINE, kPropertyHandlersKey + std::wstring(type.extension), {{nullptr, kPropertyHandler}});
  }
  writeKey(HKEY_CLASSES_ROOT, type.extension, {{nullptr, type.identifier}});
}

// True when the default value of key is REG_SZ text equal to text.
bool defaultValueIs(HKEY key, const wchar_t* text) {
  wchar_t value[64] = {};
  DWORD type = REG_NONE;
  DWORD size = sizeof value - sizeof(wchar_t);
  return RegQueryValueExW(key, nullptr, nullptr, &type, reinterpret_cast<BYTE*>(value), &size) == ERROR_SUCCESS &&
         type == REG_SZ && wcscmp(value, text) == 0;
}

void unregisterFileType(const ModuleFileType& type) {
  HKEY extension;
  if (RegOpenKeyExW(HKEY_CLASSES_ROOT, type.extension, 0, KEY_QUERY_VALUE | KEY_SET_VALUE, &extension) ==
      ERROR_SUCCESS) {
    if (defaultValueIs(extension, type.identifier)) RegDeleteValueW(extension, nullptr);
    RegCloseKey(extension);
  }
  RegDeleteTreeW(HKEY_CLASSES_ROOT, type.identifier);
}

}  // namespace

// The installer's entry point: install true registers the module file types,
// false removes them. The command line is not interpreted, but must not be
// null (E_INVALIDARG); registry failures are ignored and the result is S_OK.
extern "C" KR1ST_API HRESULT WINAPI DllInstall(BOOL install, const wchar_t* commandLine) {
  if (!commandLine) return E_INVALIDARG;
  for (const ModuleFileType& type : kModuleFileTypes) install ? registerFileType(type) : unregisterFileType(type);
  return S_OK;
}
