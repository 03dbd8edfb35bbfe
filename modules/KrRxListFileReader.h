#pragma once
// The start-up list file: UTF-16LE text, one module name per line, lines
// ended by CR LF, no byte-order mark.

#include <windows.h>

#include <cstddef>
#include <string>

// Reads a list file as UTF-16LE units, buffered; an odd last byte is ignored.
class KrRxListFileReader {
 public:
  // The longest line kept, in UTF-16 units.
  static constexpr size_t kListLineCapacity = 32767;

  explicit KrRxListFileReader(HANDLE file) : mFile(file) {}

  // The next line without its CR LF, at most kListLineCapacity units (the
  // rest of a longer line is dropped); false at the end of the file.
  bool nextLine(std::wstring& line);

 private:
  bool nextByte(unsigned char& byte);
  bool nextUnit(wchar_t& unit);
  // Consumes the next unit when it is expected; otherwise keeps it for later.
  bool peekUnit(wchar_t expected);

  HANDLE mFile;
  unsigned char mBuffer[4096];
  DWORD mSize = 0;
  DWORD mPosition = 0;
  wchar_t mPending = 0;
  bool mHasPending = false;
};
