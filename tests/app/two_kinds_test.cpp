// A calibration in hand and a unit on the link are two things: of two kinds, or of the two slots of one.
#include <cstring>
#include <fstream>

#include "app/general_fixture.h"

namespace zentaq {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

constexpr std::uint32_t orbA = 200001, orbL = 300001, orbD = 700001, orbD6 = 750001;

class TwoKinds : public GeneralConfigForm {
 protected:
    /// A file of a model; nothing is in hand afterwards, and its object knows as little as when the program
    /// begins.
    std::string fileOf(const char* model, const std::string& name) {
        prepare(model);
        const std::string path = fake.folder.path(name);
        EXPECT_TRUE(saveTo(path));
        form.unload();
        Unit& made = unit();
        commands.files.close();
        made.FW_Release(0);
        made.FW_Build(0);
        boxes().clear();
        return path;
    }
    static std::string bytesOf(const std::string& path) { return TemporaryFolder::read(path); }
    /// The firmware code of a file.
    static void setCode(const std::string& path, float code) {
        std::string bytes = bytesOf(path);
        std::memcpy(bytes.data() + 8, &code, sizeof code);
        std::ofstream(path, std::ios::binary) << bytes;
    }
    /// Another unit takes the place of the one on the link, with no silence between them.
    void putInPlace(std::uint32_t serial, const char* firmware) {
        const Link& link = session.link;
        for (int tick = 0; tick < 2000 && !link.CurrentCommand().empty(); ++tick) session.link.tick();
        connect(serial, firmware);
        ASSERT_EQ(link.linked().SerialNumber, static_cast<std::int32_t>(serial));
        ASSERT_EQ(session.Units(link.linked().LinkedUnitKind).FirmWare(), firmware);
    }
};

// ---- Firmware of the unit, injectors of the file

struct Pair {
    const char* name;
    std::uint32_t serial;
    const char* firmware;
    const char* model;
    const char* file;
    int release;
};

class OtherKind : public TwoKinds, public ::testing::WithParamInterface<Pair> {};

TEST_P(OtherKind, AFileForAnotherKindThanTheLinkedUnitsIsOpenedAndSavedAsItIs) {
    const std::string path = fileOf(GetParam().model, GetParam().file);
    const std::string before = bytesOf(path);
    connect(GetParam().serial, GetParam().firmware);
    boxes().clear();
    open(path);
    EXPECT_THAT(titles(), ElementsAre("Unit Type Mismatch"));
    EXPECT_EQ(unit().FW_Release(), GetParam().release);
    EXPECT_EQ(unit().FW_Build(), 99);
    commands.saves.save();
    EXPECT_EQ(bytesOf(path), before);
}

INSTANTIATE_TEST_SUITE_P(TwoKinds, OtherKind,
                         ::testing::Values(Pair{"LOnA", orbA, "ZQA-405099", "ORB L", "six.ZQ4OL", 7},
                                           Pair{"AOnL", orbL, "ZQL-407099", "ORB A Standard", "four.ZQ4OA",
                                                5},
                                           Pair{"COnOldA", orbA, "ZQA-402010", "ORB C", "six.ZQ4OC", 3},
                                           Pair{"DOnA", orbA, "ZQA-405099", "ORB D", "four.ZQ4OD", 5}),
                         [](const auto& test) { return test.param.name; });

TEST_F(TwoKinds, AnOldFileForAnotherKindWaitsForAUnitOfItsOwn) {
    const std::string path = fileOf("ORB L", "old.ZQ4OL");
    setCode(path, 2010);
    connect(orbA, "ZQA-405099");
    open(path);
    const float scale = unit().DirectIndex(148);
    EXPECT_EQ(unit().FW_Release(), 2);
    EXPECT_EQ(unit().DirectIndex(148), 8);  // as the file has it
    putInPlace(orbL, "ZQL-407099");
    EXPECT_FLOAT_EQ(unit().DirectIndex(148), 6.844F);  // 8 * 876 / 1024 = 6.84375
    EXPECT_NE(unit().DirectIndex(148), scale);
}

// Nobody knows what such a file was made for, least of all the unit that is on the link by chance.
TEST_F(TwoKinds, AFileThatTellsNoReleaseKeepsItsInjectorsWhoeverIsOnTheLink) {
    const std::string path = fileOf("ORB A Standard", "unknown.ZQ4OA");
    for (const float code : {0.0F, 500.0F}) {
        setCode(path, code);
        for (const auto& [firmware, other] :
             {std::pair("ZQA-405010", "ZQA-402010"), {"ZQA-402010", "ZQA-405010"}}) {
            putInPlace(orbA, firmware);
            boxes().clear();
            open(path);
            EXPECT_THAT(titles(), IsEmpty()) << code << " " << firmware;
            EXPECT_EQ(unit().DirectIndex(148), 8) << code << " " << firmware;
            // The unit is exchanged for one of the other generation without a word.
            putInPlace(orbA, other);
            EXPECT_EQ(unit().DirectIndex(148), 8) << code << " " << firmware;
            loseUnit();
            EXPECT_EQ(unit().DirectIndex(148), 8) << code << " " << firmware;
            EXPECT_THAT(titles(), IsEmpty()) << code << " " << firmware;
            EXPECT_NE(unit().get("MAP_ID"), 0) << "a sensor is needed all the same";
            commands.files.close();
        }
    }
}

TEST_F(TwoKinds, ALostLinkLeavesTheObjectOfAnotherKindItsOwnFirmware) {
    const std::string path = fileOf("ORB L", "six.ZQ4OL");
    session.Units(3).FW_Release(4);
    session.Units(3).FW_Build(17);
    open(path);
    connect(orbA, "ZQA-405010");
    ASSERT_EQ(session.Units(3).FW_Release(), 5);
    loseUnit();
    EXPECT_EQ(session.Units(3).FW_Release(), 4);
    EXPECT_EQ(session.Units(3).FW_Build(), 17);
    EXPECT_EQ(unit().FW_Release(), 7);
}

// ---- A calibration that is being made

TEST_F(TwoKinds, AUnitThatAnswersWhileACalibrationIsBeingMadeChangesNothingOfIt) {
    connect(orbA, "ZQA-405010");
    startNew();
    ASSERT_TRUE(form.enter("cmbORB_UNIT", "ORB A Standard"));
    ASSERT_TRUE(form.enter("cmbEngine", fourCylinders));
    ASSERT_TRUE(form.enter("txtRPM", "6800"));
    const float sequence = unit().get("PHDSEQ");
    const float engine = unit().get("Engine_Type");
    putInPlace(orbA, "ZQA-405010");
    EXPECT_EQ(text("txtRPM"), "6800");
    EXPECT_EQ(unit().get("PHDSEQ"), sequence);
    EXPECT_EQ(unit().get("Engine_Type"), engine);
    EXPECT_EQ(unit().get("MaxDuty"), 0) << "nothing has given it a value yet";
}

// ---- Two slots of one class

TEST_F(TwoKinds, AFileThatSays7IsInSlot8WhileAUnitOfThatSlotIsLinked) {
    const std::string path = fileOf("ORB D", "four.ZQ4OD");
    connect(orbD6, "ZQD-405010");
    boxes().clear();
    open(path);
    EXPECT_THAT(titles(), IsEmpty());
    EXPECT_EQ(session.slotInHand(), 8);
    EXPECT_EQ(unit().kind().slot, 8);
    EXPECT_EQ(unit().FW_Build(), 10);
    EXPECT_TRUE(unit().ONFLY_MODE());
    commands.saves.save();
    float kind = 0;
    std::memcpy(&kind, bytesOf(path).data(), sizeof kind);
    EXPECT_EQ(kind, 7) << "the file is one for both";
}

TEST_F(TwoKinds, ACalibrationInHandMovesToTheSlotOfItsUnitAndBackBeforeAnyMismatchIsTold) {
    open(fileOf("ORB D", "four.ZQ4OD"));
    Unit& object = unit();
    const auto moved = [&](int slot, std::uint32_t serial) {
        unit().set("KNK_MIN", 20 + slot);
        putInPlace(serial, "ZQD-405010");
        EXPECT_EQ(session.slotInHand(), slot);
        EXPECT_EQ(&unit(), &object) << "whoever holds the object goes on holding the calibration";
        EXPECT_EQ(unit().kind().slot, slot);
        EXPECT_EQ(unit().get("KNK_MIN"), 20 + slot);
        EXPECT_EQ(unit().BinFile(), fake.folder.path("four.ZQ4OD"));
        EXPECT_TRUE(unit().ONFLY_MODE());
        EXPECT_EQ(session.Units(15 - slot).BinFile(), "");
    };
    moved(8, orbD6);
    moved(7, orbD);
    moved(8, orbD6);
    EXPECT_THAT(titles(), IsEmpty());
}

TEST_F(TwoKinds, WhatAUnitHasToldOfItselfStaysInItsSlotWhenAFileForBothKindsIsOpened) {
    const std::string path = fileOf("ORB D", "four.ZQ4OD");
    connect(orbD6, "ZQD-405010");
    LinkedState& told = session.Units(8).linked();
    told.GPIOData[3] = 513;
    told.GPIODisplay[3] = "2.5 V";
    told.hasPIC18 = true;
    const std::vector<std::uint8_t> codes{0xFA, 0xA5, 12, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12};
    told.Set_ECData(codes);
    open(path);
    ASSERT_EQ(session.slotInHand(), 8);
    ASSERT_EQ(unit().BinFile(), path);
    EXPECT_EQ(unit().GPIOData()[3], 513);
    EXPECT_EQ(unit().GPIODisplay()[3], "2.5 V");
    EXPECT_TRUE(unit().linked().hasPIC18);
    EXPECT_EQ(unit().Get_ECData(0), 1);
    EXPECT_EQ(unit().Get_ECData(11), 12);
    const LinkedState& other = session.Units(7).linked();
    EXPECT_EQ(other.GPIOData[3], 0);
    EXPECT_EQ(other.GPIODisplay[3], "");
    EXPECT_FALSE(other.hasPIC18);
    EXPECT_EQ(other.Get_ECData(0), 0);
}

TEST_F(TwoKinds, ACalibrationForAD6IsProgrammedFromItsFile) {
    open(fileOf("ORB D", "four.ZQ4OD"));
    connect(orbD6, "ZQD-405099");
    boxes().clear();
    commands.programming.programOrb();
    EXPECT_THAT(titles(), IsEmpty());
    EXPECT_TRUE(session.link.transfer().pending());
}

TEST_F(TwoKinds, ACalibrationThatIsBeingMadeMovesAlongToo) {
    prepare("ORB D");
    ASSERT_EQ(session.slotInHand(), 7);
    ASSERT_TRUE(form.enter("txtRPM", "6700"));
    connect(orbD6, "ZQD-405010");
    EXPECT_EQ(session.slotInHand(), 8);
    EXPECT_EQ(text("cmbORB_UNIT"), "ORB D");
    EXPECT_EQ(text("txtRPM"), "6700");
    EXPECT_TRUE(form.creating());
    EXPECT_TRUE(saveTo(fake.folder.path("new.ZQ4OD")));
    EXPECT_EQ(session.slotInHand(), 8);
    EXPECT_TRUE(unit().ONFLY_MODE());
}

TEST_F(TwoKinds, WhatComesBackFromBehindADroppedCalibrationIsInTheSlotOfItsUnit) {
    open(fileOf("ORB D", "four.ZQ4OD"));
    unit().set("KNK_MIN", 31);
    prepare("ORB L");
    connect(orbD6, "ZQD-405010");
    ASSERT_EQ(session.slotInHand(), 4);
    form.unload();
    EXPECT_EQ(session.slotInHand(), 8);
    EXPECT_EQ(unit().get("KNK_MIN"), 31);
    EXPECT_EQ(unit().FW_Build(), 10);
    EXPECT_EQ(unit().FirmWare(), "ZQD-405010");
    EXPECT_TRUE(unit().ONFLY_MODE());
}

TEST_F(TwoKinds, AFileThatCannotBeReadLeavesTheMovedCalibrationInHand) {
    const std::string good = fileOf("ORB D", "four.ZQ4OD");
    open(good);
    const std::string bad = fake.folder.path("bad.ZQ4OD");
    std::ofstream(bad, std::ios::binary) << bytesOf(good) << std::string(2000, 'x');
    connect(orbD6, "ZQD-405010");
    fake.dialogs.answers = {Answer::No};
    open(bad);
    EXPECT_EQ(titles().back(), "File Read Error");
    EXPECT_EQ(session.slotInHand(), 8);
    EXPECT_EQ(unit().BinFile(), good);
    EXPECT_TRUE(unit().ONFLY_MODE());
}

// Reading a file lets events in.
TEST_F(TwoKinds, AUnitThatComesWhileItsFileIsReadFindsItInItsSlot) {
    const std::string path = fileOf("ORB D", "four.ZQ4OD");
    session.link.load();
    fake.yield.meanwhile = [&] { identify(orbD6); };
    open(path);
    EXPECT_EQ(session.link.linked().LinkedUnitKind, 8);
    EXPECT_EQ(session.slotInHand(), 8);
    EXPECT_EQ(unit().BinFile(), path);
}

TEST_F(TwoKinds, AUnitThatComesWhileADamagedFileIsReadLeavesTheFormerCalibrationInHand) {
    const std::string good = fileOf("ORB D", "four.ZQ4OD");
    const std::string bad = fake.folder.path("bad.ZQ4OD");
    std::string bytes = bytesOf(good);
    const float noByte = 300;
    std::memcpy(bytes.data() + 12, &noByte, sizeof noByte);  // the options of cell 0
    std::ofstream(bad, std::ios::binary) << bytes;
    open(good);
    const Unit& former = unit();
    unit().set("KNK_MIN", 31);
    fake.yield.meanwhile = [&] { connect(orbD6, "ZQD-405010"); };
    fake.dialogs.answers = {Answer::No};
    open(bad);
    ASSERT_FALSE(fake.yield.meanwhile) << "the reading yields";
    EXPECT_EQ(titles().back(), "File Read Error");
    EXPECT_EQ(session.slotInHand(), 8);
    EXPECT_EQ(&unit(), &former);
    EXPECT_EQ(unit().get("KNK_MIN"), 31);
    EXPECT_EQ(unit().BinFile(), good);
}

// A box lets events in as well.
TEST_F(TwoKinds, AUnitThatComesUnderTheBoxAboutAnotherKindTakesChangesOfItsFile) {
    const std::string path = fileOf("ORB L", "six.ZQ4OL");
    connect(orbA, "ZQA-405099");
    during("Unit Type Mismatch", [&] { putInPlace(orbL, "ZQL-407099"); });
    open(path);
    EXPECT_TRUE(unit().ONFLY_MODE());
}

}  // namespace
}  // namespace zentaq
