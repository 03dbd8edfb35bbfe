#pragma once
/// @file
/// Sets of runtime objects, kept in comparedTo order. A set owns its objects
/// only when made with the delete-objects flag (see the kernel's newKrRxSet).

#include "krrxobject.h"

class KrRxIterator;

/// A set of runtime objects in comparedTo order, without duplicates.
class KR1ST_API KrRxSet : public KrRxObject {
  KRRX_DECLARE_MEMBERS(KrRxSet);

 public:
  /// False when the object is a member already (or is rejected).
  virtual bool add(KrRxObject* object) = 0;
  /// False when the object is not a member; deletes it when the set owns objects.
  virtual bool remove(KrRxObject* object) = 0;
  /// Membership, emptying (deleting owned members), the count, and whether the set owns its members.
  ///@{
  virtual bool isMember(KrRxObject* object) const = 0;
  virtual void removeAll() = 0;
  virtual unsigned int numEntries() const = 0;
  /// A new iterator (from the first or from the last member) that the caller deletes.
  virtual KrRxIterator* newIterator(bool forward = true) const = 0;
  virtual bool deletesObjects() const = 0;
  ///@}
};
