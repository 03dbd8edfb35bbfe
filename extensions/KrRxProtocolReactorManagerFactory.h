#pragma once
// The service "ProtocolReactorManager", which keeps protocol reactors per
// class. Its reactor operations come with the protocol reactors themselves.

#include "krrxservice.h"

class KR1ST_API KrRxProtocolReactorManagerFactory : public KrRxService {
  KRRX_DECLARE_MEMBERS(KrRxProtocolReactorManagerFactory);
};

class KR1ST_API KrRxImpProtocolReactorManagerFactory : public KrRxProtocolReactorManagerFactory {
  KRRX_DECLARE_MEMBERS(KrRxImpProtocolReactorManagerFactory);
};
