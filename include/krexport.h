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

/// Marks the inline members of the library's class templates and of the
/// class boilerplate. The library cannot export inline members of its
/// template instantiations, so these are inlined even in a module built
/// without optimisation, which would otherwise import them and fail to link.
#define KR1ST_INLINE __attribute__((always_inline))
