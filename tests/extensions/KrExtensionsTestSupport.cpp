#include "KrExtensionsTestSupport.h"

#include <string>

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
