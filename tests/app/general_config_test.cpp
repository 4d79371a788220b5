#include "app/general_config.h"

#include <filesystem>
#include <fstream>

#include "app/general_fixture.h"
#include "config/quiet_calibration.h"

namespace zentaq {
namespace {

using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::Not;

constexpr std::uint32_t orbaSerial = 200001;

std::vector<float> cellsOf(const Unit& unit) {
    std::vector<float> cells;
    for (int i = 0; i < Unit::cellCount; ++i) cells.push_back(unit.DirectIndex(i));
    return cells;
}

// ---- Opening and closing

TEST_F(GeneralConfigForm, SaysInTheLogThatItOpensAndCloses) {
    form.load();
    EXPECT_TRUE(logged("General Config App. Initialized."));
    EXPECT_FALSE(logged("General Config App. Terminated."));
    form.unload();
    EXPECT_TRUE(logged("General Config App. Terminated."));
}

TEST_F(GeneralConfigForm, IsTheActiveFormWhileItIsOpen) {
    session.messages.ActiveFormName = "frmTABLE";
    form.load();
    EXPECT_EQ(session.messages.ActiveFormName, "frmGeneralConfig");
    form.unload();
    EXPECT_EQ(session.messages.ActiveFormName, "frmTABLE");
}

TEST_F(GeneralConfigForm, LeavesTheActiveFormToAnotherThatHasTakenItsPlace) {
    form.load();
    session.messages.ActiveFormName = "frmConfig";
    form.unload();
    EXPECT_EQ(session.messages.ActiveFormName, "frmConfig");
}

// ---- The model list

TEST_F(GeneralConfigForm, OffersTheModelsInTheirOrder) {
    startNew();
    EXPECT_THAT(form.field("cmbORB_UNIT").choices,
                ElementsAre("ORB A Standard", "ORB A 6/12", "ORB AR", "ORB L", "PZK-2", "ORB D", "ORB C"));
    EXPECT_EQ(text("cmbORB_UNIT"), "");
}

TEST_F(GeneralConfigForm, AModelChoosesTheUnitKindAndItsFileFilter) {
    startNew();
    const struct {
        const char* name;
        int slot, filter;
    } models[] = {{"ORB A Standard", 3, 4}, {"ORB A 6/12", 3, 4}, {"ORB AR", 3, 4}, {"ORB L", 4, 2},
                  {"PZK-2", 5, 3},          {"ORB D", 7, 5},      {"ORB C", 6, 6}};
    for (const auto& model : models) {
        ASSERT_TRUE(form.enter("cmbORB_UNIT", model.name));
        EXPECT_EQ(session.slotInHand(), model.slot) << model.name;
        EXPECT_EQ(session.FileFilterIndex, model.filter) << model.name;
        EXPECT_EQ(text("cmbORB_UNIT"), model.name);
        EXPECT_TRUE(form.creating());
    }
}

struct SerialCase {
    std::uint32_t serial;
    int slot;
};

class LinkedUnitForm : public GeneralConfigForm, public ::testing::WithParamInterface<SerialCase> {};

TEST_P(LinkedUnitForm, AnOrbDIsTheD6WhenTheSerialCodeOnTheLinkSaysSo) {
    connect(GetParam().serial, "ZQD-405099");
    ASSERT_EQ(session.link.linked().SerialNumber, static_cast<std::int32_t>(GetParam().serial));
    startNew();
    ASSERT_TRUE(form.enter("cmbORB_UNIT", "ORB D"));
    EXPECT_EQ(session.slotInHand(), GetParam().slot);
    EXPECT_EQ(text("cmbORB_UNIT"), "ORB D");
    EXPECT_THAT(form.field("cmbEngine").choices, Contains(fourCylinders));
}

INSTANTIATE_TEST_SUITE_P(GeneralConfig, LinkedUnitForm,
                         ::testing::Values(SerialCase{700001, 7}, SerialCase{750000, 8},
                                           SerialCase{759999, 8}, SerialCase{orbaSerial, 7}),
                         [](const auto& test) { return std::to_string(test.param.serial); });

TEST(ModelList, TakesTheD6From750000To759999) {
    const ModelEntry& orbd = *modelEntryOf("orb d");
    EXPECT_EQ(slotOfModel(orbd, 0), 7);
    EXPECT_EQ(slotOfModel(orbd, 749999), 7);
    EXPECT_EQ(slotOfModel(orbd, 750000), 8);
    EXPECT_EQ(slotOfModel(orbd, 759999), 8);
    EXPECT_EQ(slotOfModel(orbd, 760000), 7);
    EXPECT_EQ(slotOfModel(*modelEntryOf("ORB L"), 755000), 4);
}

TEST_F(GeneralConfigForm, AModelOffersTheEnginesOfItsKindAndVariant) {
    startNew();
    form.enter("cmbORB_UNIT", "ORB A Standard");
    const char* twelve = "12 Cylinder Wasted Spark, Paired Injection";
    EXPECT_THAT(form.field("cmbEngine").choices, Contains(fourCylinders));
    EXPECT_THAT(form.field("cmbEngine").choices, Not(Contains(twelve)));
    form.enter("cmbORB_UNIT", "ORB A 6/12");
    EXPECT_THAT(form.field("cmbEngine").choices, Contains(twelve));
    form.enter("cmbORB_UNIT", "PZK-2");
    EXPECT_THAT(form.field("cmbEngine").choices, Contains("4 Cylinder Coil per Plug"));
    EXPECT_THAT(form.field("cmbEngine").choices, Not(Contains(fourCylinders)));
    EXPECT_TRUE(std::ranges::is_sorted(form.field("cmbEngine").choices));
}

TEST_F(GeneralConfigForm, AUnitWithoutFirmwareTakesThatOfItsKind) {
    session.FW_ReleaseTable[3] = 4;
    session.FW_BuildTable[3] = 17;
    startNew();
    form.enter("cmbORB_UNIT", "ORB A Standard");
    EXPECT_EQ(unit().FW_Release(), 4);
    EXPECT_EQ(unit().FW_Build(), 17);
    EXPECT_EQ(unit().facts().firmwareCode, 4017);
}

TEST_F(GeneralConfigForm, AUnitThatHasToldItsFirmwareKeepsIt) {
    session.Units(3).FW_Release(5);
    session.Units(3).FW_Build(12);
    startNew();
    form.enter("cmbORB_UNIT", "ORB A Standard");
    EXPECT_EQ(unit().FW_Release(), 5);
    EXPECT_EQ(unit().FW_Build(), 12);
}

TEST_F(GeneralConfigForm, AnotherModelKeepsWhatWasEntered) {
    prepare();
    form.enter("txtRPM", "8200");
    form.enter("txtTPS", "0.62");
    form.enter("txtMaxBoost", "40");
    form.enter("cmbORB_UNIT", "PZK-2");
    form.enter("cmbORB_UNIT", "ORB L");
    EXPECT_EQ(text("txtRPM"), "8200");
    EXPECT_EQ(text("txtTPS"), "0.62");
    EXPECT_EQ(text("txtMaxBoost"), "40");
    EXPECT_EQ(text("cmbMAP"), oneBar);
    EXPECT_EQ(text("txtUAP"), "8");
    // The PZK-2 has no engine of that name, so it has to be chosen again.
    EXPECT_EQ(text("cmbEngine"), "");
}

TEST_F(GeneralConfigForm, WhatWasNotEnteredFollowsTheModel) {
    prepare();
    form.enter("cmbORB_UNIT", "ORB L");
    EXPECT_EQ(unit().get("REV_Limiter"), session.database->defaults("REV_Limiter_ORBL").front());
    EXPECT_NE(text("txtRPM"), "7000");
    form.enter("txtMAP", "2");
    form.enter("cmbORB_UNIT", "ORB AR");
    EXPECT_EQ(text("txtRPM"), "7000");
    EXPECT_EQ(text("txtMAP"), "2") << "entered, unlike the rating of the sensor";
    form.enter("cmbMAP", "3 BAR (1-316 kPa)");
    form.enter("cmbORB_UNIT", "ORB L");
    EXPECT_EQ(text("txtMAP"), "3");
}

TEST_F(GeneralConfigForm, ThePulseFollowsSensorAndBoostUntilItIsEntered) {
    prepare();
    EXPECT_EQ(text("txtUAP"), "8");
    form.enter("txtMaxBoost", "50");
    EXPECT_EQ(text("txtUAP"), "8") << "never less than the default value";
    form.enter("txtMaxBoost", "0");
    form.enter("cmbMAP", "3 BAR (1-316 kPa)");
    EXPECT_EQ(text("txtUAP"), "24");  // 8 * 3
    form.enter("txtMaxBoost", "150");
    EXPECT_EQ(text("txtUAP"), "9.6");  // 8 * 3 / 2.5
    form.enter("txtMAP", "10");
    form.enter("txtMaxBoost", "0");
    EXPECT_EQ(text("txtUAP"), "30") << "no more than its range takes";
    form.enter("cmbMAP", "2 BAR (9-208 kPa)");
    form.enter("cmbORB_UNIT", "ORB L");
    EXPECT_EQ(text("txtUAP"), "16");
    form.enter("txtUAP", "11");
    form.enter("cmbMAP", "3 BAR (1-316 kPa)");
    EXPECT_EQ(text("txtUAP"), "11");
}

TEST_F(GeneralConfigForm, APulseOfACalibrationInHandStaysWithAnotherSensor) {
    haveInHand();
    const std::string pulse = text("txtUAP");
    form.enter("cmbMAP", "3 BAR (1-316 kPa)");
    form.enter("txtMaxBoost", "20");
    EXPECT_EQ(text("txtUAP"), pulse);
}

TEST_F(GeneralConfigForm, AnotherModelKeepsTheFlowThatWasEnteredAndComputesTheOther) {
    prepare();
    form.enter("txtRPM", "6000");
    form.enter("txtBHP", "200");
    form.enter("cmbORB_UNIT", "ORB L");
    EXPECT_EQ(text("txtLBHR"), "25.57");  // 0.45 * 200 / 4 * 10 / 8.8
    form.enter("txtLBHR", "42");
    form.enter("cmbORB_UNIT", "ORB A Standard");
    EXPECT_EQ(text("txtLBHR"), "42.00");
    EXPECT_EQ(text("txtINJ"), "4");
}

TEST_F(GeneralConfigForm, AnotherVariantKeepsAnEngineThatItHas) {
    prepare();
    form.enter("cmbORB_UNIT", "ORB AR");
    EXPECT_EQ(text("cmbEngine"), fourCylinders);
    EXPECT_EQ(unit().get("CYL_Number"), 4);
}

TEST_F(GeneralConfigForm, AnUnknownModelIsNone) {
    startNew();
    EXPECT_FALSE(form.enter("cmbORB_UNIT", "ORB Z"));
    EXPECT_EQ(box().title, "Error 1004");
    EXPECT_EQ(session.slotInHand(), 0);
}

// ---- Engine and sensor

TEST_F(GeneralConfigForm, AnEngineBringsItsTeethAndItsInjectorSequence) {
    prepare();
    ASSERT_TRUE(form.enter("cmbEngine", "V6 90 Degree Odd Fire, Sequential Injection"));
    EXPECT_EQ(unit().get("TOFFSET1"), 14);
    EXPECT_EQ(unit().get("TOFFSET2"), 19);
    const float sequence[] = {1, 2, 4, 8, 16, 32, 0, 0};
    for (int i = 0; i < 8; ++i) EXPECT_EQ(unit().get("INJTBL", i), sequence[i]) << i;
    EXPECT_EQ(text("cmbEngine"), "V6 90 Degree Odd Fire, Sequential Injection");
}

TEST_F(GeneralConfigForm, AnEngineLaysOutTheTrimsAnewInACalibrationInHand) {
    haveInHand();
    unit().AssignDirectIndex(3, 2312);  // the trim of the first cylinder; the outputs repeat it in turn
    ASSERT_TRUE(form.enter("cmbEngine", "V-Twin 90 Degree Odd Fire, Sequential Injection"));
    for (int output = 0; output < 16; output += 2) EXPECT_EQ(unit().DirectIndex(520 + output), 3) << output;
    EXPECT_EQ(unit().DirectIndex(521), 0);
    EXPECT_EQ(unit().get("TOFFSET2"), 29);
    EXPECT_EQ(unit().get("INJTBL", 1), 2);
    EXPECT_EQ(unit().get("INJTBL", 2), 0);  // of the former engine: 4
    EXPECT_TRUE(session.DataModified);
}

TEST_F(GeneralConfigForm, TheNumberOfInjectorsFollowsTheEngineUntilItIsEntered) {
    prepare();
    form.enter("cmbEngine", "8 Cylinder Coil per Plug, Sequential Injection");
    EXPECT_EQ(text("txtINJ"), "8");
    form.enter("cmbEngine", "8 Cylinder Distributor, Throttle Body");
    EXPECT_EQ(text("txtINJ"), "2");  // outputs 1 and 2
    form.enter("txtINJ", "3");
    form.enter("cmbEngine", fourCylinders);
    EXPECT_EQ(text("txtINJ"), "3");
}

TEST_F(GeneralConfigForm, ASensorBringsItsLineItsUnitAndItsRating) {
    prepare();
    ASSERT_TRUE(form.enter("cmbMAP", "2 BAR (-13.4 to 15.5 PSIG)"));
    EXPECT_FLOAT_EQ(unit().get("MAP_Scaler"), 0.1731F);  // read with 4 decimals
    EXPECT_FLOAT_EQ(unit().get("MAP_Offset"), 2.3224F);
    EXPECT_EQ(unit().MAPUnits(), "PSIG");
    EXPECT_EQ(unit().get("MAP_ID"), 14);
    EXPECT_EQ(text("txtMAP"), "2");
}

TEST_F(GeneralConfigForm, ASensorLeavesTheRatingOfACalibrationInHand) {
    haveInHand();
    const float volts = unit().KpaToVolts(unit().DirectIndex(624));
    ASSERT_TRUE(form.enter("cmbMAP", "2 BAR (9-208 kPa)"));
    EXPECT_EQ(unit().get("MAP_ID"), 2);
    EXPECT_EQ(unit().get("MAP_BAR"), 1);
    EXPECT_EQ(unit().KpaToVolts(unit().DirectIndex(624)), volts)
        << "the cells of the axis stay at their volts";
}

TEST_F(GeneralConfigForm, NamesNoSensorUntilOneIsChosen) {
    startNew();
    form.enter("cmbORB_UNIT", "ORB A Standard");
    EXPECT_EQ(text("cmbMAP"), "");
    EXPECT_FALSE(form.enter("cmbMAP", "no such sensor"));
    EXPECT_THAT(box().text, HasSubstr("Warning 1004"));
    EXPECT_FALSE(form.enter("cmbEngine", "no such engine"));
    EXPECT_EQ(text("cmbEngine"), "");
}

// ---- Saving a new calibration

TEST_F(GeneralConfigForm, WithoutAModelASensorOrAnEngineNothingIsSaved) {
    const auto expectTold = [&](const char* told) {
        EXPECT_FALSE(form.save());
        EXPECT_THAT(box().title + box().text, HasSubstr(told));
        EXPECT_THAT(fake.dialogs.requests, IsEmpty());
    };
    startNew();
    expectTold("Error 1004");
    form.enter("cmbORB_UNIT", "ORB A Standard");
    expectTold("Error 1007");
    form.enter("cmbMAP", oneBar);
    expectTold("No engine selected.");
}

TEST_F(GeneralConfigForm, WithoutADatabaseNothingIsSaved) {
    session.database.reset();
    session.DatabaseFile = "/app/bin/data/zentaq410-02.pak";
    startNew();
    ASSERT_TRUE(form.enter("cmbORB_UNIT", "ORB A Standard"));
    EXPECT_THAT(form.field("cmbEngine").choices, IsEmpty());
    EXPECT_FALSE(form.save());
    EXPECT_THAT(box().text, HasSubstr("The reference database could not be opened:\n/app/bin/data/"));
    EXPECT_TRUE(form.creating());
    form.unload();
    EXPECT_EQ(session.slotInHand(), 0);
    EXPECT_EQ(session.header().fileState, "");
}

TEST_F(GeneralConfigForm, AsksForTheFileAsSaveAsDoes) {
    prepare("ORB L");
    fake.dialogs.files.push_back("");
    EXPECT_FALSE(form.save());
    ASSERT_EQ(fake.dialogs.requests.size(), 1U);
    const FileRequest& request = fake.dialogs.requests.front();
    EXPECT_EQ(request.title, "Zentaq4 User Calibration Files");
    EXPECT_EQ(request.folder, fake.folder.path());
    EXPECT_EQ(request.filter, "Zentaq4 ORBL File|*.ZQ4OL");
    EXPECT_EQ(request.filterIndex, 2);
    EXPECT_EQ(request.defaultExtension, ".ZQ4OL");
    EXPECT_TRUE(form.creating()) << "a cancelled dialog leaves the form as it was";
    EXPECT_EQ(text("cmbEngine"), fourCylinders);
}

TEST_F(GeneralConfigForm, SavesANewCalibrationWithItsDefaultValues) {
    const std::string path = fake.folder.path("street.ZQ4OA");
    prepare();
    form.enter("txtRPM", "6400");
    ASSERT_TRUE(saveTo(path));
    EXPECT_EQ(session.header().fileState, "OLD");
    EXPECT_FALSE(form.creating());
    EXPECT_EQ(session.CurrentFile, path);
    EXPECT_EQ(unit().BinFile(), path);
    EXPECT_FALSE(session.DataModified);
    EXPECT_FALSE(form.modified());
    EXPECT_EQ(session.FileFilterIndex, 4);
    EXPECT_EQ(fake.windows.title, "Current Calibration File: " + path);
    EXPECT_EQ(fake.windows.calls.back(), "setupNodes");
    EXPECT_EQ(box().text, "Data has been saved Successfully!");
    EXPECT_EQ(unit().get("REV_Limiter"), 6400);
    EXPECT_EQ(unit().get("RPMTBL", 15), 6400);
    EXPECT_EQ(unit().get("RPMTBL", 0), 400);  // 6400 / 16
    EXPECT_EQ(unit().get("EGO_LMT"), session.database->defaults("EGO_LMT").front());
    EXPECT_TRUE(logged("Loading Default BIN File Values..."));
    EXPECT_TRUE(logged("SUCCESS!"));
    EXPECT_FALSE(logged("Not taken"));
}

TEST_F(GeneralConfigForm, WhatWasEnteredGoesBeforeTheDefaultValues) {
    prepare();
    form.enter("txtTPS", "0.62");
    form.enter("txtMIT", "1.9");
    form.enter("txtMAP", "1.2");
    form.enter("txtTOG", "7");
    form.enter("cmbCams", "Race / High Perf");
    form.enter("cmbCols", "12");
    form.enter("cmbRows", "10");
    ASSERT_TRUE(saveTo(fake.folder.path("t.ZQ4OA")));
    EXPECT_FLOAT_EQ(unit().get("TPS_FCV"), 0.62F);
    EXPECT_FLOAT_EQ(unit().get("MT"), 1.9F);
    EXPECT_FLOAT_EQ(unit().get("MAP_BAR"), 1.2F);
    EXPECT_EQ(unit().get("RPM_Size"), 7);
    EXPECT_EQ(unit().get("CAMSTL"), 1);
    EXPECT_EQ(unit().GET_TBL_DIMENSIONS("ADV", "COLS"), 12);
    EXPECT_EQ(unit().GET_TBL_DIMENSIONS("GPO2", "ROWS"), 10);
    EXPECT_EQ(text("cmbCols"), "12");
    EXPECT_FALSE(form.field("cmbCols").enabled) << "rows and columns are the table window's now";
}

TEST_F(GeneralConfigForm, RemembersTheModelOfTheFile) {
    const std::string path = fake.folder.path("race.ZQ4OA");
    prepare("ORB AR");
    ASSERT_TRUE(saveTo(path));
    const auto row = session.database->config(path);
    ASSERT_TRUE(row);
    EXPECT_EQ(row->orbUnit, 3);
    EXPECT_EQ(row->orbName, "ORB AR");
    form.unload();
    form.load();
    EXPECT_EQ(text("cmbORB_UNIT"), "ORB AR");
    EXPECT_THAT(form.field("cmbORB_UNIT").choices, ElementsAre("ORB A Standard", "ORB A 6/12", "ORB AR"));
}

TEST_F(GeneralConfigForm, AWriteProtectedDatabaseStopsNoSave) {
    prepare();
    session.database.reset();
    std::filesystem::permissions(database, std::filesystem::perms::owner_read);
    session.database = Database::open(database);
    if (!session.database->readOnly()) GTEST_SKIP() << "this user may write everything";
    EXPECT_TRUE(saveTo(fake.folder.path("t.ZQ4OA")));
    EXPECT_TRUE(logged("Model of the file not remembered"));
}

TEST_F(GeneralConfigForm, AsksBeforeItOverwritesAFile) {
    const std::string path = fake.folder.write("other.ZQ4OA", "something else");
    prepare();
    fake.dialogs.answers = {Answer::No};
    EXPECT_FALSE(saveTo(path));
    EXPECT_EQ(box().title, "File Exists");
    EXPECT_EQ(box().text, "FILE EXISTS:   " + path + "\nOverwrite?");
    EXPECT_EQ(TemporaryFolder::read(path), "something else");
    EXPECT_TRUE(form.creating());
    fake.dialogs.answers = {Answer::Yes};
    EXPECT_TRUE(saveTo(path));
    EXPECT_EQ(std::filesystem::file_size(path), 4U * (3 + 2828));
}

TEST_F(GeneralConfigForm, GivesANameItsExtension) {
    prepare();
    ASSERT_TRUE(saveTo(fake.folder.path("plain")));
    EXPECT_EQ(session.CurrentFile, fake.folder.path("plain.ZQ4OA"));
    form.unload();
    prepare();
    ASSERT_TRUE(saveTo(fake.folder.path("old.bin")));
    EXPECT_EQ(session.CurrentFile, fake.folder.path("old.ZQ4OA"));
}

TEST_F(GeneralConfigForm, ASaveThatFailsLosesNothing) {
    prepare();
    form.enter("txtRPM", "8100");
    const auto before = cellsOf(unit());
    EXPECT_FALSE(saveTo(fake.folder.path("no/such/folder/t.ZQ4OA")));
    EXPECT_THAT(box().text, HasSubstr("The calibration could not be saved.\n"));
    EXPECT_TRUE(form.creating());
    EXPECT_TRUE(form.modified());
    EXPECT_EQ(session.CurrentFile, "");
    EXPECT_EQ(unit().BinFile(), "");
    EXPECT_EQ(cellsOf(unit()), before);
    EXPECT_EQ(text("txtRPM"), "8100");
    EXPECT_TRUE(saveTo(fake.folder.path("t.ZQ4OA")));
    EXPECT_EQ(unit().get("REV_Limiter"), 8100);
}

/// A system that has nothing left for a save.
class RefusingDisk : public FileWriter {
 public:
    void begin(FileSave) override { throw FileError("Cannot begin a save: no memory"); }
    std::optional<FileSaved> outcome() override { return std::nullopt; }
};

class RefusedSave : public GeneralConfigForm {
 protected:
    RefusedSave() : GeneralConfigForm(&disk) {}
    RefusingDisk disk;
};

TEST_F(RefusedSave, ThatCannotEvenBeginLosesNothing) {
    prepare();
    const auto before = cellsOf(unit());
    for (int attempt = 0; attempt < 2; ++attempt) {
        EXPECT_FALSE(saveTo(fake.folder.path("t.ZQ4OA")));
        EXPECT_THAT(box().text,
                    HasSubstr("The calibration could not be saved.\nCannot begin a save: no memory"));
        EXPECT_FALSE(session.saving.running());
        EXPECT_TRUE(form.creating());
        EXPECT_EQ(unit().BinFile(), "");
        EXPECT_EQ(cellsOf(unit()), before);
    }
}

TEST_F(GeneralConfigForm, ADatabaseThatFailsLeavesNoHalfMadeCalibration) {
    prepare();
    const auto before = cellsOf(unit());
    // The file is damaged behind the back of the open handle.
    std::ofstream(database, std::ios::binary | std::ios::trunc) << std::string(4096, 'x');
    EXPECT_FALSE(saveTo(fake.folder.path("t.ZQ4OA")));
    EXPECT_THAT(box().text, HasSubstr("The default values could not be loaded."));
    EXPECT_FALSE(std::filesystem::exists(fake.folder.path("t.ZQ4OA")));
    EXPECT_EQ(cellsOf(unit()), before);
    EXPECT_TRUE(form.creating());
    EXPECT_TRUE(logged("FAIL!"));
}

// ---- The calibration that was in hand before

class FormerCalibration : public GeneralConfigForm {
 protected:
    FormerCalibration() {
        haveInHand("former.ZQ4OA");
        form.unload();
        unit().set("KNK_MIN", 44.0);
        unit().Set_Control2(5, true);
        unit().NOTES_TEXT("former notes");
        session.markModified();
        cells = cellsOf(unit());
        facts = unit().facts();
    }
    void expectItBack() {
        EXPECT_EQ(session.slotInHand(), 3);
        EXPECT_EQ(session.header().fileState, "OLD");
        EXPECT_EQ(unit().facts().firmwareCode, facts.firmwareCode);
        EXPECT_EQ(unit().facts().programVersion, facts.programVersion);
        EXPECT_EQ(session.CurrentFile, fake.folder.path("former.ZQ4OA"));
        EXPECT_EQ(unit().BinFile(), fake.folder.path("former.ZQ4OA"));
        EXPECT_EQ(session.FileFilterIndex, 4);
        EXPECT_TRUE(session.DataModified);
        EXPECT_EQ(fake.windows.title, "Current Calibration File: " + session.CurrentFile);
        EXPECT_EQ(cellsOf(unit()), cells);
        EXPECT_TRUE(unit().Get_Control2(5));
        EXPECT_EQ(unit().NOTES_TEXT(), "former notes");
    }
    std::vector<float> cells;
    Calibration::Facts facts;
};

TEST_F(FormerCalibration, ComesBackWholeFromANewOneOfItsKind) {
    prepare();
    form.enter("txtRPM", "9000");
    EXPECT_EQ(session.CurrentFile, "");
    EXPECT_FALSE(session.DataModified);
    EXPECT_NE(cellsOf(unit()), cells);
    form.unload();
    expectItBack();
}

TEST_F(FormerCalibration, ComesBackWholeFromANewOneOfAnotherKind) {
    prepare("ORB L");
    form.enter("cmbORB_UNIT", "ORB A Standard");
    form.enter("cmbORB_UNIT", "PZK-2");
    form.unload();
    expectItBack();
    EXPECT_EQ(fake.windows.calls.back(), "setupNodes");
    EXPECT_EQ(session.Units(4).DirectIndex(58), 0) << "the kinds that were tried are as before, too";
    EXPECT_EQ(session.Units(5).FW_Release(), 0);
}

TEST_F(FormerCalibration, ComesBackWholeAfterASaveThatFailed) {
    prepare();
    EXPECT_FALSE(saveTo(fake.folder.path("no/such/folder/t.ZQ4OA")));
    form.unload();
    expectItBack();
}

TEST_F(FormerCalibration, StaysInHandUntilAModelIsChosen) {
    startNew();
    EXPECT_EQ(session.slotInHand(), 3);
    EXPECT_EQ(cellsOf(unit()), cells);
    form.unload();
    expectItBack();
}

TEST_F(FormerCalibration, IsReplacedByANewOneThatWasSaved) {
    prepare("ORB L");
    ASSERT_TRUE(saveTo(fake.folder.path("new.ZQ4OL")));
    form.unload();
    EXPECT_EQ(session.slotInHand(), 4);
    EXPECT_EQ(session.CurrentFile, fake.folder.path("new.ZQ4OL"));
    EXPECT_FALSE(session.DataModified);
}

TEST_F(FormerCalibration, ItsTablesCloseWhenANewOneBegins) {
    fake.windows.calls.clear();
    startNew();
    EXPECT_THAT(fake.windows.calls, Not(Contains("removeForms")));
    form.enter("cmbORB_UNIT", "ORB L");
    EXPECT_THAT(fake.windows.calls, Contains("removeForms"));
    EXPECT_THAT(fake.windows.calls, Contains("setupNodes"));
}

TEST_F(FormerCalibration, TakesChangesOnTheFlyAgainWhenItComesBack) {
    connect(orbaSerial, "ZQA-405099");
    ASSERT_TRUE(unit().ONFLY_MODE());
    prepare();
    EXPECT_FALSE(unit().ONFLY_MODE());
    form.unload();
    EXPECT_TRUE(unit().ONFLY_MODE());
}

TEST_F(FormerCalibration, TakesNoChangesOnTheFlyFromAUnitThatHasGone) {
    connect(orbaSerial, "ZQA-405099");
    prepare();
    loseUnit();
    form.unload();
    EXPECT_FALSE(unit().ONFLY_MODE());
    EXPECT_EQ(cellsOf(unit()), cells);
}

TEST_F(FormerCalibration, IsMovedToAFirmwareThatItsUnitToldMeanwhile) {
    prepare();
    connect(orbaSerial, "ZQA-402099");
    form.unload();
    EXPECT_EQ(unit().FW_Release(), 2);
    EXPECT_EQ(unit().facts().firmwareCode, 2099);
    // The full pulse is 8 ms; the scale of the older firmware at 1 bar is 876 / 1024: 8 / 0.85547 = 9.352.
    EXPECT_FLOAT_EQ(unit().get("scale1"), 9.352F);
    EXPECT_EQ(unit().get("KNK_MIN"), 44);
}

// ---- The running engine

class RecordKeepingSession : public GeneralConfigForm {
 protected:
    /// The records that were handed to the link, by what the ring writes.
    std::string written() {
        for (int i = 0; i < 40; ++i) {
            ticks(1);
            fake.port.deliver("AR");
        }
        std::string all;
        for (const std::string& text : fake.port.written) all += text;
        return all;
    }
    /// What the unit was asked while it was identified is no matter of these tests.
    void connectAndForget() {
        connect(orbaSerial, "ZQA-405099");
        written();
        fake.port.written.clear();
    }
};

TEST_F(RecordKeepingSession, NothingOfANewCalibrationGoesToTheEngine) {
    connectAndForget();
    startNew();
    form.enter("cmbORB_UNIT", "ORB A Standard");
    connect(orbaSerial, "ZQA-405099");  // the unit is identified again
    EXPECT_FALSE(unit().ONFLY_MODE());
    form.enter("cmbEngine", fourCylinders);
    form.enter("cmbMAP", oneBar);
    form.enter("txtRPM", "6500");
    form.enter("txtTPS", "0.7");
    form.enter("txtPOT", "1.5");
    form.click("optInjAmp4", true);
    EXPECT_FALSE(form.field("txtTPS").onTheFly);
    ASSERT_TRUE(saveTo(fake.folder.path("t.ZQ4OA")));
    EXPECT_THAT(written(), Not(HasSubstr("S104")));
    EXPECT_TRUE(unit().ONFLY_MODE()) << "from now on the engine follows";
    EXPECT_TRUE(form.enter("txtTPS", "1"));
    EXPECT_THAT(written(), HasSubstr("S104112C33"));
}

TEST_F(RecordKeepingSession, AChangeOfACalibrationInHandGoesToTheEngine) {
    haveInHand();
    connectAndForget();
    ASSERT_TRUE(unit().ONFLY_MODE());
    EXPECT_TRUE(form.field("txtTPS").onTheFly);
    EXPECT_FALSE(form.field("txtBHP").onTheFly);
    fake.windows.calls.clear();
    EXPECT_TRUE(form.enter("txtTPS", "1"));
    // cell 44: address 4352 + 44 = 0x112C; 1 V * 51 = 51 = 0x33
    EXPECT_THAT(written(), HasSubstr("S104112C33"));
    EXPECT_THAT(fake.windows.calls, Contains("onfly on"));
    EXPECT_TRUE(session.DataModified);
    EXPECT_TRUE(form.modified());
}

TEST_F(RecordKeepingSession, AnEngineIsNotSentInPart) {
    haveInHand();
    connectAndForget();
    EXPECT_TRUE(form.enter("cmbEngine", "V6 90 Degree Odd Fire, Sequential Injection"));
    EXPECT_THAT(written(), Not(HasSubstr("S104")));
    EXPECT_TRUE(unit().ONFLY_MODE());
}

// ---- A calibration in hand

TEST_F(GeneralConfigForm, ShowsTheCalibrationInHand) {
    prepare();
    form.enter("txtRPM", "6000");
    form.enter("txtBHP", "200");
    ASSERT_TRUE(saveTo(fake.folder.path("t.ZQ4OA")));
    form.unload();
    form.load();
    EXPECT_FALSE(form.creating());
    EXPECT_EQ(text("cmbORB_UNIT"), "ORB A Standard");
    EXPECT_EQ(text("cmbEngine"), fourCylinders);
    EXPECT_EQ(text("cmbMAP"), oneBar);
    EXPECT_EQ(text("txtRPM"), "6000");
    EXPECT_EQ(text("txtBHP"), "200");
    EXPECT_EQ(text("txtLBHR"), "25.57");  // 22.5 * 10 / 8.8
    EXPECT_EQ(form.lblUAP(), "8.799");    // 10 * 22.5 / 25.57, as the file keeps the flow
    EXPECT_FALSE(form.modified());
    EXPECT_FALSE(session.DataModified);
}

TEST_F(GeneralConfigForm, OpeningTheFormChangesNothing) {
    haveInHand();
    unit().set("BHP", 300.0);
    unit().set("INJ_FlowRate", 60.0);
    const auto before = cellsOf(unit());
    form.unload();
    form.load();
    for (const std::string_view control : GeneralConfig::controls()) form.field(control);
    EXPECT_EQ(cellsOf(unit()), before);
    EXPECT_EQ(text("txtLBHR"), "60.00");
}

TEST_F(GeneralConfigForm, SavingACalibrationInHandUpdatesItsFile) {
    haveInHand();
    form.enter("txtRPM", "6789");
    EXPECT_TRUE(form.modified());
    EXPECT_TRUE(form.save());
    EXPECT_EQ(fake.dialogs.requests.size(), 1U) << "no further file was asked for";
    EXPECT_FALSE(session.DataModified);
    EXPECT_FALSE(form.modified());
    EXPECT_EQ(QuietCalibration::open(session.CurrentFile)->unit.get("REV_Limiter"), 6789);
}

TEST_F(GeneralConfigForm, ACalibrationInHandThatCannotBeSavedStaysModified) {
    haveInHand();
    form.enter("txtRPM", "6789");
    const std::string gone = fake.folder.path("gone/t.ZQ4OA");
    session.CurrentFile = gone;
    unit().BinFile(gone);
    EXPECT_FALSE(form.save());
    EXPECT_EQ(box().title, "File Save Error");
    EXPECT_TRUE(session.DataModified);
    EXPECT_TRUE(form.modified());
}

TEST_F(GeneralConfigForm, ACalibrationInHandKeepsItsKind) {
    haveInHand();
    EXPECT_FALSE(form.enter("cmbORB_UNIT", "ORB L"));
    EXPECT_THAT(box().text, HasSubstr("cannot become one for ORB L"));
    EXPECT_EQ(session.slotInHand(), 3);
    EXPECT_TRUE(form.enter("cmbORB_UNIT", "ORB A 6/12"));
    EXPECT_EQ(session.database->config(session.CurrentFile)->orbName, "ORB A 6/12");
}

TEST_F(GeneralConfigForm, AVariantFollowsFromAnEngineThatNoOtherHas) {
    prepare("ORB A 6/12", "12 Cylinder Wasted Spark, Paired Injection");
    ASSERT_TRUE(saveTo(fake.folder.path("t.ZQ4OA")));
    form.unload();
    session.CurrentFile = fake.folder.path("copied by hand.ZQ4OA");
    form.load();
    EXPECT_EQ(text("cmbORB_UNIT"), "ORB A 6/12");
}

TEST_F(GeneralConfigForm, ASingleModelOfAKindIsNoChoice) {
    prepare("ORB C", "6 Cylinder Coil per Plug, Sequential Injection");
    ASSERT_TRUE(saveTo(fake.folder.path("t.ZQ4OC")));
    EXPECT_FALSE(form.field("cmbORB_UNIT").enabled);
    EXPECT_EQ(text("cmbORB_UNIT"), "ORB C");
}

TEST_F(GeneralConfigForm, WithNothingInHandThereIsNothingToChoose) {
    form.load();
    EXPECT_FALSE(form.field("cmbORB_UNIT").enabled);
    EXPECT_FALSE(form.enter("cmbORB_UNIT", "ORB L"));
    EXPECT_EQ(session.slotInHand(), 0);
}

TEST_F(GeneralConfigForm, AFormThatIsClosedUnderItsFileDialogStoresNothing) {
    haveInHand();
    const std::string former = fake.folder.path("tune.ZQ4OA");
    const std::string before = TemporaryFolder::read(former);
    form.unload();
    prepare("ORB L", fourCylinders);
    std::vector<float> inHand;
    during("", [&] {
        form.unload();  // gives the former calibration back
        inHand = cellsOf(session.Units(3));
    });
    EXPECT_FALSE(saveTo(fake.folder.path("next.ZQ4OL")));
    EXPECT_FALSE(std::filesystem::exists(fake.folder.path("next.ZQ4OL")));
    EXPECT_EQ(session.CurrentFile, former);
    EXPECT_EQ(unit().BinFile(), former);
    EXPECT_EQ(cellsOf(session.Units(3)), inHand);
    EXPECT_EQ(TemporaryFolder::read(former), before);
}

}  // namespace
}  // namespace zentaq
