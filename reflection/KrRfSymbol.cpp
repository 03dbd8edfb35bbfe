#include "krrfsymbol.h"

#include <cstdint>
#include <cstring>

#include "runtime/KrRxCoreClass.h"

KRRX_CORE_NO_CONS_DEFINE_MEMBERS(KrRfSymbol, KrRxObject)
KRRX_CORE_NO_CONS_DEFINE_MEMBERS(KrRfProperty, KrRfSymbol)

static_assert(sizeof(GUID) == 16, "a symbol's identity is 16 bytes");

namespace {

void guidHalves(const GUID& guid, uint64_t halves[2]) { memcpy(halves, &guid, sizeof(GUID)); }

}  // namespace

bool KrRfSymbol::hasGuid(const GUID& guid) const {
  GUID own;
  uint64_t mine[2], theirs[2];
  guidHalves(*getGuid(&own), mine);
  guidHalves(guid, theirs);
  return mine[0] == theirs[0] && mine[1] == theirs[1];
}

Kesu::ErrorStatus KrRfProperty::getValue(const KrRxObject*, KrRxObject*) const { return Kesu::eNotApplicable; }

Kesu::ErrorStatus KrRfProperty::setValue(KrRxObject*, const KrRxObject*) const { return Kesu::eNotApplicable; }
