// KrRxTextString: an owned wide text as a runtime object.

#include "krrxtextstring.h"

#include <cstdlib>
#include <cstring>
#include <cwchar>

#include "runtime/KrRxCoreClass.h"

KRRX_CORE_CONS_DEFINE_MEMBERS(KrRxTextString, KrRxObject)

KrRxTextString::KrRxTextString(int capacity) {
  if (capacity > 0) mText.reserve(static_cast<size_t>(capacity));
}

KrRxTextString::KrRxTextString(const wchar_t* text, int count) {
  if (text) mText.assign(text, count < 0 ? wcslen(text) : wcsnlen(text, static_cast<size_t>(count)));
}

KrRxTextString::KrRxTextString(const KrRxTextString& other, int count)
    : mText(other.mText, 0, count < 0 ? std::wstring::npos : static_cast<size_t>(count)) {}

KrRxTextString::~KrRxTextString() = default;

KrRxObject* KrRxTextString::clone() const { return new KrRxTextString(*this); }

Kesu::ErrorStatus KrRxTextString::copyFrom(const KrRxObject* other) {
  const KrRxTextString* text = cast(other);
  if (!text) return Kesu::eInvalidInput;
  copy(text);
  return Kesu::eOk;
}

bool KrRxTextString::isEqualTo(const KrRxObject* other) const { return comparedTo(other) == KrRx::kEqual; }

KrRx::Ordering KrRxTextString::comparedTo(const KrRxObject* other) const {
  const KrRxTextString* text = cast(other);
  return text ? cmp(text) : KrRx::kNotOrderable;
}

unsigned int KrRxTextString::size() const { return static_cast<unsigned int>(mText.size()); }

unsigned int KrRxTextString::len() const {
  unsigned int characters = 0;
  for (wchar_t unit : mText)
    if (unit < 0xDBFF || unit > 0xDFFF) ++characters;
  return characters;
}

KrRx::Ordering KrRxTextString::cmp(const KrRxTextString* other) const {
  int order = wcscmp(mText.c_str(), other ? other->mText.c_str() : L"");
  return order < 0 ? KrRx::kLessThan : order > 0 ? KrRx::kGreaterThan : KrRx::kEqual;
}

void KrRxTextString::copy(const KrRxTextString* other) {
  if (other && other != this) mText = other->mText;
}

void KrRxTextString::cat(const KrRxTextString* other) {
  if (other) mText += other->mText;
}

wchar_t KrRxTextString::getChar(unsigned int index) const { return index < mText.size() ? mText[index] : 0; }

bool KrRxTextString::setChar(unsigned int index, unsigned int unit) {
  if (index >= mText.size()) return false;
  if (unit)
    mText[index] = static_cast<wchar_t>(unit);
  else
    mText.resize(index);
  return true;
}

KrRxTextString& KrRxTextString::operator=(const wchar_t* text) {
  cpyFromAscii(text);
  return *this;
}

KrRxTextString::operator const wchar_t*() const { return mText.c_str(); }

const wchar_t* KrRxTextString::getAsciiPtr() const { return mText.c_str(); }

void KrRxTextString::cpyFromAscii(const wchar_t* text) {
  if (text) {
    mText.assign(text);
  } else {
    mText.clear();
    mText.shrink_to_fit();
  }
}

wchar_t* KrRxTextString::cpyToAscii() const {
  size_t bytes = (mText.size() + 1) * sizeof(wchar_t);
  auto* copy = static_cast<wchar_t*>(malloc(bytes));
  if (copy) memcpy(copy, mText.c_str(), bytes);
  return copy;
}

void KrRxTextString::initStrData() { mText.clear(); }

void KrRxTextString::killStrData() { mText.clear(); }
