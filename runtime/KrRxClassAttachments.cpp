#include "runtime/KrRxClassAttachments.h"

#include "krdiagnostics.h"

namespace {
constexpr int kReleaseCapacity = 4;
KrRxClassAttachmentRelease releases[kReleaseCapacity];
int releaseCount = 0;
}  // namespace

bool krrxAddClassAttachmentRelease(KrRxClassAttachmentRelease release) {
  if (releaseCount == kReleaseCapacity) krrx_abort(L"Too many class attachment kinds.");
  releases[releaseCount++] = release;
  return true;
}

void krrxReleaseClassAttachments(KrRxImpClass* cls) {
  for (int i = 0; i < releaseCount; ++i) releases[i](cls);
}
