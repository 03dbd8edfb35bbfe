#pragma once
/// @file
/// Interned names: every distinct name, in any mix of upper and lower case,
/// gets one process-wide identity that callers compare by address alone.

#include "krexport.h"

/// An interned name: one object per name ignoring case, compared by address.
class KR1ST_API KrUniqueString {
 public:
  /// The identity of name, the same for every spelling that differs only in
  /// case; null for an empty or null name. An identity is a serial number
  /// (from 0x110000, past every character code), never an address to read.
  static const KrUniqueString* Intern(const wchar_t* name);
};
