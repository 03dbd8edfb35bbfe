#pragma once
// The floor for any symbol iterator: the interface's three virtual
// operations over a plain array, with nothing else to do. Kept in its own
// file so that a walk cannot see which iterator it is given, as in a real
// caller.
//
//   KrRfSymbolIterator* it = newArrayWalk(symbols.data(), int(symbols.size()));
//   for (; !it->done(); it->next()) use(it->symbol());
//   delete it;

#include "kr1st.h"

// An iterator over count symbols from symbols on; owned by the caller.
KrRfSymbolIterator* newArrayWalk(KrRfSymbol* const* symbols, int count);
