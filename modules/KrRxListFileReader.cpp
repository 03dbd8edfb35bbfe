#include "modules/KrRxListFileReader.h"

bool KrRxListFileReader::nextLine(std::wstring& line) {
  line.clear();
  wchar_t unit;
  bool any = false;
  while (nextUnit(unit)) {
    any = true;
    if (unit == L'\r' && peekUnit(L'\n')) return true;
    if (line.size() < kListLineCapacity) line.push_back(unit);
  }
  return any;
}

bool KrRxListFileReader::nextByte(unsigned char& byte) {
  if (mPosition == mSize) {
    mPosition = 0;
    if (!ReadFile(mFile, mBuffer, sizeof mBuffer, &mSize, nullptr)) mSize = 0;
    if (mSize == 0) return false;
  }
  byte = mBuffer[mPosition++];
  return true;
}

bool KrRxListFileReader::nextUnit(wchar_t& unit) {
  if (mHasPending) {
    mHasPending = false;
    unit = mPending;
    return true;
  }
  unsigned char low, high;
  if (!nextByte(low) || !nextByte(high)) return false;
  unit = wchar_t(low | high << 8);
  return true;
}

bool KrRxListFileReader::peekUnit(wchar_t expected) {
  wchar_t unit;
  if (!nextUnit(unit)) return false;
  if (unit == expected) return true;
  mPending = unit;
  mHasPending = true;
  return false;
}
