#pragma once
/// @file
/// Overrules: a module changes how objects of an existing class behave
/// without deriving from it. It registers an overrule object on the class;
/// an overrulable operation asks for the first applicable overrule of its
/// kind and lets it act. The one overrulable operation here is queryX.
///
/// @code
///   class MyQueryX : public KrRxQueryXOverrule {   // also add the KRRX_ members
///     bool isApplicable(const KrRxObject* o) const override { return isSpecial(o); }
///     KrRxObject* queryX(const KrRxObject* o, const KrRxClass* p) const override { return &myPE; }
///   };
///   KrRxOverrule::addOverrule(MyShape::desc(), &myQueryX, false);
///   KrRxOverrule::setIsOverruling(true);     // master switch, off at start
/// @endcode

#include "krerrorstatus.h"
#include "krrxobject.h"
#include "krrxprotocollookup.h"

template <typename T>
struct KrRxGrowArray;

/// The base of overrules: attached to a class, it takes over a protocol's operations for the objects it applies to.
class KR1ST_API KrRxOverruleBase : public KrRxObject {
  KRRX_DECLARE_MEMBERS(KrRxOverruleBase);

 public:
  /// Whether this overrule wants to act for object.
  virtual bool isApplicable(const KrRxObject* object) const = 0;

 private:
  void* mpReserved = nullptr;  ///< kept for the layout; unused by the library
};

/// Registration and the master switch. An overrule registered on a class
/// acts for objects of that class and of every class derived from it.
class KR1ST_API KrRxOverrule : public KrRxOverruleBase {
  KRRX_DECLARE_MEMBERS(KrRxOverrule);

 public:
  /// 0; 23 (eDuplicateKey) when overrule is registered on cls already; 3
  /// (eInvalidInput) for a null class or overrule. The newest registration is
  /// consulted first; with addAtLast it is consulted after all others.
  static Kesu::ErrorStatus addOverrule(KrRxClass* cls, KrRxOverrule* overrule, bool addAtLast = false);
  /// 0; 22 (eKeyNotFound) when cls has no list of its own or overrule is not in it.
  static Kesu::ErrorStatus removeOverrule(KrRxClass* cls, KrRxOverrule* overrule);
  /// The process-wide switch: overrules act only while it is on.
  ///@{
  static void setIsOverruling(bool isOverruling);
  static bool isOverruling();
  ///@}
  /// True exactly when the switch is on and an overrule of overruleClass applies to object.
  static bool hasOverrule(const KrRxObject* object, KrRxClass* overruleClass);
};

/// Overrules the protocol lookup KrRxObject::queryX.
class KR1ST_API KrRxQueryXOverrule : public KrRxOverrule {
  KRRX_DECLARE_MEMBERS(KrRxQueryXOverrule);

 public:
  /// The protocol object that object->queryX(protocolClass) answers. This
  /// version gives the plain class-based lookup.
  virtual KrRxObject* queryX(const KrRxObject* object, const KrRxClass* protocolClass) const;
};

/// The overrule list of one class, attached to it as its own protocol
/// extension for the protocol class KrRxOverruleInternals (so subclasses
/// inherit it), and the static operations behind KrRxOverrule.
class KR1ST_API KrRxOverruleInternals : public KrRxObject {
  KRRX_DECLARE_MEMBERS(KrRxOverruleInternals);

 public:
  KrRxOverruleInternals();
  ~KrRxOverruleInternals() override;

  /// The work behind KrRxOverrule's functions of the same names.
  ///@{
  static Kesu::ErrorStatus addOverrule(KrRxClass* cls, KrRxOverrule* overrule, bool addAtLast);
  static Kesu::ErrorStatus removeOverrule(KrRxClass* cls, KrRxOverrule* overrule);
  static bool hasOverrule(const KrRxObject* object, KrRxClass* overruleClass);
  ///@}
  /// The overrule of overruleClass that is to act for object, or null: the
  /// lists of object's class and its ancestors, most derived first, each
  /// from its newest entry back.
  static KrRxOverrule* queryOverrule(const KrRxObject* object, KrRxClass* overruleClass);

  /// The master switch; false at start.
  static bool mIsOverruling;

 private:
  static KrRxOverruleInternals* ownListOf(KrRxClass* cls);
  Kesu::ErrorStatus addOverrule(KrRxOverrule* overrule, bool addAtLast);
  Kesu::ErrorStatus removeOverrule(KrRxOverrule* overrule);
  KrRxOverrule* overrule(const KrRxObject* object, const KrRxClass* overruleClass) const;
  int indexOf(const KrRxOverrule* overrule) const;

  KrRxGrowArray<KrRxOverrule*>* mpOverrules;
};

// With the switch on the first applicable query overrule decides; with it
// off the object's subQueryX answers, looked up inline when the class keeps
// the root's. Always inlined: the library also exports an out-of-line copy
// under this name for modules built when queryX was not inline, and no other
// copy may be emitted beside it.
__attribute__((always_inline)) inline KrRxObject* KrRxObject::queryX(const KrRxClass* protocolClass) const {
  if (KrRxOverruleInternals::mIsOverruling) return overruledQueryX(protocolClass);
  if (KrRxProtocolLookup::keepsDefaultSubQueryX(this)) return KrRxProtocolLookup::entry(isA(), protocolClass);
  return subQueryX(protocolClass);
}
