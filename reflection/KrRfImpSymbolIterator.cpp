#include "reflection/KrRfImpSymbolIterator.h"

#include <algorithm>
#include <cstddef>
#include <new>

#include "krrxclass.h"
#include "krrxdictionary.h"
#include "reflection/KrRfImpReflectionPE.h"
#include "runtime/KrRxCoreClass.h"
#include "runtime/KrRxImpDictionaryIterator.h"

KRRX_CORE_NO_CONS_DEFINE_MEMBERS(KrRfSymbolIterator, KrRxIterator)
KRRX_CORE_NO_CONS_DEFINE_MEMBERS(KrRfImpSymbolIterator, KrRfSymbolIterator)

#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Winvalid-offsetof"
struct KrRfImpSymbolIteratorLayout {
  static_assert(offsetof(KrRfImpSymbolIterator, mExtensions) == 8, "the extensions to visit follow the vtable");
  static_assert(offsetof(KrRfImpSymbolIterator, mIndex) == 32, "then the index visited");
  static_assert(offsetof(KrRfImpSymbolIterator, mpSymbols) == 40, "then the dictionary iterator");
  static_assert(sizeof(KrRfImpSymbolIterator) == 48, "no further fields");
};
#pragma GCC diagnostic pop

namespace {

// Throws std::bad_alloc when the extension cannot be kept.
void collect(KrRxGrowArray<const KrRfImpReflectionPE*>& extensions, const KrRfImpReflectionPE* extension) {
  if (!extensions.append(extension)) throw std::bad_alloc();
}

}  // namespace

KrRfImpSymbolIterator::KrRfImpSymbolIterator(const KrRfImpReflectionPE* start, const KrRxClass* cls)
    : mIndex(0), mpSymbols(nullptr) {
  // An iterator that cannot see every extension is not made.
  try {
    if (cls)
      collectOwn(start, cls);
    else
      collectChain(start);
    openFromIndex();
  } catch (const std::bad_alloc&) {
    mExtensions.release();
    throw;
  }
}

KrRfImpSymbolIterator::~KrRfImpSymbolIterator() {
  delete mpSymbols;
  mExtensions.release();
}

// Each class's table answers with its own extension or its nearest
// ancestor's, so classes without one are passed over.
void KrRfImpSymbolIterator::collectChain(const KrRfImpReflectionPE* start) {
  for (const KrRfReflectionPE* pe = start; pe;
       pe = KrRfImpReflectionPE::extensionOf(pe->ownerClass()->myParent())) {
    if (const KrRfImpReflectionPE* imp = KrRfImpReflectionPE::cast(pe)) collect(mExtensions, imp);
  }
  std::reverse(mExtensions.data, mExtensions.data + mExtensions.count);
}

void KrRfImpSymbolIterator::collectOwn(const KrRfImpReflectionPE* start, const KrRxClass* cls) {
  if (!start->ownerClass()->isDerivedFrom(cls)) return;
  const KrRfImpReflectionPE* own = KrRfImpReflectionPE::cast(KrRfImpReflectionPE::ownExtensionOf(cls));
  if (own) collect(mExtensions, own);
}

bool KrRfImpSymbolIterator::openFromIndex() {
  for (; mIndex < mExtensions.count; ++mIndex) {
    const KrRxImpDictionary* symbols = &mExtensions.data[mIndex]->symbols();
    if (mpSymbols)
      mpSymbols->restartOn(symbols);
    else
      mpSymbols = new KrRxImpDictionaryIterator(symbols, KrRx::kDictById);
    if (!mpSymbols->done()) return true;
  }
  return false;
}

bool KrRfImpSymbolIterator::done() const { return atEnd(); }

bool KrRfImpSymbolIterator::next() {
  if (atEnd()) return false;
  if (mpSymbols->nextById()) return true;
  ++mIndex;
  return openFromIndex();
}

KrRxObject* KrRfImpSymbolIterator::object() const { return atEnd() ? nullptr : mpSymbols->objectById(); }

KrRxClass* KrRfImpSymbolIterator::currentClass() const {
  return atEnd() ? nullptr : mExtensions.data[mIndex]->ownerClass();
}
