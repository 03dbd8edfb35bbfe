#include "KrExtensionsTestSupport.h"

#include <windows.h>

#include <string>
#include <vector>

#include "kr1st.h"
#include "runtime/KrRxImpClass.h"

KrRxClass* krMakeClass(const wchar_t* stem, const wchar_t* parentName) {
  static int serial = 0;
  std::wstring name = std::wstring(stem) + std::to_wstring(++serial);
  KrRxClass* cls = newKrRxClass(name.c_str(), parentName, 0, nullptr, nullptr, nullptr);
  krrxBuildClassHierarchy();
  return cls;
}

void krDeleteClassAsOnUnload(KrRxClass* cls) {
  KrRx::AppMsgCode previous = KrRxGenHand::mCurMsgCode;
  KrRxGenHand::mCurMsgCode = KrRx::kAppMsgUnload;
  deleteKrRxClass(cls);
  KrRxGenHand::mCurMsgCode = previous;
  KrRxImpClass::clearDeletedClassesArray();
}

void krDeleteClass(KrRxClass* cls) {
  delete cls;
  krrxBuildClassHierarchy();  // clears the pending list the descriptor sat in
}

namespace {

// Bytes in use over every heap of the process.
size_t busyHeapBytes() {
  std::vector<HANDLE> heaps(GetProcessHeaps(0, nullptr) + 16);
  heaps.resize(GetProcessHeaps(static_cast<DWORD>(heaps.size()), heaps.data()));
  size_t busy = 0;
  for (HANDLE heap : heaps) {
    HeapLock(heap);
    PROCESS_HEAP_ENTRY entry = {};
    while (HeapWalk(heap, &entry))
      if (entry.wFlags & PROCESS_HEAP_ENTRY_BUSY) busy += entry.cbData;
    HeapUnlock(heap);
  }
  return busy;
}

}  // namespace

long long krHeapGrowthOver200(const std::function<void()>& cycle) {
  for (int i = 0; i < 20; ++i) cycle();
  size_t before = busyHeapBytes();
  for (int i = 0; i < 200; ++i) cycle();
  return static_cast<long long>(busyHeapBytes()) - static_cast<long long>(before);
}
