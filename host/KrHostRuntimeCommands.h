#pragma once
// The commands that show what the runtime holds: the class tree with its
// protocol extensions (tree), the services (services), the system registry
// (registry) and one class in detail (describe). The report builders serve
// the demo too.

#include <map>
#include <string>

#include "host/KrHostCommand.h"

class KrRxClass;
class KrRxObject;

// Class name -> the name of the module that added the class.
using KrHostClassModules = std::map<std::wstring, std::wstring>;

void krhostAddRuntimeCommands(KrHostCommandTable& table);

void krhostReportRegistry(KrHostReport& report);
void krhostReportServices(KrHostReport& report);
// The class tree; with modules, a MODULE column names the module that added each class listed there.
void krhostReportClassTree(KrHostReport& report, const KrHostClassModules* modules = nullptr);
// The symbols of cls and of its ancestors, root-most class first, with their
// value classes; with an object of cls, each property's value on it as text.
void krhostReportSymbols(KrHostReport& report, const KrRxClass* cls, const KrRxObject* object = nullptr);
