#include "sim/srecord.h"

#include <gtest/gtest.h>

namespace zentaq::sim {
namespace {

SRecordCollector::State pushAll(SRecordCollector& collector, const std::string& text) {
    auto state = collector.state();
    for (const char c : text) state = collector.push(static_cast<std::uint8_t>(c));
    return state;
}

using State = SRecordCollector::State;

TEST(SRecord, OneByteRecordGivesAddressAndByte) {
    const auto record = parseSRecord("S10411228048");  // 4 + 0x11 + 0x22 + 0x80 = 183; 255 - 183 = 0x48
    ASSERT_TRUE(record);
    EXPECT_EQ(record->type, '1');
    EXPECT_EQ(record->address, 0x1122);
    EXPECT_EQ(record->data, std::vector<std::uint8_t>{0x80});
}

TEST(SRecord, EndRecordHasNoData) {
    const auto record = parseSRecord("S9030000FC");
    ASSERT_TRUE(record);
    EXPECT_EQ(record->type, '9');
    EXPECT_TRUE(record->data.empty());
}

TEST(SRecord, WrongChecksumDigitTypeOrLengthIsNoRecord) {
    EXPECT_FALSE(parseSRecord("S10411228049"));
    EXPECT_FALSE(parseSRecord("S1041122804G"));
    EXPECT_FALSE(parseSRecord("S1041122804a"));
    EXPECT_FALSE(parseSRecord("S20411228048"));
    EXPECT_FALSE(parseSRecord("S1041122804"));
    EXPECT_FALSE(parseSRecord("S104112280480"));
    EXPECT_FALSE(parseSRecord("S10211EC"));
    EXPECT_FALSE(parseSRecord(""));
}

TEST(SRecordCollector, RecordEndsWhereItsCountSays) {
    SRecordCollector collector;
    EXPECT_EQ(pushAll(collector, "S1041122804"), State::Partial);
    EXPECT_EQ(pushAll(collector, "8"), State::Complete);
    EXPECT_EQ(collector.text(), "S10411228048");
}

TEST(SRecordCollector, LineEndsArePassedOver) {
    SRecordCollector collector;
    EXPECT_EQ(pushAll(collector, "\r\n"), State::Empty);
    EXPECT_EQ(pushAll(collector, "S9030000FC\r\n"), State::Complete);
    EXPECT_EQ(collector.text(), "S9030000FC");
}

TEST(SRecordCollector, AnythingButARecordHeadIsBroken) {
    for (const char* text : {"X", "S2", "S1G0", "S1 4", "S102"}) {
        SRecordCollector collector;
        EXPECT_EQ(pushAll(collector, text), State::Broken) << text;
    }
}

}  // namespace
}  // namespace zentaq::sim
