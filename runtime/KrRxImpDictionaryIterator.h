#pragma once
// Walks a KrRxImpDictionary in key order or in id order, skipping free
// positions. A key-order iterator holds the dictionary's shared key index
// for its whole life.

#include <cstdint>

#include "krrxdictionary.h"
#include "runtime/KrRxImpDictionary.h"

class KR1ST_API KrRxImpDictionaryIterator : public KrRxDictionaryIterator {
  KRRX_DECLARE_MEMBERS(KrRxImpDictionaryIterator);

 public:
  // Positioned on the first entry (or done at once when there is none).
  KrRxImpDictionaryIterator(const KrRxImpDictionary* dictionary, KrRx::DictIterType type);
  KrRxImpDictionaryIterator(const KrRxImpDictionaryIterator&) = delete;
  KrRxImpDictionaryIterator& operator=(const KrRxImpDictionaryIterator&) = delete;
  ~KrRxImpDictionaryIterator() override;

  // Walks dictionary instead, from its first entry, in the same order; lets
  // one iterator serve several dictionaries in turn without a new allocation.
  void restartOn(const KrRxImpDictionary* dictionary);
  // next() and object() inline, for walks that know this class.
  bool nextEntry() {
    step();
    return mPosition != 0;
  }
  KrRxObject* entryObject() const { return mpDictionary->mEntries.data[idAt()].object; }
  // The same two for an iterator made in id order, without looking at the
  // order: the cheapest step a walk can take.
  bool nextById() {
    const KrRxImpDictionary::Entry* entries = mpDictionary->mEntries.data;
    const uint32_t end = uint32_t(mpDictionary->mEntries.count);
    for (uint32_t position = mPosition + 1; position < end; ++position) {
      if (entries[position].key) {
        mPosition = position;
        return true;
      }
    }
    mPosition = 0;
    return false;
  }
  KrRxObject* objectById() const { return mpDictionary->mEntries.data[mPosition].object; }

  bool done() const override;
  // Moves to the next entry; false when the walk has ended. On an ended
  // walk it starts over from the first entry.
  bool next() override;
  KrRxObject* object() const override;
  const wchar_t* key() const override;
  unsigned int id() const override;

 private:
  bool inKeyOrder() const { return mType == KrRx::kDictByKey; }
  void advance();
  // The id at a position: the position itself in id order, the key index
  // element in key order (0 beyond the index). Position 0 gives id 0.
  unsigned int idAtPosition() const;
  // advance() and idAtPosition() inline.
  void step() {
    if (!inKeyOrder()) {
      nextById();
      return;
    }
    do {
      if (++mPosition >= uint32_t(mpDictionary->mEntries.count)) {
        mPosition = 0;
        return;
      }
    } while (!mpDictionary->mEntries.data[idAt()].key);
  }
  unsigned int idAt() const {
    if (!inKeyOrder()) return mPosition;
    const KrRxGrowArray<uint32_t>& index = mpDictionary->mKeyIndex;
    return mPosition < uint32_t(index.count) ? index.data[mPosition] : 0;
  }

  const KrRxImpDictionary* mpDictionary;
  KrRx::DictIterType mType;
  uint32_t mPosition;  // 0 when the walk has ended
};
