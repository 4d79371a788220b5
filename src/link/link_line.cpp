// The line under the link as adapters make it: bytes that come late and in lumps, and an adapter that
// vanishes and comes back. Nothing here changes a told time-out; it keeps one reply from standing in front of
// the next.
#include <utility>

#include "base/errors.h"
#include "link/link.h"
#include "link/link_commands.h"
#include "link/reply_decoding.h"

namespace zentaq {

namespace {

/// USB adapters hand over what they have at least every 16 ms. What follows no lump within this many ticks
/// is no longer on its way.
constexpr int lumpTicks = 20;
/// A line that never goes quiet is written to all the same: the time-outs have to go on.
constexpr int restPatienceTicks = 100;
/// Two lumps.
constexpr int tailPatienceTicks = 40;

/// A current E reply; the first one is asked for as if it had six bytes.
constexpr std::size_t identifyLength = 8;

}  // namespace

// ---- Bytes that come late

// Whatever is there before a command is written answers something else; a narrow frame has neither a head nor
// a sum that would tell. After a sign that more is on its way the line must have been quiet first.
bool Link::lineAtRest() {
    bool stale = false;
    skipFailing([&] { stale = !port_.read().empty(); });
    if (restTicks_ == 0) return true;
    if (stale) restTicks_ = lumpTicks;
    if (--restPatience_ > 0 && --restTicks_ > 0) return false;
    restTicks_ = 0;
    return true;
}

void Link::restLine() {
    restTicks_ = lumpTicks;
    restPatience_ = restPatienceTicks;
}

bool Link::repliedWithMarker() const {
    constexpr std::size_t markerLength = 2;
    return rxBuffer_.size() >= markerLength && hasMarker(rxBuffer_);
}

// A first E asks for six bytes, which suit the oldest format; the rest of a current reply may stand in the
// next lump. Left there it would stand in front of the next reply. True: it is waited for.
bool Link::awaitsTail() {
    const std::size_t size = rxBuffer_.size();
    const bool current = currentCommand_ == "E" && repliedWithMarker();
    if (!current || size < static_cast<std::size_t>(askedBytes_) || size >= identifyLength) {
        tailTicks_ = 0;
        return false;
    }
    if (tailTicks_ == 0) tailTicks_ = tailPatienceTicks;
    const auto missing = static_cast<int>(identifyLength - size);
    skipFailing([&] { port_.setReceiveThreshold(missing); });
    return true;
}

bool Link::longFrame() const {
    return isFrameKey(currentCommand_) && rxBuffer_.size() > static_cast<std::size_t>(askedBytes_);
}

// A frame without a sum that brings more bytes than it has is taken as it stands once: which of them are the
// frame is not known. The line then comes to rest. When the next one is wrong too, the line is no source of
// live values.
bool Link::frameInDoubt() {
    if (!isFrameKey(currentCommand_)) return false;
    const bool tooLong = longFrame();
    return std::exchange(longFrameCame_, tooLong) && tooLong;
}

// ---- The adapter

void Link::adapterLost(const PortInfo& port) {
    adapterAway_ = true;
    firmware_.lineBroke();
    adapter_ = port;
    adapterNews_ = AdapterNews::Lost;
    tellAdapter(LinkEvent::AdapterGone);
    tellAdapter(LinkEvent::AdapterAway);
}

void Link::adapterReturned(const PortInfo& port) {
    adapterAway_ = false;
    adapter_ = port;
    adapterNews_ = AdapterNews::Returned;
    tellAdapter(LinkEvent::AdapterBackAs);
    tellAdapter(LinkEvent::AdapterBack);
}

void Link::tellAdapter(LinkEvent event) {
    tell(event, adapter_.description.empty() ? "The adapter" : adapter_.description, adapter_.device);
}

void Link::followAdapter() {
    const AdapterNews news = std::exchange(adapterNews_, AdapterNews::None);
    // A transfer on the wire ends by its own time-outs, and a search asks by itself.
    if (news == AdapterNews::None || transfer_.active() || searching_) return;
    // What was in flight cannot be answered any more, and who is there now may be another unit.
    loseLink(FirmwareRestore::IfUnitKnown);
    abandonCommand();
    responseReady_ = false;
    askFirst_ = transfer_.firmware();
    tellAdapter(adapterAway_ ? LinkEvent::AdapterAway : LinkEvent::AdapterBack);
    if (news == AdapterNews::Lost) return;
    restLine();
    if (!askFirst_) ring_.pushInFront("E");
}

}  // namespace zentaq
