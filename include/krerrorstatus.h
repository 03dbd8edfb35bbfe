#pragma once
/// @file
/// The result of every fallible operation of the runtime: 0 is success.

namespace Kesu {

/// Result codes of fallible operations; eOk (0) is success.
enum ErrorStatus : int {
  eOk = 0,
  eNotApplicable = 1,      ///< not readable / not writable / not implemented
  eNotSupported = 2,
  eInvalidInput = 3,       ///< bad argument or wrong object kind
  eOutOfMemory = 6,
  eKeyNotFound = 22,
  eDuplicateKey = 23,
  eInvalidIndex = 24,
  eWrongObjectType = 34,
  eOutOfRange = 151,       ///< value out of range for the destination type
};

}  // namespace Kesu
