#include "File.h"

#include "Interrupt.h"

#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <poll.h>
#include <sys/stat.h>
#include <unistd.h>
#include <utility>

namespace OrvUQL::Tool {

namespace {

bool WriteAll(int handle, std::string_view bytes) {
    while (!bytes.empty()) {
        const ssize_t written = ::write(handle, bytes.data(), bytes.size());
        if (written < 0) {
            if (errno == EINTR) {
                continue;
            }
            if (errno == EAGAIN) { // somebody made the stream non-blocking
                pollfd wait{handle, POLLOUT, 0};
                ::poll(&wait, 1, -1);
                continue;
            }
            return false;
        }
        bytes.remove_prefix(static_cast<std::size_t>(written));
    }
    return true;
}

/// False if the user does not want to wait any longer.
bool WaitForInput(int handle) {
    const int interruption = InterruptWatch::GetDescriptor();
    if (interruption < 0) {
        return true;
    }
    pollfd waits[] = {{handle, POLLIN, 0}, {interruption, POLLIN, 0}};
    while (::poll(waits, 2, -1) < 0 && errno == EINTR) {}
    return waits[1].revents == 0;
}

} // namespace

class InputFile::Source {
public:
    explicit Source(int openedHandle) : handle(openedHandle) {}
    Source(const Source&) = delete;
    Source& operator=(const Source&) = delete;
    ~Source() {
        if (handle > STDIN_FILENO) {
            ::close(handle);
        }
    }

    const int handle;
    bool isRegular = false;
    std::uint64_t size = 0; // of a regular file
};

InputFile::InputFile(std::string filePath) : path(std::move(filePath)) {}
InputFile::InputFile(InputFile&& other) noexcept = default;
InputFile::~InputFile() = default;

bool InputFile::Open(std::string& error) {
    const int handle = path == "-" ? STDIN_FILENO : ::open(path.c_str(), O_RDONLY | O_CLOEXEC);
    if (handle < 0) {
        error = std::strerror(errno);
        return false;
    }
    source = std::make_unique<Source>(handle);
    struct stat status = {};
    if (::fstat(handle, &status) == 0 && S_ISREG(status.st_mode)) {
        source->isRegular = true;
        source->size = static_cast<std::uint64_t>(status.st_size);
    }
    return true;
}

std::ptrdiff_t InputFile::Read(char* buffer, std::size_t size, std::string& error) {
    for (;;) {
        if (!source->isRegular && !WaitForInput(source->handle)) {
            return 0;
        }
        const ssize_t count = ::read(source->handle, buffer, size);
        if (count >= 0) {
            return count;
        }
        if (errno == EAGAIN) {
            pollfd wait{source->handle, POLLIN, 0};
            ::poll(&wait, 1, -1);
        } else if (errno != EINTR) {
            error = std::strerror(errno);
            return -1;
        }
    }
}

std::optional<std::uint64_t> InputFile::GetSize() const {
    return source->isRegular ? std::optional(source->size) : std::nullopt;
}

bool InputFile::WouldWait() const {
    pollfd question{source->handle, POLLIN, 0};
    return ::poll(&question, 1, 0) == 0;
}

bool WriteToStandardOutput(std::string_view bytes, std::string& error) {
    if (WriteAll(STDOUT_FILENO, bytes)) {
        return true;
    }
    error = errno == EPIPE ? "" : std::strerror(errno);
    return false;
}

void WriteToStandardError(std::string_view bytes) { WriteAll(STDERR_FILENO, bytes); }

bool IsStandardInputTerminal() { return ::isatty(STDIN_FILENO) != 0; }
bool IsStandardOutputTerminal() { return ::isatty(STDOUT_FILENO) != 0; }
bool IsStandardErrorTerminal() { return ::isatty(STDERR_FILENO) != 0; }

} // namespace OrvUQL::Tool
