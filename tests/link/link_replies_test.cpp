#include <gtest/gtest.h>

#include "link/link_bench.h"

namespace zentaq {
namespace {

class LinkReplies : public LinkBench {
 protected:
    LinkReplies() { open(); }

    void putInDashboardCells(const std::vector<float>& values) {
        for (std::size_t i = 0; i < values.size(); ++i) host.unit(3).store(dashboardCells[i], values[i]);
    }
    void expectInDashboardCells(const std::vector<float>& values) {
        for (std::size_t i = 0; i < values.size(); ++i) {
            EXPECT_EQ(host.unit(3).get(dashboardCells[i]), values[i]) << dashboardCells[i];
        }
    }

 private:
    static constexpr const char* dashboardCells[] = {"REV_Limiter", "MaxDuty", "MinDuty", "PHDSEQ",
                                                     "Engine_Type"};
};

// ---- E

TEST_F(LinkReplies, CurrentFormatReadsTheSerialNumberAsBigEndian) {
    // 0x00030D40 = 200000
    exchange("E", bytes({0xFA, 0xA5, 0x55, 0x00, 0x03, 0x0D, 0x40, 0xA5}));
    EXPECT_EQ(link.linked().SerialNumber, 200000);
    EXPECT_EQ(link.linked().LinkedUnitKind, 3);
    EXPECT_TRUE(link.linked().UnitFound);
    EXPECT_FALSE(link.linked().OldFirmware);
    EXPECT_EQ(link.CurrentCommand(), "");
}

TEST_F(LinkReplies, OldestFormatIsFourSerialBytesAndAX) {
    // 0x0000029C = 668: 1234 in octal.
    exchange("E", bytes({0x00, 0x00, 0x02, 0x9C, 'A', 'X'}));
    EXPECT_EQ(link.linked().SerialNumber, 1234);
    EXPECT_TRUE(link.linked().OldFirmware);
    EXPECT_TRUE(link.linked().UnitFound);
    EXPECT_EQ(link.linked().LinkedUnitKind, 3);
    EXPECT_EQ(host.unit(3).Serial(), "001234");
    EXPECT_EQ(statusTexts(), (Texts{"CONNECTED!", "ORB Unit Found but must be upgraded!", ""}));
    EXPECT_EQ(host.linkDisplay.status().serialNumber, "001234");
    ASSERT_EQ(host.boxes.size(), 1u);
    EXPECT_EQ(host.boxes[0].title, "Old ORBA Firmware");
    EXPECT_EQ(host.boxes[0].text,
              "This system contains an old firmware.  It MUST be sent to Norvalia for upgrade before it can "
              "be used "
              "with Zentaq4.\nThe old BIN file must then be opened, converted and programmed to the unit.");
    EXPECT_EQ(host.boxes[0].icon, Icon::Critical);
    ticks(100);
    EXPECT_EQ(port.written(), (Texts{"E"})) << "no further command follows";
}

TEST_F(LinkReplies, TheOldFirmwareBoxComesOncePerSession) {
    for (int i = 0; i < 3; ++i) exchange("E", bytes({0x00, 0x00, 0x02, 0x9C, 'A', 'X'}));
    EXPECT_EQ(host.boxes.size(), 1u);
}

TEST_F(LinkReplies, ACurrentUnitEnablesTheFirmwareUpgradeAgain) {
    exchange("E", bytes({0x00, 0x00, 0x02, 0x9C, 'A', 'X'}));
    exchange("E", identifyReply(200000));
    EXPECT_FALSE(link.linked().OldFirmware);
}

TEST_F(LinkReplies, AnAcceptedUnitIsShownAndAskedForItsFirmware) {
    host.linkDisplay.showNoConnectPanel("Connecting...");
    exchange("E", identifyReply(10));
    EXPECT_EQ(statusTexts(), (Texts{"CONNECTED!", "ORB Unit Found and Ready!", ""}));
    EXPECT_EQ(host.linkDisplay.status().image, LinkImage::Connected);
    EXPECT_EQ(host.linkDisplay.status().serialNumber, "000010");
    EXPECT_EQ(host.linkDisplay.status().panel3, "");
    EXPECT_FALSE(host.linkDisplay.status().noConnectPanel);
    EXPECT_EQ(host.kindsFound, (std::vector<int>{3}));
    ticks(1);
    EXPECT_EQ(port.written(), (Texts{"E", "B"}));
}

TEST_F(LinkReplies, AnAcceptedUnitsObjectHoldsItsSerialNumberAsText) {
    exchange("E", identifyReply(10));
    EXPECT_EQ(host.unit(3).Serial(), "000010");
    EXPECT_EQ(host.unit(4).Serial(), "");
    ticks(1100);  // the B that nobody answers
    exchange("E", identifyReply(300123));
    EXPECT_EQ(host.unit(4).Serial(), "300123");
}

TEST_F(LinkReplies, AReplyInNoKnownFormatChangesNothing) {
    exchange("E", bytes({1, 2, 3, 4, 5, 6, 7, 8}));
    EXPECT_EQ(link.linked().SerialNumber, 0);
    EXPECT_FALSE(link.linked().UnitFound);
    EXPECT_FALSE(link.linked().OldFirmware);
    EXPECT_EQ(link.CurrentCommand(), "");
    ticks(50);
    EXPECT_EQ(port.written(), (Texts{"E"}));
}

TEST_F(LinkReplies, AnOctalNumberBeyond32BitsCostsOnePoll) {
    // 0xFFFFFFFF is 37777777777 in octal digits.
    exchange("E", identifyReply(0xFFFFFFFF, 0x54));
    EXPECT_FALSE(link.linked().UnitFound);
    EXPECT_EQ(link.CurrentCommand(), "");
}

TEST_F(LinkReplies, ANumberWithItsTopBitSetIsInNoRange) {
    exchange("E", identifyReply(0xFFFFFFFF));
    EXPECT_EQ(link.linked().SerialNumber, 0);
    EXPECT_FALSE(link.linked().UnitFound);
}

TEST_F(LinkReplies, AShortReplyEndsTheCommandAndNothingElse) {
    exchange("E", bytes({0xFA, 0xA5, 0x55, 0x00, 0x03, 0x0D}));
    ticks(40);  // Two lumps of an adapter, in which its rest might have come.
    EXPECT_EQ(link.CurrentCommand(), "");
    EXPECT_EQ(link.linked().SerialNumber, 0);
    EXPECT_TRUE(host.boxes.empty());
    EXPECT_TRUE(host.logLines.empty());
}

TEST_F(LinkReplies, ANumberInNoRangeKeepsTheKindAndClearsTheNumber) {
    exchange("E", identifyReply(300000));
    ticks(1100);
    exchange("E", identifyReply(210000));
    EXPECT_EQ(link.linked().LinkedUnitKind, 4);
    EXPECT_EQ(link.linked().SerialNumber, 0);
}

TEST_F(LinkReplies, AfterANumberInNoRangeThePollerAsksAgain) {
    port.always("E", identifyReply(9));
    poll(20, 10);
    EXPECT_EQ(port.written(), (Texts{"E", "E"}));
}

TEST_F(LinkReplies, TheLabelIsWrittenOnlyWhileNoUnitIsFound) {
    exchange("E", identifyReply(300000));
    ticks(1100);
    exchange("E", identifyReply(350000));
    EXPECT_EQ(link.linked().LinkedUnitKind, 6);
    EXPECT_EQ(host.linkDisplay.status().unitLabel, "L");
}

TEST_F(LinkReplies, SerialNumberZeroLeavesTheKindAndIsAccepted) {
    exchange("E", identifyReply(0));
    EXPECT_EQ(link.linked().LinkedUnitKind, 0);
    EXPECT_TRUE(link.linked().UnitFound);
    EXPECT_EQ(link.ring().count(), 1);
}

TEST_F(LinkReplies, WithoutACalibrationTheDashboardGetsItsDefaults) {
    putInDashboardCells({3000, 10, 20});
    exchange("E", identifyReply(200000));
    expectInDashboardCells({8500, 255, 1, 0, 0});
}

TEST_F(LinkReplies, ACalibrationThatIsBeingMadeKeepsItsValuesThoughItHasNoFileYet) {
    host.current = 3;
    putInDashboardCells({7200, 200, 12, 1, 1});
    exchange("E", identifyReply(200000));
    expectInDashboardCells({7200, 200, 12, 1, 1});
}

TEST_F(LinkReplies, ACalibrationInHandKeepsItsValues) {
    host.unit(3).BinFile("/somewhere/my.ZQ4OA");
    putInDashboardCells({3000});
    exchange("E", identifyReply(200000));
    expectInDashboardCells({3000});
}

// ---- B

class FirmwareReply : public LinkBench {
 protected:
    /// The B reply of a unit that has just been found.
    void answer(std::uint32_t serial, const std::string& firmware, int subType = 0) {
        ticks(1002);  // the C that nobody answered
        find(serial);
        port.once("B", atOnce(firmwareReply("MY CAR", firmware, serial < 300000 ? 39 : 38, subType)));
        link.Send_ORB_Command("B");
        ticks(2);
    }
};

TEST_F(FirmwareReply, IdentifiesTheUnit) {
    answer(200000, "ZQA0003007");
    EXPECT_TRUE(link.linked().UnitIdentified);
    EXPECT_EQ(link.linked().UnitBinName, "MY CAR                  ");
    EXPECT_EQ(host.unit(3).FirmWare(), "ZQA0003007");
    EXPECT_EQ(host.unit(3).FW_Release(), 3);
    EXPECT_EQ(host.unit(3).FW_Build(), 7);
    EXPECT_EQ(host.logLines,
              (Texts{"ORB :: Firmware: ZQA0003007", "ORB :: BinFile : MY CAR                  "}));
    EXPECT_EQ(host.linkDisplay.status().firmware, "ZQA0003007");
    EXPECT_EQ(host.linkDisplay.status().panel3, "ZQA0003007");
    EXPECT_EQ(link.CurrentCommand(), "");
    EXPECT_TRUE(host.boxes.empty());
}

TEST_F(FirmwareReply, ReleaseAndBuildAreCharactersSixToTen) {
    answer(700000, "ZQD9912345");
    EXPECT_EQ(host.unit(7).FW_Release(), 12);
    EXPECT_EQ(host.unit(7).FW_Build(), 345);
}

TEST_F(FirmwareReply, AReleaseThatIsNoNumberLeavesTheUnitUnidentified) {
    answer(200000, "ZQA00XX007");
    EXPECT_FALSE(link.linked().UnitIdentified);
    EXPECT_EQ(link.CurrentCommand(), "");
    poll(10);
    ticks(1);
    EXPECT_EQ(port.written().back(), "E");
}

TEST_F(FirmwareReply, AShortFirmwareTextLeavesTheUnitUnidentified) {
    answer(200000, "ZQA");
    EXPECT_FALSE(link.linked().UnitIdentified);
    EXPECT_EQ(link.CurrentCommand(), "");
}

TEST_F(FirmwareReply, NameBytesAbove127AreShownAsTheirCharacters) {
    find(300000);
    port.once("B", atOnce(firmwareReply("CAF\xC9", "ZQL0003001", 38)));
    link.Send_ORB_Command("B");
    ticks(2);
    EXPECT_EQ(link.linked().UnitBinName.substr(0, 6), "CAF\xC3\x89 ");
}

TEST_F(FirmwareReply, FileOfAnotherKindIsWarnedOfAndNothingGoesOnTheFly) {
    host.current = 4;
    answer(200000, "ZQA0003007");
    ASSERT_EQ(host.boxes.size(), 1u);
    EXPECT_EQ(host.boxes[0].title, "Unit Type Mismatch");
    EXPECT_EQ(host.boxes[0].text,
              "The currently open file is for a different system than the one just connected.\n\nYou may "
              "still edit "
              "the calibration file, but no changes may be made to the unit.");
    EXPECT_EQ(host.boxes[0].icon, Icon::Exclamation);
    EXPECT_TRUE(host.onFlyCalls.empty());
    EXPECT_TRUE(link.linked().UnitIdentified);
}

TEST_F(FirmwareReply, TheMismatchBoxAppearsOncePerConnect) {
    host.current = 4;
    answer(200000, "ZQA0003007");
    exchange("B", firmwareReply("MY CAR", "ZQA0003007"));
    EXPECT_EQ(host.boxes.size(), 1u);
    link.Send_ORB_Command("F");
    ticks(85);
    ASSERT_FALSE(link.linked().UnitIdentified);
    port.once("E", identifyReply(200000));
    port.once("B", firmwareReply("MY CAR", "ZQA0003007"));
    link.Send_ORB_Command("E");
    ticks(100);
    EXPECT_TRUE(link.linked().UnitIdentified);
    EXPECT_EQ(host.boxes.size(), 2u);
}

TEST_F(FirmwareReply, AnotherKindInThePlaceOfAnIdentifiedOneEndsOnTheFlyAndIsWarnedOf) {
    host.current = 3;
    answer(200000, "ZQA0003007");
    ASSERT_EQ(host.onFlyCalls, (std::vector<bool>{true}));
    // The cable was put on another unit while nothing was polled: no time-out tells.
    link.Send_ORB_Command("E");
    link.SEND_ONFLY("S10411415059");
    port.takeWritten();
    port.once("E", atOnce(identifyReply(300000)));
    port.once("B", atOnce(firmwareReply("OTHER", "ZQL0003001", 38)));
    ticks(20);
    EXPECT_EQ(host.onFlyCalls, (std::vector<bool>{true, false}));
    ASSERT_EQ(host.boxes.size(), 1u);
    EXPECT_EQ(host.boxes[0].title, "Unit Type Mismatch");
    EXPECT_EQ(port.written(), (Texts{"E", "B"})) << "the record was meant for the former one";
    EXPECT_EQ(link.linked().LinkedUnitKind, 4);
    EXPECT_EQ(host.linkDisplay.status().unitLabel, "L");
    EXPECT_EQ(host.linkDisplay.status().title, "Active ORB...");
}

TEST_F(FirmwareReply, ATransferThatWasMeantForAnotherKindIsNotBroughtToTheUnitThatTookItsPlace) {
    answer(200000, "ZQA0003007");
    const std::string firmware = folder.write("new.nv3", "S1FIRST\r\n");
    link.Send_ORB_Command("E");
    link.Program_Unit(TransferMode::Firmware, firmware);
    port.takeWritten();
    port.once("E", atOnce(identifyReply(300000)));
    ticks(20);
    EXPECT_EQ(port.written(), (Texts{"E", "B"}));
    EXPECT_EQ(host.messages, (std::vector<int>{1005}));
    EXPECT_FALSE(link.transfer().pending());
    ticks(2000);
    EXPECT_EQ(host.messages.size(), 1u) << "it ends once";
}

TEST_F(FirmwareReply, ADownloadEndsWithTheUnitThatItCameFrom) {
    answer(200000, "ZQA0003007");
    link.Program_Unit(TransferMode::Datalog, folder.path("log.dat"));
    ticks(1);
    link.Send_ORB_Command("E");
    port.send(atOnce(framed(33, {{3, 10}})));
    port.once("E", atOnce(identifyReply(300000)));
    ticks(5);
    EXPECT_EQ(host.messages, (std::vector<int>{1007}));
    EXPECT_FALSE(link.transfer().active());
    ticks(2000);
    EXPECT_EQ(host.messages.size(), 1u) << "it ends once";
}

TEST_F(FirmwareReply, TheSameUnitAskedAgainKeepsOnTheFlyAndWhatWaits) {
    host.current = 3;
    answer(200000, "ZQA0003007");
    link.Send_ORB_Command("E");
    link.SEND_ONFLY("S10411415059");
    port.takeWritten();
    port.once("E", atOnce(identifyReply(200000)));
    port.once("P2S10411415059", atOnce("AX"));
    port.once("B", atOnce(firmwareReply("MY CAR", "ZQA0003007")));
    ticks(20);
    EXPECT_EQ(port.written(), (Texts{"E", "P2S10411415059", "B"}));
    EXPECT_EQ(host.onFlyCalls, (std::vector<bool>{true, true}));
}

TEST_F(FirmwareReply, AUnitOfTheOldestFormatInThePlaceOfAnIdentifiedOneTakesNoChangesOnTheFly) {
    host.current = 3;
    answer(200000, "ZQA0003007");
    ASSERT_EQ(host.onFlyCalls, (std::vector<bool>{true}));
    link.Send_ORB_Command("E");
    link.SEND_ONFLY("S10411415059");
    port.takeWritten();
    // 0x00010041 is 200101 in octal digits.
    port.once("E", atOnce(bytes({0x00, 0x01, 0x00, 0x41, 'A', 'X', 0, 0})));
    ticks(20);
    EXPECT_EQ(link.linked().SerialNumber, 200101);
    EXPECT_TRUE(link.linked().OldFirmware);
    EXPECT_TRUE(link.linked().UnitFound);
    EXPECT_FALSE(link.linked().UnitIdentified);
    EXPECT_FALSE(link.linked().FirmwareTold);
    EXPECT_EQ(host.onFlyCalls, (std::vector<bool>{true, false}));
    EXPECT_EQ(port.written(), (Texts{"E"})) << "the record was meant for the former one";
    EXPECT_EQ(host.linkDisplay.status().line1, "ORB Unit Found but must be upgraded!");
}

TEST_F(FirmwareReply, FileOfTheSameKindTurnsOnTheFlyOn) {
    host.current = 3;
    answer(200000, "ZQA0003007");
    EXPECT_EQ(host.onFlyCalls, (std::vector<bool>{true}));
    EXPECT_TRUE(host.boxes.empty());
}

TEST_F(FirmwareReply, NoFileInHandGivesNoWarning) {
    host.current = 0;
    answer(200000, "ZQA0003007");
    EXPECT_TRUE(host.boxes.empty());
    EXPECT_TRUE(host.onFlyCalls.empty());
}

TEST_F(FirmwareReply, ANewFirmwareIsWarnedOfOnlyAboveTheTable) {
    host.releases[3] = 5;
    host.builds[3] = 12;
    for (const char* known : {"ZQA0005012", "ZQA0005011", "ZQA0004999"}) {
        answer(200000, known);
        EXPECT_TRUE(link.linked().UnitIdentified) << known;
        EXPECT_TRUE(host.boxes.empty()) << known;
    }
    for (const char* newer : {"ZQA0005013", "ZQA0006001"}) {
        answer(200000, newer);
        ASSERT_EQ(host.boxes.size(), 1u) << newer;
        EXPECT_EQ(host.boxes[0].title, "");
        EXPECT_EQ(host.boxes[0].icon, Icon::None);
        EXPECT_EQ(
            host.boxes[0].text,
            "This version of firmware is not fully supported by this version of Zentaq.\nYou will still "
            "be able to make changes to the unit, but not all features will be available.");
    }
}

TEST_F(FirmwareReply, AUnitThatIsAskedAgainIsWarnedOfOnceAndAfterALostLinkAnew) {
    host.releases[4] = 5;
    host.builds[4] = 12;
    answer(300000, "ZQL0005013");
    ASSERT_EQ(host.boxes.size(), 1u);
    exchange("B", firmwareReply("MY CAR", "ZQL0005013", 38));
    EXPECT_EQ(host.unit(4).FW_Build(), 13);
    EXPECT_EQ(host.boxes.size(), 1u);
    exchange("B", firmwareReply("MY CAR", "ZQL0005014", 38));
    EXPECT_EQ(host.unit(4).FW_Build(), 14);
    EXPECT_EQ(host.boxes.size(), 2u) << "yet another firmware";
    link.Send_ORB_Command("F");
    ticks(200);
    ASSERT_FALSE(link.linked().UnitIdentified);
    answer(300000, "ZQL0005014");
    EXPECT_EQ(host.boxes.size(), 1u) << "of this finding";
}

TEST_F(FirmwareReply, SubTypesOfKindThreeAreLabelled) {
    const std::pair<int, const char*> cases[] = {{0, "A Std"}, {1, "A 6/12"}, {2, "A r"}, {3, "A r"}};
    for (const auto& [subType, label] : cases) {
        answer(200000, "ZQA0003007", subType);
        EXPECT_EQ(host.linkDisplay.status().unitLabel, label) << subType;
        EXPECT_EQ(link.linked().UnitSubType, subType + 1);
    }
}

TEST_F(FirmwareReply, OtherKindsHaveNoSubType) {
    answer(300000, "ZQL0003001");
    EXPECT_EQ(link.linked().UnitSubType, 0);
    EXPECT_EQ(host.linkDisplay.status().unitLabel, "L");
}

TEST_F(FirmwareReply, ANewReleaseOfItsKindIsAskedForItsConfigurationAndMostHaveTheWideMonitor) {
    struct Row {
        std::uint32_t serial;
        const char* former;  ///< has no wide monitor and is not asked
        const char* firmware;
        bool wide = true;
    };
    for (const Row& row :
         {Row{200000, "ZQA0004999", "ZQA0005001"}, Row{300000, "ZQL0006999", "ZQL0007001"},
          Row{350000, "ZQC0002999", "ZQC0003001"}, Row{700000, "ZQD0004999", "ZQD0005001"},
          Row{750000, "ZQD0004999", "ZQD0005001"}, Row{500000, "ZPK0004999", "ZPK0005001", false}}) {
        SCOPED_TRACE(row.serial);
        answer(row.serial, row.former);
        EXPECT_FALSE(link.linked().WideMonitor);
        ticks(1);
        EXPECT_EQ(port.written(), (Texts{"B"}));
        answer(row.serial, row.firmware);
        EXPECT_EQ(link.linked().WideMonitor, row.wide);
        ticks(1);
        EXPECT_EQ(port.written(), (Texts{"B", "C"}));
    }
}

// ---- C

TEST_F(LinkReplies, ByteEighteenOfAConfigurationTellsThePic18) {
    struct Row {
        std::uint32_t serial;
        int release, build, byte18;
        bool has;
    };
    // Units of kind C and D have one whatever they say.
    for (const Row& row :
         {Row{300000, 7, 0, 1, true}, Row{300000, 7, 0, 0xFE, false}, Row{300000, 6, 999, 1, false},
          Row{300000, 8, 0, 0xFF, true}, Row{500000, 5, 0, 1, true}, Row{500000, 4, 6, 1, true},
          Row{500000, 4, 5, 1, false}, Row{500000, 3, 9, 1, false}, Row{200000, 7, 0, 1, false},
          Row{350000, 7, 0, 0, true}, Row{700000, 7, 0, 0, true}}) {
        find(row.serial);
        Unit& unit = host.unit(link.linked().LinkedUnitKind);
        unit.FW_Release(row.release);
        unit.FW_Build(row.build);
        unit.hasPIC18(!row.has);
        exchange("C", framed(39, {{18, row.byte18}}));
        EXPECT_EQ(unit.hasPIC18(), row.has) << row.serial << ", " << row.release << "." << row.build;
        EXPECT_EQ(link.CurrentCommand(), "");
    }
}

TEST_F(LinkReplies, ALineOfADownloadThatNobodyAskedForEndsItsCommand) {
    find(200000);
    exchange("D", std::string(33, '\1'));
    EXPECT_EQ(link.CurrentCommand(), "");
}

// ---- Live frames

TEST_F(LinkReplies, ANarrowFrameReachesTheLiveValues) {
    find(200000);
    std::string frame(35, '\0');
    frame[0] = 0x0B;
    frame[1] = static_cast<char>(0xB8);
    exchange("F", frame);
    EXPECT_EQ(live.RPM, 3000);  // 0x0BB8
    EXPECT_EQ(host.frameCount, 1);
    EXPECT_EQ(link.CurrentCommand(), "");
}

TEST_F(LinkReplies, AWideFrameWithARightSumReachesTheLiveValues) {
    find(200000);
    exchange("W", framed(65, {{3, 0x0B}, {4, 0xB8}, {63, 7}}));
    EXPECT_EQ(live.RPM, 3000);
    EXPECT_EQ(host.frameCount, 1);
}

TEST_F(LinkReplies, AWideFrameWithAWrongSumIsDroppedInSilence) {
    find(200000);
    std::string frame = framed(65, {{3, 0x0B}, {4, 0xB8}});
    frame[64] = static_cast<char>(frame[64] + 1);
    exchange("W", frame);
    EXPECT_EQ(live.RPM, 0);
    EXPECT_EQ(host.frameCount, 0);
    EXPECT_EQ(link.CurrentCommand(), "");
    EXPECT_TRUE(host.logLines.empty());
}

TEST_F(LinkReplies, ADirectCallWithAWideFrameThatIsTooShortEndsTheCommand) {
    find(200000);
    link.Send_ORB_Command("W");
    ticks(1);
    port.setReceiveThreshold(10);
    port.send(atOnce(std::string(10, '\1')));
    ticks(1);
    EXPECT_EQ(link.CurrentCommand(), "");
    EXPECT_EQ(host.frameCount, 0);
}

TEST_F(LinkReplies, InputAndOutputStateGoesToTheUnit) {
    find(300000);
    exchange("I", framed(21, {{3, 17}, {11, 99}}));
    EXPECT_EQ(host.unit(4).GPIOData()[0], 17);
    EXPECT_EQ(host.unit(4).GPIOData()[8], 99);
    EXPECT_EQ(link.CurrentCommand(), "");
}

TEST_F(LinkReplies, CheckEngineWordsGoToTheUnit) {
    find(200000);
    exchange("T", framed(16, {{3, 0xFE}, {14, 0x7F}}));
    EXPECT_EQ(host.unit(3).Get_ECData(0), 0xFE);
    EXPECT_EQ(host.unit(3).Get_ECData(11), 0x7F);
    EXPECT_EQ(host.codesReceivedCount, 1);
    EXPECT_EQ(link.CurrentCommand(), "");
}

// ---- Two-byte replies

TEST_F(LinkReplies, ClearedCodesAreToldOnlyForAX) {
    find(200000);
    exchange("A", "AX");
    EXPECT_EQ(host.logLines, (Texts{"ORB CheckEngine Codes Successfully Cleared."}));
    EXPECT_EQ(host.codesClearedCount, 1);
    exchange("A", "AR");
    EXPECT_EQ(host.logLines.size(), 1u);
    EXPECT_EQ(host.codesClearedCount, 1);
    EXPECT_EQ(link.CurrentCommand(), "");
}

TEST_F(LinkReplies, KillEngineEndsInSilence) {
    find(200000);
    exchange("K", "AX");
    EXPECT_TRUE(host.logLines.empty());
    EXPECT_EQ(link.CurrentCommand(), "");
}

TEST_F(LinkReplies, ZeroAdvanceIsToldByItsLastByte) {
    find(200000);
    exchange(bytes({'Z', 0xFF}), "AX");
    exchange(bytes({'Z', 0x00}), "AX");
    EXPECT_EQ(host.logLines, (Texts{"ORB: Ignition Timing set to Zero", "ORB: Restored Ignition Timing"}));
    EXPECT_EQ(link.CurrentCommand(), "");
}

TEST_F(LinkReplies, TheMarkOfZeroAdvanceIsWhatTheUnitHasTaken) {
    find(200000);
    EXPECT_FALSE(link.linked().zeroAdvance);
    exchange(bytes({'Z', 0xFF}), "AX");
    EXPECT_TRUE(link.linked().zeroAdvance);
    exchange(bytes({'Z', 0x00}), "AR");
    EXPECT_TRUE(link.linked().zeroAdvance) << "refused";
    exchange(bytes({'Z', 0x00}), "AX");
    EXPECT_FALSE(link.linked().zeroAdvance);
}

TEST_F(LinkReplies, TheMarkOfZeroAdvanceGoesWithTheLink) {
    find(200000);
    exchange(bytes({'Z', 0xFF}), "AX");
    ASSERT_TRUE(link.linked().zeroAdvance);
    link.Send_ORB_Command("F");
    link.Send_ORB_Command(bytes({'Z', 0x00}));
    ticks(200);  // no answer: the link is given up and the queued command dropped
    ASSERT_EQ(link.linked().LinkedUnitKind, 0);
    EXPECT_FALSE(link.linked().zeroAdvance);
    EXPECT_FALSE(link.zeroAdvanceAsked());
}

TEST_F(LinkReplies, AnotherUnitOfTheKindInheritsNothing) {
    identify(200000, "ZQA-505099");
    exchange(bytes({'Z', 0xFF}), "AX");
    ASSERT_TRUE(link.linked().zeroAdvance);
    exchange("E", identifyReply(200001));
    EXPECT_FALSE(link.linked().zeroAdvance);
    EXPECT_FALSE(link.linked().UnitIdentified) << "it has not told its firmware";
}

TEST_F(LinkReplies, StoreIsToldWhateverTheReplyHolds) {
    find(200000);
    exchange("S", "AR");
    EXPECT_EQ(host.logLines, (Texts{"ORB: ONFLY changes saved"}));
}

TEST_F(LinkReplies, OnlyARefusedOnTheFlyChangeIsTold) {
    find(200000);
    exchange("P2S104", "AX");
    exchange("P2S104", "??");
    EXPECT_TRUE(host.logLines.empty());
    EXPECT_EQ(host.codesClearedCount, 0);
    exchange("P2S104", "AR");
    EXPECT_EQ(host.logLines, (Texts{"ONFLY: Change Failed!"}));
    EXPECT_EQ(link.CurrentCommand(), "");
}

TEST_F(LinkReplies, AReplyOfOneByteIsAFaultThatEndsTheCommand) {
    find(200000);
    link.Send_ORB_Command("S");
    ticks(1);
    port.setReceiveThreshold(1);
    port.send(atOnce("A"));
    ticks(1);
    EXPECT_EQ(link.CurrentCommand(), "");
    EXPECT_TRUE(host.logLines.empty());
}

TEST_F(LinkReplies, ALogThatCannotBeWrittenDoesNotStopAHandler) {
    find(200000);
    host.failLog = true;
    exchange("A", "AX");
    EXPECT_EQ(host.codesClearedCount, 1);
}

TEST_F(LinkReplies, TheLinkConsoleTellsEachChangeOfActivityOnce) {
    find(200000);
    host.linkDisplay.editStatus().activity = "";
    exchange("K", "AX");
    exchange("K", "AX");
    exchange("T", framed(16, {}));
    EXPECT_EQ(host.commLines, (Texts{"{Info}", "{Check Engine}"}));
}

TEST_F(LinkReplies, AGoodStartIsIdentifyFirmwareConfigurationAndThenWideFrames) {
    port.always("E", identifyReply(200000));
    port.always("B", firmwareReply("DEMO", "ZQA0005001"));
    port.always("C", framed(39, {}));
    port.always("W", framed(65, {}));
    poll(30, 30);
    const Texts written = port.written();
    ASSERT_GT(written.size(), 4u);
    EXPECT_EQ(Texts(written.begin(), written.begin() + 4), (Texts{"E", "B", "C", "W"}));
}

}  // namespace
}  // namespace zentaq
