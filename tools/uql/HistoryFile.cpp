#include "HistoryFile.h"

#include <cstdio>
#include <fcntl.h>
#include <filesystem>
#include <memory>
#include <sys/file.h>
#include <system_error>
#include <unistd.h>

namespace OrvUQL::Tool {

namespace {

struct CloseFile {
    void operator()(std::FILE* file) const { std::fclose(file); } // and with it goes the lock
};
using File = std::unique_ptr<std::FILE, CloseFile>;

struct EndHistory {
    void operator()(History* entries) const { ::history_end(entries); }
};

/// The file, locked, or null. What is written goes to its end. What was typed is nobody else's business.
File OpenLocked(const std::string& path, int flags) {
    const int handle = ::open(path.c_str(), flags | O_RDWR | O_APPEND | O_CLOEXEC, 0600);
    if (handle < 0) {
        return nullptr;
    }
    File file(::fdopen(handle, "a+"));
    if (!file) {
        ::close(handle);
        return nullptr;
    }
    return ::flock(handle, LOCK_EX) == 0 ? std::move(file) : nullptr;
}

void MakeFolder(const std::string& path) {
    namespace fs = std::filesystem;
    const fs::path folder = fs::path(path).parent_path();
    std::error_code ignored;
    if (fs::create_directories(folder, ignored)) {
        fs::permissions(folder, fs::perms::owner_all, ignored);
    }
}

int CountLines(std::FILE* file) {
    int count = 0;
    std::rewind(file);
    for (int c = std::getc(file); c != EOF; c = std::getc(file)) {
        count += c == '\n' ? 1 : 0;
    }
    return count;
}

/// Writes the entries behind what the file holds, the oldest first, and before the first what a file begins with.
void Write(History* entries, std::FILE* file) {
    std::fseek(file, 0, SEEK_END);
    HistEvent event;
    ::history(entries, &event, H_SAVE_FP, file);
    std::fflush(file);
}

} // namespace

void HistoryFile::Load(History* entries) const {
    const File file = path.empty() ? nullptr : OpenLocked(path, 0);
    if (!file) {
        return;
    }
    HistEvent event;
    ::history(entries, &event, H_LOAD, path.c_str());
    constexpr int mostLines = 2 * mostEntries;
    if (CountLines(file.get()) > mostLines && ::ftruncate(::fileno(file.get()), 0) == 0) {
        Write(entries, file.get());
    }
}

void HistoryFile::Append(const std::string& entry) const {
    if (path.empty()) {
        return;
    }
    MakeFolder(path);
    const File file = OpenLocked(path, O_CREAT);
    const std::unique_ptr<History, EndHistory> single(::history_init()); // the library writes whole histories
    if (file && single) {
        HistEvent event;
        ::history(single.get(), &event, H_SETSIZE, 1);
        ::history(single.get(), &event, H_ENTER, entry.c_str());
        Write(single.get(), file.get());
    }
}

} // namespace OrvUQL::Tool
