// How a transfer ends, as a type and in numbers; the words for it are tested with each kind of transfer.

#include "link/link_bench.h"

namespace zentaq {
namespace {

class TransferEnds : public LinkBench {
 protected:
    TransferEnds() {
        host.unit(3).BinFile("car.ZQ4OA");
        for (int index = 0; index < Unit::cellCount; ++index) host.unit(3).AssignDirectIndex(2, index);
        host.current = 3;
    }
    /// An end that loses the link loses the unit.
    void meet() {
        if (!link.linked().UnitIdentified) identify(200001, "ZQA-405099");
    }
    /// A firmware of three lines, whose start and lines are answered so.
    TransferEnd firmware(const char* start, const char* first, const char* second, const char* third) {
        meet();
        const char* lines[] = {"S0a", "S1b", "S9c"};
        const char* answers[] = {first, second, third};
        if (*start != 0) port.once("P3", atOnce(start));
        for (int i = 0; i < 3; ++i) {
            if (*answers[i] != 0) port.once(lines[i], atOnce(answers[i]));
        }
        link.Program_Unit(TransferMode::Firmware, folder.write("new.nv3", "S0a\r\nS1b\r\nS9c\r\n"));
        return end();
    }
    TransferEnd download(const std::string& path, std::initializer_list<std::string> records) {
        meet();
        for (const std::string& record : records) port.once("D", atOnce(record));
        link.Program_Unit(TransferMode::Datalog, path);
        return end();
    }
    TransferEnd end() {
        for (int i = 0; i < 10'000 && host.ends.empty(); ++i) ticks(1);
        ticks(10);
        EXPECT_EQ(host.ends.size(), 1U) << "each transfer ends once";
        return std::exchange(host.ends, {}).at(0);
    }
    static std::string record(int rpmHigh) { return framed(33, {{3, rpmHigh}}); }
    std::string log() { return folder.path("log.dat"); }
};

TEST_F(TransferEnds, OfAFirmware) {
    TransferEnd seen = firmware("AX", "AX", "AX", "PN");
    EXPECT_EQ(seen.mode, TransferMode::Firmware);
    EXPECT_EQ(seen.result, TransferResult::Verified);
    EXPECT_EQ(seen.lines, 3);
    EXPECT_EQ(seen.total, 3);
    EXPECT_EQ(firmware("AX", "AX", "AX", "AX").result, TransferResult::RanOut);
    seen = firmware("AR", "", "", "");
    EXPECT_EQ(seen.result, TransferResult::Refused);
    EXPECT_EQ(seen.firmware, FirmwareLeft::Former);
    seen = firmware("AX", "AX", "AR", "");
    EXPECT_EQ(seen.result, TransferResult::Refused);
    EXPECT_EQ(seen.firmware, FirmwareLeft::None);
    EXPECT_EQ(seen.lines, 2);
    seen = firmware("AX", "", "", "");
    EXPECT_EQ(seen.result, TransferResult::NotAnswered);
    EXPECT_FALSE(seen.answered);
    EXPECT_EQ(seen.lines, 1);
}

TEST_F(TransferEnds, OfACalibration) {
    meet();
    link.Program_Unit(TransferMode::Calibration, {});
    EXPECT_EQ(end().result, TransferResult::NotAnswered);
    meet();
    port.once("P1", atOnce("AR"));
    link.Program_Unit(TransferMode::Calibration, {});
    const TransferEnd seen = end();
    EXPECT_EQ(seen.mode, TransferMode::Calibration);
    EXPECT_EQ(seen.result, TransferResult::Refused);
    EXPECT_EQ(seen.lines, 0);
    EXPECT_EQ(seen.total, 148);
    EXPECT_TRUE(seen.answered);
}

TEST_F(TransferEnds, OfADownload) {
    TransferEnd seen = download(log(), {record(3), record(4), record(83)});
    EXPECT_EQ(seen.mode, TransferMode::Datalog);
    EXPECT_EQ(seen.result, TransferResult::Verified);
    EXPECT_EQ(seen.lines, 2);
    EXPECT_EQ(seen.total, 0);
    EXPECT_EQ(download(log(), {record(83)}).result, TransferResult::Refused);
    EXPECT_EQ(download("/dev/full", {record(3), record(4), record(83)}).result, TransferResult::NotWritten);
    EXPECT_EQ(download(log(), {record(3), std::string(33, 'x')}).result, TransferResult::BadRecord);
    EXPECT_EQ(download(log(), {record(3)}).result, TransferResult::NotAnswered);
}

TEST_F(TransferEnds, WhereAnotherUnitHasCome) {
    meet();
    port.once("E", identifyReply(300000));
    link.Send_ORB_Command("E");
    link.Program_Unit(TransferMode::Calibration, {});
    EXPECT_EQ(end().result, TransferResult::OtherUnit);
}

}  // namespace
}  // namespace zentaq
