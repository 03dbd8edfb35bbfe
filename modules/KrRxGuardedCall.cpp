// The guard is a small assembly thunk whose unwind data names a language
// handler of our own. When a fault passes the thunk's frame during the
// search phase and catching is on (bCatchSendAppExceptions, or the thunk's
// own catch-always argument, kept in its frame), the handler unwinds the
// stack to the thunk's recovery point (running the destructors of every
// frame in between), where the thunk returns false.

#include "modules/KrRxGuardedCall.h"

#include <windows.h>

#include "krrxdynamiclinker.h"

extern "C" {
// Calls function(argument); returns true, or false when resumed at the recovery point.
bool krrxGuardedInvoke(void (*function)(void*), void* argument, bool catchAlways);
void krrxGuardedInvokeRecovery();
EXCEPTION_DISPOSITION krrxGuardHandler(EXCEPTION_RECORD* record, void* establisherFrame, CONTEXT* context,
                                       DISPATCHER_CONTEXT* dispatcher);
}

// 40 bytes of frame: the callee's 32-byte home area, then the catch-always
// byte at offset 32 of the established frame; 16-byte alignment at the call.
asm(R"(
    .text
    .p2align 4
    .globl krrxGuardedInvoke
    .def krrxGuardedInvoke; .scl 2; .type 32; .endef
krrxGuardedInvoke:
    .seh_proc krrxGuardedInvoke
    .seh_handler krrxGuardHandler, @except
    subq $40, %rsp
    .seh_stackalloc 40
    .seh_endprologue
    movb %r8b, 32(%rsp)
    movq %rcx, %rax
    movq %rdx, %rcx
    callq *%rax
    movl $1, %eax
    addq $40, %rsp
    ret
    .globl krrxGuardedInvokeRecovery
krrxGuardedInvokeRecovery:
    xorl %eax, %eax
    addq $40, %rsp
    ret
    .seh_endproc
)");

namespace {

constexpr size_t kCatchAlwaysOffset = 32;

// C++ exceptions of GCC ('GCC' in the low bytes) and of MSVC carry objects
// that the host is meant to catch.
bool isCxxException(DWORD code) { return (code & 0x00FFFFFFu) == 0x00474343u || code == 0xE06D7363u; }

struct EntryPointCall {
  KrRxAppEntryPoint entryPoint;
  KrRx::AppMsgCode code;
  void* packet;
  KrRx::AppRetCode result;
};

void callEntryPoint(void* call) {
  auto* c = static_cast<EntryPointCall*>(call);
  c->result = c->entryPoint(c->code, c->packet);
}

}  // namespace

EXCEPTION_DISPOSITION krrxGuardHandler(EXCEPTION_RECORD* record, void* establisherFrame, CONTEXT* context,
                                       DISPATCHER_CONTEXT* dispatcher) {
  if (record->ExceptionFlags & (EXCEPTION_UNWINDING | EXCEPTION_EXIT_UNWIND)) return ExceptionContinueSearch;
  bool catchAlways = static_cast<const bool*>(establisherFrame)[kCatchAlwaysOffset];
  if (!(bCatchSendAppExceptions || catchAlways) || isCxxException(record->ExceptionCode))
    return ExceptionContinueSearch;
  RtlUnwindEx(establisherFrame, reinterpret_cast<void*>(&krrxGuardedInvokeRecovery), record, nullptr, context,
              dispatcher->HistoryTable);
  return ExceptionContinueSearch;
}

bool krrxGuardedCall(void (*function)(void*), void* argument) { return krrxGuardedInvoke(function, argument, false); }

bool krrxFaultCatchingCall(void (*function)(void*), void* argument) {
  return krrxGuardedInvoke(function, argument, true);
}

KrRx::AppRetCode krrxGuardedEntryPointCall(KrRxAppEntryPoint entryPoint, KrRx::AppMsgCode code, void* packet) {
  EntryPointCall call = {entryPoint, code, packet, KrRx::kRetOK};
  return krrxGuardedInvoke(callEntryPoint, &call, false) ? call.result : KrRx::kRetError;
}
