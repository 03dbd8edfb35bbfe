#pragma once
// The dictionary implementation: entries in an id-indexed array, and an
// array of ids in key order that a sorted dictionary always keeps and an
// unsorted one builds only while key-order iterators are open.

#include <atomic>
#include <cstddef>
#include <cstdint>

#include "krrxdictionary.h"
#include "runtime/KrRxGrowArray.h"

class KR1ST_API KrRxImpDictionary : public KrRxDictionary {
  KRRX_DECLARE_MEMBERS(KrRxImpDictionary);

 public:
  // Room for length entries. With deleteObjects the dictionary deletes the
  // objects it drops; with sorted it keeps its key index at every change;
  // with ignoreCase keys compare without case (the first form put is kept);
  // a non-null requiredClass admits only kinds of that class.
  explicit KrRxImpDictionary(unsigned int length = 0, bool deleteObjects = false, bool sorted = false,
                             bool ignoreCase = false, const KrRxClass* requiredClass = nullptr);
  KrRxImpDictionary(const KrRxImpDictionary&) = delete;
  KrRxImpDictionary& operator=(const KrRxImpDictionary&) = delete;
  ~KrRxImpDictionary() override;

  KrRxObject* at(unsigned int id) const override;
  KrRxObject* at(const wchar_t* key) const override;
  KrRxObject* atPut(unsigned int id, KrRxObject* object) override;
  KrRxObject* atPut(const wchar_t* key, KrRxObject* object, unsigned int& id) override;
  using KrRxDictionary::atPut;
  bool resetKey(unsigned int id, const wchar_t* newKey) override;
  bool resetKey(const wchar_t* oldKey, const wchar_t* newKey) override;
  bool atKeyAndIdPut(const wchar_t* key, unsigned int id, KrRxObject* object) override;
  KrRxObject* remove(unsigned int id) override;
  KrRxObject* remove(const wchar_t* key) override;
  bool has(unsigned int id) const override;
  bool has(const wchar_t* key) const override;
  unsigned int idAt(const wchar_t* key) const override;
  const wchar_t* keyAt(unsigned int id) const override;
  unsigned int numEntries() const override;
  KrRxDictionaryIterator* newIterator(KrRx::DictIterType type = KrRx::kDictByKey) const override;
  bool deletesObjects() const override;
  bool isCaseSensitive() const override;
  bool isSorted() const override;

  // Puts a key that is not present yet, all or nothing: its new id, or 0
  // with nothing changed (not even the count) when the key is present, the
  // object is refused or memory is short.
  unsigned int putNew(const wchar_t* key, KrRxObject* object);

  // Drops every entry (deleting the objects when the dictionary owns them);
  // ids start again at 1. Not while key-order iterators are open.
  void removeAll();

  // The sort state: -1 permanently sorted; 0 no key index; 1 an index is
  // being built; n >= 2 an index shared by n - 1 key-order iterators.
  int32_t sortState() const { return mSortState.load(std::memory_order_acquire); }
  // The ids in key order, id 0 first; empty while there is no index.
  const KrRxGrowArray<uint32_t>& keyIndex() const { return mKeyIndex; }
  // The size of the id-indexed entry block: it keeps a position for every
  // id ever handed out, so it grows in the array's steps as ids are used.
  size_t entryBlockBytes() const { return static_cast<size_t>(mEntries.capacity) * sizeof(Entry); }

 private:
  struct Entry {
    wchar_t* key;  // owned copy; null marks a free position
    KrRxObject* object;
  };
  // Once a block reaches 64 KiB it grows by 64 KiB worth of elements.
  static constexpr int32_t kEntryLargeIncrement = 65536 / sizeof(Entry);
  static constexpr int32_t kIdLargeIncrement = 65536 / sizeof(uint32_t);

  typedef int (*Compare)(const wchar_t* a, const wchar_t* b);
  typedef KrRxObject* (*Dispose)(KrRxObject* object);

  bool accepts(const KrRxObject* object) const;
  bool hasKeyIndex() const;
  // First position of keyIndex (from 1) whose key does not compare below key.
  int32_t lowerBound(const wchar_t* key) const;
  template <int (*compare)(const wchar_t*, const wchar_t*, size_t&)>
  int32_t lowerBoundWith(const wchar_t* key) const;
  // The id of key, or 0; position is where key is or would go in keyIndex
  // (0 while there is no index).
  unsigned int find(const wchar_t* key, int32_t& position) const;
  // Appends key (not present; position is where it goes in keyIndex) and
  // gives its id, or 0 with nothing changed when memory is short. With
  // keepKeyless a failed key copy still takes a counted, keyless position.
  unsigned int appendEntry(const wchar_t* key, KrRxObject* object, int32_t position, bool keepKeyless);
  // Makes sure the key index can take one more id; false when memory is short.
  bool reserveIndexRoom();
  void indexInsert(unsigned int id);
  void indexRemove(unsigned int id);
  // Frees the key of a live entry no longer in keyIndex and disposes its object.
  KrRxObject* release(unsigned int id);
  void disposeEntries();
  void resetToEmpty();

  // Key-order iteration shares one index between all open iterators.
  // Throws std::bad_alloc when the index cannot be built.
  void openKeyOrder() const;
  void closeKeyOrder() const;
  // False when memory is short; the caller drops the partial index.
  bool buildKeyIndex() const;

  const KrRxClass* mpRequiredClass;
  mutable KrRxGrowArray<uint32_t> mKeyIndex;
  KrRxGrowArray<Entry> mEntries;
  int32_t mLiveCount;
  mutable std::atomic<int32_t> mSortState;
  Compare mCompare;
  Dispose mDispose;

  friend class KrRxImpDictionaryIterator;
  friend struct KrRxImpDictionaryLayout;
};
