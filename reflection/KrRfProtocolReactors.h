#pragma once
// Reaching the protocol reactors of a class from reflection.

#include "krrfprotocolreactors.h"

// cls's reactor manager from the service "ProtocolReactorManager"; null when
// the service dictionary, the service or the manager is missing.
KrRxProtocolReactorManager* krrfReactorManagerOf(KrRxClass* cls);
// The manager's list for exactly reactorClass, or null; never makes one.
KrRxProtocolReactorList* krrfFindReactorList(const KrRxProtocolReactorManager* manager,
                                             const KrRxClass* reactorClass);
