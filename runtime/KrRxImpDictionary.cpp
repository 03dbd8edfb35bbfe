#include "runtime/KrRxImpDictionary.h"

#include <algorithm>
#include <climits>
#include <cstddef>
#include <cstring>
#include <cwchar>
#include <new>
#include <thread>

#include "runtime/KrRxCoreClass.h"
#include "runtime/KrRxImpDictionaryIterator.h"

KRRX_CORE_CONS_DEFINE_MEMBERS(KrRxImpDictionary, KrRxDictionary)

// The field order is part of the binary interface.
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Winvalid-offsetof"
struct KrRxImpDictionaryLayout {
  static_assert(offsetof(KrRxImpDictionary, mpRequiredClass) == 8, "requiredClass follows the vtable");
  static_assert(offsetof(KrRxImpDictionary, mKeyIndex) == 16, "keyIndex");
  static_assert(offsetof(KrRxImpDictionary, mEntries) == 40, "entries");
  static_assert(offsetof(KrRxImpDictionary, mLiveCount) == 64, "liveCount");
  static_assert(offsetof(KrRxImpDictionary, mSortState) == 68, "sortState");
  static_assert(offsetof(KrRxImpDictionary, mCompare) == 72, "compare");
  static_assert(offsetof(KrRxImpDictionary, mDispose) == 80, "dispose");
  static_assert(sizeof(KrRxImpDictionary) == 88, "no further fields");
  static_assert(sizeof(KrRxImpDictionary::Entry) == 16, "an entry is a key and an object");
  static_assert(sizeof(std::atomic<int32_t>) == 4, "sortState is 32-bit");
};
#pragma GCC diagnostic pop

namespace {

enum SortState : int32_t { kPermanentlySorted = -1, kUnindexed = 0, kBuilding = 1, kIndexed = 2 };

// The comparisons of the two orders, from unit `from` on, the units before it
// being known to match; `from` becomes the length of the matching prefix.

int compareCodeUnitsFrom(const wchar_t* a, const wchar_t* b, size_t& from) {
  size_t i = from;
  while (a[i] && a[i] == b[i]) ++i;
  from = i;
  return int(a[i]) - int(b[i]);
}

// Equal units need no folding. ASCII letters are folded here; from the first
// other difference on, the C runtime compares, lowercasing in the current locale.
int compareIgnoringCaseFrom(const wchar_t* a, const wchar_t* b, size_t& from) {
  for (size_t i = from;; ++i) {
    wchar_t x = a[i];
    wchar_t y = b[i];
    if (x == y) {
      if (x) continue;
      from = i;
      return 0;
    }
    from = i;
    if (x >= 0x80 || y >= 0x80) return _wcsicmp(a + i, b + i);
    if (x >= L'A' && x <= L'Z') x += L'a' - L'A';
    if (y >= L'A' && y <= L'Z') y += L'a' - L'A';
    if (x != y) return int(x) - int(y);
  }
}

int compareCodeUnits(const wchar_t* a, const wchar_t* b) {
  size_t from = 0;
  return compareCodeUnitsFrom(a, b, from);
}

int compareIgnoringCase(const wchar_t* a, const wchar_t* b) {
  size_t from = 0;
  return compareIgnoringCaseFrom(a, b, from);
}

KrRxObject* deleteObject(KrRxObject* object) {
  delete object;
  return nullptr;
}

KrRxObject* keepObject(KrRxObject* object) { return object; }

}  // namespace

KrRxImpDictionary::KrRxImpDictionary(unsigned int length, bool deleteObjects, bool sorted, bool ignoreCase,
                                     const KrRxClass* requiredClass)
    : mpRequiredClass(requiredClass),
      mLiveCount(0),
      mSortState(sorted ? kPermanentlySorted : kUnindexed),
      mCompare(ignoreCase ? compareIgnoringCase : compareCodeUnits),
      mDispose(deleteObjects ? deleteObject : keepObject) {
  // Entry 0 (and a sorted index's id 0) must exist before any lookup.
  bool reserved = mEntries.reserve(int32_t(std::min(length, unsigned(INT_MAX - 1))) + 1, kEntryLargeIncrement);
  if (!reserved || !mEntries.append({nullptr, nullptr}, kEntryLargeIncrement) ||
      (sorted && !mKeyIndex.append(0, kIdLargeIncrement))) {
    mEntries.release();
    mKeyIndex.release();
    throw std::bad_alloc();
  }
}

KrRxImpDictionary::~KrRxImpDictionary() {
  disposeEntries();
  mEntries.release();
  mKeyIndex.release();
}

bool KrRxImpDictionary::accepts(const KrRxObject* object) const {
  return !mpRequiredClass || (object && object->isKindOf(mpRequiredClass));
}

bool KrRxImpDictionary::hasKeyIndex() const {
  int32_t state = mSortState.load(std::memory_order_acquire);
  return state != kUnindexed && state != kBuilding;
}

// The comparison is a template argument so that it is inlined in the loop.
// Every key between the last ones found below and not below the given key
// shares the shorter of their matching prefixes with it: comparisons skip it.
template <int (*compare)(const wchar_t*, const wchar_t*, size_t&)>
int32_t KrRxImpDictionary::lowerBoundWith(const wchar_t* key) const {
  const Entry* entries = mEntries.data;
  const uint32_t* index = mKeyIndex.data;
  int32_t low = 1;
  int32_t high = mKeyIndex.count;
  size_t belowPrefix = 0;
  size_t notBelowPrefix = 0;
  while (low < high) {
    int32_t middle = low + (high - low) / 2;
    size_t prefix = std::min(belowPrefix, notBelowPrefix);
    if (compare(entries[index[middle]].key, key, prefix) < 0) {
      low = middle + 1;
      belowPrefix = prefix;
    } else {
      high = middle;
      notBelowPrefix = prefix;
    }
  }
  return low;
}

int32_t KrRxImpDictionary::lowerBound(const wchar_t* key) const {
  return mCompare == compareCodeUnits ? lowerBoundWith<compareCodeUnitsFrom>(key)
                                      : lowerBoundWith<compareIgnoringCaseFrom>(key);
}

void KrRxImpDictionary::indexInsert(unsigned int id) {
  if (!hasKeyIndex()) return;
  mKeyIndex.insertAt(lowerBound(mEntries.data[id].key), id, kIdLargeIncrement);
}

void KrRxImpDictionary::indexRemove(unsigned int id) {
  if (!hasKeyIndex()) return;
  int32_t position = lowerBound(mEntries.data[id].key);
  if (position < mKeyIndex.count) mKeyIndex.removeAt(position);
}

unsigned int KrRxImpDictionary::find(const wchar_t* key, int32_t& position) const {
  position = 0;
  if (!key) return 0;
  if (!hasKeyIndex()) {
    for (int32_t id = 0; id < mEntries.count; ++id) {
      const wchar_t* stored = mEntries.data[id].key;
      if (stored == key || (stored && mCompare(stored, key) == 0)) return unsigned(id);
    }
    return 0;
  }
  position = lowerBound(key);
  if (position == mKeyIndex.count) return 0;
  unsigned int id = mKeyIndex.data[position];
  return mCompare(mEntries.data[id].key, key) == 0 ? id : 0;
}

unsigned int KrRxImpDictionary::idAt(const wchar_t* key) const {
  int32_t position;
  return find(key, position);
}

KrRxObject* KrRxImpDictionary::at(unsigned int id) const {
  return id < unsigned(mEntries.count) ? mEntries.data[id].object : nullptr;
}

KrRxObject* KrRxImpDictionary::at(const wchar_t* key) const { return mEntries.data[idAt(key)].object; }

bool KrRxImpDictionary::has(unsigned int id) const {
  return id < unsigned(mEntries.count) && mEntries.data[id].key;
}

bool KrRxImpDictionary::has(const wchar_t* key) const { return idAt(key) != 0; }

const wchar_t* KrRxImpDictionary::keyAt(unsigned int id) const {
  return id < unsigned(mEntries.count) ? mEntries.data[id].key : nullptr;
}

unsigned int KrRxImpDictionary::numEntries() const { return unsigned(mLiveCount); }

// Only live entries can be replaced: a free or unknown id changes nothing.
KrRxObject* KrRxImpDictionary::atPut(unsigned int id, KrRxObject* object) {
  if (!accepts(object) || !has(id)) return nullptr;
  Entry& entry = mEntries.data[id];
  KrRxObject* previous = mDispose(entry.object);
  entry.object = object;
  return previous;
}

KrRxObject* KrRxImpDictionary::atPut(const wchar_t* key, KrRxObject* object, unsigned int& id) {
  int32_t position;
  id = find(key, position);
  if (id) return atPut(id, object);
  if (key && accepts(object)) id = appendEntry(key, object, position, true);
  return nullptr;
}

unsigned int KrRxImpDictionary::putNew(const wchar_t* key, KrRxObject* object) {
  int32_t position;
  if (!key || find(key, position) || !accepts(object)) return 0;
  return appendEntry(key, object, position, false);
}

// A failed key copy that is kept takes its position and counts, without key
// or object: it never enters the key index, so no comparison meets it.
unsigned int KrRxImpDictionary::appendEntry(const wchar_t* key, KrRxObject* object, int32_t position,
                                            bool keepKeyless) {
  if (!reserveIndexRoom() || !mEntries.reserve(mEntries.count + 1, kEntryLargeIncrement)) return 0;
  wchar_t* copy = __krStrdup(key);
  if (!copy && !keepKeyless) return 0;
  mEntries.append({copy, copy ? object : nullptr}, kEntryLargeIncrement);
  ++mLiveCount;
  unsigned int id = unsigned(mEntries.count - 1);
  if (copy && hasKeyIndex()) mKeyIndex.insertAt(position, id, kIdLargeIncrement);
  return id;
}

bool KrRxImpDictionary::reserveIndexRoom() {
  return !hasKeyIndex() || mKeyIndex.reserve(mKeyIndex.count + 1, kIdLargeIncrement);
}

bool KrRxImpDictionary::atKeyAndIdPut(const wchar_t* key, unsigned int id, KrRxObject* object) {
  if (id == 0 || !key || !object || !accepts(object)) return false;
  bool inside = id < unsigned(mEntries.count);
  if (has(key) || (inside && mEntries.data[id].key) || id >= unsigned(INT_MAX)) return false;
  // Everything that can fail comes first, so that a failure changes nothing.
  int32_t count = std::max(mEntries.count, int32_t(id) + 1);
  if (!reserveIndexRoom() || !mEntries.reserve(count, kEntryLargeIncrement)) return false;
  wchar_t* copy = __krStrdup(key);
  if (!copy) return false;
  memset(static_cast<void*>(mEntries.data + mEntries.count), 0, size_t(count - mEntries.count) * sizeof(Entry));
  mEntries.count = count;
  mEntries.data[id] = {copy, object};
  ++mLiveCount;
  indexInsert(id);
  return true;
}

KrRxObject* KrRxImpDictionary::remove(unsigned int id) {
  if (!has(id)) return nullptr;
  indexRemove(id);
  return release(id);
}

KrRxObject* KrRxImpDictionary::remove(const wchar_t* key) {
  int32_t position;
  unsigned int id = find(key, position);
  if (!has(id)) return nullptr;
  if (hasKeyIndex()) mKeyIndex.removeAt(position);
  return release(id);
}

KrRxObject* KrRxImpDictionary::release(unsigned int id) {
  Entry& entry = mEntries.data[id];
  __krFree(entry.key);
  entry.key = nullptr;
  KrRxObject* removed = mDispose(entry.object);
  entry.object = nullptr;
  --mLiveCount;
  return removed;
}


bool KrRxImpDictionary::resetKey(unsigned int id, const wchar_t* newKey) {
  if (!newKey || !has(id) || has(newKey)) return false;
  // The copy comes first: when it fails, the entry keeps its old key.
  wchar_t* copy = __krStrdup(newKey);
  if (!copy) return false;
  indexRemove(id);
  Entry& entry = mEntries.data[id];
  __krFree(entry.key);
  entry.key = copy;
  indexInsert(id);
  return true;
}

bool KrRxImpDictionary::resetKey(const wchar_t* oldKey, const wchar_t* newKey) {
  return resetKey(idAt(oldKey), newKey);
}

KrRxDictionaryIterator* KrRxImpDictionary::newIterator(KrRx::DictIterType type) const {
  return new KrRxImpDictionaryIterator(this, type);
}

bool KrRxImpDictionary::deletesObjects() const { return mDispose == deleteObject; }

bool KrRxImpDictionary::isCaseSensitive() const { return mCompare == compareCodeUnits; }

bool KrRxImpDictionary::isSorted() const { return sortState() == kPermanentlySorted; }

// Last to first, so that objects go in the reverse order of their arrival.
void KrRxImpDictionary::disposeEntries() {
  for (int32_t position = mEntries.count - 1; position >= 0; --position) {
    Entry& entry = mEntries.data[position];
    __krFree(entry.key);
    mDispose(entry.object);
  }
}

namespace {

// Replaces array by a fresh one holding only first; when memory is short the
// old block stays, cut to that one element.
template <typename T>
void restartWith(KrRxGrowArray<T>& array, const T& first, int32_t largeIncrement) {
  KrRxGrowArray<T> fresh;
  if (fresh.append(first, largeIncrement)) {
    array.release();
    array = fresh;
    return;
  }
  array.data[0] = first;
  array.count = 1;
}

}  // namespace

void KrRxImpDictionary::resetToEmpty() {
  restartWith(mEntries, Entry{nullptr, nullptr}, kEntryLargeIncrement);
  mLiveCount = 0;
  if (sortState() == kUnindexed) return;
  restartWith(mKeyIndex, uint32_t(0), kIdLargeIncrement);
}

void KrRxImpDictionary::removeAll() {
  disposeEntries();
  resetToEmpty();
}

void KrRxImpDictionary::openKeyOrder() const {
  for (;;) {
    int32_t state = kUnindexed;
    if (mSortState.compare_exchange_strong(state, kBuilding)) {
      if (!buildKeyIndex()) {
        mKeyIndex.release();
        mSortState.store(kUnindexed);
        throw std::bad_alloc();
      }
      mSortState.fetch_add(1);
      return;
    }
    if (state == kPermanentlySorted) return;
    // Join the index only while it is still there: a closing iterator may
    // be dropping it at this very moment.
    if (state >= kIndexed && mSortState.compare_exchange_weak(state, state + 1)) return;
    if (state == kBuilding) std::this_thread::yield();
  }
}

void KrRxImpDictionary::closeKeyOrder() const {
  if (sortState() == kPermanentlySorted) return;
  if (mSortState.fetch_sub(1) - 1 != kBuilding) return;
  mKeyIndex.release();
  mKeyIndex.growStep = 8;
  mSortState.store(kUnindexed);
}

bool KrRxImpDictionary::buildKeyIndex() const {
  mKeyIndex.release();
  mKeyIndex.growStep = 8;
  if (!mKeyIndex.reserve(mLiveCount + 1, kIdLargeIncrement) || !mKeyIndex.append(0, kIdLargeIncrement)) return false;
  for (int32_t position = 1; position < mEntries.count; ++position)
    if (mEntries.data[position].key && !mKeyIndex.append(uint32_t(position), kIdLargeIncrement)) return false;
  const Entry* entries = mEntries.data;
  Compare compare = mCompare;
  std::sort(mKeyIndex.data + 1, mKeyIndex.data + mKeyIndex.count,
            [entries, compare](uint32_t a, uint32_t b) { return compare(entries[a].key, entries[b].key) < 0; });
  return true;
}
