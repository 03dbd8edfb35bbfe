#pragma once
/// @file
/// Arrays that array-valued properties hand out. KrRfArray reads and writes
/// elements through value objects of its element class; KrRfValueArrayT is
/// the growable array of plain values behind KrVtFloat64Array and its kin.
///
/// @code
///   KrVtFloat64Array samples;
///   samples.append(1.0);
///   samples.append(2.0);
///   KrVtFloat64 two(2.0);
///   int at = samples.find(&two, 0);                       // 1
/// @endcode

#include "krrfvalue.h"
#include "krrxclass.h"

/// An array-valued property's elements, read and written as value objects of its element class.
class KR1ST_API KrRfArray : public KrRxObject {
  KRRX_DECLARE_MEMBERS(KrRfArray);

 public:
  ~KrRfArray() override;

  /// The class of the values that getAt and setAt take.
  virtual KrRxClass* elementType() const = 0;
  /// The number of elements.
  virtual int length() const = 0;
  /// Writes element index into value: eInvalidIndex outside 0..length-1,
  /// eWrongObjectType when value is not of the element class.
  virtual Kesu::ErrorStatus getAt(int index, KrRfValue* value) const = 0;
  /// Stores value into element index; the same statuses as getAt.
  virtual Kesu::ErrorStatus setAt(int index, const KrRfValue* value) = 0;
  /// The first index from start on whose element isEqualTo value, or -1
  /// (also when start is not below length() or the element class cannot be made).
  virtual int find(const KrRxObject* value, int start) const;

  /// Whether there are no elements, and whether one isEqualTo value.
  ///@{
  bool isEmpty() const { return length() == 0; }
  bool contains(const KrRxObject* value) const { return find(value, 0) >= 0; }
  ///@}
};

/// A growable array of T whose elements are handed out as values of the
/// value class E. Grows by its grow step (8) when full.
template <typename T, typename E>
class KrRfValueArrayT : public KrRfArray {
 public:
  KrRfValueArrayT() = default;
  /// Copies other's elements.
  ///@{
  KrRfValueArrayT(const KrRfValueArrayT& other) { *this = other; }
  KrRfValueArrayT& operator=(const KrRfValueArrayT& other) {
  ///@}
    if (this != &other) {
      mLength = 0;
      for (int i = 0; i < other.mLength; ++i) append(other.mpData[i]);
    }
    return *this;
  }
  ~KrRfValueArrayT() override { __krFree(mpData); }

  /// The registered class of this array kind and its parent class
  /// (specialised per kind).
  static const wchar_t* className();
  /// The name of the array kind's parent class.
  static const wchar_t* parentName();
  /// The array kind's descriptor, looked up by className() once.
  static KrRxClass* desc() {
    if (!gpDesc) gpDesc = krrxFindKrRxClass(className());
    return gpDesc;
  }
  /// obj when it is a kind of this array class, else null.
  static KrRfValueArrayT* cast(KrRxObject* obj) {
    return obj && obj->isKindOf(desc()) ? static_cast<KrRfValueArrayT*>(obj) : nullptr;
  }
  /// obj when it is a kind of this array class, else null.
  static const KrRfValueArrayT* cast(const KrRxObject* obj) {
    return obj && obj->isKindOf(desc()) ? static_cast<const KrRfValueArrayT*>(obj) : nullptr;
  }
  KrRxClass* isA() const override { return desc(); }
  /// A new empty array, for the class descriptor.
  static KrRxObject* pseudoConstructor() { return new KrRfValueArrayT(); }
  /// Registers the class under className() with parentName(); reports
  /// "<name>::rxInit() called twice!" when the class is registered already.
  static void rxInit();

  /// Copies the elements of another array of this kind; eInvalidInput otherwise.
  Kesu::ErrorStatus copyFrom(const KrRxObject* other) override {
    const KrRfValueArrayT* array = cast(other);
    if (!array) return Kesu::eInvalidInput;
    *this = *array;
    return Kesu::eOk;
  }

  KrRxClass* elementType() const override { return E::desc(); }
  int length() const override { return mLength; }
  Kesu::ErrorStatus getAt(int index, KrRfValue* value) const override {
    if (index < 0 || index >= mLength) return Kesu::eInvalidIndex;
    E* element = E::cast(value);
    if (!element) return Kesu::eWrongObjectType;
    element->value() = mpData[index];
    return Kesu::eOk;
  }
  Kesu::ErrorStatus setAt(int index, const KrRfValue* value) override {
    if (index < 0 || index >= mLength) return Kesu::eInvalidIndex;
    const E* element = E::cast(value);
    if (!element) return Kesu::eWrongObjectType;
    mpData[index] = element->value();
    return Kesu::eOk;
  }

  /// Adds an element at the end; eOutOfMemory when the storage cannot grow.
  Kesu::ErrorStatus append(const T& element) {
    if (mLength == mCapacity) {
      T* grown = static_cast<T*>(__krRealloc(mpData, sizeof(T) * static_cast<size_t>(mCapacity + mGrowStep)));
      if (!grown) return Kesu::eOutOfMemory;
      mpData = grown;
      mCapacity += mGrowStep;
    }
    mpData[mLength++] = element;
    return Kesu::eOk;
  }
  /// Element index, unchecked, and the room before the array grows.
  ///@{
  T& operator[](int index) { return mpData[index]; }
  const T& operator[](int index) const { return mpData[index]; }
  int capacity() const { return mCapacity; }
  ///@}

 private:
  static KrRxClass* gpDesc;
  T* mpData = nullptr;
  int mCapacity = 0;
  int mLength = 0;
  int mGrowStep = 8;
};

template <typename T, typename E>
KrRxClass* KrRfValueArrayT<T, E>::gpDesc = nullptr;

template <typename T, typename E>
void KrRfValueArrayT<T, E>::rxInit() {
  gpDesc = krrfNewValueClass(className(), parentName(), pseudoConstructor);
}

/// A growable array of doubles, the value of KrVtFloat64 array properties.
typedef KrRfValueArrayT<double, KrVtFloat64> KrVtFloat64Array;
template <>
inline const wchar_t* KrVtFloat64Array::className() { return L"KrVtFloat64Array"; }
template <>
inline const wchar_t* KrVtFloat64Array::parentName() { return L"KrRfArray"; }
