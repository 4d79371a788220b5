#include "link/reply_decoding.h"

#include <algorithm>
#include <tuple>

#include "base/errors.h"
#include "base/number_text.h"
#include "base/rounding.h"
#include "base/text.h"

namespace zentaq {

namespace {

constexpr std::uint8_t markerFirst = 0xFA;
constexpr std::uint8_t markerSecond = 0xA5;
constexpr std::uint8_t currentFormat = 0x55;
constexpr std::uint8_t octalFormat = 0x54;
/// The high byte of engine speed in a record: above 82 (21000 rpm) it can be no record, so it marks the end.
constexpr int highestRecordByte = 82;

struct DashboardDefault {
    std::string_view member;
    float value;
};

constexpr DashboardDefault dashboardDefaults[] = {
    {"REV_Limiter", 8500}, {"MaxDuty", 255}, {"MinDuty", 1}, {"PHDSEQ", 0}, {"Engine_Type", 0},
};

std::uint8_t byteAt(ReplyBytes reply, std::size_t index) {
    if (index >= reply.size()) throw BoundsError("The reply is too short");
    return reply[index];
}

std::uint32_t bigEndian32(ReplyBytes reply, std::size_t first) {
    std::uint32_t number = 0;
    for (std::size_t i = first; i < first + 4; ++i) number = number << 8 | byteAt(reply, i);
    return number;
}

/// The decimal digits of the result are the octal digits of `number`. Throws Overflow beyond 32 bits.
std::int32_t octalDigitsAsDecimal(std::uint32_t number) {
    double result = 0;
    double place = 1;
    for (int i = 0; i <= 10; ++i, place *= 10, number /= 8) result += (number & 7) * place;
    return toInt32(result);
}

std::string bytesAsText(ReplyBytes reply, std::size_t first, std::size_t count) {
    std::string text;
    for (std::size_t i = first; i < first + count; ++i) text += static_cast<char>(byteAt(reply, i));
    return text;
}

}  // namespace

bool hasMarker(ReplyBytes reply) {
    return byteAt(reply, 0) == markerFirst && byteAt(reply, 1) == markerSecond;
}

std::optional<SerialReply> decodeSerial(ReplyBytes reply) {
    const std::uint8_t format = byteAt(reply, 2);
    const bool marked = hasMarker(reply);
    if (marked && format == currentFormat) {
        return SerialReply{static_cast<std::int32_t>(bigEndian32(reply, 3)), false};
    }
    if (marked && format == octalFormat) {
        return SerialReply{octalDigitsAsDecimal(bigEndian32(reply, 3)), false};
    }
    if (byteAt(reply, 4) != 'A' || byteAt(reply, 5) != 'X') return {};
    return SerialReply{octalDigitsAsDecimal(bigEndian32(reply, 0)), true};
}

std::string unitBinName(ReplyBytes reply) {
    return shownText(bytesAsText(reply, 3, 24));
}

std::string firmwareBytes(ReplyBytes reply) {
    return std::string(trimmed(bytesAsText(reply, 27, 10)));
}

std::string shownText(std::string_view bytes) {
    std::string text;
    for (const char character : bytes) {
        const auto byte = static_cast<unsigned char>(character);
        if (byte < 0x80) {
            text += character;
        } else {
            text += static_cast<char>(0xC0 | byte >> 6);
            text += static_cast<char>(0x80 | (byte & 0x3F));
        }
    }
    return text;
}

FirmwareVersion firmwareNumber(const std::string& firmwareBytes) {
    const int build = toInt16(numberOf(firmwareBytes.substr(7, 3)));
    const int release = toInt16(numberOf(firmwareBytes.substr(5, 2)));
    return {release, build};
}

int unitSubType(ReplyBytes reply) {
    return byteAt(reply, 37);
}

bool tellsSubType(const UnitKind& kind) {
    return kind.models.size() > 1;
}

std::string_view subTypeLabel(const UnitKind& kind, int subType) {
    const auto model = std::ranges::find(kind.models, subType + 1, &UnitModel::variant);
    return model == kind.models.end() ? std::string_view() : model->label;
}

std::optional<bool> decodePic18(ReplyBytes reply, const UnitKind& kind, FirmwareVersion firmware) {
    if (!kind.pic18From || firmware < *kind.pic18From) return {};
    return (byteAt(reply, 18) & 1) != 0;
}

bool isEndOfLog(ReplyBytes reply) {
    return hasMarker(reply) && byteAt(reply, 3) > highestRecordByte;
}

bool frameSumIsRight(ReplyBytes reply, int length) {
    unsigned sum = 0;
    for (int i = 2; i <= length - 2; ++i) sum += byteAt(reply, static_cast<std::size_t>(i));
    return (sum & 0xFF) == byteAt(reply, static_cast<std::size_t>(length - 1));
}

void storeDashboardDefaults(Unit& unit) {
    for (const DashboardDefault& row : dashboardDefaults) unit.store(row.member, row.value);
}

}  // namespace zentaq
