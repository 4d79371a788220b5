// decode: the bytes of one reply of a unit as names and values.
#include <cmath>
#include <ostream>
#include <vector>

#include "base/errors.h"
#include "base/json_writer.h"
#include "base/number_text.h"
#include "base/shown_text.h"
#include "base/text.h"
#include "commands.h"
#include "link/link_commands.h"
#include "link/reply_decoding.h"
#include "live/check_engine.h"
#include "live/frame_decoder.h"
#include "members.h"

namespace zentaq::ctl {

namespace {

using Bytes = std::vector<std::uint8_t>;

/// One decoded value; a lamp or a yes is a truth.
struct Finding {
    std::string name;
    std::variant<float, int, bool, std::string> value;
};
using Findings = std::vector<Finding>;

int digitOf(char character) {
    if (character >= '0' && character <= '9') return character - '0';
    if (character >= 'a' && character <= 'f') return character - 'a' + 10;
    if (character >= 'A' && character <= 'F') return character - 'A' + 10;
    throw Failure("The reply is not hexadecimal: " + shownLine({&character, 1}));
}

bool isBlank(char character) {
    return character == ' ' || character == '\t' || character == '\n' || character == '\r';
}

Bytes bytesOf(std::string text) {
    std::erase_if(text, isBlank);
    if (text.size() % 2 != 0) throw Failure("The reply has an odd number of hexadecimal digits");
    Bytes bytes;
    for (std::size_t i = 0; i < text.size(); i += 2) {
        bytes.push_back(static_cast<std::uint8_t>(digitOf(text[i]) * 16 + digitOf(text[i + 1])));
    }
    return bytes;
}

void checkLength(const UnitKind& kind, char reply, const Bytes& bytes) {
    constexpr std::size_t oldIdentification = 6;  // of a unit that must be upgraded
    if (reply == 'E' && bytes.size() == oldIdentification) return;
    const CommandRow* row = findCommand(std::string_view(&reply, 1));
    const int length = kind.sizes.*row->replyLength;
    if (std::ssize(bytes) == length) return;
    throw Failure("A reply " + std::string(1, reply) + " of " + std::string(kind.name) + " has " +
                  numberText(length) + " bytes, not " + numberText(static_cast<int>(bytes.size())));
}

// ---- One reply after the other

Findings identification(const Bytes& bytes) {
    const auto serial = decodeSerial(bytes);
    if (!serial) throw Failure("The reply is no identification");
    Findings found{{"SerialNumber", int{serial->serialNumber}}, {"OldFirmware", serial->oldFirmware}};
    if (const UnitKind* kind = unitKindOfSerial(serial->serialNumber)) {
        found.push_back({"LinkedUnitKind", kind->slot});
        found.push_back({"Unit", std::string(kind->label)});
    }
    return found;
}

Findings firmware(const UnitKind& kind, const Bytes& bytes) {
    const std::string raw = firmwareBytes(bytes);
    Findings found{{"UnitBinName", std::string(trimmed(unitBinName(bytes)))}, {"FirmWare", shownText(raw)}};
    const bool numbered = skipFailing([&] {
        const FirmwareVersion number = firmwareNumber(raw);
        found.push_back({"FW_Release", number.release});
        found.push_back({"FW_Build", number.build});
    });
    if (!numbered) throw Failure("The reply holds no firmware number: " + shownText(raw));
    if (tellsSubType(kind)) {
        found.push_back({"UnitSubType", unitSubType(bytes) + 1});
        found.push_back({"Unit", std::string(subTypeLabel(kind, unitSubType(bytes)))});
    }
    return found;
}

Findings configuration(const Unit& unit, const Bytes& bytes) {
    const auto pic18 = decodePic18(bytes, unit.kind(), unit.firmware());
    return pic18 ? Findings{{"hasPIC18", *pic18}} : Findings{};
}

Findings codes(Unit& unit, const Bytes& bytes) {
    constexpr int words = 12;
    unit.Set_ECData(bytes);
    Findings found;
    for (int i = 0; i < words; ++i) found.push_back({"ECData(" + numberText(i) + ")", unit.Get_ECData(i)});
    for (const std::string& text : activeCodes(unit)) {
        if (!trimmed(text).empty()) found.push_back({"Code", text});
    }
    return found;
}

/// A value that cannot be worked out, such as an idle position without duty limits, stays away.
void addValue(Findings& found, const LiveValues& live, const Channel& channel) {
    const float value = channel.in(live);
    if (channel.isLamp()) {
        found.push_back({std::string(channel.name), value != 0});
    } else if (!std::isnan(value)) {
        found.push_back({std::string(channel.name), value});
    }
}

Findings frame(Unit& unit, char reply, const Bytes& bytes, bool pinsKnown) {
    const auto content = contentOfFrame(unit.kind(), reply);
    if (!content) throw Failure(std::string(unit.kind().name) + " gives no reply " + std::string(1, reply));
    if (reply == 'W' && !frameSumIsRight(bytes, static_cast<int>(bytes.size()))) {
        throw Failure("The checksum of the reply is wrong");
    }
    if (reply == 'D' && !hasMarker(bytes)) throw Failure("The reply is no record of a datalog");
    if (reply == 'D' && isEndOfLog(bytes)) return {{"EndOfLog", true}};

    LiveValues live;
    forgetNumbers(live);
    FrameDecoder decoder(live);
    if (reply == 'F') decoder.Monitor(unit, bytes);
    if (reply == 'W') decoder.MonitorW(unit, bytes);
    if (reply == 'I') decoder.Monitor_GPIO(unit, bytes);
    if (reply == 'D') decoder.Internal_Data_Conv(unit, bytes);

    Findings found;
    for (const Channel* channel : content->values) addValue(found, live, *channel);
    for (const int pin : content->pins) {
        const auto at = static_cast<std::size_t>(pin);
        found.push_back({"GPIOData(" + numberText(pin) + ")", int{unit.GPIOData()[at]}});
        if (pinsKnown) found.push_back({"GPIODisplay(" + numberText(pin) + ")", unit.GPIODisplay()[at]});
    }
    return found;
}

// ---- Answers

struct AsText {
    std::string operator()(float value) const { return numberText(value); }
    std::string operator()(int value) const { return numberText(value); }
    std::string operator()(bool value) const { return value ? "1" : "0"; }
    std::string operator()(const std::string& value) const { return value; }
};

void writeValue(JsonWriter& json, const Finding& found) {
    std::visit([&json](const auto& value) { json.value(value); }, found.value);
}

/// Codes may be many of one name: they make a list of their own.
void writeJson(std::ostream& out, const UnitKind& kind, char reply, const Findings& findings) {
    JsonWriter json(out);
    json.beginObject().member("reply", std::string_view(&reply, 1)).member("kind", kind.slot);
    json.key("values").beginObject();
    for (const Finding& found : findings) {
        if (found.name == "Code") continue;
        json.key(found.name);
        writeValue(json, found);
    }
    json.endObject();
    if (reply == 'T') {
        json.key("codes").beginArray();
        for (const Finding& found : findings) {
            if (found.name == "Code") writeValue(json, found);
        }
        json.endArray();
    }
    json.endObject();
    out << '\n';
}

/// The calibration that scales the values: the user's, or an empty one of the newest firmware with the values
/// that a dashboard takes without a calibration.
std::unique_ptr<QuietCalibration> scalingFor(const Context& context, const UnitKind* kind,
                                             const std::string& file) {
    if (!file.empty()) {
        auto calibration = openCalibration(context, file);
        const UnitKind& own = calibration->unit.kind();
        if (kind != nullptr && !shareFiles(*kind, own)) {
            throw Failure(file + " is for " + std::string(own.name) + ", not for " + std::string(kind->name));
        }
        return calibration;
    }
    const UnitKind& chosen = kind == nullptr ? orbaKind() : *kind;
    auto calibration = std::make_unique<QuietCalibration>(chosen, context.database);
    calibration->unit.FW_Build(chosen.expected.build);
    calibration->unit.FW_Release(chosen.expected.release);
    storeDashboardDefaults(calibration->unit);
    return calibration;
}

}  // namespace

void decode(const Context& context, const UnitKind* kind, char reply, const std::string& hex,
            const std::string& file) {
    const auto calibration = scalingFor(context, kind, file);
    Unit& unit = calibration->unit;
    const Bytes bytes = bytesOf(hex == "-" ? readInput(hex, limits::reply) : hex);
    // Before the length: a kind without such a reply has no length for it either.
    const bool isFrame = std::string_view("FWID").find(reply) != std::string_view::npos;
    if (isFrame && !contentOfFrame(unit.kind(), reply)) {
        throw Failure(std::string(unit.kind().name) + " gives no reply " + std::string(1, reply));
    }
    checkLength(unit.kind(), reply, bytes);

    Findings findings;
    if (isFrame) findings = frame(unit, reply, bytes, !file.empty());
    if (reply == 'E') findings = identification(bytes);
    if (reply == 'B') findings = firmware(unit.kind(), bytes);
    if (reply == 'C') findings = configuration(unit, bytes);
    if (reply == 'T') findings = codes(unit, bytes);
    if (context.json) return writeJson(context.out, unit.kind(), reply, findings);
    for (const Finding& found : findings)
        context.out << found.name << '=' << shownLine(std::visit(AsText{}, found.value)) << '\n';
}

}  // namespace zentaq::ctl
