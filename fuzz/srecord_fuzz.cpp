// S-records with anything in them, on all ways in: one line read, a stream cut into records, a unit that is
// programmed, a firmware file that the link sends line by line, and one that is looked at before.
// The first byte of an input chooses the way, the rest is the text.
#include <array>
#include <cstdint>
#include <cstdio>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "base/channels.h"
#include "base/errors.h"
#include "base/text.h"
#include "fuzzing.h"
#include "link/firmware_file.h"
#include "link/link.h"
#include "link/recording_link_host.h"
#include "live/frame_decoder.h"
#include "sim/simulated_unit.h"
#include "sim/srecord.h"
#include "testing/manual_clock.h"
#include "testing/scripted_port.h"

namespace zentaq::fuzzing {
namespace {

/// The one text that a record may have been read from.
std::string written(const sim::SRecord& record) {
    std::string bytes;
    unsigned sum = 0;
    const auto add = [&](unsigned byte) {
        std::array<char, 3> digits{};
        std::snprintf(digits.data(), digits.size(), "%02X", byte & 255U);
        bytes += digits.data();
        sum += byte & 255U;
    };
    add(static_cast<unsigned>(record.data.size()) + 3);
    add(static_cast<unsigned>(record.address) >> 8U);
    add(static_cast<unsigned>(record.address));
    for (const std::uint8_t byte : record.data) add(byte);
    add(~sum);
    return std::string("S") + record.type + bytes;
}

void readLine(std::string_view text) {
    const std::string line(text);
    const auto record = sim::parseSRecord(line);
    if (!record) return;
    require(record->address >= 0 && record->address <= 0xFFFF, "an address has 16 bits");
    require(written(*record) == line, "a record that was read writes the text that it was read from");
}

void cutStream(std::string_view text) {
    sim::SRecordCollector collector;
    std::string fed;
    for (const char c : text) {
        if (c != '\r' && c != '\n') fed += c;
        const auto state = collector.push(static_cast<std::uint8_t>(c));
        require(collector.text() == fed, "nothing but line ends is passed over");
        if (state == sim::SRecordCollector::State::Complete) {
            readLine(collector.text());
        } else {
            require(!sim::parseSRecord(fed), "a record is complete when it can be read");
        }
        if (state == sim::SRecordCollector::State::Complete ||
            state == sim::SRecordCollector::State::Broken) {
            collector.clear();
            fed.clear();
        }
    }
}

/// A programming that does not end with its last record leaves the memory alone.
void programUnit(std::string_view text) {
    const sim::UnitProfile& profile = *sim::findProfile("A");
    sim::SimulatedUnit unit(profile, sim::defaultIdentity(profile));
    const sim::Bytes before = unit.memory();
    const std::string start = "P1";
    const auto feed = [&](std::string_view bytes) {
        return unit.feed({reinterpret_cast<const std::uint8_t*>(bytes.data()), bytes.size()});
    };
    feed(start);
    bool verified = false;
    for (const std::string& line : split(std::string(text), '\n')) {
        const sim::Bytes reply = feed(line);
        if (reply == sim::Bytes{'P', 'N'}) verified = true;
        if (reply == sim::Bytes{'A', 'R'}) break;
    }
    require(unit.memory().size() == before.size(), "the memory keeps its size");
    // An on-the-fly change behind the end is the only other way into the memory.
    const bool other = text.find("P2") != std::string_view::npos;
    require(verified || other || unit.memory() == before, "what was not verified is not in the memory");
}

/// The link sends the lines of a file as they stand, and ends.
void sendFirmware(std::string_view text) {
    static RecordingLinkHost host;
    ManualClock clock;
    ScriptedPort port(clock);
    LiveValues live;
    FrameDecoder decoder(live);
    NoYield yield;
    Link link(port, host, decoder, live, clock, yield);
    link.RS232_Initialize(1);
    port.takeWritten();
    // A unit without firmware is silent when it is asked who it is.
    port.otherwise([](const std::string& sent) -> std::optional<ScriptedReply> {
        if (sent == "E") return std::nullopt;
        return ScriptedReply{.bytes = "AX", .delayUs = 10, .byteUs = 0};
    });
    const MemoryFile file(text);
    link.Program_Unit(TransferMode::Firmware, file.path());

    std::vector<std::string> expected = {"E", "P3"};
    std::string_view rest = text;
    while (!rest.empty()) {
        const std::size_t end = rest.find('\n');
        std::string line(rest.substr(0, end));
        rest.remove_prefix(end == std::string_view::npos ? rest.size() : end + 1);
        if (line.ends_with('\r')) line.pop_back();
        expected.push_back(line + "\r\n");
    }
    constexpr int whoIsThere = 2000;
    const int enough = whoIsThere + 12 * static_cast<int>(expected.size());
    for (int i = 0; i < enough; ++i) {
        port.advanceUs(1000);
        link.tick();
    }
    require(!link.transfer().active(), "the transfer has ended with its file");
    require(port.written() == expected, "every line was sent, and nothing else");
    host.forget();
}

/// All that a file is refused for, said once more: its digits add up, line by line.
bool addsUp(std::string_view line) {
    if (line.size() < 4 || line.size() % 2 != 0 || line.size() > 4 + 2 * 255) return false;
    unsigned sum = 0;
    for (std::size_t at = 2; at < line.size(); ++at) {
        const auto digit = std::string_view("0123456789ABCDEF").find(line[at]);
        if (digit == std::string_view::npos) return false;
        sum += static_cast<unsigned>(digit) * (at % 2 == 0 ? 16U : 1U);
    }
    return (sum & 0xFFU) == 0xFFU;
}

void checkFile(std::string_view text) {
    FirmwareFile file;
    try {
        file = checkFirmware(text);
    } catch (const Failure&) {
        return;
    }
    int lines = 0;
    std::string_view last;
    for (std::string_view rest = file.text; !rest.empty(); ++lines) {
        const std::size_t end = rest.find('\n');
        last = rest.substr(0, end);
        if (last.ends_with('\r')) last.remove_suffix(1);
        require(addsUp(last), "a file that is taken holds whole records only");
        rest.remove_prefix(end == std::string_view::npos ? rest.size() : end + 1);
    }
    require(lines == file.lines, "every line is counted");
    require(last[1] >= '7', "the end record stands at the end");
    require(file.dataBytes > 0, "a file that is taken holds data");
}

}  // namespace
}  // namespace zentaq::fuzzing

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace zentaq::fuzzing;
    static constexpr std::array ways = {readLine, cutStream, programUnit, sendFirmware, checkFile};
    if (size == 0) return 0;
    const std::span bytes(data, size);
    ways.at(bytes[0] % ways.size())(textOf(bytes.subspan(1)));
    return 0;
}
