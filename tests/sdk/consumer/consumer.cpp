// Uses the runtime through the installed SDK only.
#include <cstdio>

#include "kr1st.h"

int main() {
  KrRxClass* cls = krrxFindKrRxClass(L"KrRxImpKernel");
  bool ok = cls && cls->isDerivedFrom(KrRxService::desc()) && krrxServiceIsRegistered(L"KernelServices");
  std::printf("consumer: %s\n", ok ? "runtime is up" : "runtime missing");
  return ok ? 0 : 1;
}
