#include "krrfformat.h"

#include <cstdlib>
#include <cstring>
#include <cwchar>

#include "krrxformattable.h"
#include "reflection/KrRfEvaluateString.h"
#include "reflection/KrRfTextCopy.h"
#include "values/KrRxFormattable.h"
#include "values/KrVtNumberFormattable.h"

namespace {

// Composes the text, cutting off whatever would go beyond kKrrfFormatLimit
// characters. A short text stays in a local buffer (a frame of the full size
// would cost a stack probe of eight pages on every call); a longer one moves
// to a heap block of the full limit, and when that cannot be had the text is
// lost: copy() then gives null, as when the result's block cannot be had.
class Composer {
 public:
  Composer() : mpBuffer(mLocal), mLength(0), mLost(false) {}
  ~Composer() {
    if (mpBuffer != mLocal) free(mpBuffer);
  }
  Composer(const Composer&) = delete;
  Composer& operator=(const Composer&) = delete;

  void append(const wchar_t* text, size_t count) {
    size_t room = kKrrfFormatLimit - mLength;
    if (count > room) count = room;
    if (mLength + count > kLocal && !moveToHeap()) return;
    memcpy(mpBuffer + mLength, text, count * sizeof(wchar_t));
    mLength += count;
  }

  // The formatted value of the property path (written into) on object;
  // nothing when it cannot be had. The plain number kinds write straight
  // into the buffer.
  void appendValue(wchar_t* path, const KrRxObject* object, const KrRxFormatContext* context) {
    KrRfPathValue holder(KrRfPathValue::kNumbersInPlace);
    KrRxObject* value = nullptr;
    if (krrfEvaluatePath(path, object, true, holder, value) != Kesu::eOk) return;
    if (KrRxFormattablePE* formattable = krrxFormattableOf(value)) appendText(formattable, value, context);
    holder.dispose(value);
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
    if (mLost) return nullptr;
    auto* block = static_cast<wchar_t*>(malloc((mLength + 1) * sizeof(wchar_t)));
    if (!block) return nullptr;
    memcpy(block, mpBuffer, mLength * sizeof(wchar_t));
    block[mLength] = 0;
    return block;
  }

 private:
  // True when the text is (now) in the heap block of the full limit.
  bool moveToHeap() {
    if (mpBuffer != mLocal) return true;
    if (mLost) return false;
    auto* block = static_cast<wchar_t*>(malloc(kKrrfFormatLimit * sizeof(wchar_t)));
    if (!block) {
      mLost = true;
      return false;
    }
    memcpy(block, mLocal, mLength * sizeof(wchar_t));
    mpBuffer = block;
    return true;
  }

  static constexpr size_t kLocal = 1024;
  wchar_t mLocal[kLocal];
  wchar_t* mpBuffer;
  size_t mLength;
  bool mLost;
};

// The first place at or after text where first is followed by second, or
// null. A plain loop: the C library's wcsstr takes several times as long on
// short texts.
const wchar_t* findPair(const wchar_t* text, wchar_t first, wchar_t second) {
  for (; *text; ++text)
    if (text[0] == first && text[1] == second) return text;
  return nullptr;
}

}  // namespace

Kesu::ErrorStatus krrfFormatString(const wchar_t* text, const KrRxObject* object,
                                   const KrRxFormatContext* context, wchar_t*& result) {
  if (!text || !object) return Kesu::eInvalidInput;
  Composer composer;
  const wchar_t* position = text;
  while (*position) {
    const wchar_t* open = findPair(position, L'%', L'<');
    if (!open) break;
    const wchar_t* close = findPair(open + 2, L'>', L'%');
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
