#include "reflection/KrRfImpReflectionPE.h"

#include <cstddef>

#include "krrxclass.h"
#include "reflection/KrRfImpSymbolIterator.h"
#include "reflection/KrRfReflectionService.h"
#include "runtime/KrRxCoreClass.h"

KRRX_CORE_NO_CONS_DEFINE_MEMBERS(KrRfReflectionPE, KrRxObject)
KRRX_CORE_NO_CONS_DEFINE_MEMBERS(KrRfImpReflectionPE, KrRfReflectionPE)

#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Winvalid-offsetof"
struct KrRfImpReflectionPELayout {
  static_assert(offsetof(KrRfImpReflectionPE, mpOwnerClass) == 8, "the class described follows the vtable");
  static_assert(offsetof(KrRfImpReflectionPE, mSymbols) == 16, "then the symbol dictionary");
  static_assert(sizeof(KrRfImpReflectionPE) == 16 + sizeof(KrRxImpDictionary), "no further fields");
};
#pragma GCC diagnostic pop

namespace {

bool isSymbolNameStart(wchar_t c) { return (c >= L'a' && c <= L'z') || c == L'_'; }

}  // namespace

KrRfImpReflectionPE::KrRfImpReflectionPE(KrRxClass* ownerClass)
    : mpOwnerClass(ownerClass), mSymbols(0, false, true, false, KrRfSymbol::desc()) {}

KrRfReflectionPE* KrRfImpReflectionPE::extensionOf(const KrRxClass* cls) {
  return cls ? static_cast<KrRfReflectionPE*>(cls->queryX(KrRfReflectionPE::desc())) : nullptr;
}

KrRfReflectionPE* KrRfImpReflectionPE::ownExtensionOf(const KrRxClass* cls) {
  KrRfReflectionPE* pe = extensionOf(cls);
  return pe && pe->ownerClass() == cls ? pe : nullptr;
}

KrRxClass* KrRfImpReflectionPE::ownerClass() const { return mpOwnerClass; }

Kesu::ErrorStatus KrRfImpReflectionPE::addSymbol(KrRfSymbol* symbol) {
  const wchar_t* name = symbol->name();
  if (!name || !isSymbolNameStart(name[0])) return Kesu::eInvalidInput;
  if (mSymbols.has(name)) return Kesu::eDuplicateKey;
  if (!mSymbols.putNew(name, symbol)) return Kesu::eOutOfMemory;
  if (KrRfImpReflectionService* service = krrfImpReflectionService()) service->notifyAdded(symbol);
  return Kesu::eOk;
}

// The last removal detaches the extension from its class and deletes it.
Kesu::ErrorStatus KrRfImpReflectionPE::removeSymbol(KrRfSymbol* symbol) {
  const wchar_t* name = symbol->name();
  if (!name || !mSymbols.has(name)) return Kesu::eKeyNotFound;
  if (KrRfImpReflectionService* service = krrfImpReflectionService()) service->notifyRemoved(symbol);
  mSymbols.remove(name);
  if (mSymbols.numEntries() == 0) {
    mpOwnerClass->delX(KrRfReflectionPE::desc());
    delete this;
  }
  return Kesu::eOk;
}

KrRfSymbolIterator* KrRfImpReflectionPE::newSymbolIterator(const KrRxClass* cls) const {
  return KrRfImpSymbolIterator::create(this, cls);
}

KrRfSymbol* KrRfImpReflectionPE::symbolAt(const wchar_t* name) const {
  return name ? static_cast<KrRfSymbol*>(mSymbols.at(name)) : nullptr;
}

KrRfSymbol* KrRfImpReflectionPE::findSymbol(const wchar_t* name) const {
  for (const KrRfReflectionPE* pe = this; pe; pe = extensionOf(pe->ownerClass()->myParent())) {
    if (KrRfSymbol* symbol = pe->symbolAt(name)) return symbol;
  }
  return nullptr;
}

KrRfSymbol* KrRfReflectionPE::symbolAt(const GUID& guid) const {
  KrRfSymbolIterator* it = newSymbolIterator(nullptr);
  KrRfSymbol* found = nullptr;
  for (; !it->done() && !found; it->next()) {
    if (it->symbol()->hasGuid(guid)) found = it->symbol();
  }
  delete it;
  return found;
}

KrRfProperty* KrRfReflectionPE::propertyAt(const wchar_t* name) const { return KrRfProperty::cast(symbolAt(name)); }

KrRfProperty* KrRfReflectionPE::propertyAt(const GUID& guid) const { return KrRfProperty::cast(symbolAt(guid)); }
