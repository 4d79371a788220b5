// What a piece of work beside the program's thread shares with it: whether it has ended, and whether it
// shall.
#pragma once

#include <atomic>
#include <functional>
#include <memory>
#include <utility>

#include "platform/side_work.h"

namespace zentaq {

struct SideJob {
    std::atomic<bool> cancelled = false;
    std::atomic<bool> ended = false;
    std::atomic<double> share = 0;  ///< of the work that is done, from 0 to 1
};

/// Runs `work` on what it shares; at once where there is nothing beside the program's thread.
template <typename Job>
void beginSideJob(SideWork* side, const std::shared_ptr<Job>& job, std::function<void(Job&)> work) {
    const auto run = [job, work = std::move(work)] {
        work(*job);
        job->ended = true;
    };
    side == nullptr ? run() : side->begin(run);
}

}  // namespace zentaq
