#pragma once
// The set implementation: a linked list kept in ascending comparedTo order,
// searched by bisection over the list; objects that cannot be ordered are
// found by equality instead. KrRxGenTypedSet admits only kinds of one class.

#include "krrxlinkedlist.h"
#include "krrxset.h"

class KR1ST_API KrRxImpSet : public KrRxSet {
  KRRX_DECLARE_MEMBERS(KrRxImpSet);

 public:
  explicit KrRxImpSet(bool deleteObjects = false);
  KrRxImpSet(const KrRxImpSet&) = delete;
  KrRxImpSet& operator=(const KrRxImpSet&) = delete;
  // Deletes the members when the set owns them.
  ~KrRxImpSet() override;

  // Null objects are never members.
  bool add(KrRxObject* object) override;
  bool remove(KrRxObject* object) override;
  bool isMember(KrRxObject* object) const override;
  void removeAll() override;
  unsigned int numEntries() const override;
  KrRxIterator* newIterator(bool forward = true) const override;
  bool deletesObjects() const override;

  // Calls visit(member) for each member in order until it returns false,
  // allocating nothing. A visit may remove the member it is given.
  template <typename Visit>
  void forEachMember(Visit visit) const {
    for (KrRxGenLinkedList::Node* node = mList.first(); node;) {
      KrRxGenLinkedList::Node* next = node->next;
      if (!visit(node->object)) return;
      node = next;
    }
  }

 private:
  typedef KrRxGenLinkedList::Node Node;
  struct Position {
    Node* node;  // the member found, or the node to insert before (null: at the end)
    bool found;
  };
  Position search(const KrRxObject* object) const;

  KrRxGenLinkedList mList;
  bool mDeleteObjects;
};

class KR1ST_API KrRxGenTypedSet : public KrRxImpSet {
  KRRX_DECLARE_MEMBERS(KrRxGenTypedSet);

 public:
  // A null requiredClass admits every object.
  explicit KrRxGenTypedSet(bool deleteObjects = false, const KrRxClass* requiredClass = nullptr);

  // False for an object that is not a kind of the required class.
  bool add(KrRxObject* object) override;

 private:
  const KrRxClass* mpRequiredClass;
};
