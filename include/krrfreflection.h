#pragma once
/// @file
/// The reflection service "ReflectionServices" and the per-class reflection
/// extension: each class that exposes symbols carries one KrRfReflectionPE, a
/// dictionary of its own symbols by name; a symbol iterator walks them
/// together with those of the class's ancestors, root-most class first.
///
/// @code
///   KrRfReflectionPE* pe = krrfReflectionService()->reflectionPE(Door::desc(), true);
///   pe->addSymbol(widthProperty);
///   KrRfSymbolIterator* it = pe->newSymbolIterator(nullptr);
///   for (; !it->done(); it->next()) print(it->symbol()->name());
///   delete it;
/// @endcode

#include "krrfsymbol.h"
#include "krrxiterator.h"
#include "krrxservice.h"

class KrRfReflectionPE;
class KrRfSymbolIterator;

/// Told when symbols come and go on any class. Reactors registered first hear
/// additions first and removals last.
class KR1ST_API KrRfReflectionReactor : public KrRxObject {
  KRRX_DECLARE_MEMBERS(KrRfReflectionReactor);

 public:
  /// A symbol joined, or is about to leave, a class's reflection extension.
  ///@{
  virtual void symbolAdded(KrRfSymbol* symbol) = 0;
  virtual void symbolRemoved(KrRfSymbol* symbol) = 0;
  ///@}
};

/// The service "ReflectionServices": each class's reflection extension, and properties by GUID.
class KR1ST_API KrRfReflectionService : public KrRxService {
  KRRX_DECLARE_MEMBERS(KrRfReflectionService);

 public:
  /// cls's own extension (not one it inherits); with create, one is made and
  /// attached when there is none. Null for a null class or when absent.
  virtual KrRfReflectionPE* reflectionPE(KrRxClass* cls, bool create) = 0;
  /// cls's own extension; when it has none, the KrRfReflectionProviderPR
  /// reactors attached to cls are asked in order to supply its symbols until
  /// one has. Null when none did.
  virtual KrRfReflectionPE* requestReflectionPE(KrRxClass* cls) = 0;
  /// Appends reactor (not owned) to the reactors told of symbol changes.
  virtual void addReactor(KrRfReflectionReactor* reactor) = 0;
  /// Removes reactor's first entry; an absent reactor changes nothing.
  virtual void removeReactor(KrRfReflectionReactor* reactor) = 0;
};

/// The service "ReflectionServices" from the service dictionary, or null.
KR1ST_API KrRfReflectionService* krrfReflectionService();

/// The symbols of one class, by name. Made by the service; it destroys itself
/// when its last symbol is removed. Symbols are not owned: a module removes
/// (and deletes) its symbols before it deletes its class.
class KR1ST_API KrRfReflectionPE : public KrRxObject {
  KRRX_DECLARE_MEMBERS(KrRfReflectionPE);

 public:
  /// The class described.
  virtual KrRxClass* ownerClass() const = 0;
  /// Files symbol under its name: 3 when the name does not begin with a..z
  /// or '_', 23 when the class has a symbol of that name. Reactors hear of it.
  virtual Kesu::ErrorStatus addSymbol(KrRfSymbol* symbol) = 0;
  /// Takes the symbol of symbol's name out (22 when there is none); reactors
  /// hear of it first. Removing the last symbol destroys this extension.
  virtual Kesu::ErrorStatus removeSymbol(KrRfSymbol* symbol) = 0;
  /// A new iterator (the caller deletes it): with null, over the symbols of
  /// the owner class and its ancestors, root-most first; with a class that is
  /// the owner class or one of its ancestors, over that class's own symbols;
  /// otherwise over nothing.
  virtual KrRfSymbolIterator* newSymbolIterator(const KrRxClass* cls) const = 0;
  /// The symbol of that name on the owner class, else on its nearest
  /// ancestor that has one; null when none has.
  virtual KrRfSymbol* findSymbol(const wchar_t* name) const = 0;
  /// The owner class's own symbol of that name, or null.
  virtual KrRfSymbol* symbolAt(const wchar_t* name) const = 0;

  /// The first symbol, root-most class first, whose GUID equals guid; or null.
  KrRfSymbol* symbolAt(const GUID& guid) const;
  /// As symbolAt, null also when the symbol is not a property.
  KrRfProperty* propertyAt(const wchar_t* name) const;
  /// The property of that GUID among the class's own symbols, or null.
  KrRfProperty* propertyAt(const GUID& guid) const;
};

/// Walks the symbols of a class and its ancestors, root-most class first.
class KR1ST_API KrRfSymbolIterator : public KrRxIterator {
  KRRX_DECLARE_MEMBERS(KrRfSymbolIterator);

 public:
  /// The class whose symbol is current, or null when done.
  virtual KrRxClass* currentClass() const = 0;

  /// The current symbol, or null when done.
  KrRfSymbol* symbol() const { return static_cast<KrRfSymbol*>(object()); }
};
