#pragma once
// The commands that show what the runtime holds: the class tree with its
// protocol extensions (tree), the services (services), the system registry
// (registry) and one class in detail (describe). The report builders serve
// the demo too.

class KrRxClass;
class KrRxObject;

#include "host/KrHostCommand.h"

void krhostAddRuntimeCommands(KrHostCommandTable& table);

void krhostReportRegistry(KrHostReport& report);
void krhostReportServices(KrHostReport& report);
void krhostReportClassTree(KrHostReport& report);
// The symbols of cls and of its ancestors, root-most class first, with their
// value classes; with an object of cls, each property's value on it as text.
void krhostReportSymbols(KrHostReport& report, const KrRxClass* cls, const KrRxObject* object = nullptr);
