// SPDX-License-Identifier: MIT
// The compiler has no __try, but its exceptions are unwound by the system. A vectored handler lets a fault
// continue in a function that throws, as if the faulting instruction had called it.
#include "foundation/Kelvane.h"

#include <mutex>

namespace
{

// The system's own slots: thread_local may allocate on a thread's first use, and the handler must not.
const DWORD gGuardsSlot = TlsAlloc();

std::intptr_t Guards()
{
    return reinterpret_cast<std::intptr_t>(TlsGetValue(gGuardsSlot));
}

void SetGuards(std::intptr_t guards)
{
    TlsSetValue(gGuardsSlot, reinterpret_cast<void*>(guards));
}

bool IsHardwareFault(DWORD code)
{
    switch (code)
    {
    case EXCEPTION_ACCESS_VIOLATION:
    case EXCEPTION_DATATYPE_MISALIGNMENT:
    case EXCEPTION_IN_PAGE_ERROR:
    case EXCEPTION_ILLEGAL_INSTRUCTION:
    case EXCEPTION_PRIV_INSTRUCTION:
    case EXCEPTION_INT_DIVIDE_BY_ZERO:
    case EXCEPTION_INT_OVERFLOW:
    case EXCEPTION_FLT_DIVIDE_BY_ZERO:
    case EXCEPTION_FLT_INVALID_OPERATION:
    case EXCEPTION_FLT_OVERFLOW:
    case EXCEPTION_FLT_UNDERFLOW:
    case EXCEPTION_FLT_INEXACT_RESULT:
    case EXCEPTION_FLT_DENORMAL_OPERAND:
        return true;
    default:
        return false;
    }
}

} // namespace

extern "C" [[noreturn, gnu::used]] void KelvaneThrowFault(DWORD code)
{
    throw SEHException(code);
}

// The stack at a fault may have either alignment. With the frame pointer noted, the unwinder finds the way
// back over the gap.
extern "C" void KelvaneFaultEntry();
__asm__(".text\n"
        ".p2align 4\n"
        ".globl KelvaneFaultEntry\n"
        ".def KelvaneFaultEntry; .scl 2; .type 32; .endef\n"
        ".seh_proc KelvaneFaultEntry\n"
        "KelvaneFaultEntry:\n"
        "pushq %rbp\n"
        ".seh_pushreg %rbp\n"
        "movq %rsp, %rbp\n"
        ".seh_setframe %rbp, 0\n"
        ".seh_endprologue\n"
        "andq $-16, %rsp\n"
        "subq $32, %rsp\n"
        "call KelvaneThrowFault\n"
        "nop\n"
        ".seh_endproc\n");

namespace
{

LONG CALLBACK OnFault(EXCEPTION_POINTERS* fault)
{
    const DWORD code = fault->ExceptionRecord->ExceptionCode;
    if (Guards() == 0 || !IsHardwareFault(code))
        return EXCEPTION_CONTINUE_SEARCH;
    CONTEXT& context = *fault->ContextRecord;
    context.Rsp -= sizeof(DWORD64);
    *reinterpret_cast<DWORD64*>(context.Rsp) = context.Rip;
    context.Rip = reinterpret_cast<DWORD64>(&KelvaneFaultEntry);
    context.Rcx = code;
    return EXCEPTION_CONTINUE_EXECUTION;
}

} // namespace

CatchSEH::CatchSEH()
{
    static void* const handler = AddVectoredExceptionHandler(1, OnFault);
    static_cast<void>(handler);
    SetGuards(Guards() + 1);
}

CatchSEH::~CatchSEH()
{
    SetGuards(Guards() - 1);
}

SEHException::SEHException(unsigned long code) : mCode(code) {}

unsigned long SEHException::Code() const noexcept
{
    return mCode;
}

const char* SEHException::what() const noexcept
{
    return "hardware fault";
}
