#pragma once
/// @file
/// The root of every runtime object, and the per-class run-time type members
/// that each class of the runtime (and of any module) carries.

#include "krerrorstatus.h"
#include "krexport.h"
#include "krheap.h"

class KrRxClass;

namespace KrRx {

/// Result of comparedTo.
enum Ordering : int { kLessThan = -1, kEqual = 0, kGreaterThan = 1, kNotOrderable = 2 };

}  // namespace KrRx

/// Declares the run-time type members of CLASS: the cached descriptor
/// pointer, desc(), isA(), the two cast() overloads and rxInit().
#define KRRX_DECLARE_MEMBERS(CLASS)                                                \
 protected:                                                                        \
  static KrRxClass* gpDesc;                                                        \
                                                                                   \
 public:                                                                           \
  static KrRxClass* desc();                                                        \
  KR1ST_INLINE static CLASS* cast(KrRxObject* obj) {                               \
    return obj && obj->isKindOf(desc()) ? static_cast<CLASS*>(obj) : nullptr;      \
  }                                                                                \
  KR1ST_INLINE static const CLASS* cast(const KrRxObject* obj) {                   \
    return obj && obj->isKindOf(desc()) ? static_cast<const CLASS*>(obj) : nullptr; \
  }                                                                                \
  KrRxClass* isA() const override;                                                 \
  static void rxInit()

/// Defines desc() and isA() of CLASS: the descriptor is looked up by name in
/// the class dictionary once and then kept.
#define KRRX_DEFINE_MEMBERS(CLASS)                                              \
  KrRxClass* CLASS::gpDesc = nullptr;                                           \
  KrRxClass* CLASS::desc() {                                                    \
    if (!gpDesc) gpDesc = krrxFindKrRxClass(L## #CLASS);                        \
    return gpDesc;                                                              \
  }                                                                             \
  KrRxClass* CLASS::isA() const { return gpDesc ? gpDesc : desc(); }

/// rxInit() for a module's class: creates the descriptor on CLASS's name, its
/// parent's name and a pseudo-constructor (none for abstract classes).
#define KRRX_NO_CONS_DEFINE_MEMBERS(CLASS, PARENT)                              \
  KRRX_DEFINE_MEMBERS(CLASS)                                                    \
  void CLASS::rxInit() { gpDesc = newKrRxClass(L## #CLASS, L## #PARENT, 0, nullptr, nullptr, nullptr); }

/// rxInit() and the run-time type members of a module's class that has a default constructor.
#define KRRX_CONS_DEFINE_MEMBERS(CLASS, PARENT)                                 \
  KRRX_DEFINE_MEMBERS(CLASS)                                                    \
  static KrRxObject* CLASS##PseudoConstructor() { return new CLASS(); }         \
  void CLASS::rxInit() {                                                        \
    gpDesc = newKrRxClass(L## #CLASS, L## #PARENT, 0, CLASS##PseudoConstructor, \
                          nullptr, nullptr);                                    \
  }

/// The root class. No data; everything is reached through virtual operations
/// (slot order fixed: destructor, isA, clone, copyFrom, isEqualTo, comparedTo,
/// subQueryX).
class KR1ST_API KrRxObject : public KrHeapOperators {
 public:
  virtual ~KrRxObject();
  /// The descriptor of this object's class.
  virtual KrRxClass* isA() const;
  /// A new object of the same class holding a copy of this one, or null.
  virtual KrRxObject* clone() const;
  /// 0 on success; the root version reports an unimplemented copy and gives 1.
  virtual Kesu::ErrorStatus copyFrom(const KrRxObject* other);
  /// Root version: identity.
  virtual bool isEqualTo(const KrRxObject* other) const;
  /// Root version: always kNotOrderable.
  virtual KrRx::Ordering comparedTo(const KrRxObject* other) const;

 protected:
  /// The class-based protocol lookup: one index into the class's table.
  virtual KrRxObject* subQueryX(const KrRxClass* protocolClass) const;

 public:
  /// True when this object's class is cls or derives from it; false for null.
  bool isKindOf(const KrRxClass* cls) const;
  /// The protocol object for this object's class; reports a fatal error when none.
  KrRxObject* x(const KrRxClass* protocolClass) const;
  /// The protocol object for this object's class (through any active overrule), or null.
  inline KrRxObject* queryX(const KrRxClass* protocolClass) const;

  /// The descriptor of this class; cast gives obj when it is a kind of this class, else null.
  ///@{
  static KrRxClass* desc();
  static KrRxObject* cast(KrRxObject* obj) { return obj; }
  static const KrRxObject* cast(const KrRxObject* obj) { return obj; }
  ///@}

  friend class KrRxQueryXOverrule;

 private:
  /// queryX while overruling is on: the first applicable query overrule, else the plain lookup.
  KrRxObject* overruledQueryX(const KrRxClass* protocolClass) const;
};

/// The descriptor of the class of that name in the class dictionary, or null.
KR1ST_API KrRxClass* krrxFindKrRxClass(const wchar_t* name);

/// queryX reads the overrule switch inline, so its definition comes with the overrules.
#include "krrxoverrule.h"
