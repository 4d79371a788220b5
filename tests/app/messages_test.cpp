#include "app/messages.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>

#include "app/fake_platform.h"

namespace zentaq {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

/// What the user reads and what stays of it.
struct Told {
    int code;
    const char *title, *text;
    const char* logLine = nullptr;
};

class MessagesTest : public ::testing::Test {
 protected:
    ScriptedDialogs dialogs;
    std::vector<std::string> log;
    std::vector<std::string> focus;
    std::vector<std::string> marks;
    /// How many boxes had been answered when a line was logged, and how many lines when a form got the focus.
    std::vector<std::size_t> boxesBeforeLine;
    std::vector<std::size_t> linesBeforeFocus;
    Messages messages{dialogs,
                      [this](std::string_view text) {
                          boxesBeforeLine.push_back(dialogs.boxes.size());
                          log.emplace_back(text);
                      },
                      [this](const std::string& form) {
                          linesBeforeFocus.push_back(log.size());
                          focus.push_back(form);
                      }};

    MessagesTest() {
        messages.onMark([this](std::string_view mark) { marks.emplace_back(mark); });
    }
    const Box& box() const { return dialogs.boxes.back(); }
    void expectBox(const Told& told, Icon icon) {
        EXPECT_EQ(box().title, told.title) << told.code;
        EXPECT_EQ(box().text, told.text) << told.code;
        EXPECT_EQ(box().icon, icon) << told.code;
        EXPECT_EQ(box().buttons, Buttons::Ok) << told.code;
    }
};

constexpr const char* inputError = "Data Input Error";

/// The callers' text is "(2 to 100 units)".
const Told warningRows[] = {
    {1000, inputError, "Warning 1000: Data Input Error\nNon-numeric value detected.\n(2 to 100 units)",
     "Warning 1000: Data Input Error / Non-numeric value"},
    {1001, inputError, "Warning 1001: Data Input Error\n(2 to 100 units) - Invalid Entry.",
     "Warning 1001: Data Input Error"},
    {1002, inputError, "Warning 1002: Data Input Error\nEnter Whole Numbers Only",
     "Warning 1002: Data Input Error / Non Whole Number"},
    {1003, "Warning", "(2 to 100 units)", "Warning 1003: (2 to 100 units)"},
    {1004, inputError,
     "Warning 1004: Data Input Error\nThe information you have entered is invalid; please try again.",
     "Warning 1004: Invalid Information Provided"},
    {1005, inputError, "Warning 1005: Data Input Error\nField CANNOT be NULL; please try again.",
     "Warning 1005: NULL Value Entered"},
    {1007, "Warning 1007",
     "Warning 1007:\nOlder ORB Unit firmware detected. The firmware may need to be upgraded for the unit to "
     "work properly with the new software.",
     "Warning 1007: ORB Unit needs Firmware Upgrade."},
};

TEST_F(MessagesTest, EveryWarningHasItsTitleTextIconAndLogLine) {
    for (const Told& row : warningRows) {
        SCOPED_TRACE(row.code);
        log.clear();
        messages.Display_Warning(row.code, "(2 to 100 units)");
        expectBox(row, Icon::Exclamation);
        EXPECT_THAT(log, ElementsAre(row.logLine));
    }
    EXPECT_EQ(dialogs.boxes.size(), 7u);
}

TEST_F(MessagesTest, AfterAnyWarningTheActiveFormHasTheFocus) {
    for (const char* form : {"frmConfig", "frmGeneralConfig", "frmTABLE"}) {
        messages.ActiveFormName = form;
        for (const Told& row : warningRows) {
            focus.clear();
            messages.Display_Warning(row.code);
            EXPECT_THAT(focus, ElementsAre(form)) << row.code;
        }
    }
}

TEST_F(MessagesTest, TheBoxComesFirstThenTheLogLineThenTheFocus) {
    messages.Display_Warning(1005);
    EXPECT_THAT(boxesBeforeLine, ElementsAre(1u));
    EXPECT_THAT(linesBeforeFocus, ElementsAre(1u));
    messages.Display_Error(1001);
    messages.Display_Message(1000, "loud");
    EXPECT_THAT(boxesBeforeLine, ElementsAre(1u, 2u, 3u));
    EXPECT_EQ(focus.size(), 1u) << "only warnings move the focus";
}

TEST_F(MessagesTest, TheFormActiveWhenTheBoxClosesGetsTheFocus) {
    messages.ActiveFormName = "frmGeneralConfig";
    EXPECT_TRUE(messages.Check_Range(101, 2, 100, "(2 to 100 units)"));
    EXPECT_THAT(focus, ElementsAre("frmGeneralConfig"));
    EXPECT_THAT(linesBeforeFocus, ElementsAre(1u)) << "behind the warning's own line, before the entry's two";
}

TEST_F(MessagesTest, CodesOutsideTheTablesShowAndLogNothing) {
    for (const int code : {-1, 0, 1, 999, 1008, 1009, 32767}) {
        messages.Display_Error(code);
        messages.Display_Warning(code, "text");
    }
    messages.Display_Warning(1006, "text");
    for (const int code : {-1, 1, 999, 1010, 32767}) messages.Display_Message(code, "text");
    EXPECT_THAT(dialogs.boxes, IsEmpty());
    EXPECT_THAT(log, IsEmpty());
    EXPECT_THAT(focus, IsEmpty());
}

TEST_F(MessagesTest, EveryErrorHasItsTextAndLogLine) {
    const Told rows[] = {
        {1000, "Error 1000", "Error 1000:\nThis form cannot be printed.\nCheck Printer Setup and try again.",
         "Error 1000: Form Cannot Be Printed"},
        {1001, "Error 1001", "Error 1001:\nPort is already in use by another process.",
         "Error 1001: Port is in use by another process."},
        {1002, "Error 1002", "Error 1002:\nNot a valid BIN file!\nPlease choose another file and try again.",
         "Error 1002: Invalid BIN File!"},
        {1003, "Error 1003",
         "Error 1003:\nYou must have an open/active bin file before accessing this functionality\n"
         "Please choose another file or create one and try again.",
         "Error 1003: No Open BIN File."},
        {1004, "Error 1004",
         "Error 1004:\nNo ORB Unit has been associated to this Bin File.\n"
         "Please choose the ORB Unit from the List on the General Config Screen before continuing!",
         "Error 1004: No ORB Unit associated to selected BIN File."},
        {1005, "Error 1005",
         "Error 1005:\nNo ORB Unit is Connected to the System!\n"
         "Please check to make sure your ORB unit is powered on and connected to the system.",
         "Error 1005: Attempted Communication, No ORB Unit Found."},
        {1006, "Error 1006",
         "Error 1006:\nIncorrect ORB Unit is Connected to the System!\n"
         "Please connect a unit of the proper type or open an apprpriate file.",
         "Error 1006: Attempted Communication, Incorrect ORB Unit Found."},
        {1007, "Error 1007",
         "Error 1007:\nNo MAP sensor calibration selected.\n"
         "Please choose a MAP sensor from the drop down below.",
         "Error 1007: No MAP sensor calibration selected."},
    };
    for (const Told& row : rows) {
        log.clear();
        messages.Display_Error(row.code);
        expectBox(row, Icon::Critical);
        EXPECT_THAT(log, ElementsAre(row.logLine));
    }
}

TEST_F(MessagesTest, EveryMessageHasItsTitleTextAndIcon) {
    const auto expectTold = [this](Icon icon, std::initializer_list<Told> rows) {
        for (const Told& row : rows) {
            messages.Display_Message(row.code);
            expectBox(row, icon);
        }
    };
    expectTold(Icon::Information, {{1001, "Data Saved.", "Data has been saved Successfully!"},
                                   {1002, "Complete!",
                                    "You have successfully programmed your ORB unit.\n"
                                    "Please cycle the power on the unit before continuing."},
                                   {1006, "Complete!", "The datalog has been successfully downloaded."},
                                   {1008, "Complete!",
                                    "The BIN file MUST be loaded before starting your engine.\n"
                                    "The unit may operate upredictably until the BIN file is loaded."}});
    expectTold(
        Icon::Exclamation,
        {{1003, "Failed",
          "The BIN program operation failed.\n"
          "Please verify that the ORB has power, the engine is off and try again.\n"
          "The previous BIN file is still loaded."},
         {1004, "Failed",
          "The firmware upgrade operation failed.\n"
          "Please verify that the ORB has power and try again.\n"
          "There is now no firmware installed on this unit, the upgrade must be completed successfully "
          "before the unit will function."},
         {1005, "Failed",
          "The firmware upgrade operation failed.\n"
          "Please verify that the ORB is in the upgrade mode then try again.\n"
          "The previous version of the firmware is still intact."},
         {1007, "Failed",
          "The unit either has no datalog data is currently datalogging\n"
          "Make sure you datalog switch is OFF and try again."},
         {1009, "Failed",
          "This unit will no longer communicate.\nThe firmware upgrade operation failed.\n"
          "Please contact Norvalia for repairs."}});
    EXPECT_THAT(log, IsEmpty());
}

TEST_F(MessagesTest, HelpTextsShowAndOnlyCode1000Logs) {
    messages.Display_Message(0, "quiet");
    EXPECT_EQ(box().title, "Help");
    EXPECT_THAT(log, IsEmpty());
    messages.Display_Message(1000, "loud");
    EXPECT_EQ(box().text, "loud");
    EXPECT_THAT(log, ElementsAre("Message 1000: loud"));
}

TEST_F(MessagesTest, TheNumericCheckRefusesWordsWithRetypeData) {
    EXPECT_TRUE(messages.Check_Input(1000, "abc"));
    EXPECT_EQ(box().text, "Warning 1000: Data Input Error\nNon-numeric value detected.\nRetype Data");
    EXPECT_THAT(log, ElementsAre("Warning 1000: Data Input Error / Non-numeric value"));
    EXPECT_FALSE(messages.Check_Input(1000, " -12.5 "));
}

TEST_F(MessagesTest, TheNumericCheckLetsTheKeyCodesOfFullStopAndControlKeysPass) {
    // kept: handed in as numbers they pass as any number does; the rule stays where a caller hands in text.
    for (const char* keyCode : {"46", "19", "8"})
        EXPECT_FALSE(messages.Check_Input(1000, keyCode)) << keyCode;
    EXPECT_THAT(dialogs.boxes, IsEmpty());
    for (const char* text : {".", "\b", "", "4 6", "0x8", "--1"}) {
        EXPECT_TRUE(messages.Check_Input(1000, text)) << text;
    }
}

TEST_F(MessagesTest, TheWholeNumberCheckLooksForFullStopAndCommaTogether) {
    EXPECT_FALSE(messages.Check_Input(1002, "1.5"));
    EXPECT_FALSE(messages.Check_Input(1002, "1,5"));
    EXPECT_TRUE(messages.Check_Input(1002, "1.,5"));
    EXPECT_EQ(box().text, "Warning 1002: Data Input Error\nEnter Whole Numbers Only");
    EXPECT_THAT(log, ElementsAre("Warning 1002: Data Input Error / Non Whole Number"));
}

TEST_F(MessagesTest, BlankTextIsRefusedByCode1003AndMarkedWithoutABoxByCode1004) {
    EXPECT_TRUE(messages.Check_Input(1003, "   "));
    EXPECT_EQ(dialogs.boxes.size(), 1u);
    EXPECT_TRUE(messages.Check_Input(1004, " "));
    EXPECT_FALSE(messages.Check_Input(1004, "x"));
    EXPECT_EQ(dialogs.boxes.size(), 1u);
}

TEST_F(MessagesTest, Code1004MarksAnEditedFieldAndABlankOneAsInvalid) {
    EXPECT_FALSE(messages.Check_Input(1004, "12"));
    EXPECT_THAT(marks, ElementsAre("Modified"));
    marks.clear();
    EXPECT_TRUE(messages.Check_Input(1004, "  "));
    ASSERT_FALSE(marks.empty());
    EXPECT_EQ(marks.back(), "Invalid Entry");
    EXPECT_THAT(dialogs.boxes, IsEmpty());
    EXPECT_THAT(log, IsEmpty());
}

TEST_F(MessagesTest, ASilentEditRaisesNoModifiedButABlankFieldIsMarkedAllTheSame) {
    messages.SilentEdit = true;
    EXPECT_FALSE(messages.Check_Input(1004, "12"));
    EXPECT_THAT(marks, IsEmpty());
    EXPECT_TRUE(messages.Check_Input(1004, ""));
    EXPECT_THAT(marks, ElementsAre("Invalid Entry"));
}

TEST_F(MessagesTest, TheOtherChecksMarkNothing) {
    messages.Check_Input(1000, "abc");
    messages.Check_Input(1002, ".,");
    messages.Check_Input(1003, "");
    EXPECT_THAT(marks, IsEmpty());
}

TEST_F(MessagesTest, InputCodesWithoutACheckPass) {
    for (const int code : {0, 999, 1001, 1005, 1006}) EXPECT_FALSE(messages.Check_Input(code, "")) << code;
    EXPECT_THAT(dialogs.boxes, IsEmpty());
}

TEST_F(MessagesTest, AValueAtALimitPassesTheRangeCheck) {
    EXPECT_FALSE(messages.Check_Range(2, 2, 100, "(2 to 100 units)"));
    EXPECT_FALSE(messages.Check_Range(100, 2, 100, "(2 to 100 units)"));
    EXPECT_THAT(log, IsEmpty());
}

TEST_F(MessagesTest, AValueOutsideGetsWarning1001AndThreeLogLines) {
    EXPECT_TRUE(messages.Check_Range(100.5f, 2, 100, "(2 to 100 units)"));
    EXPECT_EQ(box().text, "Warning 1001: Data Input Error\n(2 to 100 units) - Invalid Entry.");
    EXPECT_THAT(log, ElementsAre("Warning 1001: Data Input Error", "(2 to 100 units)",
                                 "Invalid Entry: 100.5 -> 2 to 100"));
    EXPECT_TRUE(messages.Check_Range(25000, 1000, 20000, "(1000 to 20000 RPM)"));
    EXPECT_EQ(log.back(), "Invalid Entry: 25000 -> 1000 to 20000");
    EXPECT_TRUE(messages.Check_Range(-50.5f, -50, 0.25f, "(-50 to 0.25%)"));
    EXPECT_EQ(log.back(), "Invalid Entry: -50.5 -> -50 to 0.25");
}

TEST_F(MessagesTest, NotANumberIsOutsideEveryRange) {
    EXPECT_TRUE(messages.Check_Range(std::numeric_limits<float>::quiet_NaN(), 0, 1, "(0 to 1)"));
}

TEST_F(MessagesTest, WhatOneCommandHadRefusedIsToldInOneBoxWithTheFirstOnTop) {
    messages.tell(std::vector<Refusal>{{1001, "(0 to 100%)", "101", "0 to 100"},
                                       {1000, "Retype Data"},
                                       {1001, "(0 to 100%)", "-5", "0 to 100"}});
    ASSERT_EQ(dialogs.boxes.size(), 1u);
    EXPECT_EQ(box().text,
              "Warning 1001: Data Input Error\n(0 to 100%) - Invalid Entry.\n"
              "Invalid Entry: no number\nInvalid Entry: -5 -> (0 to 100%)");
    EXPECT_THAT(
        log, ElementsAre("Invalid Entry: no number", "Invalid Entry: -5 -> (0 to 100%)",
                         "Warning 1001: Data Input Error", "(0 to 100%)", "Invalid Entry: 101 -> 0 to 100"));
    EXPECT_EQ(focus.size(), 1u);
}

TEST_F(MessagesTest, ABoxAboutManyRefusalsIsBoundedAndTheLogHasThemAll) {
    messages.tell(std::vector<Refusal>(256, Refusal{1001, "(0 to 100%)", "300", "0 to 100"}));
    ASSERT_EQ(dialogs.boxes.size(), 1u);
    EXPECT_EQ(std::ranges::count(box().text, '\n'), 10);
    EXPECT_TRUE(box().text.ends_with("\nand 247 more, which are in the console."));
    EXPECT_EQ(log.size(), 255u + 3u);
}

TEST_F(MessagesTest, NothingIsToldOfWhatWasTakenOrIgnored) {
    EXPECT_FALSE(messages.tell(EntryOutcome()));
    EXPECT_TRUE(messages.tell(EntryOutcome::ignored()));
    messages.tell(std::vector<Refusal>());
    EXPECT_THAT(dialogs.boxes, IsEmpty());
    EXPECT_THAT(log, IsEmpty());
    EXPECT_THAT(focus, IsEmpty());
}

TEST_F(MessagesTest, AnAxisMustAscend) {
    const std::vector<std::string> fields{"500", "1000", "1000", "900"};
    EXPECT_FALSE(messages.Check_Ascending(fields, 1));
    EXPECT_FALSE(messages.Check_Ascending(fields, 0));
    EXPECT_TRUE(messages.Check_Ascending(fields, 2));
    EXPECT_TRUE(messages.Check_Ascending(fields, 3));
    EXPECT_EQ(
        box().text,
        "Warning 1006: Data Input Error\nThe value you entered must be higher than that of the one to the "
        "left.\n1000 > 900 = FALSE");
    EXPECT_EQ(log.back(), "Warning 1006: Data Input Error / Value Lesser than Left.");
}

}  // namespace
}  // namespace zentaq
