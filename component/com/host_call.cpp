#include "component/com/host_call.h"

#include <windows.h>

// Both variants install one handler for structured exceptions. It takes only the C++ exceptions of
// Microsoft's compiler, unwinds the frames they passed and makes the call return 0.

namespace {

constexpr DWORD kMicrosoftException = 0xE06D7363;

bool IsTaken(const EXCEPTION_RECORD& record) {
  constexpr DWORD kUnwinding = 2, kExitUnwinding = 4;
  return record.ExceptionCode == kMicrosoftException &&
         (record.ExceptionFlags & (kUnwinding | kExitUnwinding)) == 0;
}

}  // namespace

extern "C" {

#ifdef _WIN64

extern char kxrestore_call_ended;  // where kxrestore_call_host continues

// The system finds this handler through the unwind tables of the module.
EXCEPTION_DISPOSITION kxrestore_host_threw(EXCEPTION_RECORD* record, void* frame, CONTEXT* context,
                                           DISPATCHER_CONTEXT* dispatcher) {
  if (IsTaken(*record))
    RtlUnwindEx(frame, &kxrestore_call_ended, record, nullptr, context, dispatcher->HistoryTable);
  return ExceptionContinueSearch;
}

// int kxrestore_call_host(Routine routine, void* context)
asm(".text\n"
    ".globl kxrestore_call_host\n"
    ".def kxrestore_call_host; .scl 2; .type 32; .endef\n"
    ".seh_proc kxrestore_call_host\n"
    "kxrestore_call_host:\n"
    "  subq $40, %rsp\n"
    "  .seh_stackalloc 40\n"
    "  .seh_handler kxrestore_host_threw, @except\n"
    "  .seh_endprologue\n"
    "  movq %rcx, %rax\n"
    "  movq %rdx, %rcx\n"
    "  call *%rax\n"
    "  movl $1, %eax\n"
    ".globl kxrestore_call_ended\n"
    "kxrestore_call_ended:\n"  // eax: 1, or what RtlUnwindEx was given
    "  addq $40, %rsp\n"
    "  ret\n"
    "  .seh_endproc\n");

#else

// A link of the thread's chain of handlers.
struct HostFrame {
  HostFrame* next;
  EXCEPTION_DISPOSITION(__cdecl* handler)(EXCEPTION_RECORD*, HostFrame*, CONTEXT*, void*);
};

EXCEPTION_DISPOSITION __cdecl kxrestore_host_threw(EXCEPTION_RECORD* record, HostFrame* frame, CONTEXT*,
                                                   void*) {
  if (!IsTaken(*record)) return ExceptionContinueSearch;
  // RtlUnwind preserves only the stack pointer; the frame holds the stack pointer to continue with.
  asm volatile(
      "pushl %[frame]\n"
      "pushl $0\n"
      "pushl %[record]\n"
      "pushl $1f\n"
      "pushl %[frame]\n"
      "call _RtlUnwind@16\n"
      "1:\n"
      "popl %%esp\n"
      "jmp _kxrestore_call_ended\n"
      :
      : [frame] "r"(frame), [record] "r"(record)
      : "memory");
  __builtin_unreachable();
}

// int kxrestore_call_host(Routine routine, void* context)
asm(".text\n"
    ".globl _kxrestore_call_host\n"
    "_kxrestore_call_host:\n"
    "  pushl %ebp\n"
    "  movl %esp, %ebp\n"
    "  pushl %ebx\n"
    "  pushl %esi\n"
    "  pushl %edi\n"
    "  pushl $_kxrestore_host_threw\n"
    "  pushl %fs:0\n"
    "  movl %esp, %fs:0\n"
    "  pushl 12(%ebp)\n"
    "  call *8(%ebp)\n"
    "  addl $4, %esp\n"
    "  movl $1, %eax\n"
    "  jmp 2f\n"
    "_kxrestore_call_ended:\n"
    "  xorl %eax, %eax\n"
    "2:\n"
    "  popl %fs:0\n"
    "  addl $4, %esp\n"
    "  popl %edi\n"
    "  popl %esi\n"
    "  popl %ebx\n"
    "  popl %ebp\n"
    "  ret\n");

#endif

}  // extern "C"
