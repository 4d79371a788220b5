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
    std::string before = contentOf(file);
    ASSERT_EQ(onFile("set", "KNK_MIN 44").exitCode, 0);
    const float value = 44;
    std::memcpy(before.data() + 12 + 4 * 34, &value, sizeof value);
    EXPECT_EQ(contentOf(file), before);
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

TEST_F(Zentaqctl, SetAcceptsAValueAtItsLimit) {
    EXPECT_EQ(onFile("set", "KNK_MIN 100").exitCode, 0);
    EXPECT_EQ(onFile("set", "KNK_MIN 2").exitCode, 0);
}

TEST_F(Zentaqctl, SetTellsTheWarningAndTheRangeOfARefusedValueAndWritesNothing) {
    const std::string before = contentOf(file);
    const std::string copy = folder.file("never.ZQ4OA");
    EXPECT_THAT(onFile("set", "KNK_MIN 101 -o " + inQuotes(copy)),
                Fails(1, "Warning 1001: Data Input Error: (2 to 100 units) - Invalid Entry.\n"));
    EXPECT_EQ(onFile("set", "KNK_MIN 101").exitCode, 1);
    EXPECT_EQ(contentOf(file), before);
    EXPECT_FALSE(fs::exists(copy));
}

TEST_F(Zentaqctl, SetRefusesTextThatIsNoNumber) {
    EXPECT_THAT(onFile("set", "KNK_MIN fast"), Fails(1, StartsWith("Warning 1000: ")));
    EXPECT_THAT(onFile("set", "KNK_MIN ''").error, StartsWith("Warning 1005: "));
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
    EXPECT_EQ(onFile("set", "KNK_MIN fast").error, box.text + "\n");
    messages.Check_Input(1003, "");
    EXPECT_EQ(onFile("set", "KNK_MIN ''").error, box.text + "\n");
}

TEST_F(Zentaqctl, SetRefusesADecimalComma) {
    const std::string before = contentOf(file);
    expectRefused(onFile("set", "KNK_MIN 12,5"),
                  "KNK_MIN: 12,5 has a comma; decimals are written with a point, such as 12.5");
    expectRefused(onFile("set", "GPIO_Param 12,5"),
                  "GPIO_Param: 12,5 has a comma; decimals are written with a point, such as 12.5");
    EXPECT_EQ(contentOf(file), before);
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
    for (const char* member : {"MAPMax", "TOOTHMIN", "VE.ROW-AXIS"}) {
        expectRefused(onFile("set", std::string(member) + " 5"),
                      std::string(member) + " follows from other members and cannot be set");
    }
    EXPECT_EQ(onFile("set", "ISRPM 900 --index 3").exitCode, 1);
}

TEST_F(Zentaqctl, SetWritesNotesAndName) {
    EXPECT_EQ(onFile("set", "NOTES_TEXT 'Good on 98 octane'").exitCode, 0);
    EXPECT_EQ(onFile("get", "NOTES_TEXT").out, "Good on 98 octane\n");
    EXPECT_EQ(onFile("set", "BiName 'Track day'").exitCode, 0);
    EXPECT_EQ(cellOf(file, 560), 'T');
    EXPECT_EQ(onFile("get", "BiName").out, "Track day\n");
    expectRefused(onFile("set", "BiName '1234567890123456789012345'"), "BiName takes at most 24 characters");
    expectRefused(onFile("set", "BiName 'a/b'"), "BiName takes no / and no \\");
    expectRefused(onFile("set", "NOTES_TEXT '" + std::string(501, 'x') + "'"),
                  "NOTES_TEXT takes at most 500 characters");
    EXPECT_EQ(onFile("set", "NOTES_TEXT '" + std::string(500, 'x') + "'").exitCode, 0);
}

TEST_F(Zentaqctl, SetTakesTheNextSaveOfAFileAsItsName) {
    onFile("set", "BiName 'Track day'");
    onFile("set", "KNK_MIN 44");
    EXPECT_EQ(onFile("get", "BiName").out, "Street\n");
}

TEST_F(Zentaqctl, SetWritesThePressureUnit) {
    EXPECT_EQ(onFile("set", "MAPUnits PSIA").exitCode, 0);
    EXPECT_EQ(cellOf(file, 129), 2);
    EXPECT_EQ(onFile("set", "MAPUnits %Flow").exitCode, 0);
    EXPECT_EQ(onFile("get", "Control2 0").out, "1\n");
    expectRefused(onFile("set", "MAPUnits bar"),
                  "Warning 1001: Data Input Error: kPa, PSIA, PSIG, mmHg, inHg or %Flow - Invalid Entry.");
}

TEST_F(Zentaqctl, SetWritesTheFirmwareThatAFileIsFor) {
    EXPECT_EQ(onFile("set", "FW_Release 4").exitCode, 0);
    EXPECT_EQ(floatOf(file, 2), 4099);
    EXPECT_EQ(onFile("set", "FW_Build 12").exitCode, 0);
    EXPECT_EQ(floatOf(file, 2), 4012);
    expectRefused(onFile("set", "FW_Release 6"), "Warning 1001: Data Input Error: (1 to 5) - Invalid Entry.");
    expectRefused(onFile("set", "FW_Build 1.5"), "Warning 1002: Data Input Error: Enter Whole Numbers Only");
}

TEST_F(Zentaqctl, SetWritesControlBits) {
    EXPECT_EQ(onFile("set", "ControlByte3 0").exitCode, 0);
    EXPECT_EQ(onFile("set", "Control3 1 --index 5").exitCode, 0);
    EXPECT_EQ(cellOf(file, 2), 32);
    EXPECT_EQ(onFile("set", "Control3 0 --index 5").exitCode, 0);
    EXPECT_EQ(cellOf(file, 2), 0);
    EXPECT_EQ(onFile("set", "opt_FullCut 1").exitCode, 0);
    EXPECT_EQ(cellOf(file, 2), 1);
    expectRefused(onFile("set", "Control3 2"), "Warning 1001: Data Input Error: (0 to 1) - Invalid Entry.");
    expectRefused(onFile("set", "ControlByte3 256"),
                  "Warning 1001: Data Input Error: (0 to 255) - Invalid Entry.");
    EXPECT_EQ(onFile("set", "Control3 1 --index 8").exitCode, 1);
}

TEST_F(Zentaqctl, SetWritesInputsAndOutputs) {
    EXPECT_EQ(onFile("set", "GPIO_Func 6 --index 3").exitCode, 0);
    EXPECT_EQ(onFile("set", "GPIO_Param 6500 --index 24").exitCode, 0);
    EXPECT_EQ(cellOf(file, 336 + 27), 6);
    EXPECT_EQ(cellOf(file, 336 + 28), 6500);
    expectRefused(onFile("set", "GPIO_Func 30"),
                  "Warning 1001: Data Input Error: (0 to 29) - Invalid Entry.");
    expectRefused(onFile("set", "GPIO_Param x"),
                  "Warning 1000: Data Input Error: Non-numeric value detected. Retype Data");
}

TEST_F(Zentaqctl, ANewFunctionBeginsWithAllParametersZero) {
    ASSERT_EQ(onFile("set", "GPIO_Func 6 --index 3").exitCode, 0);
    ASSERT_EQ(onFile("set", "GPIO_Param 6500 --index 24").exitCode, 0);
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
    const std::string orbC = folder.file("Six.ZQ4OC");
    fs::copy_file(sample("ORB C Six.ZQ4OC"), orbC);
    EXPECT_EQ(run("set " + inQuotes(orbC) + " FW_Release 5").exitCode, 0);
    EXPECT_EQ(run("get " + inQuotes(orbC) + " FW_Release").out, "5\n");
    EXPECT_EQ(floatOf(orbC, 2), 5099);
    expectRefused(run("set " + inQuotes(orbC) + " FW_Release 6"),
                  "Warning 1001: Data Input Error: (1 to 5) - Invalid Entry.");
}

TEST_F(Zentaqctl, ASensorCurveTakesNoRatioOf0OrLess) {
    for (const char* value : {"0", "-1", "-0.0"}) {
        EXPECT_THAT(onFile("set", std::string("Y ") + value),
                    Fails(1, HasSubstr("(0.12 to 29.28 AFR) - Invalid Entry.")))
            << value;
    }
    EXPECT_EQ(onFile("set", "Y 0.12 --index 0").exitCode, 0);
    EXPECT_EQ(onFile("image", "-o " + inQuotes(folder.file("out.s19"))).exitCode, 0);
}

TEST_F(Zentaqctl, ANameTellsHowLongItStays) {
    EXPECT_THAT(
        onFile("set", "BiName 'Track day'"),
        Succeeds(
            _,
            "BiName stays until the file is saved again: a save, an image and a unit take the name of the "
            "file\n"));
    EXPECT_EQ(onFile("get", "BiName").out, "Track day\n");
    ASSERT_EQ(onFile("set", "KNK_MIN 44").exitCode, 0);
    EXPECT_EQ(onFile("get", "BiName").out, "Street\n");
    EXPECT_THAT(onFile("members").out, HasSubstr("\tBiName\t"));
}

TEST_F(Zentaqctl, SetChecksAParameterByTheFunctionOfItsPin) {
    ASSERT_EQ(onFile("set", "GPIO_Func 6 --index 3").exitCode, 0);  // shift light: one speed
    ASSERT_EQ(onFile("set", "GPIO_Param 20000 --index 24").exitCode, 0);
    const std::string before = contentOf(file);
    const std::string range = "Warning 1001: Data Input Error: (0 to 20000 RPM) - Invalid Entry.";
    expectRefused(onFile("set", "GPIO_Param 20001 --index 24"), range);
    expectRefused(onFile("set", "GPIO_Param -1 --index 24"), range);
    expectRefused(onFile("set", "GPIO_Param nan --index 24"),
                  "Warning 1000: Data Input Error: Non-numeric value detected. Retype Data");
    EXPECT_EQ(contentOf(file), before);
}

TEST_F(Zentaqctl, SetChecksFrequencyAndTableByTheirOwnRanges) {
    ASSERT_EQ(onFile("set", "GPIO_Func 8 --index 1").exitCode, 0);  // parameter 0 the table, 1 the frequency
    EXPECT_EQ(onFile("set", "GPIO_Param 2 --index 8").exitCode, 0);
    EXPECT_EQ(onFile("set", "GPIO_Param 60 --index 9").exitCode, 0);
    EXPECT_EQ(cellOf(file, 336 + 9 + 1), 2);
    EXPECT_EQ(cellOf(file, 336 + 9 + 2), 60);
    expectRefused(onFile("set", "GPIO_Param 3 --index 8"),
                  "Warning 1001: Data Input Error: (1 or 2) - Invalid Entry.");
    expectRefused(onFile("set", "GPIO_Param 45 --index 9"),
                  "Warning 1001: Data Input Error: (30, 60) - Invalid Entry.");
    EXPECT_EQ(cellOf(file, 336 + 9 + 2), 60);
}

TEST_F(Zentaqctl, SetRefusesAParameterThatTheFunctionDoesNotHave) {
    ASSERT_EQ(onFile("set", "GPIO_Func 6 --index 3").exitCode, 0);
    ASSERT_EQ(onFile("set", "GPIO_Func 0 --index 0").exitCode, 0);
    const std::string before = contentOf(file);
    expectRefused(
        onFile("set", "GPIO_Param 5 --index 26"),
        "GPIO_Param: \"Shift Light\", the function of pin 3, has no parameter 2; set GPIO_Func first, "
        "or change the cell as it stands");
    expectRefused(
        onFile("set", "GPIO_Param 5"),
        "GPIO_Param: \"DISABLED\", the function of pin 0, has no parameter 0; set GPIO_Func first, or "
        "change the cell as it stands");
    EXPECT_EQ(contentOf(file), before);
    EXPECT_EQ(onFile("cell", "339 5").exitCode, 0);  // free: 336 is the function of pin 0
}

TEST_F(Zentaqctl, APressureOfAPinIsSetAndShownInThePressureUnitOfTheCalibration) {
    ASSERT_EQ(onFile("set", "GPIO_Func 5 --index 2").exitCode, 0);  // nitrous: parameter 4 is a pressure
    ASSERT_EQ(onFile("set", "GPIO_Param 80.5 --index 20").exitCode, 0);
    EXPECT_EQ(onFile("get", "GPIO_Param 20").out, "80.5\n");
    EXPECT_EQ(onFile("set", "GPIO_Param 5000 --index 20").exitCode, 1);
    EXPECT_EQ(onFile("get", "GPIO_Param 20").out, "80.5\n");
}

TEST_F(Zentaqctl, ASpeedInputKeepsItsPulsesPerMile) {
    ASSERT_EQ(onFile("set", "GPIO_Func 21 --index 6").exitCode, 0);
    for (const char* entry : {"25 --index 51", "4 --index 52", "2 --index 53"}) {
        ASSERT_EQ(onFile("set", std::string("GPIO_Param ") + entry).exitCode, 0);
    }
    // 63360 / (pi * 25) * 4 * 2
    EXPECT_NEAR(cellOf(file, 336 + 9 * 6 + 1), 6453.797, 0.01);
}

TEST_F(Zentaqctl, SetWritesTheShapeOfTables) {
    EXPECT_EQ(onFile("set", "VE.ROWS 12").exitCode, 0);
    EXPECT_EQ(cellOf(file, 2292), 12);
    expectRefused(onFile("set", "VE.ROWS 7"), "Warning 1001: Data Input Error: (8 to 24) - Invalid Entry.");
    EXPECT_EQ(onFile("set", "GPO2.COL-AXIS TPS").exitCode, 0);
    EXPECT_EQ(cellOf(file, 2291), 3 * 16 + 4);  // rows stay on BLEND MAP
    EXPECT_EQ(onFile("set", "GPO2.COL-AXIS SPEED").exitCode, 1);
    // Its stops are still those of the former kind, so they are entered from the lowest on.
    for (const char* stop : {"0.5 --index 0", "1 --index 1", "2 --index 2", "2.5 --index 3"})
        EXPECT_EQ(onFile("set", std::string("GPO2.X-Axis ") + stop).exitCode, 0) << stop;
    EXPECT_EQ(cellOf(file, 2274 + 3), 2.5F);
    expectRefused(onFile("set", "GPO2.X-Axis 6 --index 3"),
                  "Warning 1001: Data Input Error: (0 to 5 Volts) - Invalid Entry.");
}

TEST_F(Zentaqctl, SetOnAKindWithFixedTablesRefusesTheirShape) {
    const std::string classic = folder.file("Classic.ZQ4PZK");
    fs::copy_file(sample("PZK-2 Classic Four.ZQ4PZK"), classic);
    expectRefused(run("set " + inQuotes(classic) + " ADV.ROWS 12"),
                  "ADV.ROWS follows from other members and cannot be set");
    EXPECT_EQ(run("set " + inQuotes(classic) + " GPO1.X-Axis 1234 --index 0").exitCode, 0);
    EXPECT_EQ(run("get " + inQuotes(classic) + " RPMTBL 0").out, "1234\n");
    expectRefused(run("set " + inQuotes(classic) + " VE 5"), "PZK-2 has no member VE");
}

TEST_F(Zentaqctl, SetOfATableWithoutAnIndexTellsThatElement0WasMeant) {
    EXPECT_THAT(onFile("set", "VE 5"),
                Succeeds(_, "VE has 256 elements; element 0 was changed, --index chooses another\n"));
    EXPECT_EQ(onFile("get", "VE 0").out, "5\n");
    EXPECT_THAT(onFile("set", "VE 6 --index 0").error, IsEmpty());
    EXPECT_THAT(onFile("set", "KNK_MIN 45").error, IsEmpty());
}

TEST_F(Zentaqctl, ANameIsOneLineOfCharactersThatTheUnitKeeps) {
    const std::string before = contentOf(file);
    expectRefused(onFile("set", "BiName 'two\nlines'"), "BiName takes no tabs and no line breaks");
    expectRefused(onFile("set", "BiName 'a\tb'"), "BiName takes no tabs and no line breaks");
    expectRefused(onFile("set", "BiName 'Nordschleife \u2605'"), "BiName takes no characters beyond Latin-1");
    expectRefused(onFile("set", "BiName '\u0142'"), "BiName takes no characters beyond Latin-1");
    EXPECT_EQ(contentOf(file), before);
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
        const std::string copy = folder.file(name);
        fs::copy_file(sample(name), copy);
        EXPECT_EQ(run("get " + inQuotes(copy) + " INJ_FlowRate").out, std::string(flow) + "\n") << name;
        EXPECT_EQ(run("set " + inQuotes(copy) + " INJ_FlowRate " + flow).exitCode, 0) << name;
        EXPECT_EQ(run("set " + inQuotes(copy) + " INJ_FlowRate 19.6").exitCode, 1) << name;
    }
}

}  // namespace
}  // namespace zentaq
