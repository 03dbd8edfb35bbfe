#include "modules/KrRxListFileReader.h"

KrRxListFileReader::KrRxListFileReader(const void* bytes, size_t size)
    : mBytes(static_cast<const unsigned char*>(bytes)), mUnits(bytes ? size / 2 : 0) {}

char16_t KrRxListFileReader::unitAt(size_t index) const {
  return char16_t(mBytes[2 * index] | mBytes[2 * index + 1] << 8);
}

bool KrRxListFileReader::nextLine(std::u16string& line) {
  line.clear();
  if (mNext >= mUnits) return false;
  size_t end = mNext;
  while (end < mUnits && !(unitAt(end) == u'\r' && end + 1 < mUnits && unitAt(end + 1) == u'\n')) ++end;
  size_t kept = end - mNext < kListLineCapacity ? end - mNext : kListLineCapacity;
  line.reserve(kept);
  for (size_t i = mNext; i < mNext + kept; ++i) line.push_back(unitAt(i));
  mNext = end < mUnits ? end + 2 : mUnits;
  return true;
}
