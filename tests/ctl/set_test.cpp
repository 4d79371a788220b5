// A value of a file is changed, or refused.
#include <unistd.h>

#include "app/messages.h"
#include "ctl/ctl_fixture.h"

namespace zentaq {
namespace {

TEST_F(Zentaqctl, SetWritesTheValueIntoItsCell) {
    EXPECT_EQ(onFile("set", "KNK_MIN 44").exitCode, 0);
    EXPECT_EQ(cellOf(file, 34), 44);
    EXPECT_EQ(onFile("get", "KNK_MIN").out, "44\n");
}

TEST_F(Zentaqctl, SetChangesNothingElse) {
    // The copy's own name first, so that it is no difference.
    ASSERT_EQ(onFile("set", "KNK_MIN 43").exitCode, 0);
    const std::string before = contentOf(file);
    ASSERT_EQ(onFile("set", "KNK_MIN 44").exitCode, 0);
    const std::string after = contentOf(file);
    writeFile(file, before);
    plant(34, 44);
    EXPECT_EQ(after, contentOf(file));
}

TEST_F(Zentaqctl, SetTakesNegativeValuesAndAnIndex) {
    EXPECT_EQ(onFile("set", "VE -12.5 --index 17").exitCode, 0);
    EXPECT_EQ(cellOf(file, 912 + 17), -12.5F);
    EXPECT_EQ(onFile("set", "VE -.5 --index 18").exitCode, 0);
    EXPECT_EQ(cellOf(file, 912 + 18), -0.5F);
}

TEST_F(Zentaqctl, SetWithAnOutputLeavesTheFileAlone) {
    const std::string before = contentOf(file);
    const std::string copy = folder.file("Faster.ZQ4OA");
    EXPECT_EQ(onFile("set", "REV_Limiter 7200 -o " + inQuotes(copy)).exitCode, 0);
    EXPECT_EQ(contentOf(file), before);
    EXPECT_EQ(cellOf(copy, 58), 7200);
    EXPECT_EQ(cellOf(copy, 560), 'F');  // the calibration takes the name of its file
}

TEST_F(Zentaqctl, SetTellsTheWarningAndTheRangeOfARefusedValueAndWritesNothing) {
    const std::string copy = folder.file("never.ZQ4OA");
    expectRefusals("set", {{"KNK_MIN 101 -o " + inQuotes(copy), outOfRange("(2 to 100 units)")},
                           {"KNK_MIN 101", outOfRange("(2 to 100 units)")}});
    EXPECT_FALSE(fs::exists(copy));
}

TEST_F(Zentaqctl, SetUsesTheLimitsOfTheEngineInTheDatabase) {
    // TOFFSET2 may not lie below TOFFSET1, which is 14 for this engine.
    EXPECT_EQ(onFile("set", "TOFFSET2 13").exitCode, 1);
    EXPECT_EQ(onFile("set", "TOFFSET2 15").exitCode, 0);
}

TEST_F(Zentaqctl, SetThatCannotWriteLeavesTheFileWhole) {
    const std::string before = contentOf(file);
    EXPECT_THAT(onFile("set", "KNK_MIN 44 -o " + inQuotes(folder.file("no/such/place.ZQ4OA"))),
                Fails(1, isOneLine));
    EXPECT_EQ(contentOf(file), before);
}

/// A box on one line, as the program tells it.
class BoxText : public Dialogs {
 public:
    Answer show(const Box& box) override {
        text = box.text;
        if (const auto end = text.find('\n'); end != std::string::npos) text.replace(end, 1, ": ");
        if (const auto end = text.find('\n'); end != std::string::npos) text.replace(end, 1, " ");
        return Answer::Ok;
    }
    std::string openFile(const FileRequest&) override { return {}; }
    std::string saveFile(const FileRequest&) override { return {}; }
    std::optional<std::string> input(const std::string&, const std::string&, const std::string&) override {
        return {};
    }
    std::string text;
};

TEST_F(Zentaqctl, SaysTheSameWordsAsTheBoxesOfTheWindows) {
    BoxText box;
    Messages messages(
        box, [](std::string_view) {}, [](const std::string&) {});
    messages.Check_Range(101, 2, 100, "(2 to 100 units)");
    EXPECT_EQ(onFile("set", "KNK_MIN 101").error, box.text + "\n");
    messages.Check_Input(1000, "fast");
    EXPECT_THAT(onFile("set", "KNK_MIN fast"), Fails(1, box.text + "\n"));
    EXPECT_THAT(box.text, StartsWith("Warning 1000: "));
    messages.Check_Input(1003, "");
    EXPECT_THAT(onFile("set", "KNK_MIN ''"), Fails(1, box.text + "\n"));
    EXPECT_THAT(box.text, StartsWith("Warning 1005: "));
}

TEST_F(Zentaqctl, SetRefusesADecimalComma) {
    for (const std::string member : {"KNK_MIN", "GPIO_Param"}) {
        expectRefusals("set",
                       {{member + " 12,5",
                         member + ": 12,5 has a comma; decimals are written with a point, such as 12.5"}});
    }
}

TEST_F(Zentaqctl, SetTakesTheFileItselfAsItsOutput) {
    EXPECT_EQ(onFile("set", "KNK_MIN 44 -o " + inQuotes(file)).exitCode, 0);
    EXPECT_EQ(cellOf(file, 34), 44);
    expectRefused(onFile("set", "KNK_MIN 44 -o -"),
                  "A calibration is not written to the standard output; name a file");
}

TEST_F(Zentaqctl, SetOfAFileThatIsWriteProtectedFailsAndLeavesIt) {
    const std::string before = contentOf(file);
    const std::string locked = folder.file("locked");
    fs::create_directory(locked);
    fs::create_directory(locked + "/tune.ZQ4OA");  // not even the superuser writes over a folder
    EXPECT_THAT(onFile("set", "KNK_MIN 44 -o " + inQuotes(locked + "/tune.ZQ4OA")), Fails(1, isOneLine));
    if (geteuid() != 0) {
        fs::permissions(file, fs::perms::owner_read);
        EXPECT_EQ(onFile("set", "KNK_MIN 44").exitCode, 1);
    }
    EXPECT_EQ(contentOf(file), before);
}

TEST_F(Zentaqctl, SetRefusesWhatFollowsFromOtherMembers) {
    for (const std::string member : {"MAPMax", "TOOTHMIN", "VE.ROW-AXIS"}) {
        expectRefusals("set", {{member + " 5", member + " follows from other members and cannot be set"}});
    }
    EXPECT_EQ(onFile("set", "ISRPM 900 --index 3").exitCode, 1);
}

TEST_F(Zentaqctl, SetWritesNotesAndName) {
    expectDone("set", {"NOTES_TEXT 'Good on 98 octane'", "BiName 'Track day'"});
    EXPECT_EQ(cellOf(file, 560), 'T');
    expectAnswers("get", {{"NOTES_TEXT", "Good on 98 octane\n"}, {"BiName", "Track day\n"}});
    expectRefusals(
        "set", {{"BiName '1234567890123456789012345'", "BiName takes at most 24 characters"},
                {"BiName 'a/b'", "BiName takes no / and no \\"},
                {"NOTES_TEXT '" + std::string(501, 'x') + "'", "NOTES_TEXT takes at most 500 characters"}});
    expectDone("set", {"NOTES_TEXT '" + std::string(500, 'x') + "'"});
}

TEST_F(Zentaqctl, SetWritesThePressureUnit) {
    EXPECT_EQ(onFile("set", "MAPUnits PSIA").exitCode, 0);
    EXPECT_EQ(cellOf(file, 129), 2);
    EXPECT_EQ(onFile("set", "MAPUnits %Flow").exitCode, 0);
    EXPECT_EQ(onFile("get", "Control2 0").out, "1\n");
    expectRefusals("set", {{"MAPUnits bar", outOfRange("kPa, PSIA, PSIG, mmHg, inHg or %Flow")}});
}

TEST_F(Zentaqctl, SetWritesTheFirmwareThatAFileIsFor) {
    EXPECT_EQ(onFile("set", "FW_Release 4").exitCode, 0);
    EXPECT_EQ(floatOf(file, 2), 4099);
    EXPECT_EQ(onFile("set", "FW_Build 12").exitCode, 0);
    EXPECT_EQ(floatOf(file, 2), 4012);
    expectRefusals("set", {{"FW_Release 6", outOfRange("(1 to 5)")},
                           {"FW_Build 1.5", "Warning 1002: Data Input Error: Enter Whole Numbers Only"}});
}

TEST_F(Zentaqctl, SetWritesControlBits) {
    expectDone("set", {"ControlByte3 0", "Control3 1 --index 5"});
    EXPECT_EQ(cellOf(file, 2), 32);
    EXPECT_EQ(onFile("set", "Control3 0 --index 5").exitCode, 0);
    EXPECT_EQ(cellOf(file, 2), 0);
    EXPECT_EQ(onFile("set", "opt_FullCut 1").exitCode, 0);
    EXPECT_EQ(cellOf(file, 2), 1);
    expectRefusals("set",
                   {{"Control3 2", outOfRange("(0 to 1)")}, {"ControlByte3 256", outOfRange("(0 to 255)")}});
    EXPECT_EQ(onFile("set", "Control3 1 --index 8").exitCode, 1);
}

TEST_F(Zentaqctl, SetWritesInputsAndOutputs) {
    expectDone("set", {"GPIO_Func 6 --index 3", "GPIO_Param 6500 --index 24"});
    EXPECT_EQ(cellOf(file, 336 + 27), 6);
    EXPECT_EQ(cellOf(file, 336 + 28), 6500);
    expectRefusals("set", {{"GPIO_Func 30", outOfRange("(0 to 29)")}, {"GPIO_Param x", notNumeric}});
}

TEST_F(Zentaqctl, ANewFunctionBeginsWithAllParametersZero) {
    expectDone("set", {"GPIO_Func 6 --index 3", "GPIO_Param 6500 --index 24"});
    EXPECT_EQ(onFile("set", "GPIO_Func 6 --index 3").exitCode, 0);  // the one that it has
    EXPECT_EQ(cellOf(file, 336 + 28), 6500);
    EXPECT_EQ(onFile("set", "GPIO_Func 8 --index 3").exitCode, 0);
    EXPECT_EQ(cellOf(file, 336 + 27), 8);
    for (int cell = 336 + 28; cell < 336 + 36; ++cell) EXPECT_EQ(cellOf(file, cell), 0) << cell;
}

TEST_F(Zentaqctl, AFunctionThatThePinDoesNotOfferIsRefusedWithTheReason) {
    ASSERT_EQ(onFile("set", "GPIO_Func 12 --index 4").exitCode, 0);
    const std::string before = contentOf(file);
    const auto refused = [&](const char* arguments, const char* why) {
        EXPECT_THAT(onFile("set", std::string("GPIO_Func ") + arguments),
                    Fails(1, AllOf(StartsWith(why), isOneLine)))
            << arguments;
    };
    refused("12 --index 0", "GPIO_Func: \"Fuel Trim\" is for inputs, and pin 0 (W18) is an output; ");
    refused("6 --index 5", "GPIO_Func: \"Shift Light\" is for outputs, and pin 5 (G17) is an input; ");
    refused("12 --index 5",
            "GPIO_Func: \"Fuel Trim\" is on pin 4 (G16) already, and only one input may have it; ");
    refused("26 --index 0", "GPIO_Func: 26 is no function of ORB A; the pin offers 0 DISABLED, ");
    refused("11 --index 0", "GPIO_Func: \"IAC Output\" is no function of ORB A; ");
    EXPECT_EQ(contentOf(file), before);
}

TEST_F(Zentaqctl, AReleaseThatFilesOfTheKindCanNameIsTaken) {
    file = copyOf("ORB C Six.ZQ4OC");
    expectDone("set", {"FW_Release 5"});
    EXPECT_EQ(onFile("get", "FW_Release").out, "5\n");
    EXPECT_EQ(floatOf(file, 2), 5099);
    expectRefusals("set", {{"FW_Release 6", outOfRange("(1 to 5)")}});
}

TEST_F(Zentaqctl, ASensorCurveTakesNoRatioOf0OrLess) {
    for (const char* value : {"0", "-1", "-0.0"}) {
        EXPECT_THAT(onFile("set", std::string("Y ") + value),
                    Fails(1, HasSubstr("(0.12 to 29.28 AFR) - Invalid Entry.")))
            << value;
    }
    expectDone("set", {"Y 0.12 --index 0"});
    EXPECT_EQ(onFile("image", "-o " + inQuotes(folder.file("out.s19"))).exitCode, 0);
}

TEST_F(Zentaqctl, ANameTellsHowLongItStays) {
    const std::string told =
        "BiName stays until the file is saved again: a save, an image and a unit take the name of the file\n";
    EXPECT_THAT(onFile("set", "BiName 'Track day'"), Succeeds(_, told));
    EXPECT_EQ(onFile("get", "BiName").out, "Track day\n");
    ASSERT_EQ(onFile("set", "KNK_MIN 44").exitCode, 0);
    EXPECT_EQ(onFile("get", "BiName").out, "Street\n");
    EXPECT_THAT(onFile("members").out, HasSubstr("\tBiName\t"));
}

TEST_F(Zentaqctl, SetChecksAParameterByTheFunctionOfItsPin) {
    expectDone("set", {"GPIO_Func 6 --index 3", "GPIO_Param 20000 --index 24"});  // shift light: one speed
    expectRefusals("set", {{"GPIO_Param 20001 --index 24", outOfRange("(0 to 20000 RPM)")},
                           {"GPIO_Param -1 --index 24", outOfRange("(0 to 20000 RPM)")},
                           {"GPIO_Param nan --index 24", notNumeric}});
}

TEST_F(Zentaqctl, SetChecksFrequencyAndTableByTheirOwnRanges) {
    // Parameter 0 is the table, 1 the frequency.
    expectDone("set", {"GPIO_Func 8 --index 1", "GPIO_Param 2 --index 8", "GPIO_Param 60 --index 9"});
    EXPECT_EQ(cellOf(file, 336 + 9 + 1), 2);
    EXPECT_EQ(cellOf(file, 336 + 9 + 2), 60);
    expectRefusals("set", {{"GPIO_Param 3 --index 8", outOfRange("(1 or 2)")},
                           {"GPIO_Param 45 --index 9", outOfRange("(30, 60)")}});
}

TEST_F(Zentaqctl, SetRefusesAParameterThatTheFunctionDoesNotHave) {
    expectDone("set", {"GPIO_Func 6 --index 3", "GPIO_Func 0 --index 0"});
    const std::string advice = "; set GPIO_Func first, or change the cell as it stands";
    expectRefusals(
        "set",
        {{"GPIO_Param 5 --index 26",
          "GPIO_Param: \"Shift Light\", the function of pin 3, has no parameter 2" + advice},
         {"GPIO_Param 5", "GPIO_Param: \"DISABLED\", the function of pin 0, has no parameter 0" + advice}});
    expectDone("cell", {"339 5"});  // free: 336 is the function of pin 0
}

TEST_F(Zentaqctl, APressureOfAPinIsSetAndShownInThePressureUnitOfTheCalibration) {
    // Nitrous: parameter 4 is a pressure.
    expectDone("set", {"GPIO_Func 5 --index 2", "GPIO_Param 80.5 --index 20"});
    EXPECT_EQ(onFile("get", "GPIO_Param 20").out, "80.5\n");
    EXPECT_EQ(onFile("set", "GPIO_Param 5000 --index 20").exitCode, 1);
    EXPECT_EQ(onFile("get", "GPIO_Param 20").out, "80.5\n");
}

TEST_F(Zentaqctl, ASpeedInputKeepsItsPulsesPerMile) {
    expectDone("set", {"GPIO_Func 21 --index 6", "GPIO_Param 25 --index 51", "GPIO_Param 4 --index 52",
                       "GPIO_Param 2 --index 53"});
    // 63360 / (pi * 25) * 4 * 2
    EXPECT_NEAR(cellOf(file, 336 + 9 * 6 + 1), 6453.797, 0.01);
}

TEST_F(Zentaqctl, SetWritesTheShapeOfTables) {
    EXPECT_EQ(onFile("set", "VE.ROWS 12").exitCode, 0);
    EXPECT_EQ(cellOf(file, 2292), 12);
    expectRefusals("set", {{"VE.ROWS 7", outOfRange("(8 to 24)")}});
    EXPECT_EQ(onFile("set", "GPO2.COL-AXIS TPS").exitCode, 0);
    EXPECT_EQ(cellOf(file, 2291), 3 * 16 + 4);  // rows stay on BLEND MAP
    EXPECT_EQ(onFile("set", "GPO2.COL-AXIS SPEED").exitCode, 1);
    // Its stops are still those of the former kind, so they are entered from the lowest on.
    expectDone("set", {"GPO2.X-Axis 0.5 --index 0", "GPO2.X-Axis 1 --index 1", "GPO2.X-Axis 2 --index 2",
                       "GPO2.X-Axis 2.5 --index 3"});
    EXPECT_EQ(cellOf(file, 2274 + 3), 2.5F);
    expectRefusals("set", {{"GPO2.X-Axis 6 --index 3", outOfRange("(0 to 5 Volts)")}});
}

TEST_F(Zentaqctl, SetOnAKindWithFixedTablesRefusesTheirShape) {
    file = copyOf("PZK-2 Classic Four.ZQ4PZK");
    expectRefusals("set", {{"ADV.ROWS 12", "ADV.ROWS follows from other members and cannot be set"},
                           {"VE 5", "PZK-2 has no member VE"}});
    expectDone("set", {"GPO1.X-Axis 1234 --index 0"});
    EXPECT_EQ(onFile("get", "RPMTBL 0").out, "1234\n");
}

TEST_F(Zentaqctl, SetOfATableWithoutAnIndexTellsThatElement0WasMeant) {
    EXPECT_THAT(onFile("set", "VE 5"),
                Succeeds(_, "VE has 256 elements; element 0 was changed, --index chooses another\n"));
    EXPECT_EQ(onFile("get", "VE 0").out, "5\n");
    EXPECT_THAT(onFile("set", "VE 6 --index 0").error, IsEmpty());
    EXPECT_THAT(onFile("set", "KNK_MIN 45").error, IsEmpty());
}

TEST_F(Zentaqctl, ANameIsOneLineOfCharactersThatTheUnitKeeps) {
    expectRefusals("set", {{"BiName 'two\nlines'", "BiName takes no tabs and no line breaks"},
                           {"BiName 'a\tb'", "BiName takes no tabs and no line breaks"},
                           {"BiName 'Nordschleife \u2605'", "BiName takes no characters beyond Latin-1"},
                           {"BiName '\u0142'", "BiName takes no characters beyond Latin-1"}});
    EXPECT_EQ(onFile("set", "BiName 'Kr\u00fcmmer \u00ff'").exitCode, 0);
    EXPECT_EQ(onFile("get", "BiName").out, "Kr\u00fcmmer \u00ff\n");
}

// ---- Axes

TEST_F(Zentaqctl, SetRefusesAStopThatIsNotAboveTheOneToItsLeft) {
    const std::string before = contentOf(file);
    const std::string words =
        "Warning 1006: Data Input Error: The value you entered must be higher than that of the one to the "
        "left. ";
    const float left = cellOf(file, 592 + 2 * 6);
    const std::string stop = onFile("get", "RPMTBL 6").out;
    ASSERT_GT(left, 200);
    expectRefused(onFile("set", "RPMTBL 200 --index 7"),
                  words + stop.substr(0, stop.size() - 1) + " > 200 = FALSE");
    for (const char* entry : {"VE.X-Axis 200 --index 7", "GPO1.X-Axis 200 --index 7", "MAPTBL 11 --index 9",
                              "ADV.Y-Axis 11 --index 9", "GPO2.Y-Axis 11 --index 9"}) {
        EXPECT_THAT(onFile("set", entry), Fails(1, StartsWith(words))) << entry;
    }
    EXPECT_TRUE(contentOf(file) == before);
}

TEST_F(Zentaqctl, SetTellsOfAStopThatIsNotBelowTheNextOne) {
    const std::string next = onFile("get", "RPMTBL 8").out;
    const Outcome outcome = onFile("set", "RPMTBL 9000 --index 7");
    EXPECT_EQ(outcome.exitCode, 0);
    EXPECT_EQ(cellOf(file, 592 + 14), 9000);
    EXPECT_EQ(outcome.error, file + ": RPM axis of the tables: 9000 is followed by " +
                                 next.substr(0, next.size() - 1) +
                                 "; the unit looks its values up in rising order\n");
    // As does every later command that changes the file or makes bytes of it, until the axis rises.
    EXPECT_EQ(onFile("image", "-o -").error, outcome.error);
    EXPECT_EQ(onFile("cell", "34 50").error, outcome.error);
    EXPECT_EQ(onFile("set", "RPMTBL 3500 --index 7").error, "");
}

// ---- A file that was cut

TEST_F(Zentaqctl, EveryCommandThatReadsACutFileTellsIt) {
    writeFile(file, contentOf(file).substr(0, 7000));
    const std::string lost =
        file + " is damaged: The file ends early: 1081 of its 2828 cells are missing and were taken as 0.\n";
    for (const auto& [command, rest] :
         {std::pair("info", ""), std::pair("get", "KNK_MIN"), std::pair("cell", "34"),
          std::pair("members", ""), std::pair("table", "VE"), std::pair("record", "KNK_MIN 50")}) {
        EXPECT_THAT(onFile(command, rest), Succeeds(_, lost)) << command;
    }
}

TEST_F(Zentaqctl, ImageRefusesACutFileWithoutForce) {
    const std::string records = folder.file("cut.s19");
    writeFile(file, contentOf(file).substr(0, 7000));
    expectRefused(
        onFile("image", "-o " + inQuotes(records)),
        file +
            " is damaged: The file ends early: 1081 of its 2828 cells are missing and were taken as 0. "
            "Look for a whole copy; --force takes it all the same");
    EXPECT_FALSE(fs::exists(records));
    EXPECT_EQ(onFile("image", "--force -o " + inQuotes(records)).exitCode, 0);
    EXPECT_TRUE(fs::exists(records));
}

TEST_F(Zentaqctl, WhatChangesACutFileRefusesItWithoutForce) {
    const std::string table = onFile("table", "VE").out;
    const std::string cut = contentOf(file).substr(0, 7000);
    const std::string lost =
        file + " is damaged: The file ends early: 1081 of its 2828 cells are missing and were taken as 0.";
    const std::string other = folder.file("other.ZQ4OA");
    for (const auto& [command, rest] :
         {std::pair("set", "KNK_MIN 50"), std::pair("cell", "34 50"), std::pair("table", "VE --from -")}) {
        writeFile(file, cut);
        for (const std::string& output : {std::string(), " -o " + inQuotes(other)}) {
            expectRefused(onFile(command, rest + output, table),
                          lost + " Look for a whole copy; --force takes it all the same");
        }
        EXPECT_TRUE(contentOf(file) == cut) << command;
        EXPECT_FALSE(fs::exists(other)) << command;
        EXPECT_THAT(onFile(command, std::string(rest) + " --force", table),
                    Succeeds(_, StartsWith(lost + "\n")))
            << command;
        EXPECT_THAT(run(std::string(command) + " --help").out, HasSubstr("whose end is missing")) << command;
    }
}

// ---- What is held already

TEST_F(Zentaqctl, SetTakesTheStopThatIsThereThoughTheOneBeforeItIsWrong) {
    plant(592 + 2 * 6, 9000);  // RPMTBL 6
    const std::string stop = onFile("get", "RPMTBL 7").out;
    ASSERT_LT(cellOf(file, 592 + 2 * 7), 9000);
    EXPECT_EQ(onFile("set", "RPMTBL " + stop.substr(0, stop.size() - 1) + " --index 7").exitCode, 0);
    EXPECT_EQ(onFile("set", "VE.X-Axis " + stop.substr(0, stop.size() - 1) + " --index 7").exitCode, 0);
    EXPECT_EQ(onFile("get", "RPMTBL 7").out, stop);
    EXPECT_EQ(onFile("set", "RPMTBL 8999 --index 7").exitCode, 1);
}

TEST_F(Zentaqctl, SetTakesTheFlowThatTheSamplesHold) {
    for (const auto& [name, flow] :
         {std::pair("Street 2.0 Four.ZQ4OA", "19.7"),  // 0.45 * 150 / 4 at 60000 / 7000 ms less 1.2: 19.62
          std::pair("ORB L Six.ZQ4OL", "21.1"),        // 0.475 * 230 / 6 at 60000 / 6800 ms: 21.07
          std::pair("ORB C Six.ZQ4OC", "21.1"),
          std::pair("ORB D Four.ZQ4OD", "28.4")}) {  // 0.55 * 170 / 4 at 60000 / 8800 ms: 28.37
        file = copyOf(name);
        EXPECT_EQ(onFile("get", "INJ_FlowRate").out, std::string(flow) + "\n") << name;
        EXPECT_EQ(onFile("set", "INJ_FlowRate " + std::string(flow)).exitCode, 0) << name;
        EXPECT_EQ(onFile("set", "INJ_FlowRate 19.6").exitCode, 1) << name;
    }
}

}  // namespace
}  // namespace zentaq
