#include "runtime/KrRxImpDictionaryIterator.h"

#include "runtime/KrRxCoreClass.h"
#include "runtime/KrRxImpDictionary.h"

KRRX_CORE_NO_CONS_DEFINE_MEMBERS(KrRxImpDictionaryIterator, KrRxDictionaryIterator)

KrRxImpDictionaryIterator::KrRxImpDictionaryIterator(const KrRxImpDictionary* dictionary, KrRx::DictIterType type)
    : mpDictionary(dictionary), mType(type), mPosition(0) {
  if (inKeyOrder()) mpDictionary->openKeyOrder();
  advance();
}

KrRxImpDictionaryIterator::~KrRxImpDictionaryIterator() {
  if (inKeyOrder()) mpDictionary->closeKeyOrder();
}

unsigned int KrRxImpDictionaryIterator::idAtPosition() const {
  if (!inKeyOrder()) return mPosition;
  const KrRxGrowArray<uint32_t>& index = mpDictionary->mKeyIndex;
  return mPosition < uint32_t(index.count) ? index.data[mPosition] : 0;
}

void KrRxImpDictionaryIterator::advance() {
  do {
    if (++mPosition >= uint32_t(mpDictionary->mEntries.count)) {
      mPosition = 0;
      return;
    }
  } while (!mpDictionary->mEntries.data[idAtPosition()].key);
}

bool KrRxImpDictionaryIterator::done() const { return mPosition == 0; }

bool KrRxImpDictionaryIterator::next() {
  advance();
  return !done();
}

KrRxObject* KrRxImpDictionaryIterator::object() const { return mpDictionary->mEntries.data[id()].object; }

const wchar_t* KrRxImpDictionaryIterator::key() const { return mpDictionary->mEntries.data[id()].key; }

unsigned int KrRxImpDictionaryIterator::id() const { return idAtPosition(); }
