#pragma once
// Splits the start-up list file into module names. The file is UTF-16LE
// text, one name per line, lines ended by CR LF, no byte-order mark. The
// reader works on the file's bytes in memory (reading the file is the
// caller's part), so it builds without Windows headers.
//
//   KrRxListFileReader reader(bytes.data(), bytes.size());
//   std::u16string line;
//   while (reader.nextLine(line))
//     if (!line.empty()) load(line);

#include <cstddef>
#include <string>

class KrRxListFileReader {
 public:
  // The longest line kept, in UTF-16 units.
  static constexpr size_t kListLineCapacity = 32767;

  // Reads [bytes, bytes + size) as UTF-16LE units; an odd last byte is
  // ignored. The bytes must stay in place while the reader is used.
  KrRxListFileReader(const void* bytes, size_t size);

  // The next line without its CR LF, at most kListLineCapacity units (the
  // rest of a longer line is dropped); a last line without CR LF counts, a
  // CR not followed by LF belongs to the line. False at the end.
  bool nextLine(std::u16string& line);

 private:
  char16_t unitAt(size_t index) const;

  const unsigned char* mBytes;
  size_t mUnits;
  size_t mNext = 0;
};
