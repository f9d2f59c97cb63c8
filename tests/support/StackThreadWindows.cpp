#include "support/StackThread.h"

#include <gtest/gtest.h>

#include <windows.h>

namespace OrvUQL::Tests {

namespace {

DWORD WINAPI RunBody(void* body) {
    (*static_cast<const std::function<void()>*>(body))();
    return 0;
}

} // namespace

void RunOnThread(std::size_t stackBytes, const std::function<void()>& body) {
    // Without the flag the size is only what is committed at first, and the stack as large as the program's own.
    const HANDLE thread = CreateThread(nullptr, stackBytes, RunBody, const_cast<std::function<void()>*>(&body),
                                       STACK_SIZE_PARAM_IS_A_RESERVATION, nullptr);
    ASSERT_NE(thread, nullptr);
    EXPECT_EQ(WaitForSingleObject(thread, INFINITE), WAIT_OBJECT_0);
    CloseHandle(thread);
}

} // namespace OrvUQL::Tests
