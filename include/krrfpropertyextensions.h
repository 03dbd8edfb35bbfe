#pragma once
/// @file
/// Protocol extensions that further describe a property. They are attached to
/// the class of the property object (not to the class the property describes),
/// so they are found with property->queryX(...). Each operation is handed the
/// property, so one extension object may serve many properties.
///
/// @code
///   KrRxObject* x = property->queryX(KrRfPropertyRangePE::desc());
///   const KrRfValue *low, *high; bool lowIn, highIn;
///   if (x && static_cast<KrRfPropertyRangePE*>(x)->getRange(property, door, low, lowIn, high, highIn))
///     rangeCheck->isInRange(value, low, lowIn, high, highIn);
/// @endcode

#include "krrfsymbol.h"

class KrRfValue;

/// The property's value is one of an enumerated set of values, each with a
/// text for a person. Indices run from 0 to count() - 1.
class KR1ST_API KrRfPropertyEnumPE : public KrRxObject {
  KRRX_DECLARE_MEMBERS(KrRfPropertyEnumPE);

 public:
  /// The number of enumerated values.
  virtual int count(const KrRfProperty* p) const = 0;
  /// Writes the value at index into value; 24 for an index out of range.
  virtual Kesu::ErrorStatus getValueAt(const KrRfProperty* p, int index, KrRxObject* value) const = 0;
  /// The text shown for the value at index, or null out of range.
  virtual const wchar_t* displayNameAt(const KrRfProperty* p, int index) const = 0;
  /// True when only the enumerated values are allowed, false when they are suggestions.
  virtual bool isExclusive(const KrRfProperty* p) const = 0;
  /// The index of the enumerated value equal to value, or -1.
  virtual int indexOf(const KrRfProperty* p, const KrRxObject* value) const = 0;
};

/// The property's value has limits: exactly what KrRfRangeCheckPE::isInRange
/// and checkRange take.
class KR1ST_API KrRfPropertyRangePE : public KrRxObject {
  KRRX_DECLARE_MEMBERS(KrRfPropertyRangePE);

 public:
  /// Gives the limits on object (null for an open side) and whether each
  /// limit itself is allowed; false when the property has no range there.
  /// The limits stay owned by the extension.
  virtual bool getRange(const KrRfProperty* p, const KrRxObject* object, const KrRfValue*& lower,
                        bool& lowerInclusive, const KrRfValue*& upper, bool& upperInclusive) const = 0;
};

/// The property's value on an object may be derived from another object, the
/// source (as a door's colour from its layer's).
class KR1ST_API KrRfPropertyDerivationPE : public KrRxObject {
  KRRX_DECLARE_MEMBERS(KrRfPropertyDerivationPE);

 public:
  /// True when p's value on object can be derived at all.
  virtual bool isDerivable(const KrRfProperty* p, const KrRxObject* object) const = 0;
  /// The class that sources of p must be a kind of.
  virtual KrRxClass* sourceClass(const KrRfProperty* p) const = 0;
  /// Makes p's value on object derived (true) or its own (false).
  virtual Kesu::ErrorStatus setDerived(const KrRfProperty* p, KrRxObject* object, bool derived) const = 0;
  /// True when p's value on object is derived; source receives the object it derives from.
  virtual bool isDerived(const KrRfProperty* p, const KrRxObject* object, const KrRxObject*& source) const = 0;
  /// Sets the object that p's value on object derives from.
  virtual Kesu::ErrorStatus setSource(const KrRfProperty* p, KrRxObject* object, const KrRxObject* source) const = 0;
  /// Computes p's derived value on object from source into value.
  virtual Kesu::ErrorStatus getDerivedValue(const KrRfProperty* p, const KrRxObject* object,
                                            const KrRxObject* source, KrRxObject* value) const = 0;
};

/// Details of an array-valued property (one whose value is a KrRfArray).
class KR1ST_API KrRfArrayPropertyDetailsPE : public KrRxObject {
  KRRX_DECLARE_MEMBERS(KrRfArrayPropertyDetailsPE);

 public:
  /// The lengths the array may take on object; minLength == maxLength for a
  /// fixed length, maxLength -1 for no upper bound.
  virtual Kesu::ErrorStatus getLengthLimits(const KrRfProperty* p, const KrRxObject* object, int& minLength,
                                            int& maxLength) const = 0;
};

/// Derivation of single elements of an array-valued property: the operations
/// of KrRfPropertyDerivationPE, each for the element at index.
class KR1ST_API KrRfArrayPropertyDerivationPE : public KrRxObject {
  KRRX_DECLARE_MEMBERS(KrRfArrayPropertyDerivationPE);

 public:
  /// Whether element index of property p of object can take its value from a source object, and of which class that source is.
  ///@{
  virtual bool isDerivable(const KrRfProperty* p, const KrRxObject* object, int index) const = 0;
  virtual KrRxClass* sourceClass(const KrRfProperty* p) const = 0;
  ///@}
  /// Marks element index as derived or not; tells whether it is and from which source; sets the source; reads the value the source gives.
  ///@{
  virtual Kesu::ErrorStatus setDerived(const KrRfProperty* p, KrRxObject* object, int index, bool derived) const = 0;
  virtual bool isDerived(const KrRfProperty* p, const KrRxObject* object, int index,
                         const KrRxObject*& source) const = 0;
  virtual Kesu::ErrorStatus setSource(const KrRfProperty* p, KrRxObject* object, int index,
                                      const KrRxObject* source) const = 0;
  virtual Kesu::ErrorStatus getDerivedValue(const KrRfProperty* p, const KrRxObject* object, int index,
                                            const KrRxObject* source, KrRxObject* value) const = 0;
  ///@}
};
