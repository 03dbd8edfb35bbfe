#include "host/KrHostExportBaseline.h"

#include <windows.h>

#include <algorithm>
#include <sstream>
#include <vector>

#include "host/krhost_resources.h"

namespace {

// The baseline's names in the resource's (sorted) order; none when the resource is absent.
std::vector<std::string> readBaseline() {
  std::vector<std::string> names;
  HRSRC resource = FindResourceW(nullptr, MAKEINTRESOURCEW(KRHOST_EXPORT_BASELINE), MAKEINTRESOURCEW(10));
  HGLOBAL loaded = resource ? LoadResource(nullptr, resource) : nullptr;
  if (!loaded) return names;
  std::istringstream lines(std::string(static_cast<const char*>(LockResource(loaded)), SizeofResource(nullptr, resource)));
  for (std::string line; std::getline(lines, line);)
    if (!line.empty()) names.push_back(line);
  return names;
}

}  // namespace

bool krhostReleasedExport(const std::string& name) {
  static const std::vector<std::string> names = readBaseline();
  return std::binary_search(names.begin(), names.end(), name);
}
