#include "support/StackThread.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <malloc.h>

#include <windows.h>

namespace OrvUQL::Tests {

namespace {

struct Start {
    std::size_t stackBytes;
    const std::function<void()>* body;
};

DWORD WINAPI RunBody(void* parameter) {
    const Start& start = *static_cast<const Start*>(parameter);
    // The size asked for is the least: Wine makes no stack smaller than a mebibyte. What is too much is used up here.
    ULONG_PTR low = 0;
    ULONG_PTR top = 0;
    GetCurrentThreadStackLimits(&low, &top);
    if (top - low > start.stackBytes) {
        auto* const excess = static_cast<volatile char*>(_alloca(top - low - start.stackBytes));
        *excess = 0;
    }
    (*start.body)();
    return 0;
}

} // namespace

void RunOnThread(std::size_t stackBytes, const std::function<void()>& body) {
    Start start{stackBytes, &body};
    // Without the flag the size is only what is committed at first, and the stack as large as the program's own.
    const HANDLE thread =
        CreateThread(nullptr, stackBytes, RunBody, &start, STACK_SIZE_PARAM_IS_A_RESERVATION, nullptr);
    ASSERT_NE(thread, nullptr);
    EXPECT_EQ(WaitForSingleObject(thread, INFINITE), WAIT_OBJECT_0);
    CloseHandle(thread);
}

} // namespace OrvUQL::Tests
