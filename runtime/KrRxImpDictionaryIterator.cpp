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

void KrRxImpDictionaryIterator::restartOn(const KrRxImpDictionary* dictionary) {
  if (inKeyOrder()) {
    dictionary->openKeyOrder();
    mpDictionary->closeKeyOrder();
  }
  mpDictionary = dictionary;
  mPosition = 0;
  advance();
}

unsigned int KrRxImpDictionaryIterator::idAtPosition() const { return idAt(); }

void KrRxImpDictionaryIterator::advance() { step(); }

bool KrRxImpDictionaryIterator::done() const { return mPosition == 0; }

bool KrRxImpDictionaryIterator::next() { return nextEntry(); }

KrRxObject* KrRxImpDictionaryIterator::object() const { return entryObject(); }

const wchar_t* KrRxImpDictionaryIterator::key() const { return mpDictionary->mEntries.data[idAtPosition()].key; }

unsigned int KrRxImpDictionaryIterator::id() const { return idAtPosition(); }
