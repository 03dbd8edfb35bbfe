// Reflected values and numbers: the layers of the value family, the range
// rule of the conversions, and the twelve registered instantiations.

#include "krrfvalue.h"

#include <cmath>
#include <limits>

#include "krdiagnostics.h"
#include "krrxdictionary.h"
#include "krrxsystem.h"
#include "runtime/KrRxCoreClass.h"

KRRX_CORE_NO_CONS_DEFINE_MEMBERS(KrRfValue, KrRxObject)
KRRX_CORE_NO_CONS_DEFINE_MEMBERS(KrRfNumber, KrRfValue)

KrRfValue::~KrRfValue() = default;
KrRfNumber::~KrRfNumber() = default;

KrRxClass* krrfNewValueClass(const wchar_t* name, const wchar_t* parentName, KrRxPseudoConstructor pseudoConstructor) {
  if (sysClasses && sysClasses->at(name)) krrx_abort(L"%ls::rxInit() called twice!", name);
  return newKrRxClass(name, parentName, 0, pseudoConstructor, nullptr, nullptr);
}

namespace {

// The other object's stored T, read as this layer's own T whatever kind
// the other value is: the family compares and copies raw bytes.
template <typename T, typename Base>
const T& storedValueOf(const KrRxObject* other) {
  return static_cast<const KrRfValueBaseT<T, Base>*>(static_cast<const Base*>(other))->value();
}

// Whether source lies within Dst's lowest and highest value. A floating
// source is compared in double with the limits as double constants (so the
// highest 64-bit integer becomes 2^63, a NaN passes and an infinity fails,
// even into its own type); integers are compared exactly. Into an integer,
// a float counts as truncated toward zero (255.9 fits a byte as 255): the
// limits then widen to the next integer outward, where that is a double.
template <typename Dst, typename Src>
bool fits(Src source) {
  typedef std::numeric_limits<Dst> Limits;
  if constexpr (std::is_integral<Src>::value && std::is_floating_point<Dst>::value) {
    return true;
  } else if constexpr (std::is_floating_point<Src>::value) {
    constexpr double kHighest = static_cast<double>(Limits::max()), kLowest = static_cast<double>(Limits::lowest());
    constexpr bool kTruncates = std::is_integral<Dst>::value;
    const double value = source;
    bool above = kTruncates && kHighest + 1.0 != kHighest ? value >= kHighest + 1.0 : value > kHighest;
    bool below = kTruncates && kLowest - 1.0 != kLowest ? value <= kLowest - 1.0 : value < kLowest;
    return !(above || below);
  } else {
    if constexpr (std::is_signed<Src>::value) {
      if (source < 0) return Limits::is_signed && static_cast<__int64>(source) >= static_cast<__int64>(Limits::lowest());
    }
    return static_cast<unsigned __int64>(source) <= static_cast<unsigned __int64>(Limits::max());
  }
}

// The language's conversion, except that floats of 2^63 and above reach
// unsigned 64-bit through the signed range.
template <typename Dst, typename Src>
Dst converted(Src source) {
  if constexpr (std::is_same<Dst, unsigned __int64>::value && std::is_floating_point<Src>::value) {
    const double kTwo63 = 9223372036854775808.0;
    if (source >= kTwo63) return static_cast<unsigned __int64>(static_cast<__int64>(source - kTwo63)) + (1ULL << 63);
  }
  return static_cast<Dst>(source);
}

// Both directions of every conversion: eOutOfRange leaves the destination as it was.
template <typename Dst, typename Src>
Kesu::ErrorStatus convert(Src source, Dst& destination) {
  if (!fits<Dst>(source)) return Kesu::eOutOfRange;
  destination = converted<Dst>(source);
  return Kesu::eOk;
}

// The class names of the twelve instantiations.
template <typename T> const wchar_t* valueClassName();
template <> const wchar_t* valueClassName<bool>() { return L"KrVtBool"; }
template <> const wchar_t* valueClassName<signed char>() { return L"KrVtInt8"; }
template <> const wchar_t* valueClassName<short>() { return L"KrVtInt16"; }
template <> const wchar_t* valueClassName<int>() { return L"KrVtInt32"; }
template <> const wchar_t* valueClassName<__int64>() { return L"KrVtInt64"; }
template <> const wchar_t* valueClassName<unsigned char>() { return L"KrVtUInt8"; }
template <> const wchar_t* valueClassName<unsigned short>() { return L"KrVtUInt16"; }
template <> const wchar_t* valueClassName<unsigned int>() { return L"KrVtUInt32"; }
template <> const wchar_t* valueClassName<unsigned __int64>() { return L"KrVtUInt64"; }
template <> const wchar_t* valueClassName<float>() { return L"KrVtFloat32"; }
template <> const wchar_t* valueClassName<double>() { return L"KrVtFloat64"; }
template <> const wchar_t* valueClassName<wchar_t>() { return L"KrVtChar"; }

}  // namespace

// KrRfValueAbstractT

template <typename T, typename Base>
Kesu::ErrorStatus KrRfValueAbstractT<T, Base>::copyFrom(const KrRxObject*) {
  return Kesu::eNotSupported;
}

template <typename T, typename Base>
bool KrRfValueAbstractT<T, Base>::isEqualTo(const KrRxObject*) const {
  return false;
}

template <typename T, typename Base>
KrRx::Ordering KrRfValueAbstractT<T, Base>::comparedTo(const KrRxObject* other) const {
  if (!other || !other->isKindOf(Base::desc())) return KrRx::kNotOrderable;
  const T& theirs = storedValueOf<T, Base>(other);
  if (value() < theirs) return KrRx::kLessThan;
  if (value() > theirs) return KrRx::kGreaterThan;
  if (value() != theirs) return KrRx::kNotOrderable;
  return KrRx::kEqual;
}

template <typename T, typename Base>
unsigned int KrRfValueAbstractT<T, Base>::sizeOf() const {
  return sizeof(T);
}

// KrRfValueBaseT

template <typename T, typename Base>
Kesu::ErrorStatus KrRfValueBaseT<T, Base>::copyFrom(const KrRxObject* other) {
  if (!other || !other->isKindOf(Base::desc())) return Kesu::eInvalidInput;
  mValue = storedValueOf<T, Base>(other);
  return Kesu::eOk;
}

template <typename T, typename Base>
bool KrRfValueBaseT<T, Base>::isEqualTo(const KrRxObject* other) const {
  return other && other->isKindOf(Base::desc()) && mValue == storedValueOf<T, Base>(other);
}

template <typename T, typename Base>
void* KrRfValueBaseT<T, Base>::addressOf() {
  return &mValue;
}

template <typename T, typename Base>
const void* KrRfValueBaseT<T, Base>::addressOf() const {
  return &mValue;
}

// KrRfNumberT

#define KRRF_DEFINE_CONVERSIONS(NAME, TYPE)                                                  \
  template <typename T>                                                                      \
  Kesu::ErrorStatus KrRfNumberT<T>::to##NAME(TYPE& value) const {                            \
    return convert(this->mValue, value);                                                     \
  }                                                                                          \
  template <typename T>                                                                      \
  Kesu::ErrorStatus KrRfNumberT<T>::from##NAME(TYPE value) {                                 \
    return convert(value, this->mValue);                                                     \
  }
KRRF_DEFINE_CONVERSIONS(UInt8, unsigned char)
KRRF_DEFINE_CONVERSIONS(Int8, signed char)
KRRF_DEFINE_CONVERSIONS(UInt16, unsigned short)
KRRF_DEFINE_CONVERSIONS(Int16, short)
KRRF_DEFINE_CONVERSIONS(UInt32, unsigned int)
KRRF_DEFINE_CONVERSIONS(Int32, int)
KRRF_DEFINE_CONVERSIONS(UInt64, unsigned __int64)
KRRF_DEFINE_CONVERSIONS(Int64, __int64)
KRRF_DEFINE_CONVERSIONS(Float, float)
KRRF_DEFINE_CONVERSIONS(Double, double)
#undef KRRF_DEFINE_CONVERSIONS

template <typename T>
Kesu::ErrorStatus KrRfNumberT<T>::increment() {
  const T highest = std::numeric_limits<T>::max();
  if constexpr (std::is_floating_point<T>::value) {
    if (!(this->mValue < highest)) return Kesu::eOutOfRange;
    this->mValue = std::nextafter(this->mValue, highest);
  } else {
    if (this->mValue == highest) return Kesu::eOutOfRange;
    ++this->mValue;
  }
  return Kesu::eOk;
}

template <typename T>
Kesu::ErrorStatus KrRfNumberT<T>::decrement() {
  const T lowest = std::numeric_limits<T>::lowest();
  if constexpr (std::is_floating_point<T>::value) {
    if (!(this->mValue > lowest)) return Kesu::eOutOfRange;
    this->mValue = std::nextafter(this->mValue, lowest);
  } else {
    if (this->mValue == lowest) return Kesu::eOutOfRange;
    --this->mValue;
  }
  return Kesu::eOk;
}

// KrRfValueT

template <typename T>
KrRxClass* KrRfValueT<T>::gpDesc = nullptr;

template <typename T>
KrRxClass* KrRfValueT<T>::desc() {
  if (!gpDesc) gpDesc = krrxFindKrRxClass(valueClassName<T>());
  return gpDesc;
}

template <typename T>
KrRxClass* KrRfValueT<T>::isA() const {
  return gpDesc ? gpDesc : desc();
}

template <typename T>
void KrRfValueT<T>::rxInit() {
  const wchar_t* parentName = std::is_base_of<KrRfNumber, KrRfValueT>::value ? L"KrRfNumber" : L"KrRfValue";
  gpDesc = krrfNewValueClass(valueClassName<T>(), parentName, [] { return static_cast<KrRxObject*>(new KrRfValueT()); });
}

#define KRRF_INSTANTIATE_VALUE(T, KIND)                  \
  template class KrRfValueAbstractT<T, KIND>; \
  template class KrRfValueBaseT<T, KIND>;     \
  template class KrRfValueI<T>;               \
  template class KrRfValueT<T>;
#define KRRF_INSTANTIATE_NUMBER(T) template class KrRfNumberT<T>; KRRF_INSTANTIATE_VALUE(T, KrRfNumber)
KRRF_INSTANTIATE_VALUE(bool, KrRfValue)
KRRF_INSTANTIATE_VALUE(wchar_t, KrRfValue)
KRRF_INSTANTIATE_NUMBER(signed char)
KRRF_INSTANTIATE_NUMBER(short)
KRRF_INSTANTIATE_NUMBER(int)
KRRF_INSTANTIATE_NUMBER(__int64)
KRRF_INSTANTIATE_NUMBER(unsigned char)
KRRF_INSTANTIATE_NUMBER(unsigned short)
KRRF_INSTANTIATE_NUMBER(unsigned int)
KRRF_INSTANTIATE_NUMBER(unsigned __int64)
KRRF_INSTANTIATE_NUMBER(float)
KRRF_INSTANTIATE_NUMBER(double)
#undef KRRF_INSTANTIATE_NUMBER
#undef KRRF_INSTANTIATE_VALUE
