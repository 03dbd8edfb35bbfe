// The fatal report, the assertion dialog and the end of the process.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <windows.h>

#include <string>

#include "KrAbortTrap.h"
#include "kr1st.h"

using ::testing::HasSubstr;

TEST(KrDiagnosticsTest, AbortShowsTheInternalErrorBox) {
  std::wstring caption;
  std::wstring text = krMessageBoxOf(
      [&] {
        krAbortMessageOf([] { krrx_abort(L"%ls broke at %d", L"widget", 7); });
      },
      &caption);
  EXPECT_EQ(text, L"widget broke at 7");
  EXPECT_EQ(krAbortMessageOf([] { krrx_abort_file_line(L"a.cpp", 12, L"bad"); }), L"!a.cpp@12: bad");
  EXPECT_EQ(krAbortMessageOf([] { krrx_abort_file_line(L"a.cpp", 12); }), L"!a.cpp@12");
}

TEST(KrDiagnosticsTest, LongReportsAreCutAt2047Characters) {
  std::wstring huge(5000, L'x');
  std::wstring text = krAbortMessageOf([&] { krrx_abort(L"%ls", huge.c_str()); });
  EXPECT_EQ(text.size(), 2047u);
  krrx_warning(L"%ls", huge.c_str());
}

TEST(KrDiagnosticsTest, AssertionDialogNamesTheModuleOrDots) {
  std::wstring caption;
  std::wstring text = krMessageBoxOf([] { krutAssertMessage(L"x > 0", L"geometry.cpp", 88, L"eInvalidInput"); },
                                     &caption);
  EXPECT_EQ(caption, L"ASSERT Error");
  EXPECT_EQ(text, L"Failed: x > 0.\r\nStatus: eInvalidInput.\r\nModule: ...\r\nFile: geometry.cpp. Line: 88\r\n");

  KrRxGenHand module;
  module.setfileName(L"drafting.krx");
  KrRxGenHand* previous = KrRxGenHand::setCurModule(&module);
  text = krMessageBoxOf([] { krutAssertMessage(L"ok", L"f.cpp", 1, L"s"); });
  KrRxGenHand::setCurModule(previous);
  EXPECT_THAT(krUtf8(text), HasSubstr("Module: drafting.krx.\r\n"));
}

TEST(KrDiagnosticsDeathTest, AbortEndsTheProcessWithExitCode3) {
  EXPECT_EXIT(
      {
        krEchoMessageBoxesToStderr();
        krrx_abort(L"fatal %d", 1);
      },
      ::testing::ExitedWithCode(3), HasSubstr("Orvan CAD - INTERNAL ERROR | fatal 1"));
  EXPECT_EXIT(krrx_abort(static_cast<Kesu::ErrorStatus>(0x12345)), ::testing::ExitedWithCode(3), "");
}

// The host's database library, when loaded, hears about the crash with the
// status-derived exception code before the process ends.
TEST(KrDiagnosticsDeathTest, CrashReportReachesTheHostDatabaseLibrary) {
  EXPECT_EXIT(
      {
        ASSERT_NE(LoadLibraryW(L"KRDB20.DLL"), nullptr);
        krrx_abort(static_cast<Kesu::ErrorStatus>(0x12345));
      },
      ::testing::ExitedWithCode(3), HasSubstr("crash report: code E0002345 flags 1 application Kestrune"));
  EXPECT_EXIT(
      {
        ASSERT_NE(LoadLibraryW(L"KRDB20.DLL"), nullptr);
        krrx_abort(static_cast<Kesu::ErrorStatus>(0));
      },
      ::testing::ExitedWithCode(3), HasSubstr("crash report: code 40000015"));
}
