// Writes what a terminal, a pipe or a file takes at this moment and drops the rest, for words that are worth
// less than what goes on meanwhile. Others that share the descriptor notice nothing.
#pragma once

#include <string_view>

#include "platform/posix_handle.h"

namespace zentaq {

class DroppingOutput {
 public:
    explicit DroppingOutput(int descriptor);

    /// Never waits and never fails.
    void write(std::string_view text) const;

 private:
    enum class Way { Plain, Socket, OwnTerminal, Polled };

    int descriptor_;
    PosixHandle own_;  ///< the same terminal or pipe, set not to wait
    Way way_ = Way::Plain;
};

}  // namespace zentaq
