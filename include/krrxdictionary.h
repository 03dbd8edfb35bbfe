#pragma once
/// @file
/// String-keyed dictionaries of runtime objects. Every entry gets an id that
/// stays fixed for the entry's life; new entries never take the id of a
/// removed one.

#include "krrxobject.h"

class KrRxDictionaryIterator;

namespace KrRx {

/// The order in which a dictionary iterator visits the entries.
enum DictIterType : int {
  kDictByKey = 0,  ///< in key order
  kDictById = 1,   ///< in id order, the order of insertion
};

}  // namespace KrRx

/// A dictionary of runtime objects by text key, each entry numbered by an id that is never reused.
class KR1ST_API KrRxDictionary : public KrRxObject {
  KRRX_DECLARE_MEMBERS(KrRxDictionary);

 public:
  /// Unknown ids and keys give null.
  ///@{
  virtual KrRxObject* at(unsigned int id) const = 0;
  virtual KrRxObject* at(const wchar_t* key) const = 0;
  ///@}
  /// Replaces the object at id; returns the previous one (null when the
  /// dictionary deleted it, or when the required class rejects the object).
  ///@{
  virtual KrRxObject* atPut(unsigned int id, KrRxObject* object) = 0;
  ///@}
  /// Puts object under key (a new entry at the end, or a replacement);
  /// id receives the entry's id (0 when rejected). Returns the previous object.
  virtual KrRxObject* atPut(const wchar_t* key, KrRxObject* object, unsigned int& id) = 0;
  /// Gives the entry (by id or by its old key) a new key; false when there is no such entry or the new key is taken.
  ///@{
  virtual bool resetKey(unsigned int id, const wchar_t* newKey) = 0;
  virtual bool resetKey(const wchar_t* oldKey, const wchar_t* newKey) = 0;
  ///@}
  /// Puts an entry at a chosen id, extending the id range when needed.
  virtual bool atKeyAndIdPut(const wchar_t* key, unsigned int id, KrRxObject* object) = 0;
  /// Removes the entry; returns its object (null when the dictionary deleted it).
  ///@{
  virtual KrRxObject* remove(unsigned int id) = 0;
  virtual KrRxObject* remove(const wchar_t* key) = 0;
  ///@}
  /// Whether an entry of that id or key exists.
  ///@{
  virtual bool has(unsigned int id) const = 0;
  virtual bool has(const wchar_t* key) const = 0;
  ///@}
  /// The id of key, 0 when absent.
  virtual unsigned int idAt(const wchar_t* key) const = 0;
  /// The stored key of id, null when absent.
  virtual const wchar_t* keyAt(unsigned int id) const = 0;
  /// The number of entries.
  virtual unsigned int numEntries() const = 0;
  /// A new iterator that the caller deletes.
  virtual KrRxDictionaryIterator* newIterator(KrRx::DictIterType type = KrRx::kDictByKey) const = 0;
  /// How the dictionary was made: owning its objects, case-sensitive, sorted.
  ///@{
  virtual bool deletesObjects() const = 0;
  virtual bool isCaseSensitive() const = 0;
  virtual bool isSorted() const = 0;
  ///@}

  /// As atPut with an id, without telling the id.
  KrRxObject* atPut(const wchar_t* key, KrRxObject* object) {
    unsigned int id;
    return atPut(key, object, id);
  }
};

/// Walks a dictionary; positioned on the first entry when made.
class KR1ST_API KrRxDictionaryIterator : public KrRxObject {
  KRRX_DECLARE_MEMBERS(KrRxDictionaryIterator);

 public:
  /// True once every entry has been visited.
  virtual bool done() const = 0;
  /// Moves on; false when the walk has ended.
  virtual bool next() = 0;
  /// The current entry's object, key and id.
  ///@{
  virtual KrRxObject* object() const = 0;
  virtual const wchar_t* key() const = 0;
  virtual unsigned int id() const = 0;
  ///@}
};
