#include "KrHostRun.h"

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
