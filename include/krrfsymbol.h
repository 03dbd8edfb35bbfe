#pragma once
/// @file
/// Symbols and properties: the named, GUID-identified members through which a
/// module describes its classes. A property is a symbol whose value can be
/// read from and written to an object, handed in and out as a reflected value.
///
/// @code
///   class WidthProperty : public KrRfProperty { ... };   // module's own
///   KrRfReflectionService* rs = krrfReflectionService();
///   rs->reflectionPE(Door::desc(), true)->addSymbol(new WidthProperty());
///   KrVtFloat64 width;
///   KrRfProperty* p = rs->reflectionPE(Door::desc(), false)->propertyAt(L"width");
///   p->getValue(door, &width);
/// @endcode

#include <guiddef.h>

#include "krrxobject.h"

/// Opaque context that callers hand through to symbol filters unchanged.
class KrRxReflectionContext;

/// A named member that reflection describes: its identity, names and value class.
class KR1ST_API KrRfSymbol : public KrRxObject {
  KRRX_DECLARE_MEMBERS(KrRfSymbol);

 public:
  /// The class of the symbol's value (for a property, a KrRfValue class), or null.
  virtual KrRxClass* valueType() const = 0;
  /// Writes the symbol's identity into buffer and returns buffer.
  virtual GUID* getGuid(GUID* buffer) const = 0;
  /// The text shown to a person.
  virtual const wchar_t* displayName() const = 0;
  /// The key its class files it under: begins with a..z or '_' (see krrfToCamelCase).
  virtual const wchar_t* name() const = 0;
  /// One line, or null.
  virtual const wchar_t* description() const = 0;

  /// True when both symbols' GUIDs agree in both 64-bit halves.
  bool hasGuid(const GUID& guid) const;
};

/// A symbol whose value can be read from (and perhaps written to) an object as a value object.
class KR1ST_API KrRfProperty : public KrRfSymbol {
  KRRX_DECLARE_MEMBERS(KrRfProperty);

 public:
  /// Writes the property's value on object into value (a reflected value).
  /// This version answers 1 (not readable) and touches nothing.
  virtual Kesu::ErrorStatus getValue(const KrRxObject* object, KrRxObject* value) const;
  /// Sets the property's value on object from value.
  /// This version answers 1 (not writable) and touches nothing.
  virtual Kesu::ErrorStatus setValue(KrRxObject* object, const KrRxObject* value) const;
};

/// The value of property on object as a person sees it: derived through the
/// property's KrRfPropertyDerivationPE when that says it is derived, else
/// getValue's. Passes on the status of whichever answered.
KR1ST_API Kesu::ErrorStatus krrfGetEffectiveValueForObject(const KrRfProperty* property,
                                                          const KrRxObject* object, KrRxObject* value);
