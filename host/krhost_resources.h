#pragma once
// Resource ids of krhost.exe.
#define KRHOST_EXPORT_BASELINE 1
