#include "foundation/KrHostServices.h"

#include <windows.h>

#include "krhostservices.h"

namespace {

using HostServicesExport = KrDbHostApplicationServices* (*)();

// The export is looked up by its decorated C++ name.
HostServicesExport resolveHostServicesExport() {
  HMODULE database = GetModuleHandleW(L"KRDB20.DLL");
  if (!database) return nullptr;
  return reinterpret_cast<HostServicesExport>(
      reinterpret_cast<void*>(GetProcAddress(database, "_Z27krdbHostApplicationServicesv")));
}

}  // namespace

KrDbHostApplicationServices* krHostServices() {
  static const HostServicesExport hostServicesExport = resolveHostServicesExport();
  return hostServicesExport ? hostServicesExport() : nullptr;
}
