#pragma once
/// @file
/// Reflected values: small runtime objects that each hold one plain value (a
/// number, a flag, a character), so that code knowing only KrRxObject can
/// read, write, compare, copy and convert it. Properties hand their values in
/// and out as such objects; dates, ratios and currency build on KrVtFloat64.
///
/// @code
///   KrVtFloat64 length(12.75);
///   int whole = 0;
///   if (length.toInt32(whole) == Kesu::eOk) ...        // whole == 12
///   KrVtInt8 small;
///   small.fromDouble(300.0);                            // eOutOfRange, stays 0
///
/// @endcode
/// The family, from the abstract root to the registered classes:
/// @code
///   KrRfValue > KrRfNumber                     abstract, registered
///   KrRfValueAbstractT<T, Base>                typed access through addressOf()
///   KrRfValueBaseT<T, Base>                    stores the T right behind the object header
///   KrRfNumberT<T>                             numeric T: the twenty conversions
///   KrRfValueI<T>                              intermediate layer, no operation of its own
///   KrRfValueT<T>                              the concrete class, registered as KrVt<Kind>
/// @endcode
/// Copying and comparing between unlike values reinterprets the other's
/// stored bytes: convert through to.../from... when the kinds differ.

#include <type_traits>

#include "krrxclass.h"
#include "krrxobject.h"

/// Registers a value class (or value array class) under name: fatal
/// "<name>::rxInit() called twice!" when the class dictionary holds it already.
KR1ST_API KrRxClass* krrfNewValueClass(const wchar_t* name, const wchar_t* parentName,
                                       KrRxPseudoConstructor pseudoConstructor);

/// Any reflected value.
class KR1ST_API KrRfValue : public KrRxObject {
  KRRX_DECLARE_MEMBERS(KrRfValue);

 public:
  ~KrRfValue() override;

  /// Size of the held value in bytes.
  virtual unsigned int sizeOf() const = 0;
  /// Where the held value lies.
  ///@{
  virtual void* addressOf() = 0;
  virtual const void* addressOf() const = 0;
  ///@}
};

/// A value that converts to and from the ten numeric kinds. Every operation
/// answers eOk, or eOutOfRange (151) leaving its target untouched when the
/// value does not fit the destination.
class KR1ST_API KrRfNumber : public KrRfValue {
  KRRX_DECLARE_MEMBERS(KrRfNumber);

 public:
  ~KrRfNumber() override;

  /// The value converted into the destination type; eOutOfRange when it does not fit (value unchanged).
  ///@{
  virtual Kesu::ErrorStatus toUInt8(unsigned char& value) const = 0;
  virtual Kesu::ErrorStatus toInt8(signed char& value) const = 0;
  virtual Kesu::ErrorStatus toUInt16(unsigned short& value) const = 0;
  virtual Kesu::ErrorStatus toInt16(short& value) const = 0;
  virtual Kesu::ErrorStatus toUInt32(unsigned int& value) const = 0;
  virtual Kesu::ErrorStatus toInt32(int& value) const = 0;
  virtual Kesu::ErrorStatus toUInt64(unsigned __int64& value) const = 0;
  virtual Kesu::ErrorStatus toInt64(__int64& value) const = 0;
  virtual Kesu::ErrorStatus toFloat(float& value) const = 0;
  virtual Kesu::ErrorStatus toDouble(double& value) const = 0;
  ///@}

  /// Sets the value from the source type; eOutOfRange when it does not fit (value unchanged).
  ///@{
  virtual Kesu::ErrorStatus fromUInt8(unsigned char value) = 0;
  virtual Kesu::ErrorStatus fromInt8(signed char value) = 0;
  virtual Kesu::ErrorStatus fromUInt16(unsigned short value) = 0;
  virtual Kesu::ErrorStatus fromInt16(short value) = 0;
  virtual Kesu::ErrorStatus fromUInt32(unsigned int value) = 0;
  virtual Kesu::ErrorStatus fromInt32(int value) = 0;
  virtual Kesu::ErrorStatus fromUInt64(unsigned __int64 value) = 0;
  virtual Kesu::ErrorStatus fromInt64(__int64 value) = 0;
  virtual Kesu::ErrorStatus fromFloat(float value) = 0;
  virtual Kesu::ErrorStatus fromDouble(double value) = 0;
  ///@}

  /// One step up or down: 1 for integers, one unit in the last place for floats.
  virtual Kesu::ErrorStatus increment() = 0;
  /// One step down; eOutOfRange at the type's minimum.
  virtual Kesu::ErrorStatus decrement() = 0;
};

/// Typed access to a value that a subclass may keep anywhere (addressOf()).
template <typename T, typename Base>
class KR1ST_API KrRfValueAbstractT : public Base {
 public:
  /// The abstract layer cannot copy: eNotSupported.
  Kesu::ErrorStatus copyFrom(const KrRxObject* other) override;
  /// The abstract layer knows no equality: false.
  bool isEqualTo(const KrRxObject* other) const override;
  /// kNotOrderable unless other is a Base; else orders this value against the
  /// other's stored T (kNotOrderable when a NaN makes them unordered).
  KrRx::Ordering comparedTo(const KrRxObject* other) const override;
  /// The size of T.
  unsigned int sizeOf() const override;

  KR1ST_INLINE T& value() { return *static_cast<T*>(this->addressOf()); }  ///< the held T
  KR1ST_INLINE const T& value() const { return *static_cast<const T*>(this->addressOf()); }  ///< the held T, read only
  KR1ST_INLINE operator T&() { return value(); }  ///< the held T
  KR1ST_INLINE operator const T&() const { return value(); }  ///< the held T, read only
  KR1ST_INLINE T* operator->() { return &value(); }  ///< the held T's members
  KR1ST_INLINE const T* operator->() const { return &value(); }  ///< the held T's members, read only
};

/// Holds the T as the one field right behind the object header.
template <typename T, typename Base>
class KR1ST_API KrRfValueBaseT : public KrRfValueAbstractT<T, Base> {
 public:
  KR1ST_INLINE KrRfValueBaseT() : mValue() {}
  KR1ST_INLINE KrRfValueBaseT(const T& value) : mValue(value) {}  ///< holds value
  KR1ST_INLINE KrRfValueBaseT(const KrRfValueBaseT& other) = default;  ///< holds other's value

  /// eInvalidInput unless other is a Base; else takes the other's stored T.
  Kesu::ErrorStatus copyFrom(const KrRxObject* other) override;
  /// False unless other is a Base; else == on the other's stored T.
  bool isEqualTo(const KrRxObject* other) const override;
  void* addressOf() override;  ///< where the held T lies
  const void* addressOf() const override;  ///< where the held T lies

  KR1ST_INLINE T& value() { return mValue; }  ///< the held T
  KR1ST_INLINE const T& value() const { return mValue; }  ///< the held T, read only
  KR1ST_INLINE operator T&() { return mValue; }  ///< the held T
  KR1ST_INLINE operator const T&() const { return mValue; }  ///< the held T, read only
  KR1ST_INLINE T* operator->() { return &mValue; }  ///< the held T's members
  KR1ST_INLINE const T* operator->() const { return &mValue; }  ///< the held T's members, read only
  KR1ST_INLINE T& operator=(const T& value) { return mValue = value; }  ///< sets the held T
  KR1ST_INLINE T& operator=(const KrRfValueBaseT& other) { return mValue = other.mValue; }  ///< takes other's held T

 protected:
  /// The held value, right behind the object header.
  T mValue;
};

/// The conversions of a numeric T: the source is tested against the
/// destination's lowest and highest value (a float bound for an integer as
/// truncated toward zero, so 255.9 fits a byte), then converted as C++
/// converts. A NaN passes every test, infinities none (not even into their
/// own type). Doubles reach 64-bit integers up to 2^63 and 2^64 inclusive.
template <typename T>
class KR1ST_API KrRfNumberT : public KrRfValueBaseT<T, KrRfNumber> {
 public:
  using KrRfValueBaseT<T, KrRfNumber>::KrRfValueBaseT;
  using KrRfValueBaseT<T, KrRfNumber>::operator=;

  /// The conversions by the rules above.
  ///@{
  Kesu::ErrorStatus toUInt8(unsigned char& value) const override;
  Kesu::ErrorStatus toInt8(signed char& value) const override;
  Kesu::ErrorStatus toUInt16(unsigned short& value) const override;
  Kesu::ErrorStatus toInt16(short& value) const override;
  Kesu::ErrorStatus toUInt32(unsigned int& value) const override;
  Kesu::ErrorStatus toInt32(int& value) const override;
  Kesu::ErrorStatus toUInt64(unsigned __int64& value) const override;
  Kesu::ErrorStatus toInt64(__int64& value) const override;
  Kesu::ErrorStatus toFloat(float& value) const override;
  Kesu::ErrorStatus toDouble(double& value) const override;

  Kesu::ErrorStatus fromUInt8(unsigned char value) override;
  Kesu::ErrorStatus fromInt8(signed char value) override;
  Kesu::ErrorStatus fromUInt16(unsigned short value) override;
  Kesu::ErrorStatus fromInt16(short value) override;
  Kesu::ErrorStatus fromUInt32(unsigned int value) override;
  Kesu::ErrorStatus fromInt32(int value) override;
  Kesu::ErrorStatus fromUInt64(unsigned __int64 value) override;
  Kesu::ErrorStatus fromInt64(__int64 value) override;
  Kesu::ErrorStatus fromFloat(float value) override;
  Kesu::ErrorStatus fromDouble(double value) override;
  ///@}

  /// eOutOfRange at the type's maximum (increment) or minimum (decrement);
  /// for floats also at infinities and NaN.
  Kesu::ErrorStatus increment() override;
  /// One step down, by the rules above.
  Kesu::ErrorStatus decrement() override;
};

/// bool and wchar_t are values but not numbers.
template <typename T>
using KrRfValueLayerT = typename std::conditional<std::is_same<T, bool>::value || std::is_same<T, wchar_t>::value,
                                                  KrRfValueBaseT<T, KrRfValue>, KrRfNumberT<T>>::type;

template <typename T>
/// The value layer of T: a number layer for numeric types, a plain value layer otherwise.
class KR1ST_API KrRfValueI : public KrRfValueLayerT<T> {
  typedef KrRfValueLayerT<T> Layer;

 public:
  using Layer::Layer;
  using Layer::operator=;
};

/// The concrete value class of T, registered under its KrVt name.
template <typename T>
class KR1ST_API KrRfValueT : public KrRfValueI<T> {
  KRRX_DECLARE_MEMBERS(KrRfValueT);

 public:
  using KrRfValueI<T>::KrRfValueI;
  using KrRfValueI<T>::operator=;
};

/// The twelve value classes of the runtime, one per field type.
///@{
typedef KrRfValueT<bool> KrVtBool;
typedef KrRfValueT<signed char> KrVtInt8;
typedef KrRfValueT<short> KrVtInt16;
typedef KrRfValueT<int> KrVtInt32;
typedef KrRfValueT<__int64> KrVtInt64;
typedef KrRfValueT<unsigned char> KrVtUInt8;
typedef KrRfValueT<unsigned short> KrVtUInt16;
typedef KrRfValueT<unsigned int> KrVtUInt32;
typedef KrRfValueT<unsigned __int64> KrVtUInt64;
typedef KrRfValueT<float> KrVtFloat32;
typedef KrRfValueT<double> KrVtFloat64;
typedef KrRfValueT<wchar_t> KrVtChar;
///@}

/// A value object is its header and the one field behind it.
static_assert(sizeof(KrVtFloat64) == sizeof(void*) + sizeof(double), "one field behind the header");
static_assert(sizeof(KrVtInt64) == sizeof(void*) + sizeof(__int64), "one field behind the header");
static_assert(sizeof(KrVtInt32) == sizeof(KrVtBool), "no field beside the value");

/// The twelve classes and their layers live in kr1st20.dll.
#define KRRF_EXTERN_VALUE(T, KIND)                          \
  extern template class KrRfValueAbstractT<T, KIND>;        \
  extern template class KrRfValueBaseT<T, KIND>;            \
  extern template class KrRfValueI<T>;                      \
  extern template class KrRfValueT<T>;
/// The number classes of T and their layers live in kr1st20.dll.
#define KRRF_EXTERN_NUMBER(T) KRRF_EXTERN_VALUE(T, KrRfNumber) extern template class KrRfNumberT<T>;
KRRF_EXTERN_VALUE(bool, KrRfValue)
KRRF_EXTERN_VALUE(wchar_t, KrRfValue)
KRRF_EXTERN_NUMBER(signed char)
KRRF_EXTERN_NUMBER(short)
KRRF_EXTERN_NUMBER(int)
KRRF_EXTERN_NUMBER(__int64)
KRRF_EXTERN_NUMBER(unsigned char)
KRRF_EXTERN_NUMBER(unsigned short)
KRRF_EXTERN_NUMBER(unsigned int)
KRRF_EXTERN_NUMBER(unsigned __int64)
KRRF_EXTERN_NUMBER(float)
KRRF_EXTERN_NUMBER(double)
#undef KRRF_EXTERN_NUMBER
#undef KRRF_EXTERN_VALUE
