#pragma once
// The names that a 20.x release of kr1st20.dll exported (abi/kr1st20.exports,
// built into krhost as a resource). A module importing one of them that the
// runtime lacks meets a runtime that lost a name, not a module that is newer.
//
//   if (krhostReleasedExport("_ZNK10KrRxObject6queryXEPK9KrRxClass")) ...

#include <string>

// True when name is listed in the export baseline.
bool krhostReleasedExport(const std::string& name);
