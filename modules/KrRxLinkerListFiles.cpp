// List files: a file of module names, one a line, each loaded as a command.

#include "modules/KrRxImpDynamicLinker.h"

#include <windows.h>

#include <new>
#include <string>

#include "modules/KrRxFileBytes.h"
#include "modules/KrRxListFileReader.h"

bool KrRxImpDynamicLinker::initListedModules(const wchar_t* listFile) {
  static_assert(sizeof(wchar_t) == sizeof(char16_t), "list lines are UTF-16 module names");
  HANDLE file = CreateFileW(listFile, GENERIC_READ, FILE_SHARE_READ, nullptr, OPEN_EXISTING,
                            FILE_FLAG_SEQUENTIAL_SCAN, nullptr);
  if (file == INVALID_HANDLE_VALUE) return false;
  // A read error ends the list where it happened: the lines read so far
  // still load. Memory running short ends it too, and the result is false.
  std::string bytes;
  bool allLoaded = true;
  try {
    krrxReadFileBytes(file, bytes);
  } catch (const std::bad_alloc&) {
    allLoaded = false;
  }
  CloseHandle(file);
  KrRxListFileReader reader(bytes.data(), bytes.size());
  std::u16string line;
  try {
    while (reader.nextLine(line))
      if (!line.empty())
        allLoaded = loadModule(reinterpret_cast<const wchar_t*>(line.c_str()), false, true) && allLoaded;
  } catch (const std::bad_alloc&) {
    allLoaded = false;
  }
  return allLoaded;
}
