// krhost: a console host of the Kestrune runtime and a tool for module
// authors. Each command family adds its commands to the table; see
// "krhost --help".

#include <windows.h>

#include "host/KrHostCheck.h"
#include "host/KrHostCommand.h"
#include "host/KrHostDemo.h"
#include "host/KrHostFormatCommand.h"
#include "host/KrHostModuleCommands.h"
#include "host/KrHostRuntimeCommands.h"
#include "host/KrHostServices.h"

int wmain(int argc, wchar_t** argv) {
  // The runtime's messages reach krhost only through its host services library.
  KrHostServices::instance();
  KrHostCommandTable table;
  krhostAddDemoCommand(table);
  krhostAddRuntimeCommands(table);
  krhostAddFormatCommand(table);
  krhostAddModuleCommands(table);
  krhostAddCheckCommand(table);
  return krhostRun(table, argc, argv);
}
