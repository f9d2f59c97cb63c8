#include "Interrupt.h"

#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <fcntl.h>
#include <unistd.h>

namespace OrvUQL::Tool {

namespace {

static_assert(std::atomic<bool>::is_always_lock_free);
std::atomic<bool> isInterrupted = false;
int readEnd = -1;
int writeEnd = -1;
struct sigaction before;
bool isWatching = false;

// A flag alone would be missed by somebody who is about to wait; the pipe ends also a wait that begins later.
extern "C" void NoteInterrupt(int) {
    const int error = errno;
    isInterrupted = true;
    const char byte = 0;
    [[maybe_unused]] const ssize_t written = ::write(writeEnd, &byte, 1);
    errno = error;
}

} // namespace

InterruptWatch::InterruptWatch() {
    isInterrupted = false;
    if (::sigaction(SIGINT, nullptr, &before) != 0 || before.sa_handler == SIG_IGN) {
        return;
    }
    int ends[2];
    if (::pipe(ends) != 0) {
        return;
    }
    readEnd = ends[0];
    writeEnd = ends[1];
    ::fcntl(readEnd, F_SETFD, FD_CLOEXEC);
    ::fcntl(writeEnd, F_SETFD, FD_CLOEXEC);
    struct sigaction action = {};
    action.sa_handler = NoteInterrupt;
    action.sa_flags = static_cast<int>(SA_RESETHAND);
    ::sigemptyset(&action.sa_mask);
    isWatching = ::sigaction(SIGINT, &action, nullptr) == 0;
}

InterruptWatch::~InterruptWatch() {
    if (isWatching) {
        ::sigaction(SIGINT, &before, nullptr);
        isWatching = false;
    }
    if (readEnd >= 0) {
        ::close(readEnd);
        ::close(writeEnd);
        readEnd = -1;
        writeEnd = -1;
    }
}

bool InterruptWatch::IsInterrupted() { return isInterrupted; }

const std::atomic<bool>& InterruptWatch::GetFlag() { return isInterrupted; }

void InterruptWatch::EndProcess() {
    struct sigaction action = {};
    action.sa_handler = SIG_DFL;
    ::sigemptyset(&action.sa_mask);
    ::sigaction(SIGINT, &action, nullptr);
    ::raise(SIGINT);
    std::_Exit(128 + SIGINT); // where the signal is blocked
}

int InterruptWatch::GetDescriptor() { return isWatching ? readEnd : -1; }

} // namespace OrvUQL::Tool
