#pragma once
// What diagnostics need of the running module: its name. Foundation knows no
// modules; the module floor installs the source of the name.
//
//   krSetModuleNameSource([] { return L"sample.krx"; });
//   const wchar_t* name = krCurrentModuleName();  // null when none

using KrModuleNameSource = const wchar_t* (*)();

// Installs the source; null removes it.
void krSetModuleNameSource(KrModuleNameSource source);
// The running module's file name, or null when no module runs or it has none.
const wchar_t* krCurrentModuleName();
