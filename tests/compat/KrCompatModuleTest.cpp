// A module built against the first 20.x headers loads, runs and unloads on
// today's runtime, in this process and under krhost as a user runs it. The
// module checks what it calls during its initialisation; a wrong answer or
// an unbound import makes the load fail.
#include <gtest/gtest.h>

#include "KrHostRun.h"
#include "kr1st.h"

TEST(KrCompatModuleTest, LoadsRunsAndUnloadsInThisProcess) {
  ASSERT_TRUE(krrxLoadModule(L"compat.krx", false, true));
  KrRxClass* shapeClass = krrxFindKrRxClass(L"CompatShape");
  KrRxClass* protocolClass = krrxFindKrRxClass(L"CompatProtocol");
  ASSERT_NE(shapeClass, nullptr);
  ASSERT_NE(protocolClass, nullptr);
  // Today's inline queryX and the exported one the module used agree.
  KrRxObject* shape = shapeClass->create();
  ASSERT_NE(shape, nullptr);
  EXPECT_EQ(shape->queryX(protocolClass)->isA(), protocolClass);
  delete shape;
  EXPECT_TRUE(krrxServiceIsRegistered(L"CompatService"));
  EXPECT_NE(krrxSysRegistry()->at(L"CompatEntry"), nullptr);

  ASSERT_TRUE(krrxUnloadModule(L"compat.krx", true));
  EXPECT_EQ(krrxFindKrRxClass(L"CompatShape"), nullptr);
  EXPECT_FALSE(krrxServiceIsRegistered(L"CompatService"));
  EXPECT_EQ(krrxSysRegistry()->at(L"CompatEntry"), nullptr);
}

TEST(KrCompatModuleTest, KrhostLoadsItAndExitsCleanly) {
  KrHostRun run = krRunHost(L"load compat.krx");
  EXPECT_EQ(run.exitCode, 0) << run.out << run.err;
  EXPECT_NE(run.out.find("CompatShape"), std::string::npos) << run.out;
}
