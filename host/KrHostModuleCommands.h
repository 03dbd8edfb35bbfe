#pragma once
// The commands about modules and applications: load (load modules through
// the dynamic linker, tell what each added, unload them again) and apps (the
// applications registered for loading on demand).

#include "host/KrHostCommand.h"

void krhostAddModuleCommands(KrHostCommandTable& table);
