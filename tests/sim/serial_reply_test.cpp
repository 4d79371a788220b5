#include "sim/serial_reply.h"

#include <gtest/gtest.h>

#include "base/errors.h"
#include "sim_helpers.h"

namespace zentaq::sim {
namespace {

TEST(SerialReply, CurrentFormatCarriesTheNumberItself) {
    // 350001 = 00055731; 55 + 05 + 57 + 31 = E2
    EXPECT_EQ(serialReplyOf(SerialFormat::Current, 350001),
              (Bytes{0xFA, 0xA5, 0x55, 0x00, 0x05, 0x57, 0x31, 0xE2}));
}

TEST(SerialReply, OctalFormatCarriesTheNumberWhoseOctalDigitsReadAsIt) {
    // 200017 read as octal is 2 * 32768 + 1 * 8 + 7 = 65551 = 0001000F; 54 + 01 + 0F = 64
    EXPECT_EQ(serialReplyOf(SerialFormat::Octal, 200017),
              (Bytes{0xFA, 0xA5, 0x54, 0x00, 0x01, 0x00, 0x0F, 0x64}));
}

TEST(SerialReply, OldFormatHasNoHeadAndEndsInAX) {
    // 1234 read as octal is 512 + 2 * 64 + 3 * 8 + 4 = 668 = 0000029C
    EXPECT_EQ(serialReplyOf(SerialFormat::Old, 1234), (Bytes{0x00, 0x00, 0x02, 0x9C, 'A', 'X'}));
}

TEST(SerialReply, NumberWithAnEightOrANineHasNoOctalDigits) {
    EXPECT_THROW(serialReplyOf(SerialFormat::Octal, 200008), BoundsError);
    EXPECT_THROW(serialReplyOf(SerialFormat::Old, 1934), BoundsError);
    EXPECT_NO_THROW(serialReplyOf(SerialFormat::Current, 200008));
}

TEST(SerialReply, LongestNumberOfOctalDigitsKeepsItsFourBytes) {
    // ten sevens: 2 to the 30th less 1
    const Bytes reply = serialReplyOf(SerialFormat::Old, 3777777777U);
    EXPECT_EQ(reply, (Bytes{0x1F, 0xFF, 0xFF, 0xFF, 'A', 'X'}));
}

}  // namespace
}  // namespace zentaq::sim
