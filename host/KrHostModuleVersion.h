#pragma once
// A module's version and description as its version resource states them:
// the FileVersion and FileDescription texts that Windows shows in the file's
// properties. "krhost check" reads them from the file, "krhost load" from
// the block that the runtime's module handle keeps.
//
//   KrHostModuleVersion version = krhostVersionOfFile(L"C:\\modules\\hello.krx");
//   report.field("version", L"Version", version.version);

#include <string>

#include "host/KrHostOutput.h"

struct KrHostModuleVersion {
  KrHostValue version;      // nothing when the module has no version resource
  KrHostValue description;  // nothing when the resource has no description
};

// The texts of a version resource block (as GetFileVersionInfoW fills it), or nothing for null.
KrHostModuleVersion krhostVersionOfBlock(const void* block);
// The texts of the version resource of the file at path.
KrHostModuleVersion krhostVersionOfFile(const std::wstring& path);
// Adds the two as the fields "version" and "description" of report.
void krhostReportVersion(KrHostReport& report, const KrHostModuleVersion& version);
