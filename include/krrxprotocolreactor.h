#pragma once
/// @file
/// Protocol reactors: listener objects attached to a runtime class, grouped
/// by the class of listener (the reactor class). Each class descriptor has at
/// most one manager, made on first request through the service
/// "ProtocolReactorManager"; the manager keeps one list per reactor class.
///
/// @code
///   auto* services = KrRxDictionary::cast(krrxSysRegistry()->at(L"ServiceDictionary"));
///   auto* factory = KrRxProtocolReactorManagerFactory::cast(services->at(L"ProtocolReactorManager"));
///   KrRxProtocolReactorList* list =
///       factory->createReactorManager(MyShape::desc())->createReactorList(MyShapeReactor::desc());
///   list->addReactor(&myReactor);   // and removeReactor before myReactor is destroyed
///   // A notifier walks list->newIterator() (deleting it after) and calls each reactor.
/// @endcode

#include "krerrorstatus.h"
#include "krrxiterator.h"
#include "krrxservice.h"

/// The base of every reactor object. Reactors are owned by whoever adds them.
class KR1ST_API KrRxProtocolReactor : public KrRxObject {
  KRRX_DECLARE_MEMBERS(KrRxProtocolReactor);
};

/// Walks the reactors of one list in insertion order, starting at the first.
class KR1ST_API KrRxProtocolReactorIterator : public KrRxIterator {
  KRRX_DECLARE_MEMBERS(KrRxProtocolReactorIterator);

 public:
  /// The reactor class of the list walked.
  virtual KrRxClass* reactorClass() const = 0;
  /// Back to the first reactor.
  virtual void start() = 0;
};

/// The reactors of one reactor class on one class, in insertion order (not owned).
class KR1ST_API KrRxProtocolReactorList : public KrRxObject {
  KRRX_DECLARE_MEMBERS(KrRxProtocolReactorList);

 public:
  /// The class every reactor of the list is a kind of.
  virtual KrRxClass* reactorClass() const = 0;
  /// Appends reactor: 0, 34 (eWrongObjectType) when it is not a kind of the
  /// reactor class (or null), 23 (eDuplicateKey) when it is in the list already.
  virtual Kesu::ErrorStatus addReactor(KrRxProtocolReactor* reactor) = 0;
  /// Removes its first occurrence, keeping the order of the others; silent when absent.
  virtual void removeReactor(KrRxProtocolReactor* reactor) = 0;
  /// A new iterator over the list; the caller deletes it.
  virtual KrRxProtocolReactorIterator* newIterator() const = 0;
};

/// Walks the lists of one manager in creation order.
class KR1ST_API KrRxProtocolReactorListIterator : public KrRxIterator {
  KRRX_DECLARE_MEMBERS(KrRxProtocolReactorListIterator);

 public:
  /// Back to the first list.
  virtual void start() = 0;
};

/// The reactor lists of one class, one per reactor class, in creation order.
/// Lives as long as its class descriptor and owns its lists.
class KR1ST_API KrRxProtocolReactorManager : public KrRxObject {
  KRRX_DECLARE_MEMBERS(KrRxProtocolReactorManager);

 public:
  /// The list for exactly reactorClass (no derivation), made on first request;
  /// null for null. Throws std::bad_alloc when the list cannot be kept.
  virtual KrRxProtocolReactorList* createReactorList(KrRxClass* reactorClass) = 0;
  /// A new iterator over the lists; the caller deletes it.
  virtual KrRxProtocolReactorListIterator* newIterator() const = 0;
};

/// The service "ProtocolReactorManager".
class KR1ST_API KrRxProtocolReactorManagerFactory : public KrRxService {
  KRRX_DECLARE_MEMBERS(KrRxProtocolReactorManagerFactory);

 public:
  /// The manager kept in cls's descriptor, made on first request; null for null.
  virtual KrRxProtocolReactorManager* createReactorManager(KrRxClass* cls) const = 0;
};
