// Replies of a unit as names and values, worked out by hand from their bytes.
#include <utility>

#include "ctl/ctl_fixture.h"

namespace zentaq {
namespace {

using Places = std::vector<std::pair<std::size_t, int>>;

std::string hexOf(const std::vector<int>& bytes) {
    constexpr std::string_view digits = "0123456789ABCDEF";
    std::string text;
    for (const int byte : bytes) {
        text += digits[static_cast<std::size_t>(byte >> 4)];
        text += digits[static_cast<std::size_t>(byte & 15)];
    }
    return text;
}

/// Zeros up to `length` behind the head FA A5 55, with the sum of the bytes from the third on at the end.
std::string reply(std::size_t length, const Places& places) {
    std::vector<int> bytes(length, 0);
    bytes[0] = 0xFA;
    bytes[1] = 0xA5;
    bytes[2] = 0x55;
    for (const auto& [at, value] : places) bytes[at] = value;
    int sum = 0;
    for (std::size_t i = 2; i + 1 < length; ++i) sum += bytes[i];
    bytes[length - 1] = sum & 0xFF;
    return hexOf(bytes);
}

/// The narrow frame of kind 3 has no head and no sum.
std::string narrowFrame(const Places& places) {
    std::vector<int> bytes(35, 0);
    for (const auto& [at, value] : places) bytes[at] = value;
    return hexOf(bytes);
}

class ZentaqctlDecode : public Zentaqctl {
 protected:
    Outcome decode(const std::string& kind, const std::string& command, const std::string& hex,
                   const std::string& rest = {}) {
        return run("decode --kind " + kind + " --reply " + command + " " + hex + " " + rest);
    }
};

// ---- E, B, C

TEST_F(ZentaqctlDecode, ReadsAnIdentification) {
    // 0x00030D40 = 200000
    const std::string wanted = "SerialNumber=200000\nOldFirmware=0\nLinkedUnitKind=3\nUnit=A\n";
    EXPECT_EQ(decode("A", "E", "FAA55500030D40A5").out, wanted);
    EXPECT_EQ(run("decode --reply E FAA55500030D40A5").out, wanted) << "E tells the kind by itself";
}

TEST_F(ZentaqctlDecode, ReadsAnIdentificationInOctalDigitsOfAnOldUnitAndInNoRange) {
    // octal 303240 = 3 * 32768 + 3 * 512 + 2 * 64 + 4 * 8 = 100000 = 0x000186A0
    EXPECT_EQ(run("decode --reply E FAA554000186A000").out,
              "SerialNumber=303240\nOldFirmware=0\nLinkedUnitKind=4\nUnit=L\n");
    // octal 144 = 100 = 0x64, then "AX"
    EXPECT_EQ(run("decode --reply E 000000644158").out,
              "SerialNumber=144\nOldFirmware=1\nLinkedUnitKind=3\nUnit=A\n");
    EXPECT_EQ(run("decode --reply E FAA5550000000900").out, "SerialNumber=9\nOldFirmware=0\n");
    expectRefused(run("decode --reply E 0102030405060708"), "The reply is no identification");
}

TEST_F(ZentaqctlDecode, ReadsFirmwareAndName) {
    // "Street 2.0              " "ZQA  05099", subtype 1
    const std::string name =
        "53747265657420322E30"
        "2020202020202020202020202020";
    const std::string hex = "FAA555" + name + "5A514120203035303939" + "01" + "00";
    EXPECT_EQ(decode("A", "B", hex).out,
              "UnitBinName=Street 2.0\nFirmWare=ZQA  05099\nFW_Release=5\nFW_Build=99\nUnitSubType=2\nUnit=A "
              "6/12\n");
}

TEST_F(ZentaqctlDecode, FirmwareWithoutANumberIsRefused) {
    EXPECT_THAT(decode("L", "B", reply(38, {{27, 'Z'}, {28, 'Q'}, {29, 'L'}})),
                Fails(1, AllOf(isOneLine, StartsWith("The reply holds no firmware number")), IsEmpty()));
}

TEST_F(ZentaqctlDecode, TheConfigurationTellsOneThingOnTwoKinds) {
    EXPECT_EQ(decode("L", "C", reply(39, {{18, 3}})).out, "hasPIC18=1\n");
    EXPECT_EQ(decode("PZK-2", "C", reply(39, {{18, 2}})).out, "hasPIC18=0\n");
    EXPECT_THAT(decode("A", "C", reply(39, {{18, 1}})), Succeeds(IsEmpty()));
}

// ---- F

TEST_F(ZentaqctlDecode, ReadsTheNarrowFrameOfTheOrbA) {
    const std::string hex =
        narrowFrame({{0, 0x0B}, {1, 0xB8}, {2, 85},  {3, 102},  {4, 161}, {6, 255}, {7, 51},   {8, 87},
                     {9, 102},  {10, 207}, {11, 1},  {12, 1},   {13, 2},  {14, 3},  {15, 128}, {16, 128},
                     {17, 128}, {19, 26},  {23, 2},  {24, 238}, {25, 4},  {26, 5},  {27, 6},   {28, 7},
                     {29, 8},   {31, 43},  {32, 17}, {33, 128}, {34, 1}});
    EXPECT_EQ(decode("A", "F", hex).out,
              "RPM=3000\n"
              "PRIADV=20\n"  // 85 / 4.25
              "MAP=48.1\n"   // (102 / 51 + 0.54738) / 0.05295, the sensor of a file without one
              "CLT=80\n"     // 161 * 190 / 255 - 40 = 79.96
              "GAMA=100\n"   // 255 * 100 / 255
              "KNOCK=20\n"   // 51 / 2.55
              "MAT=25\n"     // 24.82
              "TPS=2\n"
              "BATTV=14\n"  // 207 * 0.067432 = 13.96
              "CHKE=1\n"
              "AAFR=14.61\n"  // 14.64 / (128 / 255 + 0.5)
              "EGOC=0\n"
              "DAFR=14.61\n"
              "EGOV=0.51\n"  // 26 / 51
              "SECPW=0\n"
              "PRIPW=6\n"      // 750 / 125
              "SECADV=10.1\n"  // 43 / 4.25
              "KNKRET=2\n"     // 17 / 8.5
              "IACP=50\n"      // (128 - 1) of 254
              "IACD=1\n"
              "GPIOData(0)=1\nGPIOData(1)=8\nGPIOData(2)=2\nGPIOData(3)=3\n"
              "GPIOData(4)=4\nGPIOData(5)=5\nGPIOData(6)=6\nGPIOData(7)=7\n");
}

TEST_F(ZentaqctlDecode, ReadsTheNarrowFrameOfTheIgnitionUnit) {
    const std::string hex =
        reply(28, {{3, 0x0B}, {4, 0xB8}, {6, 102}, {8, 51}, {9, 51}, {10, 85}, {25, 178}, {26, 0}});
    EXPECT_EQ(decode("PZK-2", "F", hex).out,
              "RPM=3000\nMAP=48.1\nTPS=1\nKNOCK=20\nPRIADV=20\nSECADV=0\nKNKRET=0\n"
              "BATTV=14\n"  // 178 * 0.078431 = 13.96
              "CHKE=0\n");
}

TEST_F(ZentaqctlDecode, ACalibrationScalesTheValuesAndNamesTheFunctionsOfPins) {
    ASSERT_EQ(onFile("set", "MOFFSET 10").exitCode, 0);
    ASSERT_EQ(onFile("set", "GPIO_Func 6 --index 0").exitCode, 0);  // shift light
    const std::string hex = narrowFrame({{2, 85}, {12, 1}});
    EXPECT_THAT(run("decode --reply F --calibration " + inQuotes(file) + " " + hex),
                Succeeds(AllOf(HasSubstr("PRIADV=30\n"), HasSubstr("GPIOData(0)=1\nGPIODisplay(0)=O"))));
}

TEST_F(ZentaqctlDecode, ACalibrationOfAnotherKindIsRefused) {
    expectRefused(decode("L", "F", "00", "--calibration " + inQuotes(file)),
                  file + " is for ORB A, not for ORB L");
    const std::string other = sample("ORB D Four.ZQ4OD");
    EXPECT_EQ(decode("D6", "F", reply(28, {}), "--calibration " + inQuotes(other)).exitCode, 0)
        << "both kinds of one class have the same files";
}

// ---- W, I, D, T

TEST_F(ZentaqctlDecode, ReadsTheWideFrame) {
    const Places places = {{3, 0x0B}, {4, 0xB8}, {7, 255},  {24, 255}, {26, 255}, {30, 0x03}, {31, 0xE8},
                           {34, 40},  {46, 250}, {52, 145}, {55, 50},  {56, 9},   {63, 4}};
    const Outcome outcome = decode("A", "W", reply(65, places));
    EXPECT_EQ(outcome.exitCode, 0) << outcome.error;
    for (const char* line :
         {"RPM=3000\n", "\nPRIDUTY=100\n", "\nIACP=100\n", "\nINJ_TOG=1\n", "\nINJ_VE=-10\n",
          "\nINJ_VLTCOMP=1\n",  // (250 - 125) * 8 / 1000
          "\nADV_MAT=4\n",      // (145 - 128) / 4.25
          "\nISRPM=800\n", "\nGPIOData(0)=9\n", "\nGPIOData(7)=4\n"}) {
        EXPECT_THAT(outcome.out, HasSubstr(line));
    }
    EXPECT_THAT(outcome.out, Not(HasSubstr("GPIOData(8)")));
    EXPECT_THAT(outcome.out, Not(HasSubstr("SECPERCENT"))) << "the frame does not carry it";
}

TEST_F(ZentaqctlDecode, TheWideFrameOfEachKindHasItsOwnPins) {
    for (const auto& [kind, length, last] :
         {std::tuple("A", 65, 7), std::tuple("L", 66, 8), std::tuple("C", 70, 12), std::tuple("D", 62, 4)}) {
        const Outcome outcome = decode(kind, "W", reply(static_cast<std::size_t>(length), {}));
        EXPECT_THAT(outcome.out, HasSubstr("GPIOData(" + std::to_string(last) + ")=0\n")) << kind;
        EXPECT_THAT(outcome.out, Not(HasSubstr("GPIOData(" + std::to_string(last + 1) + ")"))) << kind;
    }
}

TEST_F(ZentaqctlDecode, AWideFrameWithAWrongSumIsRefused) {
    std::string hex = reply(65, {{3, 0x0B}});
    hex[hex.size() - 1] = hex.back() == '0' ? '1' : '0';
    const Outcome outcome = decode("A", "W", hex);
    expectRefused(outcome, "The checksum of the reply is wrong");
    EXPECT_THAT(outcome.out, IsEmpty());
}

TEST_F(ZentaqctlDecode, ReadsTheListOfPins) {
    const Outcome outcome = decode("L", "I", reply(21, {{3, 7}, {11, 9}}));
    EXPECT_THAT(outcome.out, StartsWith("GPIOData(0)=7\nGPIOData(1)=0\n"));
    EXPECT_THAT(outcome.out, ::testing::EndsWith("GPIOData(8)=9\n"));
}

TEST_F(ZentaqctlDecode, ReadsARecordOfTheUnitsLog) {
    // Byte 15 is the measured ratio and byte 16 the wanted one, the reverse of a frame.
    const Outcome outcome =
        decode("A", "D", reply(33, {{3, 0x0B}, {4, 0xB8}, {15, 128}, {16, 255}, {19, 0x17}, {20, 0x70}}));
    EXPECT_THAT(outcome.out, StartsWith("RPM=3000\n"));
    EXPECT_THAT(outcome.out, HasSubstr("\nAAFR=14.61\n"));
    EXPECT_THAT(outcome.out, HasSubstr("\nDAFR=9.76\n"));  // 14.64 / 1.5
    EXPECT_THAT(outcome.out, HasSubstr("\nPRIPW=6\n"));    // 6000 / 1000
    EXPECT_THAT(outcome.out, Not(HasSubstr("GPIOData")));
}

TEST_F(ZentaqctlDecode, ReadsTheEndOfTheUnitsLog) {
    EXPECT_EQ(decode("A", "D", reply(33, {{3, 83}})).out, "EndOfLog=1\n");
    EXPECT_THAT(decode("A", "D", reply(33, {{3, 82}})).out, StartsWith("RPM=20992\n"));
    expectRefused(decode("A", "D", std::string(66, '0')), "The reply is no record of a datalog");
}

TEST_F(ZentaqctlDecode, ReadsCheckEngineCodes) {
    // A cleared bit is a set code: word 2 lacks bit 0, word 12 bit 1.
    std::vector<int> bytes(16, 255);
    bytes[4] = 0xFE;
    bytes[14] = 0xFD;
    const Outcome outcome = decode("A", "T", hexOf(bytes));
    EXPECT_EQ(outcome.out,
              "ECData(0)=255\nECData(1)=254\nECData(2)=255\nECData(3)=255\nECData(4)=255\nECData(5)=255\n"
              "ECData(6)=255\nECData(7)=255\nECData(8)=255\nECData(9)=255\nECData(10)=255\nECData(11)=253\n"
              "Code=21 - TPS Sensor Failed High\nCode=Intermittent ISC2 Short to Battery or Open Load\n");
    EXPECT_EQ(
        fromJson(decode("A", "T", hexOf(bytes), "--json").out, "d[\"codes\"], d[\"values\"][\"ECData(1)\"]"),
        "(['21 - TPS Sensor Failed High', 'Intermittent ISC2 Short to Battery or Open Load'], 254)");
}

TEST_F(ZentaqctlDecode, AKindGivesOnlyItsOwnReplies) {
    expectRefused(decode("PZK-2", "W", reply(23, {})), "PZK-2 gives no reply W");
    expectRefused(decode("A", "I", reply(21, {})), "ORB A gives no reply I");
}

TEST_F(ZentaqctlDecode, ARecordOfAnOrbDIsReadAsThoseOfTheOtherKinds) {
    EXPECT_THAT(decode("D", "D", reply(34, {{3, 0x0C}, {4, 0x1C}})), Succeeds(HasSubstr("RPM=3100\n")));
}

// ---- How bytes are given

TEST_F(ZentaqctlDecode, TakesBytesWithOrWithoutBlanksAndFromTheStandardInput) {
    const std::string wanted = run("decode --reply E FAA55500030D40A5").out;
    EXPECT_EQ(run("decode --reply E fa a5 55 00 03 0d 40 a5").out, wanted);
    EXPECT_EQ(run("decode --reply E 'FA A5 55 00  03 0D 40 A5'").out, wanted);
    EXPECT_EQ(run("decode --reply E -", "FA A5 55 00\r\n03 0D 40 A5\n").out, wanted);
}

TEST_F(ZentaqctlDecode, RefusesWhatIsNoRowOfBytes) {
    expectRefused(run("decode --reply E FAA5550"), "The reply has an odd number of hexadecimal digits");
    expectRefused(run("decode --reply E FAG555"), "The reply is not hexadecimal: G");
    expectRefused(run("decode --reply E -"), "A reply E of ORB A has 8 bytes, not 0");
}

TEST_F(ZentaqctlDecode, RefusesAWrongLength) {
    expectRefused(decode("L", "F", reply(27, {})), "A reply F of ORB L has 28 bytes, not 27");
    expectRefused(decode("C", "W", reply(65, {})), "A reply W of ORB C has 70 bytes, not 65");
    expectRefused(decode("A", "B", reply(38, {})), "A reply B of ORB A has 39 bytes, not 38");
}

TEST_F(ZentaqctlDecode, AnswersInJson) {
    const std::string json = run("decode --reply E FAA55500030D40A5 --json").out;
    EXPECT_EQ(
        json,
        R"({"reply":"E","kind":3,"values":{"SerialNumber":200000,"OldFirmware":false,"LinkedUnitKind":3,"Unit":"A"}})"
        "\n");
    EXPECT_EQ(fromJson(decode("A", "F", narrowFrame({{11, 9}}), "--json").out, "d[\"values\"][\"CHKE\"]"),
              "True");
}

TEST_F(ZentaqctlDecode, WantsAKindAndAKnownReply) {
    expectWrongUsage({"decode --reply F 00", "decode --kind A 00", "decode --kind A --reply X 00",
                      "decode --kind A --reply F", "decode --kind Q --reply F 00"});
}

}  // namespace
}  // namespace zentaq
