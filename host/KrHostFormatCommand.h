#pragma once
// The command that tries a value class's text form: format reads a text into
// a new instance of the class and writes the instance back as text.

#include "host/KrHostCommand.h"

void krhostAddFormatCommand(KrHostCommandTable& table);
