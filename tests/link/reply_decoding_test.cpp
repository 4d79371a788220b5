#include "link/reply_decoding.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "base/errors.h"

namespace zentaq {
namespace {

using Bytes = std::vector<std::uint8_t>;

Bytes padded(Bytes bytes, std::size_t length) {
    bytes.resize(length);
    return bytes;
}

Bytes firmwareReply(std::string text, std::uint8_t subType = 0) {
    text.resize(10, ' ');
    Bytes bytes = padded({0xFA, 0xA5, 0x55}, 27);
    bytes.insert(bytes.end(), text.begin(), text.end());
    bytes.push_back(subType);
    bytes.push_back(0);
    return bytes;
}

// ---- E

TEST(DecodeSerial, ReadsABigEndianNumber) {
    const auto serial = decodeSerial(Bytes{0xFA, 0xA5, 0x55, 0x00, 0x03, 0x0D, 0x40, 0xA5});
    ASSERT_TRUE(serial);
    EXPECT_EQ(serial->serialNumber, 200000);
    EXPECT_FALSE(serial->oldFirmware);
}

TEST(DecodeSerial, ReadsOctalDigitsAsDecimal) {
    // 64 is 100 in octal, 668 is 1234, 65536 is 200000.
    const std::pair<Bytes, int> rows[] = {
        {{0, 0, 0, 64}, 100}, {{0, 0, 2, 0x9C}, 1234}, {{0, 1, 0, 0}, 200000}};
    for (const auto& [number, shown] : rows) {
        const auto serial =
            decodeSerial(Bytes{0xFA, 0xA5, 0x54, number[0], number[1], number[2], number[3], 0});
        ASSERT_TRUE(serial);
        EXPECT_EQ(serial->serialNumber, shown);
        EXPECT_FALSE(serial->oldFirmware);
    }
}

TEST(DecodeSerial, ReadsTheSixBytesOfAnOldUnit) {
    const auto serial = decodeSerial(Bytes{0, 0, 0, 64, 'A', 'X'});
    ASSERT_TRUE(serial);
    EXPECT_EQ(serial->serialNumber, 100);
    EXPECT_TRUE(serial->oldFirmware);
}

TEST(DecodeSerial, KnowsNoOtherFormat) {
    EXPECT_FALSE(decodeSerial(Bytes{1, 2, 3, 4, 5, 6, 7, 8}));
    EXPECT_FALSE(decodeSerial(Bytes{0xFA, 0xA5, 0x56, 4, 5, 6, 7, 8}));
}

TEST(DecodeSerial, OctalDigitsBeyond32BitsAreAnOverflow) {
    EXPECT_THROW(decodeSerial(Bytes{0xFA, 0xA5, 0x54, 0xFF, 0xFF, 0xFF, 0xFF, 0}), Overflow);
}

TEST(DecodeSerial, AShortReplyIsABoundsError) {
    EXPECT_THROW(decodeSerial(Bytes{}), BoundsError);
    EXPECT_THROW(decodeSerial(Bytes{0xFA, 0xA5, 0x55, 1, 2, 3}), BoundsError);
    EXPECT_THROW(decodeSerial(Bytes{1, 2, 3, 4, 'A'}), BoundsError);
}

struct SerialRow {
    std::int32_t number;
    int slot;  ///< 0: none
    const char* label;
};

class UnitOfSerial : public ::testing::TestWithParam<SerialRow> {};

TEST_P(UnitOfSerial, FollowsTheRanges) {
    const UnitKind* kind = unitKindOfSerial(GetParam().number);
    EXPECT_EQ(kind == nullptr ? 0 : kind->slot, GetParam().slot);
    EXPECT_EQ(kind == nullptr ? "" : kind->label, GetParam().label);
}

INSTANTIATE_TEST_SUITE_P(
    Ends, UnitOfSerial,
    ::testing::Values(SerialRow{-1, 0, ""}, SerialRow{0, 0, ""}, SerialRow{9, 0, ""}, SerialRow{10, 3, "A"},
                      SerialRow{9999, 3, "A"}, SerialRow{10000, 0, ""}, SerialRow{199999, 0, ""},
                      SerialRow{200000, 3, "A"}, SerialRow{209999, 3, "A"}, SerialRow{210000, 0, ""},
                      SerialRow{299999, 0, ""}, SerialRow{300000, 4, "L"}, SerialRow{309999, 4, "L"},
                      SerialRow{310000, 0, ""}, SerialRow{349999, 0, ""}, SerialRow{350000, 6, "C"},
                      SerialRow{359999, 6, "C"}, SerialRow{360000, 0, ""}, SerialRow{499999, 0, ""},
                      SerialRow{500000, 5, "PZK-2"}, SerialRow{509999, 5, "PZK-2"}, SerialRow{510000, 0, ""},
                      SerialRow{699999, 0, ""}, SerialRow{700000, 7, "D"}, SerialRow{709999, 7, "D"},
                      SerialRow{710000, 0, ""}, SerialRow{749999, 0, ""}, SerialRow{750000, 8, "D6"},
                      SerialRow{759999, 8, "D6"}, SerialRow{760000, 0, ""}));

// ---- B

TEST(FirmwareBytes, HoldsTheNameWithItsBlanks) {
    Bytes bytes = firmwareReply("ZQA  05099");
    bytes[3] = 'V';
    bytes[4] = 0xE9;  // one byte in the unit
    const std::string name = unitBinName(bytes);
    EXPECT_EQ(name.substr(0, 3), "V\xC3\xA9");
    EXPECT_EQ(name.size(), 25U);
}

TEST(FirmwareBytes, HoldsReleaseAndBuild) {
    const std::string text = firmwareBytes(firmwareReply("ZQA  05099"));
    EXPECT_EQ(text, "ZQA  05099");
    EXPECT_EQ(firmwareNumber(text), (FirmwareVersion{5, 99}));
}

TEST(FirmwareBytes, WithoutANumberThrows) {
    EXPECT_THROW(firmwareNumber("ZQA"), std::exception);
    EXPECT_THROW(firmwareNumber("ZQA  xx099"), TypeMismatch);
}

TEST(FirmwareBytes, TellsTheSubtype) {
    EXPECT_EQ(unitSubType(firmwareReply("ZQA  05099", 2)), 2);
    EXPECT_EQ(subTypeLabel(orbaKind(), 3), "");
    EXPECT_EQ(subTypeLabel(orbaKind(), -1), "");
    EXPECT_THROW(unitSubType(padded({}, 37)), BoundsError);
}

// ---- C

TEST(ConfigurationBytes, TellsNoPicOfTheOtherKinds) {
    for (const int slot : {0, 3, 6, 7, 8})
        EXPECT_EQ(decodePic18(Bytes(39, 3), *unitKindOfSlot(slot), {9, 99}), std::nullopt);
    EXPECT_THROW(decodePic18(padded({}, 18), *unitKindOfSlot(4), {7, 0}), BoundsError);
}

// ---- D, W

TEST(EndOfLog, IsARecordTooFastForAnyEngine) {
    EXPECT_FALSE(isEndOfLog(Bytes{0xFA, 0xA5, 0x55, 82}));
    EXPECT_TRUE(isEndOfLog(Bytes{0xFA, 0xA5, 0x55, 83}));
    EXPECT_FALSE(isEndOfLog(Bytes{0xFA, 0xA4, 0x55, 83}));
}

TEST(FrameSum, IsThatOfTheBytesFromTheThirdOn) {
    EXPECT_TRUE(frameSumIsRight(Bytes{9, 9, 200, 100, 44}, 5));  // 300 - 256
    EXPECT_TRUE(frameSumIsRight(Bytes{0xFA, 0xA5, 0x55, 0xFF, 0xFF, 0x53}, 6));
    EXPECT_FALSE(frameSumIsRight(Bytes{9, 9, 200, 100, 45}, 5));
    EXPECT_THROW(frameSumIsRight(Bytes{9, 9, 200}, 5), BoundsError);
}

}  // namespace
}  // namespace zentaq
