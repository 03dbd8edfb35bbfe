#pragma once
/// @file
/// Proxies: small reflected objects through which object-valued properties
/// hand another object in and out. A proxy points at the object and may own
/// it (flag 0x10000), destroying it when replaced or when the proxy goes.
///
/// @code
///   KrRxObjectPointer pointer(new KrRxTextString(L"note", -1), true);   // owns it
///   pointer.setObject(other, false);     // the text string is destroyed
///   KrRxClassPointer classes;
///   classes.setObject(&someObject, false); // eWrongObjectType: not a KrRxClass
/// @endcode

#include "krrfvalue.h"
#include "krrxclass.h"

/// Any proxy: equal and ordered by the address of the object it points at.
class KR1ST_API KrRfProxy : public KrRxObject {
  KRRX_DECLARE_MEMBERS(KrRfProxy);

 public:
  /// Flag bits: a pointer copying from this one clones the object; the
  /// proxy destroys the object. The other bits are the caller's.
  enum : unsigned int { kCloneOnCopy = 0x2, kOwnsObject = 0x10000 };

  ~KrRfProxy() override;

  /// False unless other is a proxy; else whether both point at the same object.
  bool isEqualTo(const KrRxObject* other) const override;
  /// kNotOrderable unless other is a proxy; else the two objects' addresses in order.
  KrRx::Ordering comparedTo(const KrRxObject* other) const override;

  /// The object the proxy stands for, or null.
  virtual KrRxObject* object() const = 0;
  /// The class the object must be a kind of.
  virtual KrRxClass* objectType() const = 0;
  /// The proxy's flags (kOwnsObject, kCloneOnCopy and the like).
  virtual unsigned int flags() const = 0;
  /// Replaces the object (destroying an owned one): eWrongObjectType when it
  /// is not a kind of objectType(); a reference refuses null with eInvalidInput.
  virtual Kesu::ErrorStatus setObject(KrRxObject* object, bool own) = 0;
};

/// The proxy-interface protocol extension of proxies.
class KR1ST_API KrRfProxyInterfacePE : public KrRxObject {
  KRRX_DECLARE_MEMBERS(KrRfProxyInterfacePE);
};

/// The fields and rules shared by pointers and references.
class KR1ST_API KrRfProxyObject : public KrRfProxy {
 public:
  ~KrRfProxyObject() override;

  KrRxObject* object() const override;
  unsigned int flags() const override;
  Kesu::ErrorStatus setObject(KrRxObject* object, bool own) override;
  /// flags = (flags without mask) | (value & mask).
  void setFlags(unsigned int value, unsigned int mask);

 protected:
  /// Stands for object, owning it when own is true.
  KrRfProxyObject(KrRxObject* object, bool own);
  KrRfProxyObject(const KrRfProxyObject&) = delete;
  KrRfProxyObject& operator=(const KrRfProxyObject&) = delete;

  /// The object and the flags.
  ///@{
  KrRxObject* mpObject;
  unsigned int mFlags;
  ///@}
};

/// A pointer: may be null; copying from a pointer flagged kCloneOnCopy clones.
class KR1ST_API KrRfPointer : public KrRfProxyObject {
  KRRX_DECLARE_MEMBERS(KrRfPointer);

 public:
  /// Points at object (null allowed), owning it when own is true.
  explicit KrRfPointer(KrRxObject* object = nullptr, bool own = false);

  /// eNotSupported unless other is a pointer. Takes a clone (owned) when
  /// other is flagged kCloneOnCopy, else shares other's object. An object
  /// this pointer owned before is not destroyed.
  Kesu::ErrorStatus copyFrom(const KrRxObject* other) override;
  KrRxClass* objectType() const override;
};

/// A reference: never null once set; copying takes the other's object only.
class KR1ST_API KrRfReference : public KrRfProxyObject {
  KRRX_DECLARE_MEMBERS(KrRfReference);

 public:
  /// Refers to object, owning it when own is true.
  explicit KrRfReference(KrRxObject* object = nullptr, bool own = false);

  /// eInvalidInput for a null object; otherwise as for any proxy.
  Kesu::ErrorStatus setObject(KrRxObject* object, bool own) override;

  /// eNotSupported unless other is a reference; the flags stay as they are.
  Kesu::ErrorStatus copyFrom(const KrRxObject* other) override;
  KrRxClass* objectType() const override;
};

/// A pointer typed by the kind of object it holds.
template <typename O>
class KR1ST_API KrRfPointerT : public KrRfPointer {
  KRRX_DECLARE_MEMBERS(KrRfPointerT);

 public:
  /// Points at an O (null allowed), owning it when own is true.
  KR1ST_INLINE explicit KrRfPointerT(O* object = nullptr, bool own = false) : KrRfPointer(object, own) {}

  KR1ST_INLINE O* object() const override { return static_cast<O*>(mpObject); }
  KrRxClass* objectType() const override;
};

/// Pointers to runtime objects, class descriptors and values.
///@{
typedef KrRfPointerT<KrRxObject> KrRxObjectPointer;
typedef KrRfPointerT<KrRxClass> KrRxClassPointer;
typedef KrRfPointerT<KrRfValue> KrRfValuePointer;
///@}

extern template class KrRfPointerT<KrRxObject>;
extern template class KrRfPointerT<KrRxClass>;
extern template class KrRfPointerT<KrRfValue>;
