#pragma once
// The service "ReflectionServices", through which symbols are added to and
// found on classes. Its symbol operations come with reflection itself.

#include "krrxservice.h"
#include "runtime/KrRxGrowArray.h"

class KR1ST_API KrRfReflectionService : public KrRxService {
  KRRX_DECLARE_MEMBERS(KrRfReflectionService);
};

class KR1ST_API KrRfImpReflectionService : public KrRfReflectionService {
  KRRX_DECLARE_MEMBERS(KrRfImpReflectionService);

 public:
  ~KrRfImpReflectionService() override;

 private:
  // Classes whose symbols the service has collected; starts empty.
  KrRxGrowArray<KrRxClass*> mClasses;
};
