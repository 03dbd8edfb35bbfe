#include "KrFuzzDoor.h"

#include <string>

namespace {

class FuzzDoor : public KrRxObject {
  KRRX_DECLARE_MEMBERS(FuzzDoor);

 public:
  double mWidth = 900.0;
  int mCount = 3;
  std::wstring mName = L"front";
  FuzzDoor* mpFrame = nullptr;
};
KRRX_CONS_DEFINE_MEMBERS(FuzzDoor, KrRxObject)

const FuzzDoor* door(const KrRxObject* object) { return static_cast<const FuzzDoor*>(object); }

Kesu::ErrorStatus readWidth(const KrRxObject* object, KrRxObject* value) {
  *KrVtFloat64::cast(value) = door(object)->mWidth;
  return Kesu::eOk;
}
Kesu::ErrorStatus readCount(const KrRxObject* object, KrRxObject* value) {
  *KrVtInt32::cast(value) = door(object)->mCount;
  return Kesu::eOk;
}
Kesu::ErrorStatus readName(const KrRxObject* object, KrRxObject* value) {
  *KrRxTextString::cast(value) = door(object)->mName.c_str();
  return Kesu::eOk;
}
Kesu::ErrorStatus readFrame(const KrRxObject* object, KrRxObject* value) {
  return KrRfPointer::cast(value)->setObject(door(object)->mpFrame, false);
}

// A property read by a plain function; without one it is not readable.
class FuzzProperty : public KrRfProperty {
 public:
  typedef Kesu::ErrorStatus (*Reader)(const KrRxObject*, KrRxObject*);

  FuzzProperty(const wchar_t* name, KrRxClass* valueType, Reader reader)
      : mpName(name), mpValueType(valueType), mReader(reader) {}

  KrRxClass* valueType() const override { return mpValueType; }
  GUID* getGuid(GUID* buffer) const override {
    *buffer = GUID{0x46555A5A, 0, 0, {0, 0, 0, 0, 0, 0, 0, static_cast<unsigned char>(mpName[0])}};
    return buffer;
  }
  const wchar_t* displayName() const override { return mpName; }
  const wchar_t* name() const override { return mpName; }
  const wchar_t* description() const override { return nullptr; }
  Kesu::ErrorStatus getValue(const KrRxObject* object, KrRxObject* value) const override {
    return mReader ? mReader(object, value) : KrRfProperty::getValue(object, value);
  }

 private:
  const wchar_t* mpName;
  KrRxClass* mpValueType;
  Reader mReader;
};

struct Described {
  FuzzDoor door;
  FuzzDoor frame;

  Described() {
    FuzzDoor::rxInit();
    krrxBuildClassHierarchy();
    door.mpFrame = &frame;
    frame.mWidth = 60.5;
    frame.mName = L"oak";
    // An abstract value class cannot be created; "unreadable" has no reader.
    KrRfProperty* properties[] = {
        new FuzzProperty(L"width", KrVtFloat64::desc(), readWidth),
        new FuzzProperty(L"count", KrVtInt32::desc(), readCount),
        new FuzzProperty(L"name", KrRxTextString::desc(), readName),
        new FuzzProperty(L"frame", KrRxObjectPointer::desc(), readFrame),
        new FuzzProperty(L"unreadable", KrVtFloat64::desc(), nullptr),
        new FuzzProperty(L"abstract", KrRfSymbol::desc(), readWidth),
    };
    KrRfReflectionPE* pe = krrfReflectionService()->reflectionPE(FuzzDoor::desc(), true);
    for (KrRfProperty* property : properties) pe->addSymbol(property);
  }
};

const Described& described() {
  static const Described instance;
  return instance;
}

}  // namespace

const KrRxObject* krfuzzDoor() { return &described().door; }

KrRxClass* krfuzzDoorValueType(const wchar_t* name) {
  described();
  KrRfProperty* property = krrfReflectionService()->reflectionPE(FuzzDoor::desc(), false)->propertyAt(name);
  return property ? property->valueType() : nullptr;
}
