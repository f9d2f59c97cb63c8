#include "platform/Thread.h"

#include "platform/Pool.h"

#include <windows.h>

namespace OrvUQL::platform {

#if defined(__MINGW32__)
// With `used`: the assembler text that names it is not seen by the compiler. The section's name sorts it between the
// marks of its start and its end.
__attribute__((section(".tls$OrvUQL"), used)) constinit ThreadState orvuqlThreadState;
#else
constinit thread_local ThreadState threadState;
#endif

StackBounds GetStackBounds() noexcept { return KnownStack(); }

namespace {

// Windows calls what the section below lists when a thread ends, on that thread: for the DLL as for a program with
// the static library in it, for threads of every making, and without a value kept for each thread or fiber, as
// FlsAlloc's callbacks would need. Values that are released later still on the same thread, by whoever is called
// after, find the lists closed and go to the heap. When the DLL is unloaded, other threads that have used it and
// still run leave the free blocks of their lists behind: nobody else can reach those.
void WINAPI OnThreadEvent(void*, DWORD reason, void* isProcessEnding) {
    // When the process ends, its memory goes with it, and other threads may have been stopped anywhere.
    if (reason == DLL_THREAD_DETACH || (reason == DLL_PROCESS_DETACH && isProcessEnding == nullptr)) {
        ClosePool();
    }
}

} // namespace

// The list above is installed for all threads.
bool CallAtThreadExit() noexcept { return true; }

// Where it is missing, the destructor is not called.
bool HasMemoryForThreadExit() noexcept { return true; }

} // namespace OrvUQL::platform

#if defined(_MSC_VER) && !defined(__clang__)
#pragma comment(linker, "/INCLUDE:_tls_used")
#pragma comment(linker, "/INCLUDE:orvuqlThreadCallback")
#pragma section(".CRT$XLO", long, read)
extern "C" __declspec(allocate(".CRT$XLO")) const PIMAGE_TLS_CALLBACK orvuqlThreadCallback =
    OrvUQL::platform::OnThreadEvent;
#else
extern "C" __attribute__((section(".CRT$XLO"), used)) const PIMAGE_TLS_CALLBACK orvuqlThreadCallback =
    OrvUQL::platform::OnThreadEvent;
#endif
