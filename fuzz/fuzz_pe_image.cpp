// Fuzz target: the PE image reader over arbitrary bytes, read both as a
// file and as a mapped image. Any read outside the bytes is a finding.

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "modules/KrRxPeImage.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  for (KrRxPeImage::Layout layout : {KrRxPeImage::kFileLayout, KrRxPeImage::kMappedLayout}) {
    KrRxPeImage image(data, size, layout);
    std::vector<std::string> names;
    bool imports = image.importNames(names);
    bool exports = image.exportNames(names);
    if ((imports || exports || image.isX64Dll()) && !image.isValid()) __builtin_trap();
  }
  return 0;
}
