#include "modules/KrRxTrustCheck.h"

#include <softpub.h>

static_assert(sizeof(WINTRUST_DATA) == 80 && sizeof(WINTRUST_FILE_INFO) == 32,
              "the trust request has the 80-byte form with a 32-byte file record");

LONG krrxVerifyTrust(KrRxWinVerifyTrustEx verify, const wchar_t* path) {
  WINTRUST_FILE_INFO file = {sizeof(WINTRUST_FILE_INFO), path, nullptr, nullptr};
  WINTRUST_DATA data = {};
  data.cbStruct = sizeof(WINTRUST_DATA);
  data.dwUIChoice = WTD_UI_NONE;
  data.fdwRevocationChecks = WTD_REVOKE_NONE;
  data.dwUnionChoice = WTD_CHOICE_FILE;
  data.pFile = &file;
  data.dwProvFlags = WTD_REVOCATION_CHECK_NONE;
  GUID action = WINTRUST_ACTION_GENERIC_VERIFY_V2;
  return verify(static_cast<HWND>(INVALID_HANDLE_VALUE), &action, &data);
}
