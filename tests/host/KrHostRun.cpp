#include "KrHostRun.h"

#include <gtest/gtest.h>

#include "KrProcessRun.h"
#include "KrTestFiles.h"

KrHostRun krRunHost(const std::wstring& arguments, const std::wstring& folder) {
  std::wstring program = krTestBinDirectory() + L"krhost.exe";
  KrProcessRun process = krRunProcess(L"\"" + program + L"\" " + arguments, folder);
  KrHostRun run;
  run.exitCode = process.exitCode;
  run.out = process.out;
  run.err = process.err;
  return run;
}

KrHostForms krRunHostForms(const std::wstring& command, const std::wstring& arguments, const std::wstring& folder) {
  KrHostRun text = krRunHost(command + L" " + arguments, folder);
  KrHostRun json = krRunHost(command + L" --json " + arguments, folder);
  EXPECT_EQ(text.exitCode, json.exitCode) << text.out;
  KrHostForms forms{text.exitCode, text.out, json.json()};
  EXPECT_TRUE(forms.doc.is_object()) << json.out;
  return forms;
}

KrJson krRowWith(const KrJson& rows, const char* key, const std::string& value) {
  if (rows.is_array())
    for (const KrJson& row : rows)
      if (row.is_object() && row.value(key, KrJson()) == value) return row;
  return nullptr;
}
