#include "app/saving.h"

#include <algorithm>
#include <utility>

#include "app/session.h"
#include "base/errors.h"

namespace zentaq {

Saving::Saving(Session& session, FileWriter* writer)
    : session_(session), writer_(writer != nullptr ? *writer : inline_) {}

void Saving::begin(FileSave save, Ended ended) {
    if (running()) throw Failure("A save is still running.");
    ended_ = std::move(ended);
    beganUs_ = session_.platform().clock.monotonicUs();
    try {
        writer_.begin(std::move(save));
    } catch (...) {
        ended_ = nullptr;  // nothing runs
        throw;
    }
    if (auto saved = writer_.outcome()) finish(*saved);
}

// A tick shows no boxes: what follows the save comes from the event loop.
void Saving::poll() {
    if (posted_ || (!running() && waiting_.empty())) return;
    if (running() && !saved_) saved_ = writer_.outcome();
    if (!mayGoOn()) return;
    posted_ = true;
    session_.windows().later([this] {
        posted_ = false;
        if (mayGoOn()) goOn();  // else a later tick asks again
    });
}

// Nothing follows under a box: the command that showed it still stands on what would be closed. Nor under the
// reading of a file.
bool Saving::mayGoOn() const {
    const bool ended = running() ? saved_.has_value() : !waiting_.empty();
    return ended && !reading_ && !runsWaiting_ && !session_.windows().boxOpen();
}

void Saving::goOn() {
    if (!running()) return runWaiting();
    const FileSaved saved = *std::exchange(saved_, std::nullopt);
    finish(saved);
}

void Saving::finish(const FileSaved& saved) {
    const Ended ended = std::exchange(ended_, nullptr);
    run("Save", [&] { ended(saved); });
    runWaiting();
}

void Saving::runWaiting() {
    if (runsWaiting_) return;
    const FlagScope scope(runsWaiting_);
    while (!running() && !reading_ && !waiting_.empty()) {
        const Waiting next = std::move(waiting_.front());
        waiting_.erase(waiting_.begin());
        run(next.name, next.command);
    }
}

void Saving::run(const std::string& name, const std::function<void()>& command) {
    endOnFailure(command, [&](const std::string& why) {
        session_.sysLog(name + ": " + why);
        session_.show({"Zentaq4", why, Icon::Critical, Buttons::Ok});
    });
}

bool Saving::putsOff(std::string_view name, std::function<void()> command) {
    if (!running() && !reading_) return false;
    const bool known = std::ranges::any_of(waiting_, [&](const Waiting& one) { return one.name == name; });
    if (known) return true;
    session_.sysLog(std::string(name) + (reading_ ? " waits until the file has been read."
                                                  : " waits until the calibration is on the disk."));
    waiting_.push_back({std::string(name), std::move(command)});
    return true;
}

bool Saving::putsOffWhileReading(std::string_view name, std::function<void()> command) {
    return reading_ && putsOff(name, std::move(command));
}

}  // namespace zentaq
