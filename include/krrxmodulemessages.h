#pragma once
/// @file
/// The messages that the runtime and the host send to a module's entry point.

namespace KrRx {

/// The message codes a module's entry point receives; codes past the runtime's own are the host's.
enum AppMsgCode : int {
  kNullMsg = 0,
  kAppMsgInit = 1,         ///< sent once after the module is mapped; packet: its KrRxGenHand
  kAppMsgUnload = 2,       ///< sent before the module is released; same packet
  kDependencyMsg = 10,     ///< a service of the module gained its first dependant; packet: the service
  kNoDependencyMsg = 11,   ///< a service of the module lost its last dependant; packet: the service
};

/// 0 is success, anything else failure; 3 is a fault caught in the call.
enum AppRetCode : int { kRetOK = 0, kRetError = 3 };

}  // namespace KrRx

// A module's exported "krrxEntryPoint".
/// A module's entry point: answers a message with its packet; kRetOK (0) is success.
typedef KrRx::AppRetCode (*KrRxAppEntryPoint)(KrRx::AppMsgCode message, void* packet);

namespace KesuApp {

/// Why an application is loaded; an application is loaded for a reason only
/// when its load-control flags share a bit with it. Other bits are the host's.
enum LoadReasons : int {
  kLoadByName = 0x08,     ///< by name, or because another application triggers it
  kLoadDisabled = 0x10,   ///< as a load-control flag: never loaded on demand
};

}  // namespace KesuApp
