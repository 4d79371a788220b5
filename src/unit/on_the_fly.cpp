#include <utility>

#include "base/errors.h"
#include "base/number_text.h"
#include "unit/counts.h"
#include "unit/unit.h"

namespace zentaq {

namespace {

constexpr std::string_view failureText = "ONFLY Conversion/Transmission Error; Data Not Sent.";

/// The checksum behind a record: the low byte of the inverted sum, two digits.
void appendChecksum(std::string& record, int sum) {
    const int checksum = 255 & ~sum;
    if (checksum < 16) record += '0';
    record += hexText(checksum);
}

int addressSum(int address) {
    return (address & 255) + (address & 65280) / 256;
}

std::string dataDigits(int value) {
    return (value < 16 ? "0" : "") + hexText(value);
}

std::string startOf(std::string_view type, int address) {
    std::string record(type);
    record += hexText(address);
    return record;
}

}  // namespace

std::string Unit::onTheFlyRecord(int index, double first, int count) {
    const int value = toCount(first);
    const int high = value / 256;  // toward zero
    if (count == 2) return onTheFlyRecord(index, static_cast<double>(high), static_cast<double>(value & 255));
    const int address = index + baseAddress;
    std::string record = startOf("S104", address);
    // One byte: a number of more digits, or a negative one, is sent as its low byte.
    const std::string digits = dataDigits(value);
    record.append(digits, digits.size() - 2, 2);
    appendChecksum(record, 4 + addressSum(address) + value);
    return record;
}

std::string Unit::onTheFlyRecord(int index, double first, double second) {
    const int high = toCount(first);
    const int low = toCount(second);
    const int address = index + baseAddress;
    std::string record = startOf("S105", address);
    // kept: in the two-byte form the digits are used whole, so a negative number makes a longer line.
    record += dataDigits(high) + dataDigits(low);
    appendChecksum(record, 5 + addressSum(address) + high + low);
    return record;
}

template <typename MakeRecord>
void Unit::handOver(MakeRecord&& record) {
    if (!onTheFly_) return;
    endOnFailure([&] { host_.sendOnFly(std::forward<MakeRecord>(record)()); },
                 [&](const std::string&) { host_.sysLog(failureText); });
}

void Unit::SendOnFly(int index, double first, int count) {
    handOver([&] { return onTheFlyRecord(index, first, count); });
}

void Unit::SendOnFly(int index, double first, double second) {
    handOver([&] { return onTheFlyRecord(index, first, second); });
}

void Unit::send(const Parameter& row, int element, float entry) {
    const Encoding encoding = row.sent();
    if (encoding.bytes == Bytes::None || !row.hasCell()) return;
    handOver([&] {
        const int cell = row.cell(element);
        const double number = encoding.number(*this, encoding.ofEntry ? entry : cellAt(cell));
        return onTheFlyRecord(cell + encoding.indexOffset, number, encoding.bytes == Bytes::Word ? 2 : 1);
    });
}

}  // namespace zentaq
