#include "Interrupt.h"

#include <windows.h>

namespace OrvUQL::Tool {

namespace {

std::atomic<bool> isInterrupted = false;

/// Runs on a thread of its own. True: it has been dealt with.
BOOL WINAPI NoteInterrupt(DWORD event) {
    const bool isFirst = (event == CTRL_C_EVENT || event == CTRL_BREAK_EVENT) && !isInterrupted.exchange(true);
    return isFirst ? TRUE : FALSE;
}

} // namespace

InterruptWatch::InterruptWatch() {
    isInterrupted = false;
    ::SetConsoleCtrlHandler(NoteInterrupt, TRUE);
}

InterruptWatch::~InterruptWatch() { ::SetConsoleCtrlHandler(NoteInterrupt, FALSE); }

bool InterruptWatch::IsInterrupted() { return isInterrupted; }

const std::atomic<bool>& InterruptWatch::GetFlag() { return isInterrupted; }

void InterruptWatch::EndProcess() { ::ExitProcess(static_cast<UINT>(STATUS_CONTROL_C_EXIT)); }

int InterruptWatch::GetDescriptor() { return -1; }

} // namespace OrvUQL::Tool
