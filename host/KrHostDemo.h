#pragma once
// The demo (what plain "krhost" runs): a tour of the runtime as a sequence
// of small print functions, one per thing shown.

#include "host/KrHostCommand.h"

void krhostAddDemoCommand(KrHostCommandTable& table);
