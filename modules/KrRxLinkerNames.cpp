// Resolving a module name: the file name of a path, the loaded module a
// name or an id stands for, and the symbols of a loaded module.

#include "modules/KrRxImpDynamicLinker.h"

#include <windows.h>

#include <cstring>
#include <cwchar>
#include <string>

#include "krrxgenhand.h"
#include "krrxiterator.h"
#include "krrxsystem.h"
#include "modules/KrRxLinkerSteps.h"
#include "runtime/KrRxImpDictionary.h"

using namespace krrxLinker;

KrRxImpDynamicLinker* KrRxImpDynamicLinker::registered() {
  return sysRegistry ? KrRxImpDynamicLinker::cast(sysRegistry->at(L"DynamicLinker")) : nullptr;
}

const wchar_t* KrRxImpDynamicLinker::findFileName(const wchar_t* path) {
  if (!path) return nullptr;
  const wchar_t* backslash = wcsrchr(path, L'\\');
  const wchar_t* slash = wcsrchr(path, L'/');
  const wchar_t* separator = backslash > slash ? backslash : slash;
  return separator ? separator + 1 : path;
}

KrRxGenHand* KrRxImpDynamicLinker::findModule(const wchar_t* moduleName) const {
  const wchar_t* name = findFileName(moduleName);
  if (!name) return nullptr;
  if (wcschr(name, L'.')) return static_cast<KrRxGenHand*>(mpLoadedModules->at(name));
  size_t length = wcslen(name);
  if (length > kFileNameCapacity) return nullptr;
  wchar_t candidate[kFileNameCapacity + 5];
  wmemcpy(candidate, name, length);
  for (const wchar_t* extension : {L".kra", L".krx", L".dll"}) {
    wcscpy(candidate + length, extension);
    if (KrRxObject* module = mpLoadedModules->at(candidate)) return static_cast<KrRxGenHand*>(module);
  }
  return nullptr;
}

KrRxGenHand* KrRxImpDynamicLinker::findModule(const void* appId) const {
  if (!appId) return nullptr;
  KrRxGenHand* found = nullptr;
  KrRxDictionaryIterator* it = mpLoadedModules->newIterator(KrRx::kDictById);
  for (; !it->done() && !found; it->next())
    if (it->object() == appId) found = static_cast<KrRxGenHand*>(it->object());
  delete it;
  return found;
}

void* KrRxImpDynamicLinker::moduleHandlePtr(const wchar_t* moduleName) { return findModule(moduleName); }

KrRxDictionaryIterator* KrRxImpDynamicLinker::loadedModulesIterator() {
  return mpLoadedModules->newIterator(KrRx::kDictById);
}

unsigned int KrRxImpDynamicLinker::numberOfAppsLoaded() const { return mpLoadedModules->numEntries(); }

void* KrRxImpDynamicLinker::getSymbolAddress(const wchar_t* module, const wchar_t* symbol) const {
  if (!symbol) return nullptr;
  std::string narrow;
  for (const wchar_t* unit = symbol; *unit; ++unit) {
    if (*unit > 127) return nullptr;
    narrow.push_back(static_cast<char>(*unit));
  }
  return getSymbolAddress(module, narrow.c_str());
}

void* KrRxImpDynamicLinker::getSymbolAddress(const wchar_t* module, const char* symbol) const {
  KrRxGenHand* handle = findModule(module);
  if (!handle || !handle->getVal() || !symbol) return nullptr;
  return reinterpret_cast<void*>(GetProcAddress(static_cast<HMODULE>(handle->getVal()), symbol));
}
