// A module's class leaves with its reflection extension and symbols when the
// module unloads.

#include <gtest/gtest.h>
#include <windows.h>

#include <string>

#include "KrRfTestSymbols.h"

namespace {

// Counts what reactors hear.
class Counter : public KrRfReflectionReactor {
 public:
  void symbolAdded(KrRfSymbol*) override { ++mAdded; }
  void symbolRemoved(KrRfSymbol*) override { ++mRemoved; }
  int mAdded = 0, mRemoved = 0;
};

std::wstring names(KrRfReflectionPE* pe) {
  std::wstring seen;
  KrRfSymbolIterator* it = pe->newSymbolIterator(nullptr);
  for (; !it->done(); it->next()) seen += std::wstring(it->symbol()->name()) + L" ";
  delete it;
  return seen;
}

TEST(KrRfModuleUnload, TheClassLeavesWithItsExtensionAndSymbols) {
  TestSymbol legs(L"legs");
  KrRfReflectionPE* animal = krrfReflectionService()->reflectionPE(Animal::desc(), true);
  ASSERT_EQ(animal->addSymbol(&legs), Kesu::eOk);
  Counter counter;
  krrfReflectionService()->addReactor(&counter);

  ASSERT_TRUE(krrxLoadModule(L"reflmod.krx", false, true));
  KrRxClass* moduleDog = krrxFindKrRxClass(L"ReflModuleDog");
  ASSERT_NE(moduleDog, nullptr);
  KrRfReflectionPE* pe = krrfReflectionService()->reflectionPE(moduleDog, false);
  ASSERT_NE(pe, nullptr);
  EXPECT_EQ(names(pe), L"legs bark wag ");
  auto liveSymbols = reinterpret_cast<int (*)()>(
      reinterpret_cast<void*>(GetProcAddress(GetModuleHandleW(L"reflmod.krx"), "testLiveSymbols")));
  ASSERT_NE(liveSymbols, nullptr);
  EXPECT_EQ(liveSymbols(), 2);
  EXPECT_EQ(counter.mAdded, 2);

  ASSERT_TRUE(krrxUnloadModule(L"reflmod.krx", true));
  EXPECT_EQ(GetModuleHandleW(L"reflmod.krx"), nullptr);
  EXPECT_EQ(krrxFindKrRxClass(L"ReflModuleDog"), nullptr);
  EXPECT_EQ(counter.mRemoved, 2);
  EXPECT_EQ(Dog::desc()->queryX(KrRfReflectionPE::desc()), animal);
  EXPECT_EQ(names(animal), L"legs ");
  krrfReflectionService()->removeReactor(&counter);
  EXPECT_EQ(animal->removeSymbol(&legs), Kesu::eOk);
}

}  // namespace
