// The file of a wire trace: text that is gathered and written in pieces, in a bounded place. When FILE has
// half of the place it becomes FILE.old, whose former content goes.
#pragma once

#include <cstddef>
#include <functional>
#include <string>
#include <string_view>

#include "platform/posix_handle.h"

namespace zentaq {

class TraceStore {
 public:
    /// The first lines of a file; `part` counts the files of a trace from 1.
    using Head = std::function<std::string(int part)>;

    /// About twenty minutes of live values.
    static constexpr std::size_t defaultMost = 32U << 20U;

    /// Begins a new file. A trace that stands there becomes FILE.old; anything else that stands there is left
    /// alone. Throws FileError where that is so, and where the file cannot be written.
    TraceStore(std::string path, Head head, std::size_t mostBytes = defaultMost);

    /// A whole line, without its end. Throws FileError as `flush`.
    void add(std::string_view line);
    /// Writes what was gathered. Throws FileError, such as for a full disk or a deleted file.
    void flush();

    /// Where the former half of a trace stands.
    static std::string olderPath(const std::string& path) { return path + ".old"; }

 private:
    void begin();
    void turn();
    void refuseDeleted() const;

    std::string path_;
    Head head_;
    std::size_t mostBytes_;
    PosixHandle file_;
    int part_ = 0;
    std::size_t written_ = 0;
    std::string gathered_;
};

}  // namespace zentaq
