#pragma once
/// @file
/// A shared-ownership wrapper: copies share one wrapped object until one of
/// them writes, which first gives the writer a clone of its own. The
/// reference count is atomic, so copies may live on different threads.

#include <cstdint>

#include "krrxobject.h"

/// Shares one wrapped object among copies and clones it for the first copy that writes.
class KR1ST_API KrRxCopyOnWriteObject : public KrRxObject {
  KRRX_DECLARE_MEMBERS(KrRxCopyOnWriteObject);

 public:
  /// Takes ownership of object.
  explicit KrRxCopyOnWriteObject(KrRxObject* object);
  /// Shares other's object.
  ///@{
  KrRxCopyOnWriteObject(const KrRxCopyOnWriteObject& other);
  KrRxCopyOnWriteObject& operator=(const KrRxCopyOnWriteObject& other);
  ///@}
  /// The last wrapper sharing an object deletes it.
  ~KrRxCopyOnWriteObject() override;

  /// Gives this wrapper an object of its own (a clone) when it shares one.
  void unshare();
  /// How many wrappers share this one's object.
  int32_t shareCount() const;

 protected:
  /// The shared object, for reading only.
  const KrRxObject* read() const;
  /// The object, unshared first, so that a change touches this wrapper only.
  KrRxObject* write();

 private:
  struct SharedBlock;
  static void release(SharedBlock* block);

  SharedBlock* mpShared;
};
