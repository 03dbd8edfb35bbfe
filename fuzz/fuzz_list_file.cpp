// Fuzz target: the list-file splitter over arbitrary bytes. Lines never
// exceed their capacity, never hold a CR LF, and together with their
// separators never take more units than the input has.

#include <cstddef>
#include <cstdint>
#include <string>

#include "modules/KrRxListFileReader.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  KrRxListFileReader reader(data, size);
  std::u16string line;
  size_t units = 0;
  while (reader.nextLine(line)) {
    if (line.size() > KrRxListFileReader::kListLineCapacity) __builtin_trap();
    if (line.find(u"\r\n") != std::u16string::npos) __builtin_trap();
    units += line.size();
    if (units > size / 2) __builtin_trap();
  }
  return 0;
}
