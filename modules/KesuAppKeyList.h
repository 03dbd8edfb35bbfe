#pragma once
// The search order of the application registry, shared by reading, trigger
// and product-code queries and enumeration.

#include <windows.h>

#include <functional>
#include <initializer_list>
#include <vector>

#include "krstring.h"

class KesuAppKeyList {
 public:
  // Takes the product keys as they are now: the host's (when there is one),
  // the settable key, then for minor releases 20.4 down to 20.0 each of those
  // two that contains "20.5", with that text replaced.
  KesuAppKeyList();

  // Opens each product key followed by subKey with access, HKEY_CURRENT_USER
  // before HKEY_LOCAL_MACHINE, and hands every key that opens to use, which
  // answers true to end the search. The key is closed after use. True when
  // use ended the search.
  bool search(const wchar_t* subKey, REGSAM access, const std::function<bool(HKEY)>& use) const;

  // The first key of the search order that opens answers: true when there is one.
  bool useFirst(const wchar_t* subKey, REGSAM access, const std::function<void(HKEY)>& use) const;

 private:
  std::vector<KrString> mProductKeys;
};

// The parts (null ones count as empty) joined into one registry path.
// Throws std::bad_alloc when memory is short, so that no registry call is
// ever made on a part of a path.
KrString krrxKeyPath(std::initializer_list<const wchar_t*> parts);

// "\Applications\" followed by appName and tail: an application key (or
// one below it) below a product key. Throws as krrxKeyPath does.
KrString krrxApplicationSubKey(const wchar_t* appName, const wchar_t* tail = L"");

// Reads the REG_SZ value name of key into text; false (text untouched) when
// the value is missing or of another type.
bool krrxQueryRegText(HKEY key, const wchar_t* name, KrString& text);
