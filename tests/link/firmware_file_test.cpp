// What is taken for a firmware file and what is refused, with the line that is at fault. Checksums are worked
// out by hand: the complement of the low byte of the sum of length, address and data.
#include "link/firmware_file.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <random>
#include <string>
#include <vector>

#include "base/errors.h"
#include "base/file_reader.h"
#include "temporary_folder.h"

namespace zentaq {
namespace {

// 03 + 00 + 00 = 03, FF - 03 = FC.
constexpr const char* header = "S0030000FC";
// 05 + 10 + 00 + AA + 55 = 114, FF - 14 = EB.
constexpr const char* data = "S1051000AA55EB";
// The bytes behind them: 05 + 10 + 02 + AA + 55 = 116, FF - 16 = E9; 05 + 10 + 04 + ... = 118: E7.
constexpr const char* secondData = "S1051002AA55E9";
constexpr const char* thirdData = "S1051004AA55E7";
constexpr const char* endOfFile = "S9030000FC";

std::string lines(const std::vector<std::string>& records, const std::string& end = "\r\n") {
    std::string text;
    for (const std::string& record : records) text += record + end;
    return text;
}

/// What is wrong with a text; empty for nothing.
std::string faultOf(std::string_view text) {
    try {
        checkFirmware(text);
    } catch (const Failure& failure) {
        return failure.what();
    }
    return {};
}

TEST(FirmwareFile, AWholeFileTellsItsLinesAndItsBytes) {
    const FirmwareFile file = checkFirmware(lines({header, data, secondData, endOfFile}, "\n"));
    EXPECT_EQ(file.lines, 4);
    EXPECT_EQ(file.text, lines({header, data, secondData, endOfFile})) << "what goes out";
    EXPECT_EQ(file.dataBytes, 4);
}

TEST(FirmwareFile, ARecordEndsWhereItsAddressesEnd) {
    // 13 + FF + F0 + 16 * 00 = 202, FF - 02 = FD; 13 + FF + F8 = 20A, FF - 0A = F5.
    const std::string zeros(32, '0');
    EXPECT_EQ(faultOf(lines({"S113FFF0" + zeros + "FD", endOfFile})), "") << "the last bytes there are";
    EXPECT_EQ(
        faultOf(lines({header, "S113FFF8" + zeros + "F5", endOfFile})),
        "Line 2: the 16 bytes at the address FFF8 run past the last one that the record can tell, FFFF.");
    // The next bytes for a longer address: 14 + 00 + FF + F8 = 20B, FF - 0B = F4.
    EXPECT_EQ(faultOf(lines({"S21400FFF8" + zeros + "F4", endOfFile})), "");
    // 14 + FF + FF + F8 = 30A: F5; 15 + 3 * FF + F8 = 40A: F5.
    EXPECT_EQ(faultOf(lines({"S214FFFFF8" + zeros + "F5", endOfFile})),
              "Line 1: the 16 bytes at the address FFFFF8 run past the last one that the record can tell, "
              "FFFFFF.");
    EXPECT_EQ(faultOf(lines({"S315FFFFFFF8" + zeros + "F5", endOfFile})),
              "Line 1: the 16 bytes at the address FFFFFFF8 run past the last one that the record can tell, "
              "FFFFFFFF.");
}

TEST(FirmwareFile, LinesEndInOneWayOrTheOther) {
    EXPECT_EQ(checkFirmware(lines({data, endOfFile}, "\r\n")).lines, 2);
    EXPECT_EQ(checkFirmware(lines({data, endOfFile}, "\n")).lines, 2);
    EXPECT_EQ(checkFirmware("S1051000AA55EB\nS9030000FC").lines, 2);
    EXPECT_EQ(checkFirmware("S1051000AA55EB\r\nS9030000FC\r").lines, 2);
}

TEST(FirmwareFile, EveryTypeHasItsOwnLengthOfAddress) {
    struct Row {
        const char* record;
        int dataBytes;
    };
    const Row rows[] = {
        {"S1042000AA31", 1},      // 04+20+00+AA = CE
        {"S205002000AA30", 1},    // 05+00+20+00+AA = CF
        {"S30600002000AA2F", 1},  // 06+00+00+20+00+AA = D0
        {"S5030001FB", 0},        // 03+00+01 = 04
        {"S604000001FA", 0},      // 04+00+00+01 = 05
        {"S1031000EC", 0},        // 03+10+00 = 13
    };
    for (const Row& row : rows) {
        const auto file = checkFirmware(lines({data, row.record, endOfFile}));
        EXPECT_EQ(file.dataBytes, 2 + row.dataBytes) << row.record;
    }
    // 05+00+00+00+00 = 05 and 04+00+00+00 = 04
    for (const char* end : {"S70500000000FA", "S804000000FB", endOfFile}) {
        EXPECT_EQ(checkFirmware(lines({data, end})).lines, 2) << end;
    }
}

TEST(FirmwareFile, AFaultIsToldWithItsLine) {
    struct Row {
        const char* record;
        const char* fault;
    };
    const Row rows[] = {
        {"S1", "this is no S-record"},
        {"X1051000AA55EB", "this is no S-record"},
        {"s1051000AA55EB", "this is no S-record"},
        {" S1051000AA55EB", "this is no S-record"},
        {"S4051000AA55EB", "this is no S-record"},
        {"SA051000AA55EB", "this is no S-record"},
        {"S1G51000AA55EB", "the length is no number"},
        {"S1051000AA55E", "the record has a wrong length"},
        {"S1051000AA55EB0", "the record has a wrong length"},
        {"S1051000AA55E B", "the record has a wrong length"},
        {"S1061000AA55EB", "the record has a wrong length"},
        {"S100", "the record is too short for its address"},
        {"S10210ED", "the record is too short for its address"},
        {"S304100000", "the record has a wrong length"},
        {"S3031000EC", "the record is too short for its address"},
        {"S1051000AA5GEB", "the record holds something else than the digits 0 to 9 and A to F"},
        {"S1051000aa55EB", "the record holds something else than the digits 0 to 9 and A to F"},
        {"S1051000AA55EC", "the checksum is wrong"},
        {"S1051000AB55EB", "the checksum is wrong"},
    };
    for (const Row& row : rows) {
        EXPECT_EQ(faultOf(lines({header, data, row.record, endOfFile})),
                  std::string("Line 3: ").append(row.fault).append("."))
            << row.record;
    }
}

TEST(FirmwareFile, AFileThatBreaksOffIsRefused) {
    EXPECT_EQ(faultOf(""), "The file is empty.");
    EXPECT_EQ(faultOf("\n \r\n"), "The file is empty.");
    EXPECT_EQ(faultOf(lines({header, data, secondData, ""})),
              "The end record is missing behind line 3: the file is not whole.");
    const std::string whole = lines({data, endOfFile}, "\n");
    // Cut anywhere before its last digit.
    for (std::size_t length = 0; length + 1 < whole.size(); ++length) {
        EXPECT_NE(faultOf(whole.substr(0, length)), "") << length;
    }
}

TEST(FirmwareFile, NothingStandsBehindTheEndRecordAndThereIsDataInFrontOfIt) {
    EXPECT_EQ(faultOf(lines({data, endOfFile, data})), "Line 3: there is something behind the end record.");
    EXPECT_EQ(faultOf(lines({data, endOfFile, endOfFile})),
              "Line 3: there is something behind the end record.");
    EXPECT_EQ(faultOf(lines({header, endOfFile})), "The file holds no data.");
    EXPECT_EQ(faultOf(lines({header, "S1031000EC", endOfFile})), "The file holds no data.");
}

TEST(FirmwareFile, EmptyLinesAndBlanksAtTheEndAreNoFaultAndDoNotGoOut) {
    const FirmwareFile file = checkFirmware("S0030000FC \r\n\r\nS1051000AA55EB\t \nS9030000FC\r\n\r\n \n\n");
    EXPECT_EQ(file.lines, 3);
    EXPECT_EQ(file.text, lines({header, data, endOfFile}));
    EXPECT_EQ(faultOf("S0030000FC\n\nS1051000AA55EC\n"), "Line 3: the checksum is wrong.")
        << "lines are counted as an editor shows them";
}

TEST(FirmwareFile, LinesThatAreMissingOrDoubledAreToldByTheirNumber) {
    // 03 + 00 + 02 = 05: FA; 03 + 00 + 03 = 06: F9; 04 + 00 + 00 + 02 = 06: F9
    const std::string two = "S5030002FA", three = "S5030003F9", twoLong = "S604000002F9";
    EXPECT_EQ(faultOf(lines({header, data, secondData, two, endOfFile})), "");
    EXPECT_EQ(faultOf(lines({header, data, secondData, twoLong, endOfFile})), "");
    EXPECT_EQ(faultOf(lines({header, data, thirdData, three, endOfFile})),
              "Line 4: the file says that it has 3 data records, and there are 2.");
    EXPECT_EQ(faultOf(lines({header, data, secondData, thirdData, two, endOfFile})),
              "Line 5: the file says that it has 2 data records, and there are 3.");
    EXPECT_EQ(faultOf(lines({header, data, secondData, two, thirdData, endOfFile})),
              "Line 5: there is something between the number of data records and the end record.");
    EXPECT_EQ(faultOf(lines({header, data, secondData, two, two, endOfFile})),
              "Line 5: there is something between the number of data records and the end record.");
    // 04 + 00 + 01 + AA = AF: 50
    EXPECT_EQ(faultOf(lines({header, data, "S5040001AA50", endOfFile})),
              "Line 3: the number of data records has data of its own.");
}

TEST(FirmwareFile, NoAddressComesTwiceAndTheyAscend) {
    EXPECT_EQ(faultOf(lines({header, data, data, endOfFile})),
              "Line 3: the address 1000 comes a second time.");
    EXPECT_EQ(faultOf(lines({header, data, secondData, data, endOfFile})),
              "Line 4: the address 1000 comes a second time.");
    // In part: 05 + 10 + 01 + AA + 55 = 115: EA
    EXPECT_EQ(faultOf(lines({data, "S1051001AA55EA", endOfFile})),
              "Line 2: the address 1001 comes a second time.");
    // The same address in four bytes: 07 + 10 + AA + 55 = 116: E9
    EXPECT_EQ(faultOf(lines({data, "S30700001000AA55E9", endOfFile})),
              "Line 2: the address 1000 comes a second time.");
    EXPECT_EQ(faultOf(lines({secondData, data, endOfFile})),
              "Line 2: the address 1000 stands behind higher ones.");
    EXPECT_EQ(faultOf(lines({data, thirdData, secondData, endOfFile})),
              "Line 3: the address 1002 stands behind higher ones.");
    EXPECT_EQ(faultOf(lines({data, thirdData, endOfFile})), "") << "a gap is none of these";
    EXPECT_EQ(faultOf(lines({header, data, header, endOfFile})),
              "Line 3: a header stands behind other records.");
}

TEST(FirmwareFile, AZeroByteAndALoneCarriageReturnAreFaults) {
    EXPECT_EQ(faultOf(std::string_view("S1051000AA55EB\0\nS9030000FC", 26)),
              "Line 1: the record has a wrong length.");
    EXPECT_EQ(faultOf(lines({data, endOfFile}, "\r")), "Line 1: the record has a wrong length.");
    EXPECT_EQ(faultOf(lines({data, endOfFile}, "\r\r\n")), "Line 1: the record has a wrong length.");
}

TEST(FirmwareFile, ChangingAnyOneCharacterButATypeIsNoticed) {
    const std::string whole = lines({header, data, endOfFile}, "\n");
    ASSERT_EQ(faultOf(whole), "");
    for (std::size_t at = 0; at < whole.size(); ++at) {
        for (int byte = 0; byte < 256; ++byte) {
            std::string changed = whole;
            changed[at] = static_cast<char>(byte);
            if (changed == whole) continue;
            // The end of the last line may be anything that is passed over: a CR or a blank.
            const bool lastEnd = at + 1 == whole.size() && (byte == '\r' || byte == ' ' || byte == '\t');
            // The type stands outside the sum.
            const bool otherType = at > 0 && whole[at - 1] == 'S';
            if (lastEnd || otherType) continue;
            EXPECT_NE(faultOf(changed), "") << at << " becomes " << byte;
        }
    }
}

TEST(FirmwareFile, AnyBytesEndInAnAnswer) {
    std::mt19937 random(20261121);
    const std::string letters = "S0123456789ABCDEF\r\n";
    for (int run = 0; run < 20'000; ++run) {
        std::string text;
        const auto length = random() % 64;
        for (unsigned i = 0; i < length; ++i) {
            text += run % 2 == 0 ? static_cast<char>(random() & 0xFFU) : letters[random() % letters.size()];
        }
        EXPECT_NE(faultOf(text), "") << "by chance nothing makes a whole file";
    }
}

TEST(FirmwareFile, IsReadFromTheDisk) {
    const TemporaryFolder folder;
    const std::string text = lines({header, data, endOfFile});
    EXPECT_EQ(readFirmwareFile(folder.write("ZQA-505100.nv3", text)), text);
    EXPECT_EQ(readFirmwareFile(folder.write("empty.nv3", "")), "");
}

TEST(FirmwareFile, ItsNameTellsTheKindThatItIsFor) {
    EXPECT_EQ(slotOfFirmware("ZQA-505100.nv3"), 3);
    EXPECT_EQ(slotOfFirmware("ZQL-705100.nv3"), 4);
    EXPECT_EQ(slotOfFirmware("ZPK-405100.nv3"), 5);
    EXPECT_EQ(slotOfFirmware("ZQC-305100.nv3"), 6);
    EXPECT_EQ(slotOfFirmware("ZQD-505100.nv3"), 7);
    EXPECT_EQ(slotOfFirmware("mended.nv3"), 0);
    EXPECT_EQ(slotOfFirmware("ZQ"), 0);
    EXPECT_EQ(slotOfFirmware(""), 0);
}

TEST(FirmwareFile, WhatIsNoReadableFileIsAFileError) {
    const TemporaryFolder folder;
    EXPECT_THROW(readFirmwareFile(folder.path("absent.nv3")), FileError);
    EXPECT_THROW(readFirmwareFile(folder.path()), FileError);
    EXPECT_THROW(readFirmwareFile("/dev/zero"), FileError) << "it would never end";
    const std::string huge = folder.path("huge.nv3");
    std::ofstream(huge) << data;
    std::filesystem::resize_file(huge, limits::firmware.bytes + 1);
    EXPECT_THROW(readFirmwareFile(huge), FileError);
}

}  // namespace
}  // namespace zentaq
