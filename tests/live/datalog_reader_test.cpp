// Reading datalogs: what each format holds, what is damaged, and where a row goes.
#include "live/datalog_reader.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>
#include <cstdlib>
#include <map>
#include <random>
#include <sstream>

#include "base/errors.h"
#include "live/datalog_writer.h"
#include "unit/recording_host.h"

namespace zentaq {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::SizeIs;

/// Keeps what is read.
struct Kept : DatalogSink {
    DatalogHead told;
    int heads = 0;
    std::vector<std::map<std::string, double>> rows;
    std::vector<std::int64_t> lines;

    void head(const DatalogHead& head) override {
        told = head;
        ++heads;
    }
    void row(std::span<const double> values, std::int64_t line) override {
        std::map<std::string, double> row;
        for (std::size_t i = 0; i < values.size(); ++i) row[told.columns[i]] = values[i];
        rows.push_back(row);
        lines.push_back(line);
    }
};

DatalogReading read(const std::string& text, Kept& kept, const DatalogOptions& options = {}) {
    std::istringstream in(text);
    return readDatalog(in, kept, options);
}

/// A data line of today's format: frame, speed and pressure, then zeros, with the constant pins as written.
std::string newestLine(const std::string& frame, const std::string& rpm, const std::string& map) {
    std::string line = frame + "\t" + rpm + "\t" + map;
    for (int i = 0; i < 44; ++i) line += "\t0";
    for (int pin = 1; pin <= 9; ++pin) line += "\t" + std::to_string(pin);
    for (int pin = 10; pin <= 20; ++pin) line += "\t 0";
    return line + "\r\n";
}

const std::string newestHead =
    "ZENTAQ 4.10 DATALOG\tZQA-405099\r\n"
    "1\t1\t255\t0\t0\t0\t0\t0\t0\t0\t0\t0\t0\t0\t0\t0\t0\t0\t0\t0\t0\t0\t0\tPSIA\t14.64\r\n"
    "Frame\tRPM\tMAP\r\n";

TEST(DatalogReader, ReadsTheHeadAndTheRowsOfTodaysFormat) {
    Kept log;
    const auto reading =
        read(newestHead + newestLine("0", "850", "33.4") + newestLine("1", "3100", "98.5"), log);
    EXPECT_EQ(reading.rows, 2);
    EXPECT_EQ(reading.skipped, 0);
    EXPECT_EQ(log.heads, 1);
    EXPECT_EQ(log.told.format, DatalogFormat::Newest);
    EXPECT_EQ(log.told.firmware, "ZQA-405099");
    EXPECT_EQ(log.told.mapUnits, "PSIA");
    EXPECT_EQ(log.told.mapBar, 1);
    EXPECT_THAT(log.told.settings, SizeIs(25));
    ASSERT_THAT(log.rows, SizeIs(2));
    EXPECT_EQ(log.rows[0]["RPM"], 850);
    EXPECT_EQ(log.rows[0]["MAP"], 33.4);
    EXPECT_EQ(log.rows[1]["Frame"], 1);
    EXPECT_EQ(log.rows[1]["GPIO9"], 9);
    EXPECT_EQ(log.rows[1]["GPIO10"], 0) << "the constant pins have a blank in front";
    EXPECT_THAT(log.lines, ElementsAre(4, 5));
}

// What the writer rounds to is what comes back.
TEST(DatalogReader, ReadsWhatTheWriterWrites) {
    RecordingHost host;
    Unit unit(orbaKind(), host);
    unit.FirmWare("ZQA-405099");
    LiveValues live;
    live.RPM = 4250;
    live.TPS = 2.346F;
    live.AAFR = 13.456F;
    live.KNKRET = 1.25F;
    live.CHKE = true;
    live.ISRPM = 900;
    std::ostringstream out;
    writeDatalogHeader(out, unit);
    DataRecord(out, unit, live, false, 7);
    Kept log;
    EXPECT_EQ(read(out.str(), log).rows, 1);
    EXPECT_EQ(log.told.firmware, "ZQA-405099");
    auto& row = log.rows.at(0);
    EXPECT_EQ(row["Frame"], 7);
    EXPECT_EQ(row["RPM"], 4250);
    EXPECT_EQ(row["TPS"], 2.35);
    EXPECT_EQ(row["AAFR"], 13.46);
    EXPECT_EQ(row["CHKE"], 1);
    EXPECT_EQ(row["ISRPM"], 900);
}

// 120 seconds of a revolution at 3000 rpm are 40 ms between two injections of a sequential engine.
TEST(DatalogReader, WorksOutWhatNoLineTells) {
    std::string line = newestLine("0", "3000", "50");
    Kept log;
    read(newestHead + line, log);
    EXPECT_EQ(log.rows.at(0)["IPP"], 40);
    EXPECT_EQ(log.rows[0]["PRIOFFTIME"], 40) << "the pulse is 0";
    Kept other;
    read(newestHead + line + newestLine("1", "0", "50"), other, {.cycleFactor = 60});
    EXPECT_EQ(other.rows.at(0)["IPP"], 20);
    EXPECT_EQ(other.rows.at(1)["IPP"], 0) << "an engine that stands injects nothing";
}

// The largest 32-bit float is 3.4028235e38, and a turn at 1e-38 rpm takes 1.2e43 ms.
TEST(DatalogReader, NothingIsLargerThanA32BitFloatHolds) {
    Kept log;
    const auto reading = read(newestHead + newestLine("0", "850", "3.4e38") +
                                  newestLine("1", "850", "3.5e38") + newestLine("2", "850", "-1e300") +
                                  newestLine("3", "1e-38", "40") + newestLine("4", "1e-310", "40"),
                              log);
    EXPECT_EQ(reading.skipped, 2);
    ASSERT_THAT(log.lines, ElementsAre(4, 7, 8));
    EXPECT_EQ(log.rows[0]["MAP"], 3.4e38);
    EXPECT_EQ(log.rows[1]["IPP"], 0);
    EXPECT_EQ(log.rows[2]["IPP"], 0) << "endless in a 64-bit float, too";
}

TEST(DatalogReader, ADamagedLineIsSkippedCountedAndTakesNoOtherAlong) {
    std::string wrong = newestLine("1", "8x0", "40");
    std::string shorter = newestLine("2", "850", "40");
    shorter.resize(shorter.size() / 2);
    Kept log;
    const auto reading = read(newestHead + newestLine("0", "850", "40") + wrong + shorter + "\r\n" +
                                  newestLine("3", "870", "40") + newestLine("4", "nan", "40") +
                                  newestLine("5", "880", "40\t7"),
                              log);
    EXPECT_EQ(reading.rows, 2);
    EXPECT_EQ(reading.skipped, 4);
    ASSERT_THAT(reading.warnings, SizeIs(4));
    EXPECT_EQ(reading.warnings[0].line, 5);
    EXPECT_EQ(reading.warnings[0].why, "A field is no number");
    EXPECT_EQ(reading.warnings[1].why, "It has too few fields");
    EXPECT_EQ(reading.warnings[3].why, "It has too many fields");
    EXPECT_EQ(log.rows.at(1)["Frame"], 3);
}

TEST(DatalogReader, ALastLineWithoutItsEndIsReadAndACutOneCosts1Row) {
    std::string whole = newestLine("1", "850", "40");
    whole.resize(whole.size() - 2);
    Kept log;
    EXPECT_EQ(read(newestHead + newestLine("0", "850", "40") + whole, log).rows, 2);
    std::string cut = newestLine("1", "850", "40");
    cut.resize(60);
    Kept other;
    const auto reading = read(newestHead + newestLine("0", "850", "40") + cut, other);
    EXPECT_EQ(reading.rows, 1);
    ASSERT_THAT(reading.warnings, SizeIs(1));
    EXPECT_EQ(reading.warnings[0].why, "The last line is cut");
}

TEST(DatalogReader, LineEndsOfOtherSystemsAndEmptyLinesAreTaken) {
    std::string text = newestHead + newestLine("0", "850", "40") + "\r\n\r\n";
    std::erase(text, '\r');
    Kept log;
    const auto reading = read(text, log);
    EXPECT_EQ(reading.rows, 1);
    EXPECT_EQ(reading.skipped, 0);
}

TEST(DatalogReader, ALogOfAHeadAloneHasNoRows) {
    Kept log;
    EXPECT_EQ(read(newestHead, log).rows, 0);
    EXPECT_EQ(log.heads, 1);
    EXPECT_EQ(log.told.mapUnits, "PSIA");
}

/// Session, seconds, speed and zeros; five in the place of the pins.
std::string oldestLine(const std::string& session, const std::string& seconds, const std::string& rpm,
                       char separator) {
    const std::string next(1, separator);
    std::string line = session + next + seconds + next + rpm;
    for (int i = 0; i < 28; ++i) line += next + "1";
    for (int pin = 0; pin < 9; ++pin) line += next + "5";
    return line + "\r\n";
}

TEST(DatalogReader, TheOldestFormatHasSecondsTabsOrCommasAndTwoLinesOfHeadOrNone) {
    const std::string banner = "ZENTAQ 4.0 DATALOG\r\n";
    for (const char separator : {'\t', ','}) {
        for (const char* head : {"", "1,2,3\r\nSession,Seconds,RPM\r\n"}) {
            Kept log;
            const auto reading = read(banner + head + oldestLine("Run 1", "0.02", "850", separator) +
                                          oldestLine("Run 1", "0.04", "900", separator),
                                      log);
            EXPECT_EQ(reading.rows, 2) << separator << head;
            EXPECT_EQ(reading.skipped, 0);
            EXPECT_EQ(log.told.format, DatalogFormat::Oldest);
            EXPECT_EQ(log.rows.at(0)["Seconds"], 0.02);
            EXPECT_EQ(log.rows.at(1)["RPM"], 900);
            EXPECT_EQ(log.rows.at(0)["GPIO9"], 5);
            EXPECT_EQ(log.rows.at(0).count("Session"), 0u);
            EXPECT_EQ(log.rows.at(0).count("TPSB"), 0u);
        }
    }
}

TEST(DatalogReader, ASessionInQuotesMayHoldCommas) {
    Kept log;
    const auto reading = read("ZENTAQ 4.0 DATALOG\r\n" + oldestLine("\"Drag, run #1\"", "0.02", "850", ',') +
                                  oldestLine("\"no end", "0.04", "900", ',') +
                                  oldestLine("\"Drag, no end", "0.06", "950", ','),
                              log);
    ASSERT_THAT(log.lines, ElementsAre(2, 3));
    EXPECT_EQ(reading.skipped, 1);
    EXPECT_EQ(log.rows[0]["Seconds"], 0.02);
    EXPECT_EQ(log.rows[0]["RPM"], 850);
}

TEST(DatalogReader, APlainLogIsReadByTheNamesInItsFirstLine) {
    Kept log;
    const auto reading =
        read("\"RPM\",\"MAP\",\"Actual AFR\",\"Something\"\n850,33.4,14.7,x\n900,34,13,y\n", log);
    EXPECT_EQ(log.told.format, DatalogFormat::Plain);
    EXPECT_EQ(reading.rows, 2);
    EXPECT_EQ(log.rows.at(0)["AAFR"], 14.7);
    EXPECT_EQ(log.rows.at(1)["RPM"], 900);
    EXPECT_EQ(log.rows.at(1)["CLT"], 0);
}

TEST(DatalogReader, EveryNumberIsTheNearestOneThatThereIs) {
    std::mt19937_64 random(1);
    std::vector<std::string> numbers{
        "0",     "-0",   "5.",      ".5",      "-.25",           "0.1",
        "1e-05", "1E3",  "00012.5", "0.00001", "999999999999.5", "99999999999999999.9",
        "1 2.5", "-14.7"};
    for (int i = 0; i < 3000; ++i) {
        std::string digits = std::to_string(random() >> (random() % 60));
        digits = digits.substr(0, 1 + random() % digits.size());
        if (i % 3 != 0) digits.insert(random() % (digits.size() + 1), ".");
        if (digits == ".") continue;
        numbers.push_back((i % 5 == 0 ? "-" : "") + digits);
    }
    std::string text = "RPM,MAP,AAFR\n";
    for (const std::string& number : numbers) text += "850," + number + ",14.7\n";
    Kept log;
    ASSERT_EQ(read(text, log).rows, static_cast<std::int64_t>(numbers.size()));
    for (std::size_t i = 0; i < numbers.size(); ++i) {
        std::string plain = numbers[i];
        std::erase(plain, ' ');
        const double wanted = std::strtod(plain.c_str(), nullptr);
        EXPECT_EQ(log.rows[i]["MAP"], wanted) << numbers[i];
        EXPECT_EQ(std::signbit(log.rows[i]["MAP"]), std::signbit(wanted)) << numbers[i];
    }
}

TEST(DatalogReader, AFieldOfSignsAndPointsIsNoNumber) {
    for (const char* field : {".", "-", "-.", "1.2.3", "--1", "+1", "1-", "0x10"}) {
        Kept log;
        EXPECT_EQ(read("RPM,MAP,AAFR\n850,1,14\n900," + std::string(field) + ",14\n", log).skipped, 1)
            << field;
    }
}

TEST(DatalogReader, WhatIsNoDatalogIsSaidSo) {
    for (const char* text : {"", "\n", "Dear diary\nRPM\n", "1\t2\t3\n", "MAP,TPS,CLT\n1,2,3\n"}) {
        Kept log;
        try {
            read(text, log);
            ADD_FAILURE() << text;
        } catch (const Failure& failure) {
            EXPECT_THAT(failure.what(), HasSubstr("no datalog")) << text;
        }
    }
}

TEST(DatalogReader, ALineWithoutAnEndIsReadPastAndNotHeld) {
    Kept log;
    const auto reading = read(newestHead + newestLine("0", "850", "40") + std::string(3'000'000, '7') + "\n" +
                                  newestLine("1", "860", "40"),
                              log);
    EXPECT_EQ(reading.rows, 2);
    ASSERT_THAT(reading.warnings, SizeIs(1));
    EXPECT_EQ(reading.warnings[0].why, "The line is longer than any line of a log");
}

TEST(DatalogReader, OnlyTheFirstDamagedLinesAreTold) {
    std::string text = newestHead + newestLine("0", "850", "40");
    for (int i = 0; i < 50; ++i) text += "damaged\r\n";
    Kept log;
    const auto reading = read(text, log);
    EXPECT_EQ(reading.skipped, 50);
    EXPECT_THAT(reading.warnings, SizeIs(20));
}

TEST(DatalogReader, CanBeEnded) {
    std::string text = newestHead;
    for (int i = 0; i < 5000; ++i) text += newestLine(std::to_string(i), "850", "40");
    Kept log;
    int asked = 0;
    const auto reading = read(text, log, {.goOn = [&](std::uint64_t bytes) {
                                  EXPECT_GT(bytes, 0u);
                                  return ++asked < 3;
                              }});
    EXPECT_TRUE(reading.cancelled);
    EXPECT_EQ(asked, 3);
    EXPECT_LT(reading.rows, 5000);
    EXPECT_GT(reading.rows, 1000);
}

}  // namespace
}  // namespace zentaq
