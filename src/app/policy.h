// "Resume next", the policy of the start sequence: a statement that fails is skipped and the next one runs.
// It stands as a piece of its own so that every line of the sequence shows what its failure does.
#pragma once

#include <utility>

#include "base/errors.h"

namespace zentaq {

/// The policy over one sequence. Once `ended` holds the rest of the sequence is left out.
class ResumeNext {
 public:
    explicit ResumeNext(const bool& ended) : ended_(ended) {}

    /// Runs a statement; its failure is passed over in silence. True when it ran to its end.
    template <typename Statement>
    bool statement(Statement&& run) const {
        return !ended_ && skipFailing(std::forward<Statement>(run));
    }

    /// Runs a block under a condition. kept: a condition that fails counts as met, because what stands next
    /// to it is the first statement of its block. So a setting that was never written switches its block on.
    template <typename Condition, typename Block>
    void guarded(Condition&& condition, Block&& block) const {
        bool met = true;
        statement([&] { met = std::forward<Condition>(condition)(); });
        if (met) statement(std::forward<Block>(block));
    }

    /// As guarded(), with a block for a condition that is not met.
    template <typename Condition, typename Block, typename Otherwise>
    void guarded(Condition&& condition, Block&& block, Otherwise&& otherwise) const {
        bool met = true;
        statement([&] { met = std::forward<Condition>(condition)(); });
        if (met) {
            statement(std::forward<Block>(block));
        } else {
            statement(std::forward<Otherwise>(otherwise));
        }
    }

 private:
    const bool& ended_;
};

}  // namespace zentaq
