// The entries of earlier sessions, and of those that go on at the same time.
#pragma once

#include <histedit.h>
#include <string>

namespace OrvUQL::Tool {

/// A file in libedit's own format, which several sessions may add to at once: each entry is appended on its own, and
/// whoever reads or writes holds the file's lock. What goes wrong is ignored, for a session goes on without it.
class HistoryFile {
public:
    /// An empty path: there is no file.
    explicit HistoryFile(std::string filePath) : path(std::move(filePath)) {}

    /// The entries kept in memory, and in the file at least.
    static constexpr int mostEntries = 1000;

    /// Adds what the file holds to `entries`. A file that has become long is cut to its last entries.
    void Load(History* entries) const;
    /// Adds an entry to the file, which is made if need be, with its folder.
    void Append(const std::string& entry) const;

private:
    std::string path;
};

} // namespace OrvUQL::Tool
