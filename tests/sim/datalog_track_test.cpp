#include "sim/datalog_track.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <fstream>
#include <string>

#include "base/errors.h"
#include "sim/engine_model.h"
#include "sim_helpers.h"

namespace zentaq::sim {
namespace {

using namespace test;

/// A datalog with the columns that count and two that do not, in an order of its own.
std::string datalog(const std::string& lines, const std::string& units = "kPa",
                    const std::string& banner = "ZENTAQ 4.10 DATALOG") {
    std::string settings = "1\t1\t255\t";
    for (int pin = 0; pin < 16; ++pin) settings += "0\t";
    return banner + "\tZQA-405099\r\n" + settings + "0\t0\t0\t0\t" + units + "\t14.64\r\n" +
           "Frame\tTPS\tRPM\tMAP\tCLT\tMAT\tBatt V\tKnock\tActual AFR\r\n" + lines;
}

constexpr const char* threeLines =
    "100\t0.5\t1000\t40\t80\t25\t14\t9\t11\r\n"
    "150\t2.5\t3000\t80\t82\t27\t13.6\t9\t11\r\n"
    "200\t4.5\t2000\t60\t84\t29\t13.8\t9\t11\r\n";

TEST(DatalogTrack, PlaysAtFiftyFramesASecondWithStraightWaysBetween) {
    const Drive drive = datalogDrive(datalog(threeLines), "a.dat");
    EXPECT_DOUBLE_EQ(drive->length(), 2.02);  // 100 frames and the last one's own
    const DrivePoint start = drive->at(0);
    EXPECT_EQ(start.rpm, 1000);
    EXPECT_EQ(start.kpa, 40);
    EXPECT_EQ(start.throttle, 0);
    EXPECT_TRUE(start.measured);
    const DrivePoint middle = drive->at(0.5);
    EXPECT_DOUBLE_EQ(middle.rpm, 2000);
    EXPECT_DOUBLE_EQ(middle.kpa, 60);
    EXPECT_DOUBLE_EQ(middle.tpsVolts.value(), 1.5);
    EXPECT_DOUBLE_EQ(middle.throttle, 0.25);
    EXPECT_DOUBLE_EQ(middle.coolantC.value(), 81);
    EXPECT_DOUBLE_EQ(middle.airC.value(), 26);
    EXPECT_DOUBLE_EQ(middle.batteryVolts.value(), 13.8);
    EXPECT_EQ(drive->at(1).rpm, 3000);
    EXPECT_EQ(drive->at(2.01).rpm, 2000);
}

TEST(DatalogTrack, PressureOfOtherUnitsBecomesKpa) {
    const std::string gauge =
        "0\t0.5\t1000\t-4.9\t80\t25\t14\t9\t11\r\n1\t0.5\t1000\t0\t80\t25\t14\t9\t11\r\n";
    const Drive drive = datalogDrive(datalog(gauge, "PSIG", "ZENTAQ 4.5 DATALOG"), "a.dat");
    EXPECT_NEAR(drive->at(0).kpa, 101.325 - 4.9 * 6.8947, 0.01);
    EXPECT_NEAR(drive->at(0.02).kpa, 101.325, 0.0001);
}

struct BadCase {
    std::string text;
    std::string message;
};

TEST(DatalogTrack, ATextThatIsNoDriveIsRefusedWithTheReason) {
    const std::string fewer = datalog("1\t0.5\t1000\t40\t80\t25\t14\t9\t11\r\n");
    std::string withoutAir = datalog(threeLines);
    withoutAir.replace(withoutAir.find("\tMAT\t"), 5, "\tXXX\t");
    const std::string banner =
        "a.dat is no datalog: its first line does not begin with \"ZENTAQ 4.10 DATALOG\" or \"ZENTAQ 4.5 "
        "DATALOG\"";
    const BadCase cases[] = {
        {"", banner},
        {datalog(threeLines, "kPa", "ZENTAQ 4.0 DATALOG"), banner},
        {fewer, "a.dat has fewer than two lines of data"},
        {datalog(threeLines, "bar"), "a.dat names no unit of pressure in line 2"},
        {withoutAir, "a.dat has no column \"MAT\""},
        {datalog("1\t0.5\tfast\t40\t80\t25\t14\r\n2\t0.5\t1000\t40\t80\t25\t14\r\n"),
         "a.dat, line 4: there is no number for \"RPM\""},
        {datalog("1\t0.5\t1000\t40\t80\t25\t14\r\n2\t0.5\t1000\r\n"),
         "a.dat, line 5: there is no number for \"MAP\""},
        {datalog("2\t0.5\t1000\t40\t80\t25\t14\r\n2\t0.5\t1000\t40\t80\t25\t14\r\n"),
         "a.dat, line 5: its frame does not rise"},
    };
    for (const BadCase& bad : cases) {
        try {
            datalogDrive(bad.text, "a.dat");
            ADD_FAILURE() << bad.message;
        } catch (const Failure& failure) {
            EXPECT_EQ(failure.what(), bad.message);
        }
    }
}

TEST(DatalogTrack, AMissingFileAndAFolderAreFileErrors) {
    const TemporaryFolder folder;
    EXPECT_THROW(driveOf(folder.path("nowhere.dat")), FileError);
    EXPECT_THROW(driveOf(folder.path("")), FileError);
}

TEST(DatalogTrack, WhatIsNoFileOrTooLongIsRefusedUnread) {
    const TemporaryFolder folder;
    const std::string path = folder.path("drive.dat");
    ASSERT_EQ(::mkfifo(path.c_str(), 0600), 0);
    EXPECT_THROW(driveOf(path), FileError) << "a pipe would hold the simulator up";
    EXPECT_THROW(driveOf("/dev/zero"), FileError);
    std::filesystem::remove(path);
    std::ofstream(path, std::ios::binary) << datalog(threeLines);
    std::filesystem::resize_file(path, std::uintmax_t{1} << 40);
    EXPECT_THROW(driveOf(path), FileError);
}

TEST(DatalogTrack, TheWordOfTheOptionNamesACycleOrAFile) {
    const TemporaryFolder folder;
    const std::string path = folder.path("drive.dat");
    std::ofstream(path, std::ios::binary) << datalog(threeLines);
    EXPECT_EQ(driveOf(path)->at(1).rpm, 3000);
    EXPECT_EQ(driveOf("idle")->at(20).rpm, 850);
    EXPECT_EQ(driveOf("drive")->at(26).rpm, 6500);
    EXPECT_EQ(driveOf("dyno")->at(2).rpm, 1000);
}

TEST(DatalogTrack, TheEngineShowsWhatWasMeasuredAndBeginsAgainAtTheEnd) {
    EngineModel engine({.serial = 200001, .drive = datalogDrive(datalog(threeLines), "a.dat")});
    engine.advance(1);
    EXPECT_NEAR(engine.values().rpm, 3000, 0.01);
    EXPECT_NEAR(engine.values().mapKpa, 80, 0.01);
    EXPECT_NEAR(engine.values().tpsVolts, 2.5, 0.001);
    EXPECT_NEAR(engine.values().coolantC, 82, 0.001);
    EXPECT_NEAR(engine.values().airC, 27, 0.001);
    EXPECT_NEAR(engine.values().batteryVolts, 13.6, 0.1);
    EXPECT_NE(engine.values().actualAfr, 11) << "the mixture is the engine's own";
    engine.advance(1.52);
    EXPECT_NEAR(engine.values().rpm, 2000, 0.01);
    EXPECT_NEAR(engine.values().mapKpa, 60, 0.01);
}

}  // namespace
}  // namespace zentaq::sim
