#include "krrfformat.h"

#include <cstdlib>
#include <cstring>
#include <cwchar>
#include <new>

#include "krrfvalue.h"
#include "krrxformattable.h"
#include "reflection/KrRfEvaluateString.h"
#include "reflection/KrRfTextCopy.h"
#include "values/KrRxFormattable.h"
#include "values/KrVtNumberFormattable.h"

namespace {

// Makes the value of a placeholder in place when its class is one of the
// plain number kinds, whose texts are written without a heap text; any other
// class on the heap. Holds one value at a time.
class PlaceholderValue final : public KrRfValueMaker {
 public:
  KrRxObject* make(const KrRxClass* valueType) override {
    KrRxObject* value = nullptr;
    if (makeInPlace<double>(valueType, value) || makeInPlace<int>(valueType, value) ||
        makeInPlace<unsigned int>(valueType, value) || makeInPlace<__int64>(valueType, value) ||
        makeInPlace<unsigned __int64>(valueType, value) || makeInPlace<short>(valueType, value) ||
        makeInPlace<unsigned short>(valueType, value) || makeInPlace<signed char>(valueType, value) ||
        makeInPlace<unsigned char>(valueType, value))
      return value;
    return KrRfValueMaker::make(valueType);
  }

  void dispose(KrRxObject* value) override {
    if (static_cast<void*>(value) == mStorage) value->~KrRxObject();
    else KrRfValueMaker::dispose(value);
  }

 private:
  // True, with value made in place, when valueType is exactly the class of T.
  template <typename T>
  bool makeInPlace(const KrRxClass* valueType, KrRxObject*& value) {
    static_assert(sizeof(KrRfValueT<T>) <= sizeof mStorage && alignof(KrRfValueT<T>) <= alignof(Storage), "room");
    if (valueType != KrRfValueT<T>::desc()) return false;
    value = ::new (mStorage) KrRfValueT<T>();
    return true;
  }

  using Storage = KrRfValueT<__int64>;
  alignas(Storage) unsigned char mStorage[sizeof(Storage)];
};

// Composes into a fixed buffer of kKrrfFormatLimit characters, cutting off
// whatever would go beyond.
class Composer {
 public:
  Composer() : mLength(0) {}

  void append(const wchar_t* text, size_t count) {
    size_t room = kKrrfFormatLimit - mLength;
    if (count > room) count = room;
    memcpy(mBuffer + mLength, text, count * sizeof(wchar_t));
    mLength += count;
  }

  // The formatted value of the property path (written into) on object;
  // nothing when it cannot be had. The plain number kinds write straight
  // into the buffer.
  void appendValue(wchar_t* path, const KrRxObject* object, const KrRxFormatContext* context) {
    PlaceholderValue maker;
    KrRxObject* value = nullptr;
    if (krrfEvaluatePath(path, object, true, maker, value) != Kesu::eOk) return;
    if (KrRxFormattablePE* formattable = krrxFormattableOf(value)) appendText(formattable, value, context);
    maker.dispose(value);
  }

  void appendText(KrRxFormattablePE* formattable, const KrRxObject* value, const KrRxFormatContext* context) {
    KrVtText::Composer number;
    if (krvtComposeNumberText(formattable, value, number)) {
      append(number.text(), number.length());
      return;
    }
    wchar_t* text = nullptr;
    if (formattable->toText(value, text, context) == Kesu::eOk && text) {
      append(text, wcslen(text));
      free(text);
    }
  }

  // A new block of exactly the composed text, or null.
  wchar_t* copy() const {
    auto* block = static_cast<wchar_t*>(malloc((mLength + 1) * sizeof(wchar_t)));
    if (!block) return nullptr;
    memcpy(block, mBuffer, mLength * sizeof(wchar_t));
    block[mLength] = 0;
    return block;
  }

 private:
  wchar_t mBuffer[kKrrfFormatLimit];
  size_t mLength;
};

}  // namespace

Kesu::ErrorStatus krrfFormatString(const wchar_t* text, const KrRxObject* object,
                                   const KrRxFormatContext* context, wchar_t*& result) {
  if (!text || !object) return Kesu::eInvalidInput;
  Composer composer;
  const wchar_t* position = text;
  while (*position) {
    const wchar_t* open = wcsstr(position, L"%<");
    if (!open) break;
    const wchar_t* close = wcsstr(open + 2, L">%");
    if (!close) break;
    composer.append(position, size_t(open - position));
    KrRfTextCopy path(open + 2, size_t(close - open - 2));
    if (path.text()) composer.appendValue(path.text(), object, context);
    position = close + 2;
  }
  composer.append(position, wcslen(position));
  if (wchar_t* block = composer.copy()) result = block;
  return Kesu::eOk;
}

Kesu::ErrorStatus krrfFormatString(const wchar_t* text, const KrRxObject* object, wchar_t*& result) {
  return krrfFormatString(text, object, nullptr, result);
}
