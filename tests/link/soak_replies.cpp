#include "link/soak_replies.h"

#include <algorithm>
#include <array>
#include <cmath>

#include "base/errors.h"
#include "link/link_commands.h"
#include "link/reply_decoding.h"
#include "sim/serial_reply.h"

namespace zentaq {

namespace {

/// Behind a frame that was too long the line rests before the next command is written.
constexpr int restTicks = 22;
constexpr int restOfIdentifyTicks = 45;

constexpr std::array<int, ReplyStorm::kinds> slots = {0, 3, 4, 5, 6, 7, 8};
constexpr std::array<std::uint32_t, ReplyStorm::kinds> serials = {0,      200000, 300000, 500000,
                                                                  350000, 700000, 750000};

using namespace std::string_view_literals;
constexpr std::array<std::string_view, ReplyStorm::commands> letters = {
    "A"sv,     "B"sv,   "C"sv, "D"sv,  "E"sv, "F"sv, "I"sv,
    "K"sv,     "P1"sv,  "W"sv, "P3"sv, "S"sv, "T"sv, "P2S104112200C8"sv,
    "Z\xFF"sv, "Z\0"sv, "Q"sv};

/// What a decoded value may be, by the width and the scaling of its bytes.
struct LiveRange {
    const char* name;
    float LiveValues::*value;
    double lowest, highest;
};
using L = LiveValues;
constexpr std::array ranges = {
    LiveRange{"RPM", &L::RPM, 0, 65535},
    LiveRange{"TPS", &L::TPS, 0, 5},
    LiveRange{"EGOV", &L::EGOV, 0, 5},
    LiveRange{"CLT", &L::CLT, -40, 150},
    LiveRange{"MAT", &L::MAT, -40, 150},
    LiveRange{"KNOCK", &L::KNOCK, 0, 100},
    LiveRange{"BATTV", &L::BATTV, 0, 20.1},
    LiveRange{"KNKRET", &L::KNKRET, 0, 30},
    LiveRange{"PRIDUTY", &L::PRIDUTY, 0, 100},
    LiveRange{"SECDUTY", &L::SECDUTY, 0, 100},
    LiveRange{"PRIPW", &L::PRIPW, 0, 524.28},
    LiveRange{"SECPW", &L::SECPW, 0, 524.28},
    LiveRange{"IACP", &L::IACP, 0, 100},
    LiveRange{"IACD", &L::IACD, 0, 255},
    LiveRange{"INJ_TOG", &L::INJ_TOG, 0, 65.535},
    LiveRange{"SEN_MAP", &L::SEN_MAP, 0, 320.4},
    LiveRange{"INJ_VE", &L::INJ_VE, -50, 205},
    LiveRange{"INJ_MAT", &L::INJ_MAT, -50, 205},
    LiveRange{"INJ_BARO", &L::INJ_BARO, -50, 205},
    LiveRange{"INJ_CLT", &L::INJ_CLT, 0, 255},
    LiveRange{"INJ_SE0", &L::INJ_SE0, 0, 255},
    LiveRange{"INJ_ASE0", &L::INJ_ASE0, 0, 255},
    LiveRange{"INJ_ASE1", &L::INJ_ASE1, 0, 255},
    LiveRange{"TPSACCL", &L::TPSACCL, 0, 51},
    LiveRange{"INJ_VLTCOMP", &L::INJ_VLTCOMP, -1, 1.04},
    LiveRange{"SEN_BLEND", &L::SEN_BLEND, 0, 255},
    LiveRange{"INJ_STAGE", &L::INJ_STAGE, 0, 255},
    LiveRange{"ADV_TBL", &L::ADV_TBL, 0, 60},
    LiveRange{"ADV_CLT", &L::ADV_CLT, 0, 60},
    LiveRange{"ADV_MAT", &L::ADV_MAT, -30.2, 30},
    LiveRange{"ADV_BARO", &L::ADV_BARO, -30.2, 30},
    LiveRange{"ADV_IDLE", &L::ADV_IDLE, -30.2, 30},
    LiveRange{"ISRPM", &L::ISRPM, 0, 4080},
};
/// Those that a calibration scales: any number, but one.
constexpr std::array scaled = {&L::MAP,  &L::PRIADV, &L::SECADV,  &L::GAMA,     &L::SECPERCENT, &L::EGOC,
                               &L::DAFR, &L::AAFR,   &L::MAPACCL, &L::INJ_ACE2, &L::INJ_ACE5,   &L::INJ_ACE6};

constexpr double halfALastPlace = 0.051;

}  // namespace

ReplyStorm::ReplyStorm() {
    host_.unitHost.applicationFolder(folder_.path().string());
    firmware_ = folder_.write("new.nv3", "S1LINE1\r\nS1LINE2\r\n");
    link_.RS232_Initialize(1);
}

void ReplyStorm::require(bool holds, const std::string& what) {
    if (!holds && broken_.empty()) broken_ = what;
}

void ReplyStorm::tick(int count) {
    for (int i = 0; i < count; ++i) link_.tick();
}

void ReplyStorm::bringToRest() {
    const auto busy = [&] {
        return link_.transfer().active() || !link_.CurrentCommand().empty() || link_.ring().count() > 0;
    };
    const sim::Bytes refusal{'A', 'R'};
    const sim::Bytes endOfLog{0xFA, 0xA5, 0x55, 0xFF};
    for (int i = 0; i < 40 && busy(); ++i) {
        tick(1);
        if (!link_.CurrentCommand().empty())
            port_.deliver(link_.CurrentCommand() == "D" ? endOfLog : refusal);
        tick(1);
    }
    for (int i = 0; i < 12'000 && busy(); ++i) tick(1);
    require(!busy(), "the link does not come to rest");
}

/// A unit of this kind is on the link and nothing is in flight.
void ReplyStorm::meet(int slot) {
    bringToRest();
    if (link_.linked().LinkedUnitKind == slot) return;
    if (slot == 0) {
        link_.Send_ORB_Command("F");
        tick(restTicks + 90);
    } else {
        const auto at = static_cast<std::size_t>(std::ranges::find(slots, slot) - slots.begin());
        link_.Send_ORB_Command("E");
        tick(restTicks);
        port_.deliver(sim::serialReplyOf(sim::SerialFormat::Current, serials[at]));
        tick(1);
        bringToRest();
    }
    require(link_.linked().LinkedUnitKind == slot, "a good reply finds its unit");
}

void ReplyStorm::putInFlight(const std::string& command) {
    if (command == "D") {
        link_.Program_Unit(TransferMode::Datalog, "/dev/null");
    } else if (command == "P3") {
        link_.Program_Unit(TransferMode::Firmware, firmware_);
    } else {
        link_.Send_ORB_Command(command);
    }
    // A firmware for nobody waits until nobody has answered.
    constexpr int identifyTicks = 1010;
    for (int i = 0; i < restTicks + identifyTicks && link_.CurrentCommand() != command; ++i) tick(1);
    require(link_.CurrentCommand() == command, "the command is in flight");
}

std::string ReplyStorm::strike(unsigned kind, unsigned command, std::span<const std::uint8_t> reply) {
    broken_.clear();
    const int slot = slots[kind % kinds];
    const std::string text(letters[command % commands]);
    try {
        meet(slot);
        putInFlight(text);
        port_.deliver(reply);
        const CommandRow* row = findCommand(commandKey(text));
        const bool bulk = row != nullptr && row->isBulk;
        tick(bulk ? 13 : text == "E" ? restOfIdentifyTicks : 2);
        // The lines of a transfer go on; everything else is over with its reply, whatever it held.
        require(bulk || text == "D" || link_.CurrentCommand() != text, "a reply does not end its command");
        requireState();
        decodeDirectly(reply);
        requireRanges();
        for (const std::string_view letter : letters) (void)link_.commCheckSum(letter);
    } catch (const std::exception& failure) {
        require(false, std::string("an exception leaves the link: ") + failure.what());
    }
    host_.forget();
    if (!broken_.empty()) broken_ += " (kind " + std::to_string(slot) + ", command " + text + ")";
    return broken_;
}

void ReplyStorm::requireState() {
    const LinkedUnit& unit = link_.linked();
    require(std::ranges::find(slots, unit.LinkedUnitKind) != slots.end(), "a kind that is none");
    require(!unit.UnitIdentified || unit.LinkedUnitKind != 0, "identified without a kind");
    require(unit.UnitBinName.size() <= 48, "a name of more than 24 characters");
    require(unit.UnitSubType >= 0 && unit.UnitSubType <= 256, "a subtype");
    require(link_.ring().head() >= 0 && link_.ring().head() < CommandRing::size, "the ring's head");
    require(link_.ring().tail() >= 0 && link_.ring().tail() < CommandRing::size, "the ring's tail");
    require(link_.ring().count() >= 0 && link_.ring().count() < 5, "commands that nobody asked for");
    const LinkStatus& status = host_.linkDisplay.status();
    require(status.progressPercent >= 0 && status.progressPercent <= 100, "the progress");
    for (const int slot : slots) {
        const Unit& object = host_.unit(slot);
        require(object.FW_Release() >= -9 && object.FW_Release() <= 99, "a release of two places");
        require(object.FW_Build() >= -99 && object.FW_Build() <= 999, "a build of three places");
    }
}

void ReplyStorm::requireRanges() {
    for (const LiveRange& range : ranges) {
        const double value = static_cast<double>(live_.*range.value);
        const bool in = value >= range.lowest - halfALastPlace && value <= range.highest + halfALastPlace;
        require(in, std::string(range.name) + " of " + std::to_string(value));
    }
    for (const auto value : scaled) require(std::isfinite(live_.*value), "a live value that is no number");
    for (const int slot : slots) {
        const Unit& unit = host_.unit(slot);
        for (const std::int16_t pin : unit.GPIOData()) require(pin >= 0 && pin <= 255, "a pin beyond a byte");
        for (const std::string& text : unit.GPIODisplay()) require(text.size() < 24, "the text of a pin");
        for (int word = 0; word < 12; ++word) {
            require(unit.Get_ECData(word) >= 0 && unit.Get_ECData(word) <= 255, "a code word beyond a byte");
        }
    }
}

/// A failure that the core raises on purpose is the answer of most; frames have none.
void ReplyStorm::decodeDirectly(std::span<const std::uint8_t> reply) {
    const auto mayFail = [](auto&& decode) {
        try {
            decode();
        } catch (const Failure&) {
        }
    };
    mayFail([&] { (void)hasMarker(reply); });
    mayFail([&] {
        const auto serial = decodeSerial(reply);
        if (serial) (void)unitKindOfSerial(serial->serialNumber);
    });
    mayFail([&] { (void)unitBinName(reply); });
    mayFail([&] { (void)shownText(firmwareBytes(reply)); });
    mayFail(
        [&] { require(subTypeLabel(orbaKind(), unitSubType(reply)).size() < 8, "the label of a subtype"); });
    mayFail([&] { (void)isEndOfLog(reply); });
    for (const int slot : slots) {
        Unit& unit = host_.unit(slot);
        mayFail([&] { (void)decodePic18(reply, *unitKindOfSlot(slot), {7, 1}); });
        mayFail([&] { (void)frameSumIsRight(reply, unit.kind().sizes.wCmdLen); });
        mayFail([&] { unit.Set_ECData(reply); });
        decoder_.Monitor(unit, reply);
        decoder_.MonitorW(unit, reply);
        decoder_.Monitor_GPIO(unit, reply);
        decoder_.Internal_Data_Conv(unit, reply);
    }
    // Only here may a text be no number, or have too few characters.
    try {
        (void)firmwareNumber(firmwareBytes(reply));
    } catch (const std::exception&) {
    }
}

// ---- Replies

ReplySource::ReplySource(unsigned seed) : random_(seed) {
    for (const sim::UnitProfile* profile : sim::allProfiles()) {
        units_.emplace_back(*profile, sim::defaultIdentity(*profile));
    }
}

sim::Bytes ReplySource::good() {
    sim::SimulatedUnit& unit = units_.at(below(units_.size()));
    unit.advance(0.05);
    const std::string_view command = letters.at(below(letters.size()));
    return unit.feed({reinterpret_cast<const std::uint8_t*>(command.data()), command.size()});
}

sim::Bytes ReplySource::noise(std::size_t length) {
    sim::Bytes bytes(length);
    for (std::uint8_t& byte : bytes) byte = static_cast<std::uint8_t>(below(256));
    return bytes;
}

void ReplySource::mutate(sim::Bytes& bytes) {
    if (bytes.empty()) return;
    const auto at = [&] { return static_cast<std::ptrdiff_t>(below(bytes.size())); };
    switch (below(7)) {
        case 0:
            bytes[static_cast<std::size_t>(at())] ^= static_cast<std::uint8_t>(1u << below(8));
            return;
        case 1:
            bytes.resize(static_cast<std::size_t>(at()));
            return;
        case 2:
            bytes.erase(bytes.begin() + at());
            return;
        case 3:
            bytes.insert(bytes.begin() + at(), static_cast<std::uint8_t>(below(256)));
            return;
        case 4:
            bytes[static_cast<std::size_t>(at())] = below(2) == 0 ? 0 : 255;
            return;
        case 5: {
            const sim::Bytes more = good();
            bytes.insert(bytes.begin() + at(), more.begin(), more.end());
            return;
        }
        default:
            std::fill(bytes.begin() + at(), bytes.end(), static_cast<std::uint8_t>(below(256)));
    }
}

ReplySource::Reply ReplySource::next() {
    Reply reply{static_cast<unsigned>(below(ReplyStorm::kinds)),
                static_cast<unsigned>(below(ReplyStorm::commands)),
                {}};
    reply.bytes = below(4) == 0 ? noise(below(90)) : good();
    for (std::size_t times = below(4); times > 0; --times) mutate(reply.bytes);
    // A wide frame is read only with a right sum; and no line delivers more than this at once.
    if (reply.bytes.size() > 326) reply.bytes.resize(326);
    if (reply.bytes.size() > 3 && below(2) == 0) {
        unsigned sum = 0;
        for (std::size_t i = 2; i + 1 < reply.bytes.size(); ++i) sum += reply.bytes[i];
        reply.bytes.back() = static_cast<std::uint8_t>(sum & 0xFF);
    }
    return reply;
}

}  // namespace zentaq
