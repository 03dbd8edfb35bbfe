#pragma once
/// @file
/// Symbol visibility of kr1st20.dll: exported while the library is built,
/// imported by hosts and modules.

/// Marks the exports of kr1st20.dll: dllexport while the library is built, dllimport for users.
#if defined(KR1ST_BUILDING)
#define KR1ST_API __declspec(dllexport)
#else
#define KR1ST_API __declspec(dllimport)
#endif
