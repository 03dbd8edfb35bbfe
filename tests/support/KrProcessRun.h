#pragma once
// Runs a program the way a user's shell would and collects what it printed,
// for tests that drive our tools and Wine's own.

#include <string>

struct KrProcessRun {
  int exitCode = -1;  // -1 when the program could not be started; 99 when it hung and was ended
  std::string out;    // standard output as printed
  std::string err;    // standard error; empty when it was merged into out
};

// Runs commandLine (the program quoted first) in folder (empty: ours), waits
// at most two minutes and returns its exit code and output. The output goes
// through temporary files, not pipes: a helper process that Wine starts on
// the program's behalf may inherit a pipe and keep it open for the rest of
// the session, so a pipe's end would never come.
KrProcessRun krRunProcess(const std::wstring& commandLine, const std::wstring& folder = L"",
                          bool mergeErrors = false);
