#pragma once
/// @file
/// A doubly linked list of runtime objects, with forward and backward
/// iterators. A list never owns the objects it holds.

#include "krheap.h"
#include "krrxiterator.h"
#include "krrxobject.h"

class KrRxGenLinkedListIterator;

/// A doubly linked list of runtime objects that it does not own.
class KR1ST_API KrRxGenLinkedList : public KrRxObject {
  KRRX_DECLARE_MEMBERS(KrRxGenLinkedList);

 public:
  KrRxGenLinkedList();
  KrRxGenLinkedList(const KrRxGenLinkedList&) = delete;
  KrRxGenLinkedList& operator=(const KrRxGenLinkedList&) = delete;
  ~KrRxGenLinkedList() override;

  /// True for a list that holds the same objects in the same order.
  bool isEqualTo(const KrRxObject* other) const override;

  /// The first and last objects. The list must not be empty: check
  /// numEntries() first.
  ///@{
  KrRxObject* getFirstEntry() const;
  KrRxObject* getLastEntry() const;
  ///@}

  /// Adds object at the front (back) of the list.
  ///@{
  void addNewFirstEntry(KrRxObject* object);
  void addNewLastEntry(KrRxObject* object);
  ///@}

  /// Drop the first (last) entry; false on an empty list. They leave the new
  /// first (last) node's link to the dropped node as it was, and the far end
  /// of a list they empty: after removeFirstEntry do not walk backward (after
  /// removeLastEntry not forward) until an entry is added at that end again.
  ///@{
  bool removeFirstEntry();
  bool removeLastEntry();
  ///@}

  /// Insert after (before) the iterator's current entry; nothing when the
  /// iterator is null or done. The iterator must walk this list.
  ///@{
  void addAfterIterator(KrRxGenLinkedListIterator* it, KrRxObject* object);
  void addBeforeIterator(KrRxGenLinkedListIterator* it, KrRxObject* object);
  ///@}
  /// Moves the iterator on, then removes the entry it was on; false when the
  /// iterator is null or done.
  bool removeAtIterator(KrRxGenLinkedListIterator* it);

  /// A new iterator from the first (forward) or last entry that the caller deletes.
  KrRxGenLinkedListIterator* newIterator(bool forward = true) const;
  /// The number of entries.
  unsigned int numEntries() const;

 private:
  struct Node : KrHeapOperators {
    Node(Node* prev, Node* next, KrRxObject* object) : prev(prev), next(next), object(object) {}
    Node* prev;
    Node* next;
    KrRxObject* object;
  };

  Node* first() const { return mCount ? mpHead : nullptr; }
  Node* last() const { return mCount ? mpTail : nullptr; }
  /// Links a new node between prev and next (null meaning the list's ends).
  void insertBetween(Node* prev, Node* next, KrRxObject* object);
  void insertBefore(Node* node, KrRxObject* object);
  void insertAfter(Node* node, KrRxObject* object);
  void unlink(Node* node);

  Node* mpHead;
  Node* mpTail;
  unsigned int mCount;

  friend class KrRxGenLinkedListIterator;
  friend class KrRxImpSet;
};

/// An empty list that the caller deletes.
KR1ST_API KrRxGenLinkedList* newKrRxGenLinkedList();

/// The iterator of a list: one entry at a time from where it starts. The two
/// variants differ only in their direction.
class KR1ST_API KrRxGenLinkedListIterator : public KrRxIterator {
  KRRX_DECLARE_MEMBERS(KrRxGenLinkedListIterator);

 public:
  bool done() const override;
  KrRxObject* object() const override;

 protected:
  /// Starts on start (done when null).
  ///@{
  typedef KrRxGenLinkedList::Node Node;
  explicit KrRxGenLinkedListIterator(Node* start) : mpNode(start) {}
  ///@}
  /// Follows link from the current node; false (without moving) when done.
  bool moveAlong(Node* Node::*link);

 private:
  Node* mpNode;  ///< null when done

  friend class KrRxGenLinkedList;
};

/// Walks a list from its first object to its last.
class KR1ST_API KrRxGenLinkedListForwardIterator : public KrRxGenLinkedListIterator {
 public:
  bool next() override;

 private:
  explicit KrRxGenLinkedListForwardIterator(Node* start) : KrRxGenLinkedListIterator(start) {}
  friend class KrRxGenLinkedList;
};

/// Walks a list from its last object to its first.
class KR1ST_API KrRxGenLinkedListBackwardIterator : public KrRxGenLinkedListIterator {
 public:
  bool next() override;

 private:
  explicit KrRxGenLinkedListBackwardIterator(Node* start) : KrRxGenLinkedListIterator(start) {}
  friend class KrRxGenLinkedList;
};
