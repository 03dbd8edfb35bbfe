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

// The extensions a walk visits are handed to keep one by one, start's own
// first; keep answers false to stop. Each answers whether the walk ended.

// Each class's table answers with its own extension or its nearest
// ancestor's, so classes without one are passed over.
template <typename Keep>
bool visitChain(const KrRfImpReflectionPE* start, Keep keep) {
  for (const KrRfReflectionPE* pe = start; pe;
       pe = KrRfImpReflectionPE::extensionOf(pe->ownerClass()->myParent())) {
    const KrRfImpReflectionPE* imp = KrRfImpReflectionPE::cast(pe);
    if (imp && !keep(imp)) return false;
  }
  return true;
}

template <typename Keep>
bool visitOwn(const KrRfImpReflectionPE* start, const KrRxClass* cls, Keep keep) {
  if (!start->ownerClass()->isDerivedFrom(cls)) return true;
  const KrRfImpReflectionPE* own = KrRfImpReflectionPE::cast(KrRfImpReflectionPE::ownExtensionOf(cls));
  return !own || keep(own);
}

// Throws std::bad_alloc when the extension cannot be kept.
bool collect(KrRxGrowArray<const KrRfImpReflectionPE*>& extensions, const KrRfImpReflectionPE* extension) {
  if (!extensions.append(extension)) throw std::bad_alloc();
  return true;
}

// The list's capacity after its first growth: what a block keeps room for.
constexpr int32_t kExtensionsInBlock = KrRxGrowArray<const KrRfImpReflectionPE*>().growStep;

}  // namespace

// An iterator whose dictionary iterator and extension list live in the
// heap block right after it; its destructor leaves the base nothing to free.
class KrRfImpSymbolIterator::InOneBlock final : public KrRfImpSymbolIterator {
 public:
  static constexpr size_t kBytes = sizeof(KrRfImpSymbolIterator) + sizeof(KrRxImpDictionaryIterator) +
                                   kExtensionsInBlock * sizeof(const KrRfImpReflectionPE*);

  // Only in a block of kBytes.
  InOneBlock(const KrRfImpReflectionPE* const* found, int32_t count) : KrRfImpSymbolIterator(found, count, this + 1) {}
  ~InOneBlock() override {
    if (mpSymbols) mpSymbols->~KrRxImpDictionaryIterator();
    mpSymbols = nullptr;
    mExtensions.data = nullptr;
  }
};

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

KrRfImpSymbolIterator::KrRfImpSymbolIterator(const KrRfImpReflectionPE* const* found, int32_t count, void* room)
    : mIndex(0), mpSymbols(nullptr) {
  auto* list = reinterpret_cast<const KrRfImpReflectionPE**>(static_cast<char*>(room) +
                                                             sizeof(KrRxImpDictionaryIterator));
  if (count) {
    mExtensions.data = list;
    mExtensions.capacity = kExtensionsInBlock;
    mExtensions.count = count;
    std::reverse_copy(found, found + count, list);
  }
  openFromIndex(room);
}

KrRfImpSymbolIterator::~KrRfImpSymbolIterator() {
  delete mpSymbols;
  mExtensions.release();
}

KrRfImpSymbolIterator* KrRfImpSymbolIterator::create(const KrRfImpReflectionPE* start, const KrRxClass* cls) {
  const KrRfImpReflectionPE* found[kExtensionsInBlock];
  int32_t count = 0;
  auto keep = [&](const KrRfImpReflectionPE* extension) {
    if (count == kExtensionsInBlock) return false;
    found[count++] = extension;
    return true;
  };
  bool fits = cls ? visitOwn(start, cls, keep) : visitChain(start, keep);
  if (!fits) return new KrRfImpSymbolIterator(start, cls);
  static_assert(sizeof(InOneBlock) == sizeof(KrRfImpSymbolIterator), "the rooms follow the base");
  return ::new (InOneBlock::operator new(InOneBlock::kBytes)) InOneBlock(found, count);
}

void KrRfImpSymbolIterator::collectChain(const KrRfImpReflectionPE* start) {
  visitChain(start, [this](const KrRfImpReflectionPE* extension) { return collect(mExtensions, extension); });
  std::reverse(mExtensions.data, mExtensions.data + mExtensions.count);
}

void KrRfImpSymbolIterator::collectOwn(const KrRfImpReflectionPE* start, const KrRxClass* cls) {
  visitOwn(start, cls, [this](const KrRfImpReflectionPE* extension) { return collect(mExtensions, extension); });
}

bool KrRfImpSymbolIterator::openFromIndex(void* symbolsRoom) {
  for (; mIndex < mExtensions.count; ++mIndex) {
    const KrRxImpDictionary* symbols = &mExtensions.data[mIndex]->symbols();
    if (mpSymbols)
      mpSymbols->restartOn(symbols);
    else if (symbolsRoom)
      mpSymbols = ::new (symbolsRoom) KrRxImpDictionaryIterator(symbols, KrRx::kDictById);
    else
      mpSymbols = new KrRxImpDictionaryIterator(symbols, KrRx::kDictById);
    if (!mpSymbols->done()) return true;
  }
  return false;
}

bool KrRfImpSymbolIterator::openFromIndex() { return openFromIndex(nullptr); }

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
