// The same protocol on every kind of unit: what each answers, and how long.
#include <gtest/gtest.h>

#include <map>
#include <set>

#include "sim/simulated_unit.h"
#include "sim_helpers.h"

namespace zentaq::sim {
namespace {

using namespace test;

struct KindCase {
    const char* model;
    std::uint32_t serial;
    const char* firmware;
    std::size_t firmwareReply;
    std::size_t narrow;
    std::size_t wide;  ///< 0: not answered
    std::size_t record;
    std::size_t lines;   ///< of an image for the firmware as delivered
    std::size_t nameAt;  ///< in the memory
    std::size_t memory;  ///< bytes
};

constexpr KindCase kindCases[] = {
    {"A", 200001, "ZQA-405099", 39, 35, 65, 33, 147, 560, 2352},
    {"A 6/12", 200002, "ZQA-405099", 39, 35, 65, 33, 147, 560, 2352},
    {"A r", 200003, "ZQA-405099", 39, 35, 65, 33, 147, 560, 2352},
    {"L", 300001, "ZQL-407099", 38, 28, 66, 36, 147, 560, 2352},
    {"C", 350001, "ZQC-403099", 38, 28, 70, 40, 137, 560, 2352},
    {"D", 700001, "ZQD-405099", 38, 28, 62, 34, 147, 560, 2352},
    {"D6", 750001, "ZQD-405099", 38, 28, 62, 34, 147, 560, 2352},
    {"PZK-2", 500001, "ZPK-405099", 38, 28, 0, 34, 64, 166, 1024},
};

class EveryKind : public testing::TestWithParam<KindCase> {
 protected:
    const KindCase& kind = GetParam();
    const UnitProfile& profile = *findProfile(kind.model);
    SimulatedUnit unit{profile, defaultIdentity(profile)};

    /// A line as the unit wants it.
    std::string line(std::string text) const { return profile.linesEndInLineFeed ? text + "\r\n" : text; }
    void begin(std::size_t lines) {
        ASSERT_EQ(askText(unit, "P1"), "AX");
        for (int row = 0; row < static_cast<int>(lines); ++row) {
            ASSERT_EQ(askText(unit, line(imageRow(row, 9))), "AX") << row;
        }
    }
};

TEST_P(EveryKind, TellsItsSerialNumber) {
    const Bytes reply = ask(unit, "E");
    ASSERT_EQ(reply.size(), 8u);
    EXPECT_TRUE(isSealed(reply));
    EXPECT_EQ(word(reply, 3) * 65536 + word(reply, 5), kind.serial);
}

TEST_P(EveryKind, TellsNameAndFirmwareInAReplyOfItsLength) {
    unit.setCalibrationName("WET TRACK");
    const Bytes reply = ask(unit, "B");
    ASSERT_EQ(reply.size(), kind.firmwareReply);
    EXPECT_TRUE(isSealed(reply));
    EXPECT_EQ(textOf({reply.begin() + 3, reply.begin() + 12}), "WET TRACK");
    EXPECT_EQ(textOf({reply.begin() + 27, reply.begin() + 37}), kind.firmware);
    EXPECT_EQ(unit.memory().at(kind.nameAt), 'W');
    EXPECT_EQ(unit.memory().at(kind.nameAt + 8), 'K');
}

TEST_P(EveryKind, AnswersEveryCommandWithItsLength) {
    EXPECT_EQ(ask(unit, "F").size(), kind.narrow);
    EXPECT_EQ(ask(unit, "W").size(), kind.wide);
    EXPECT_EQ(ask(unit, "I").size(), 21u);
    EXPECT_EQ(ask(unit, "C").size(), 39u);
    EXPECT_EQ(ask(unit, "T").size(), 16u);
    EXPECT_EQ(ask(unit, "D").size(), kind.record);
    for (const char* command : {"A", "K", "S"}) EXPECT_EQ(askText(unit, command), "AX") << command;
    EXPECT_EQ(textOf(unit.feed(Bytes{'Z', 0xFF})), "AX");
    EXPECT_EQ(textOf(unit.feed(Bytes{'Z', 0x00})), "AX");
    EXPECT_EQ(askText(unit, "P3"), "AR");
}

TEST_P(EveryKind, ChecksTheSumOfAllItsLongReplies) {
    for (const char* command : {"B", "C", "D", "E", "I", "T"}) {
        EXPECT_TRUE(isSealed(ask(unit, command))) << command;
    }
    EXPECT_EQ(isSealed(ask(unit, "F")), kind.narrow == 28);
    if (kind.wide > 0) {
        EXPECT_TRUE(isSealed(ask(unit, "W")));
    }
}

TEST_P(EveryKind, TakesAnOnTheFlyChangeWithoutALineEnd) {
    EXPECT_EQ(askText(unit, "P2S10411228048"), "AX");
    EXPECT_EQ(unit.memory().at(34), 0x80);
}

TEST_P(EveryKind, KnowsTheEndsOfItsMemory) {
    const auto last = static_cast<unsigned>(0x1100 + kind.memory - 1);
    EXPECT_EQ(unit.memory().size(), kind.memory);
    EXPECT_EQ(askText(unit, "P2" + dataRecord(0x1100, {0x11})), "AX");
    EXPECT_EQ(unit.memory().front(), 0x11);
    EXPECT_EQ(askText(unit, "P2" + dataRecord(last, {7})), "AX");
    EXPECT_EQ(unit.memory().back(), 7);
    EXPECT_EQ(askText(unit, "P2" + dataRecord(last + 1, {7})), "AR");
}

TEST_P(EveryKind, IsProgrammedWithTheLinesOfItsFirmwareWhichTakeEffectAtTheEndRecord) {
    const Bytes before = unit.memory();
    begin(kind.lines);
    EXPECT_EQ(unit.memory(), before);
    ASSERT_EQ(askText(unit, line(endRecord)), "PN");
    for (std::size_t i = 0; i < kind.lines * 16; ++i) ASSERT_EQ(unit.memory()[i], (i + 9) % 251) << i;
    EXPECT_FALSE(unit.hasUnsavedChanges());
    EXPECT_EQ(ask(unit, "E").size(), 8u);
}

TEST_P(EveryKind, RefusesALineTooManyAndALineTooFew) {
    const Bytes before = unit.memory();
    begin(kind.lines);
    EXPECT_EQ(askText(unit, line(imageRow(static_cast<int>(kind.lines), 9))), "AR");
    begin(kind.lines - 1);
    EXPECT_EQ(askText(unit, line(endRecord)), "AR");
    EXPECT_EQ(unit.memory(), before);
}

INSTANTIATE_TEST_SUITE_P(Models, EveryKind, testing::ValuesIn(kindCases),
                         [](const auto& row) { return plainName(row.param.model); });

TEST(UnitKinds, SubtypesOfTheOrbATellThemselvesInTheFirmwareReply) {
    const auto subtype = [](const char* model) {
        SimulatedUnit unit = unitOf(model);
        return ask(unit, "B").at(37);
    };
    EXPECT_EQ(subtype("A"), 0);
    EXPECT_EQ(subtype("A 6/12"), 1);
    EXPECT_EQ(subtype("A r"), 2);
}

struct WideCase {
    const char* model;
    const char* without;
    const char* with;
};

TEST(UnitKinds, WideFrameComesWithAReleaseOfTheKindsOwn) {
    constexpr WideCase cases[] = {{"A", "ZQA-404099", "ZQA-405000"},
                                  {"L", "ZQL-406099", "ZQL-407000"},
                                  {"C", "ZQC-402099", "ZQC-403000"},
                                  {"D", "ZQD-404099", "ZQD-405000"},
                                  {"D6", "ZQD-404099", "ZQD-405000"}};
    for (const WideCase& row : cases) {
        SimulatedUnit older = unitOf(row.model, row.without);
        EXPECT_TRUE(ask(older, "W").empty()) << row.model;
        EXPECT_EQ(ask(older, "F").size(), static_cast<std::size_t>(older.profile().narrow.length))
            << row.model;
        SimulatedUnit newer = unitOf(row.model, row.with);
        EXPECT_TRUE(isSealed(ask(newer, "W"))) << row.model;
    }
}

TEST(UnitKinds, FirmwareTellsHowManyLinesAnImageHas) {
    struct LinesCase {
        const char* model;
        const char* firmware;
        int lines;
    };
    constexpr LinesCase cases[] = {
        {"A", "ZQA-404099", 137}, {"A", "ZQA-405000", 147}, {"L", "ZQL-404099", 137},
        {"L", "ZQL-405000", 147}, {"L", "ZQL-406099", 147}, {"C", "ZQC-404099", 137},
        {"C", "ZQC-405000", 147}, {"D", "ZQD-404099", 137}, {"PZK-2", "ZPK-401000", 64}};
    for (const LinesCase& row : cases) {
        SimulatedUnit unit = unitOf(row.model, row.firmware);
        const std::string end = unit.profile().linesEndInLineFeed ? "\r\n" : "";
        ASSERT_EQ(askText(unit, "P1"), "AX");
        for (int i = 0; i < row.lines; ++i)
            ASSERT_EQ(askText(unit, imageRow(i, 2) + end), "AX") << row.firmware;
        EXPECT_EQ(askText(unit, endRecord + end), "PN") << row.firmware;
    }
}

TEST(UnitKinds, AllButTheOrbAWaitForTheEndOfALine) {
    SimulatedUnit unit = unitOf("L");
    ASSERT_EQ(askText(unit, "P1"), "AX");
    EXPECT_EQ(askText(unit, imageRow(0, 1)), "");
    EXPECT_EQ(askText(unit, "\r"), "");
    EXPECT_EQ(askText(unit, "\n"), "AX");
    EXPECT_EQ(askText(unit, imageRow(1, 1) + "E"), "AR");  // something behind a whole record
}

TEST(UnitKinds, ConfigurationTellsOfThePic18) {
    for (const UnitProfile* profile : allProfiles()) {
        UnitIdentity identity = defaultIdentity(*profile);
        const bool always = profile->firmwarePrefix == "ZQC" || profile->firmwarePrefix == "ZQD";
        SimulatedUnit plain(*profile, identity);
        EXPECT_EQ(ask(plain, "C").at(18), always ? 1 : 0) << profile->model;
        identity.hasPic18 = true;
        SimulatedUnit fitted(*profile, identity);
        const Bytes reply = ask(fitted, "C");
        EXPECT_EQ(reply.at(18), 1) << profile->model;
        EXPECT_TRUE(isSealed(reply)) << profile->model;
    }
}

TEST(UnitKinds, LogOfThePzk2IsEmptyUntilToldOtherwise) {
    const UnitProfile& profile = *findProfile("PZK-2");
    UnitIdentity identity = defaultIdentity(profile);
    SimulatedUnit empty(profile, identity);
    EXPECT_GT(ask(empty, "D").at(3), 82);
    identity.logRecords = 1;
    SimulatedUnit full(profile, identity);
    EXPECT_LE(ask(full, "D").at(3), 82);
    EXPECT_GT(ask(full, "D").at(3), 82);
}

TEST(UnitKinds, OldAndOctalSerialRepliesComeOnDemand) {
    const UnitProfile& profile = *findProfile("A");
    UnitIdentity identity = defaultIdentity(profile);
    identity.serial = 17;  // 15 as octal digits
    identity.serialFormat = SerialFormat::Old;
    SimulatedUnit old(profile, identity);
    EXPECT_EQ(ask(old, "E"), (Bytes{0, 0, 0, 15, 'A', 'X'}));
    identity.serialFormat = SerialFormat::Octal;
    SimulatedUnit octal(profile, identity);
    EXPECT_EQ(ask(octal, "E"), (Bytes{0xFA, 0xA5, 0x54, 0, 0, 0, 15, 0x63}));
}

TEST(UnitProfile, NamesMayBeSpelledAsPeopleDo) {
    const std::map<std::string_view, std::vector<const char*>> spellings{
        {"A", {"A", "a"}},
        {"A 6/12", {"A 6/12", "a6/12", "A612", "orb-a612", "ORB A 6/12"}},
        {"A r", {"A r", "ar", "AR", "orb-ar"}},
        {"PZK-2", {"PZK-2", "pzk2", "Pzk 2"}},
        {"D", {"orb d"}},
        {"D6", {"d6"}}};
    for (const auto& [model, ways] : spellings) {
        for (const char* spelling : ways) {
            ASSERT_NE(findProfile(spelling), nullptr) << spelling;
            EXPECT_EQ(findProfile(spelling)->model, model) << spelling;
        }
    }
    for (const char* spelling : {"", "ORB", "B", "X", "A6", "PZK", "D66"})
        EXPECT_EQ(findProfile(spelling), nullptr);
}

TEST(UnitProfile, NoTwoModelsShareAnAnnouncedNameOrASerialNumber) {
    std::set<std::string_view> stems;
    std::set<std::uint32_t> serials;
    for (const UnitProfile* profile : allProfiles()) {
        EXPECT_TRUE(stems.insert(profile->linkStem).second) << profile->model;
        EXPECT_TRUE(serials.insert(profile->defaultSerial).second) << profile->model;
    }
    EXPECT_EQ(stems.size(), 8u);
    EXPECT_EQ(modelList(), "A, A 6/12, A r, L, C, D, D6, PZK-2");
}

}  // namespace
}  // namespace zentaq::sim
