#include "trace/wire_trace.h"

#include <algorithm>
#include <utility>

#include "base/errors.h"
#include "base/number_text.h"
#include "base/shown_text.h"

namespace zentaq {

namespace {

/// Bytes that come closer upon each other than this belong to one lump.
constexpr std::int64_t lumpPauseUs = 2000;

constexpr std::int64_t flushUs = 1'000'000;
/// Bytes that nobody waits for are written down when the line has been quiet for so long.
constexpr std::int64_t quietUs = 50'000;
/// No port holds more that nobody asked for.
constexpr std::size_t mostPending = 4096;
constexpr std::size_t mostLumpsTold = 6;
constexpr std::size_t longestNote = 400;

std::string milliseconds(std::int64_t us) {
    return formatNumber(static_cast<double>(us) / 1000, "##0.0") + " ms";
}

std::string count(std::size_t number, std::string_view one, std::string_view many) {
    return numberText(static_cast<int>(number)) + " " + std::string(number == 1 ? one : many);
}

std::string portText(const PortInfo& port) {
    return numberText(port.number) + ", " + port.device +
           (port.description.empty() ? "" : ", " + port.description);
}

}  // namespace

// ---- The file

void WireTrace::start(const std::string& path, int linkedSlot, bool oldFirmware) {
    stop();
    begun_ = clock_.dateText() + " " + clock_.timeText();
    startUs_ = flushedUs_ = clock_.monotonicUs();
    store_.emplace(
        path, [this](int part) { return head(part); }, mostBytes_);
    words_ = {};
    words_.unit(linkedSlot, oldFirmware);
    asked_ = waiting_ = false;
    pending_.clear();
    lumps_.clear();
    begunBytes_ = 0;
    kept_.clear();
    addEvent(startUs_, {}, "the trace begins" + words_.unitText());
}

void WireTrace::stop() {
    if (!running()) return;
    const std::int64_t nowUs = clock_.monotonicUs();
    const std::string left = unanswered(nowUs);
    settleUnfinished(nowUs);
    addEvent(nowUs, {}, "the trace ends" + left);
    flush();
    store_.reset();
}

std::string WireTrace::head(int part) const {
    return std::string(traceMagic) + "\nprogram  " + ZENTAQ_VERSION + "\nbegun    " + shownLine(begun_) +
           "\npart     " + numberText(part) + "\nport     " +
           (port_ ? shownLine(portText(*port_)) + ", 38400,N,8,1" : "none is open") +
           "\ncolumns  milliseconds since the beginning, > written or < received or * port and "
           "program, number of bytes, meaning | bytes in hexadecimal; ! is what went wrong\n\n";
}

void WireTrace::add(const TraceLine& line) {
    if (!running()) return;
    endOnFailure([&] { store_->add(formatTraceLine(line)); }, [&](const std::string& why) { fail(why); });
    if (!line.problem.empty() || startUs_ + line.timeUs - flushedUs_ >= flushUs) flush();
}

void WireTrace::flush() {
    if (!running()) return;
    flushedUs_ = clock_.monotonicUs();
    endOnFailure([&] { store_->flush(); }, [&](const std::string& why) { fail(why); });
}

// The line goes on: a trace is not worth a tune.
void WireTrace::fail(const std::string& why) {
    store_.reset();
    if (onFailure_) onFailure_(why);
}

TraceLine WireTrace::lineAt(TraceDirection direction, std::int64_t nowUs) const {
    return {.timeUs = std::max<std::int64_t>(nowUs - startUs_, 0), .direction = direction};
}

TraceLine WireTrace::received(std::string bytes, std::int64_t nowUs) const {
    TraceLine line = lineAt(TraceDirection::Received, nowUs);
    line.bytes = std::move(bytes);
    return line;
}

void WireTrace::addEvent(std::int64_t nowUs, std::string_view problem, std::string text) {
    TraceLine line = lineAt(TraceDirection::Event, nowUs);
    line.problem = problem;
    line.text = std::move(text);
    add(line);
}

// ---- The program

void WireTrace::note(std::string_view text) {
    if (!running()) return;
    addEvent(clock_.monotonicUs(), {}, "program: " + std::string(text.substr(0, longestNote)));
}

void WireTrace::linkLost() {
    if (!running() || !words_.knowsUnit()) return;
    const std::int64_t nowUs = clock_.monotonicUs();
    settle(nowUs);
    giveUp(nowUs);
    words_.unit(0, false);
    addEvent(nowUs, trouble::linkLost, "the unit is given up");
}

void WireTrace::tend() {
    if (!running()) return;
    const std::int64_t nowUs = clock_.monotonicUs();
    if (!waiting_ && !lumps_.empty() && nowUs - lumps_.back().us >= quietUs) settle(nowUs);
    if (nowUs - flushedUs_ >= flushUs) flush();
}

// ---- The port

void WireTrace::opened(const PortInfo& port, std::int64_t nowUs) {
    port_ = port;
    if (running()) addEvent(nowUs, {}, std::string(portOpened) + portText(port));
}

void WireTrace::closed(std::int64_t nowUs) {
    port_.reset();
    if (!running()) return;
    const std::string left = unanswered(nowUs);
    settleUnfinished(nowUs);
    addEvent(nowUs, {}, "port closed" + left);
    flush();
}

void WireTrace::lost(const PortInfo& port, std::int64_t nowUs) {
    if (!running()) return;
    const std::string left = unanswered(nowUs);
    settle(nowUs);
    waiting_ = false;
    addEvent(nowUs, trouble::portLost, "the port has vanished: " + portText(port) + left);
}

void WireTrace::returned(const PortInfo& port, std::int64_t nowUs) {
    port_ = port;
    if (running()) addEvent(nowUs, {}, "the port is back: " + portText(port));
}

std::string WireTrace::unanswered(std::int64_t nowUs) const {
    if (!waiting_) return {};
    return "; " + words_.key() + " was written " + milliseconds(nowUs - askedUs_) + " before";
}

// ---- What passes

void WireTrace::written(std::string_view bytes, std::int64_t nowUs) {
    if (!running()) return;
    settle(nowUs);
    giveUp(nowUs);
    TraceLine line = lineAt(TraceDirection::Written, nowUs);
    line.bytes = bytes;
    words_.command(line);
    asked_ = waiting_ = true;
    askedUs_ = nowUs;
    add(line);
}

void WireTrace::arrived(std::span<const std::uint8_t> bytes, std::int64_t nowUs) {
    if (!running()) return;
    if (pending_.size() + bytes.size() > mostPending) settle(nowUs);
    pending_.append(reinterpret_cast<const char*>(bytes.data()), bytes.size());
    // A port that gives its bytes one by one makes no lumps: those have a pause between them.
    if (lumps_.empty() || nowUs - lumps_.back().us >= lumpPauseUs) lumps_.push_back({0, nowUs, nowUs});
    lumps_.back().bytes += bytes.size();
    lumps_.back().us = nowUs;
}

void WireTrace::delivered(std::size_t bytes, std::int64_t nowUs) {
    if (!running()) return;
    const std::size_t count = begunBytes_ + bytes;
    if (waiting_ && restFollows(count)) {
        begunBytes_ = count;
        return;
    }
    std::size_t before = 0;
    const std::string lumps = lumpsText();
    std::string batch = batchOf(count, nowUs, before);
    if (!waiting_) return tellUnasked(std::move(batch), nowUs);
    TraceLine line = received(std::move(batch), nowUs);
    words_.reply(line);
    line.text += ", after " + milliseconds(nowUs - askedUs_) + lumps;
    if (before > 0) line.text += "; the first " + numberText(static_cast<int>(before)) + " came before";
    waiting_ = false;
    add(line);
}

std::string WireTrace::takePending() {
    lumps_.clear();
    begunBytes_ = 0;
    return std::exchange(pending_, {});
}

bool WireTrace::restFollows(std::size_t count) {
    const std::string held = kept_ + pending_;
    return words_.awaitsRest(std::string_view(held).substr(held.size() - std::min(count, held.size())));
}

/// The bytes that the program is given: what came since, with what the port had held before; or the end of
/// it, where the beginning was thrown away.
std::string WireTrace::batchOf(std::size_t count, std::int64_t nowUs, std::size_t& before) {
    std::string batch = takePending();
    if (batch.size() > count) {
        tellUnasked(batch.substr(0, batch.size() - count), nowUs);
        batch.erase(0, batch.size() - count);
    }
    before = std::min(count - batch.size(), kept_.size());
    batch.insert(0, kept_, kept_.size() - before, before);
    kept_.clear();
    return batch;
}

std::string WireTrace::lumpsText() const {
    if (lumps_.size() < 2) return {};
    const bool few = lumps_.size() <= mostLumpsTold;
    std::string sizes;
    std::int64_t longest = 0;
    for (std::size_t i = 0; i < lumps_.size(); ++i) {
        if (few) sizes += (i == 0 ? " " : "+") + numberText(static_cast<int>(lumps_[i].bytes));
        if (i > 0) longest = std::max(longest, lumps_[i].firstUs - lumps_[i - 1].us);
    }
    return ", in " + numberText(static_cast<int>(lumps_.size())) + " lumps" + sizes + ", " +
           (lumps_.size() == 2 ? "" : "at most ") + milliseconds(longest) + " apart";
}

void WireTrace::tellUnasked(std::string bytes, std::int64_t nowUs) {
    TraceLine line = received(std::move(bytes), nowUs);
    line.command = asked_ ? words_.key() : "?";
    line.text = count(line.bytes.size(), "byte", "bytes");
    if (asked_) {
        line.problem = trouble::unasked;
        line.text += " that nobody waited for, " + milliseconds(nowUs - askedUs_) + " after the command";
    } else {
        line.text += " that were under way when the trace began";
    }
    add(line);
}

void WireTrace::settle(std::int64_t nowUs) {
    if (pending_.empty()) return;
    const std::int64_t lastUs = lumps_.back().us;
    const std::string lumps = lumpsText();
    kept_ = takePending();
    if (!waiting_) return tellUnasked(kept_, lastUs);
    TraceLine line = received(kept_, nowUs);
    words_.partOfReply(line);
    line.text += ", the last byte after " + milliseconds(lastUs - askedUs_) + lumps;
    waiting_ = false;
    add(line);
}

void WireTrace::settleUnfinished(std::int64_t nowUs) {
    if (!waiting_ || pending_.empty()) {
        settle(nowUs);
    } else {
        TraceLine line = received(takePending(), nowUs);
        words_.partOfReply(line);
        line.problem.clear();
        line.text += ", as it was not waited for";
        add(line);
    }
    waiting_ = false;
}

void WireTrace::giveUp(std::int64_t nowUs) {
    if (!waiting_) return;
    TraceLine line = lineAt(TraceDirection::Event, nowUs);
    line.problem = trouble::timeOut;
    line.command = words_.key();
    line.text = words_.lineText() + "no answer for " + milliseconds(nowUs - askedUs_);
    waiting_ = false;
    add(line);
}

}  // namespace zentaq
