#pragma once
// The commands that show what the runtime holds: the class tree with its
// protocol extensions (tree), the services (services), the system registry
// (registry) and one class in detail (describe). The report builders serve
// the demo too.

#include "host/KrHostCommand.h"

void krhostAddRuntimeCommands(KrHostCommandTable& table);

void krhostReportRegistry(KrHostReport& report);
void krhostReportServices(KrHostReport& report);
void krhostReportClassTree(KrHostReport& report);
