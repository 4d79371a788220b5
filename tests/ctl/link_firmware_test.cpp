// firmware: everything is asked and looked at before one byte goes out, and every failure tells what is in
// the unit now.
#include "ctl/link_fixture.h"

namespace zentaq {
namespace {

constexpr const char* intact = "The previous version of the firmware is still intact.";
constexpr const char* gone = "There is now no firmware installed on this unit";
constexpr const char* done =
    "You have successfully programmed your ORB unit. Please cycle the power on the unit before continuing. "
    "The "
    "BIN file MUST be loaded before starting your engine. The unit may operate upredictably until the BIN "
    "file "
    "is loaded.\n";

class ZentaqctlFirmware : public ZentaqctlOnLink {
 protected:
    void startReady(const std::string& model = "A", const Words& more = {}) {
        Words words{"--upgrade-mode", "--memory", memory};
        words.insert(words.end(), more.begin(), more.end());
        startUnit(model, words);
    }
    Outcome upgrade(const std::string& rest = "--yes") {
        return onUnit("firmware", inQuotes(firmware) + " " + rest);
    }
    /// A whole file of few lines, so that no fault at a later line meets it.
    void shorten() {
        const Words all = linesOf(contentOf(firmware));
        writeFile(firmware, all.at(0) + "\n" + all.at(1) + "\n" + all.at(2) + "\n" + all.back() + "\n");
    }
    /// What the unit has written down of its firmware; empty while nothing has changed it.
    std::string state() const {
        return fs::exists(memory + ".firmware") ? contentOf(memory + ".firmware") : "";
    }
    Words words(const Words& more = {}) const {
        Words all{"firmware", "--port", port, firmware};
        all.insert(all.end(), more.begin(), more.end());
        return all;
    }

    std::string firmware = makeFirmware("A", "ZQA-505100");
};

TEST_F(ZentaqctlFirmware, PutsTheFileIntoTheUnitAndSaysWhatToDoNext) {
    shorten();
    startReady();
    EXPECT_THAT(upgrade(), Succeeds(std::string("ORB A 200001: ") + done, ""));
    EXPECT_THAT(state(), StartsWith("programmed ZQA-505100"));
}

TEST_F(ZentaqctlFirmware, AUnitThatIsNotInUpgradeModeKeepsItsFirmware) {
    startUnit("A", {"--memory", memory});
    const Outcome failed = upgrade();
    expectFailure(failed, 1, intact);
    EXPECT_THAT(failed.error, HasSubstr("The firmware upgrade operation failed."));
    EXPECT_EQ(state(), "");
    EXPECT_EQ(onUnit("identify").exitCode, 0);
}

TEST_F(ZentaqctlFirmware, ARefusedLineLeavesNoFirmwareAndASecondRunMendsTheUnit) {
    startReady("A", {"--fault", "refuse@line#12"});
    const Outcome failed = upgrade();
    expectFailure(failed, 1, gone);
    EXPECT_THAT(failed.error, AllOf(HasSubstr("The unit refused line 12 of 387."),
                                    HasSubstr("The firmware upgrade operation failed.")));
    EXPECT_THAT(state(), StartsWith("missing"));

    expectFailure(upgrade(), 3, "--unit-without-firmware");
    EXPECT_THAT(state(), StartsWith("missing"));
    shorten();
    EXPECT_THAT(upgrade("--yes --unit-without-firmware A"), Succeeds(std::string("ORB A: ") + done));
    EXPECT_THAT(state(), StartsWith("programmed ZQA-505100"));
}

TEST_F(ZentaqctlFirmware, ASilentLineIsTold) {
    startReady("A", {"--fault", "silence@line#3"});
    const Outcome failed = upgrade();
    expectFailure(failed, 1, gone);
    EXPECT_THAT(failed.error, HasSubstr("The unit did not answer to line 3 of 387."));
}

TEST_F(ZentaqctlFirmware, WithoutATerminalOnlyYesGoesOn) {
    startReady();
    expectFailure(upgrade(""), 2, "Nothing was sent");
    EXPECT_EQ(state(), "");
}

TEST_F(ZentaqctlFirmware, OnATerminalTheWarningIsShownAndOnlyTheWholeWordGoesOn) {
    shorten();
    startReady();
    OnTerminal refused(words(), folder.file("out"));
    const std::string shown = refused.until("Type YES to go on: ");
    EXPECT_THAT(shown, HasSubstr("You are about to upgrade the firmware on your Norvalia product."));
    EXPECT_THAT(shown, HasSubstr("ZPKxxxxxxx"));
    refused.type("yes\n");
    EXPECT_THAT(refused.until("not confirmed."), HasSubstr("Nothing was sent"));
    EXPECT_EQ(refused.program().wait(), 1);
    EXPECT_EQ(state(), "");

    OnTerminal agreed(words(), folder.file("out2"));
    agreed.until("Type YES to go on: ");
    agreed.type("YES\n");
    agreed.until("%");
    EXPECT_EQ(agreed.program().wait(), 0);
    EXPECT_THAT(state(), StartsWith("programmed"));
}

TEST_F(ZentaqctlFirmware, AFileForAnotherModelIsRefused) {
    startReady("L");
    expectFailure(upgrade(), 1, "This firmware file is not valid for this unit.");
    expectFailure(upgrade("--yes --unit-without-firmware A"), 1,
                  "Error 1006: Incorrect ORB Unit is Connected to the System!");
    EXPECT_EQ(state(), "");
}

TEST_F(ZentaqctlFirmware, ADamagedFileIsToldWithItsLineAndNobodyIsAsked) {
    std::string text = contentOf(firmware);
    const auto third = text.find('\n', text.find('\n') + 1) + 1;
    text[third + 10] = text[third + 10] == '0' ? '1' : '0';
    writeFile(firmware, text);
    expectFailure(upgrade(), 1, "Line 3: the checksum is wrong. Nothing was sent to the unit.");
    expectFailure(run("firmware --yes " + inQuotes(folder.file("absent.nv3"))), 1, "Cannot open");
}

TEST_F(ZentaqctlFirmware, WithNobodyOnThePortNothingIsSent) {
    startReady("A", {"--fault", "silence@E"});
    expectFailure(upgrade(), 3, "Error 1005: No ORB Unit is Connected to the System!");
    EXPECT_EQ(state(), "");
}

TEST_F(ZentaqctlFirmware, AKindThatIsNoneIsWrongUsage) {
    EXPECT_EQ(upgrade("--yes --unit-without-firmware Q").exitCode, 2);
}

TEST_F(ZentaqctlFirmware, OneCtrlCIsAnsweredByAWarningAndTheUpgradeGoesOn) {
    startReady();
    OnTerminal terminal(words({"--yes"}), folder.file("out"));
    terminal.until("10%");
    terminal.program().signal(SIGINT);
    EXPECT_THAT(terminal.until("then."),
                HasSubstr("Press again within 3 s to break off; the unit will have no firmware then."));
    EXPECT_EQ(terminal.program().wait(), 0);
    EXPECT_THAT(state(), StartsWith("programmed"));
}

TEST_F(ZentaqctlFirmware, AWarningThatNobodyReadsAnyMoreEndsNothing) {
    startReady();
    const std::string code = folder.file("code");
    const std::string line = "( " + inQuotes(ZENTAQ_APP_DIR "/zentaqctl") + " firmware --yes --port " +
                             inQuotes(port) + " " + inQuotes(firmware) + " & p=$!; until grep -q missing " +
                             inQuotes(memory + ".firmware") +
                             "; do kill -0 $p || break; done; kill -TERM $p; wait $p; echo $? >" +
                             inQuotes(code) + " ) 2>&1 >/dev/null | true";
    ASSERT_EQ(std::system(line.c_str()), 0);
    EXPECT_EQ(contentOf(code), "0\n");
    EXPECT_THAT(state(), StartsWith("programmed"));
}

TEST_F(ZentaqctlFirmware, ASecondCtrlCBreaksOffAndTellsThatTheUnitHasNoFirmware) {
    startReady();
    OnTerminal terminal(words({"--yes"}), folder.file("out"));
    terminal.until("10%");
    terminal.program().signal(SIGINT);
    terminal.until("then.");
    terminal.program().signal(SIGINT);
    EXPECT_THAT(terminal.until("function."), HasSubstr(" of 387 lines. There is now no firmware installed"));
    EXPECT_EQ(terminal.program().wait(), 128 + SIGINT);
    EXPECT_THAT(state(), StartsWith("missing"));
    EXPECT_EQ(contentOf(folder.file("out")), "");
}

}  // namespace
}  // namespace zentaq
