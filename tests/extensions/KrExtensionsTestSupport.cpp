#include "KrExtensionsTestSupport.h"

#include <string>

#include "KrHeapUsage.h"
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

long long krHeapGrowthOfAttaching(const std::function<void(KrRxClass*)>& attach) {
  auto cycle = [&](bool attaching) {
    KrRxClass* cls = new KrRxClass(L"ShortLived", L"KrRxObject", nullptr);
    if (attaching) attach(cls);
    delete cls;  // at once: its implementation takes down what it owns
    krrxBuildClassHierarchy();  // clears the pending list the descriptor sat in
  };
  long long bare = krHeapGrowth(20, 200, [&] { cycle(false); });
  return krHeapGrowth(20, 200, [&] { cycle(true); }) - bare;
}
