#pragma once
/// @file
/// The plain protocol lookup, inline. KrRxObject::queryX uses it when the
/// object's class keeps KrRxObject's own subQueryX, so that the common lookup
/// costs one virtual call (isA) instead of two. It reads the class
/// implementation and its protocol table in the layout the object model
/// fixes for all of 20.x; the library pins that layout against these views.
///
/// @code
///   const KrRxObject* shape = ...;
///   if (KrRxProtocolLookup::keepsDefaultSubQueryX(shape))
///     pe = KrRxProtocolLookup::entry(shape->isA(), MyPE::desc());   // what queryX does for you
/// @endcode

#include <cstdint>

class KrRxObject;
class KrRxClass;

/// KrRxObject::subQueryX under the address this binary's vtables hold: the
/// function itself inside the library, its import thunk in a host or module.
extern "C" KrRxObject* krrxSubQueryXHere(const KrRxObject* object, const KrRxClass* protocolClass) __asm__(
    "_ZNK10KrRxObject9subQueryXEPK9KrRxClass");
#if !defined(KR1ST_BUILDING)
/// The library's own address of KrRxObject::subQueryX, which the vtables of
/// the library's classes hold.
extern "C" void* const krrxSubQueryXInLibrary __asm__("__imp__ZNK10KrRxObject9subQueryXEPK9KrRxClass");
#endif

/// The views (they may alias the library's own types) and the lookup itself.
namespace KrRxProtocolLookup {

/// A class's protocol-object table: its owner, then its entries as a growable array.
struct __attribute__((may_alias)) Table {
  const void* owner;            ///< the class implementation that owns the table
  KrRxObject* const* entries;   ///< entry i answers the protocol class in slot i
  int32_t capacity;             ///< entries allocated
  int32_t count;                ///< entries in use
  int32_t growStep;             ///< the array's grow step
};

/// A class implementation up to its protocol table: the vtable, then the fields in their fixed order.
struct __attribute__((may_alias)) Implementation {
  const void* vtable;               ///< the implementation's virtual destructor
  const void* owner;                ///< the descriptor
  const void* module;               ///< the module current at creation
  uint32_t dictionaryId;            ///< id in the class dictionary
  const wchar_t* name;              ///< class name
  const wchar_t* parentName;        ///< parent's name
  const void* parent;               ///< parent descriptor
  const void* descendants;          ///< direct descendants
  const void* pseudoConstructor;    ///< makes a default instance
  const void* memberBuilder;        ///< reflection's member callback
  const void* memberBuilderData;    ///< its argument
  int32_t protocolIndex;            ///< the class's slot when used as a protocol class; 0 none yet
  const Table* peTable;             ///< the lookup table, shared with the parent until an own attachment
};

/// A descriptor: its vtable, then its one member, the implementation.
struct __attribute__((may_alias)) Descriptor {
  const void* vtable;                  ///< KrRxClass's vtable
  const Implementation* implementation;  ///< the descriptor's implementation
};

/// The virtual slot of subQueryX: after the two destructor entries, isA,
/// clone, copyFrom, isEqualTo and comparedTo.
constexpr int kSubQueryXSlot = 7;

/// cls's table entry for protocolClass, or null (null protocol class, no
/// slot yet, slot beyond the table): exactly KrRxObject::subQueryX.
inline KrRxObject* entry(const KrRxClass* cls, const KrRxClass* protocolClass) {
  if (!protocolClass) return nullptr;
  int32_t index = reinterpret_cast<const Descriptor*>(protocolClass)->implementation->protocolIndex;
  const Table* table = reinterpret_cast<const Descriptor*>(cls)->implementation->peTable;
  return table && uint32_t(index) < uint32_t(table->count) ? table->entries[index] : nullptr;
}

/// True when object's class keeps KrRxObject::subQueryX, as seen from this
/// binary or from the library. False for an override, and for a class of
/// another module that keeps it: queryX then calls subQueryX, which answers the same.
inline bool keepsDefaultSubQueryX(const KrRxObject* object) {
  const void* slot = (*reinterpret_cast<const void* const* const*>(object))[kSubQueryXSlot];
#if defined(KR1ST_BUILDING)
  return slot == reinterpret_cast<const void*>(&krrxSubQueryXHere);
#else
  return slot == reinterpret_cast<const void*>(&krrxSubQueryXHere) || slot == krrxSubQueryXInLibrary;
#endif
}

}  // namespace KrRxProtocolLookup
