#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QElapsedTimer>
#include <QProgressBar>
#include <QTabWidget>

#include "config/tree.h"
#include "qt/look.h"
#include "windows/window_fixture.h"

namespace zentaq {
namespace {

using testing::HasSubstr;

class Workspace : public WindowTest {
 protected:
    QTreeWidget* tree() { return find<QTreeWidget>("treeZentaq"); }
    QTabWidget* tabs() { return find<QTabWidget>("sstMenu"); }
    QListView* log() { return find<QListView>("lstLog"); }

    static std::string drawing(const QTreeWidgetItem* item, const std::string& indent) {
        std::string text = indent + item->text(0).toStdString() + "\n";
        for (int i = 0; i < item->childCount(); ++i) text += drawing(item->child(i), indent + "  ");
        return text;
    }
    std::string treeDrawing() {
        std::string text;
        for (int i = 0; i < tree()->topLevelItemCount(); ++i) text += drawing(tree()->topLevelItem(i), "");
        return text;
    }
    /// What the core says the tree is, drawn the same way.
    std::string coreDrawing(const std::string& parent = {}, const std::string& indent = {}) {
        std::string text;
        for (const TreeNode& node : treeNodes(fake.session.currentUnitObject())) {
            if (node.parent == parent)
                text += indent + node.text + "\n" + coreDrawing(node.key, indent + "  ");
        }
        return text;
    }
    void click(const QString& text) {
        const auto items = tree()->findItems(text, Qt::MatchExactly | Qt::MatchRecursive);
        ASSERT_EQ(items.size(), 1) << text.toStdString();
        Q_EMIT tree()->itemClicked(items[0], 0);
    }
    QStringList pageColumn(int column) {
        QStringList texts;
        auto* page = find<QTreeWidget>("lstPage");
        for (int i = 0; i < page->topLevelItemCount(); ++i) texts.append(page->topLevelItem(i)->text(column));
        return texts;
    }
    std::string lastLine(const char* list) {
        const QAbstractItemModel* model = find<QListView>(list)->model();
        return model->index(model->rowCount() - 1, 0).data().toString().toStdString();
    }
};

TEST_F(Workspace, ShowsTheTipOfTheDayEscaped) {
    windows.tell(&WindowNews::showTip, "Save <b>often</b>.\x1B[31m\nAnd early.");
    const auto* tip = find<QLabel>("lblTip");
    ASSERT_NE(tip, nullptr);
    EXPECT_EQ(tip->text(), "Save <b>often</b>.\\x1B[31m\nAnd early.");
    EXPECT_EQ(tip->textFormat(), Qt::PlainText);
}

TEST_F(Workspace, StartsWithAnEmptyTreeAndTheFirstTabOnly) {
    EXPECT_EQ(tree()->topLevelItemCount(), 0);
    EXPECT_EQ(tabs()->currentIndex(), 0);
    EXPECT_FALSE(tabs()->isTabVisible(1));
}

TEST_F(Workspace, ShowsTheTreeOfTheCalibrationInHand) {
    openCalibration();
    EXPECT_EQ(treeDrawing(), coreDrawing());
    EXPECT_THAT(treeDrawing(), HasSubstr("\nIgnition Advance Table\n  Initial Advance\n  Coolant Advance\n"));
    EXPECT_TRUE(tabs()->isTabVisible(1));
}

TEST_F(Workspace, GoesBackToTheStartWhenTheFileIsClosed) {
    openCalibration();
    commands.files.close();
    EXPECT_EQ(tree()->topLevelItemCount(), 0);
    EXPECT_EQ(tabs()->currentIndex(), 0);
    EXPECT_FALSE(tabs()->isTabVisible(1));
    EXPECT_EQ(windows.main().windowTitle(), "Norvalia Zentaq Engine Management System");
}

TEST_F(Workspace, AClickShowsThePageWithFieldsUnitsAndRanges) {
    openCalibration();
    click("Rev Limiter");
    EXPECT_EQ(tabs()->currentIndex(), 1);
    EXPECT_EQ(find<QLabel>("lblPageTitle")->text(), "Rev Limiter");
    ASSERT_NE(find<QLineEdit>("txtREV_Primary"), nullptr);
    EXPECT_EQ(find<QLineEdit>("txtREV_Primary")->text(), "6500");
    EXPECT_EQ(find<QLabel>("lblLimits_txtREV_Primary")->text(), "1000 to 20000 RPM");
}

TEST_F(Workspace, AnOpenPageFollowsTheSettingAtOnce) {
    fake.settings.set("System", "TemperatureToggle", "0");
    openCalibration();
    fake.session.currentUnitObject().AssignDirectIndex(80, 51);
    click("Coolant");
    ASSERT_NE(find<QLineEdit>("txtCLT_SENSOR3"), nullptr);
    EXPECT_EQ(find<QLineEdit>("txtCLT_SENSOR3")->text(), "80");
    fake.settings.set("System", "TemperatureToggle", "1");
    windows.tell(&WindowNews::temperaturesChanged);
    EXPECT_EQ(find<QLineEdit>("txtCLT_SENSOR3")->text(), "176");
}

TEST_F(Workspace, TheTreeFollowsTheShareOfTheThrottleAndKeepsTheNodeInHand) {
    openCalibration();
    click("TPS/MAP Blend");
    tree()->setCurrentItem(tree()->findItems("TPS/MAP Blend", Qt::MatchExactly | Qt::MatchRecursive).front());
    EXPECT_TRUE(tree()->findItems("Barometric Trim", Qt::MatchExactly | Qt::MatchRecursive).isEmpty());
    find<QAbstractButton>("chk_Alpha_N")->click();
    EXPECT_EQ(tree()->findItems("Barometric Trim", Qt::MatchExactly | Qt::MatchRecursive).size(), 1);
    EXPECT_EQ(tree()->currentItem()->text(0), "TPS/MAP Blend");
    EXPECT_EQ(find<QLabel>("lblPageTitle")->text(), "TPS/MAP Blend");
}

TEST_F(Workspace, WhatIsTypedOnAPageComesBeforeTheCommandBehindIt) {
    openCalibration();
    click("Rev Limiter");
    find<QLineEdit>("txtREV_Primary")->setText("6800");
    windows.afterEdits("Save", [] {});
    EXPECT_EQ(fake.session.currentUnitObject().get("REV_Limiter"), 6800);
    find<QLineEdit>("txtREV_Primary")->setText("99999");
    bool ran = false;
    windows.afterEdits("Save", [&] { ran = true; });
    EXPECT_FALSE(ran) << "what was refused stops the command";
    EXPECT_EQ(fake.session.currentUnitObject().get("REV_Limiter"), 6800);
}

TEST_F(Workspace, AFieldIsFoundByCaptionMemberOrHelpAndGoneTo) {
    openCalibration();
    activate(windows.main());
    auto* line = find<QLineEdit>("txtFindField");
    auto* hits = find<QListWidget>("lstFoundFields");
    line->setText("hysteresis");
    ASSERT_EQ(hits->count(), 1);
    EXPECT_EQ(hits->item(0)->text(), "Rev limit hysteresis  (Rev Limiter, REV_Hysteresis)");
    line->setText("knk_min");
    ASSERT_GE(hits->count(), 1);
    EXPECT_THAT(hits->item(0)->text().toStdString(), HasSubstr("(Knock Control, KNK_MIN)"));
    QKeyEvent enter(QEvent::KeyPress, Qt::Key_Return, Qt::NoModifier);
    QApplication::sendEvent(line, &enter);
    EXPECT_EQ(find<QLabel>("lblPageTitle")->text(), "Knock Control");
    EXPECT_EQ(tree()->currentItem()->text(0), "Knock Control");
    EXPECT_EQ(line->text(), "");
    EXPECT_EQ(find<QLineEdit>("txtKNOCK_CTL1")->selectedText(), find<QLineEdit>("txtKNOCK_CTL1")->text())
        << "what is typed now takes the place of the value";
    line->setText("no such words");
    EXPECT_EQ(hits->item(0)->text(), "No field found");
}

TEST_F(Workspace, AnEntryThatIsRefusedKeepsItsPage) {
    openCalibration();
    click("Rev Limiter");
    find<QLineEdit>("txtREV_Primary")->setText("99999");
    click("Coolant");
    EXPECT_EQ(find<QLabel>("lblPageTitle")->text(), "Rev Limiter");
    EXPECT_EQ(find<QLineEdit>("txtREV_Primary")->text(), "6500");
}

TEST_F(Workspace, AClickOnATableOpensItBesideThePages) {
    openCalibration();
    click("Volumetric Efficiency Table");
    ASSERT_NE(windows.table(), nullptr);
    EXPECT_EQ(windows.table()->tableName(), "VE");
    EXPECT_EQ(tabs()->currentWidget(), windows.table());
    const FrmTable* first = windows.table();
    click("Volumetric Efficiency Table");
    EXPECT_EQ(windows.table(), first) << "a second click keeps the table";
}

TEST_F(Workspace, ATableMovesIntoAWindowOfItsOwnAndBack) {
    openCalibration();
    click("Volumetric Efficiency Table");
    Q_EMIT windows.table()->dockingAsked(false);
    EXPECT_TRUE(windows.table()->isWindow());
    EXPECT_EQ(tabs()->indexOf(windows.table()), -1);
    Q_EMIT windows.table()->dockingAsked(true);
    EXPECT_FALSE(windows.table()->isWindow());
    EXPECT_EQ(tabs()->currentWidget(), windows.table());
}

TEST_F(Workspace, ClosingTheCalibrationClosesTheTable) {
    openCalibration();
    click("Volumetric Efficiency Table");
    commands.files.close();
    EXPECT_EQ(windows.table(), nullptr);
    EXPECT_EQ(tabs()->count(), 3) << "the workspace, the logs and the pins stay";
}

TEST_F(Workspace, TheConsoleShowsTheLastLineAndAddsToIt) {
    fake.session.sysLog("  - Converting Data...");
    windows.refresh();
    EXPECT_THAT(lastLine("lstLog"), HasSubstr("  - Converting Data..."));
    fake.session.addToLastLine("SUCCESS!");
    windows.refresh();
    EXPECT_THAT(lastLine("lstLog"), HasSubstr("  - Converting Data... SUCCESS!"));
    EXPECT_EQ(log()->currentIndex().row(), log()->model()->rowCount() - 1);
}

TEST_F(Workspace, AConsoleOfAHundredThousandLinesTakesOneMoreInAFrame) {
    for (int i = 0; i < 100'000; ++i) fake.session.console.plainLine("a line of the log");
    windows.refresh();
    QCoreApplication::processEvents();
    QElapsedTimer time;
    time.start();
    constexpr int frames = 20;
    for (int i = 0; i < frames; ++i) {
        fake.session.console.plainLine("one more");
        windows.refresh();
        QCoreApplication::processEvents();
    }
    RecordProperty("millisecondsAFrame", static_cast<int>(time.elapsed() / frames));
    EXPECT_LT(time.elapsed() / frames, 100) << "ms a line";
}

TEST_F(Workspace, TheReasonWhyAPortDoesNotOpenStandsInTheOneLineThatThereIs) {
    LinkStatus& status = fake.session.linkDisplay.editStatus();
    status.title = "No Connection Mode";
    status.line2 = "Please Check your Serial Connection and try again";
    status.trouble = "Port 1 (/dev/ttyS0): in use by another program";
    windows.main().resize(1366, 768);
    windows.refresh();
    QApplication::processEvents();
    const auto* line = find<QLabel>("lblCommStatus2");
    EXPECT_EQ(line->text(), "Port 1 (/dev/ttyS0): in use by another program");
    EXPECT_LE(line->heightForWidth(line->width()) < 0 ? line->sizeHint().height()
                                                      : line->heightForWidth(line->width()),
              line->height())
        << "nothing of it is cut";
    EXPECT_TRUE(line->toolTip().contains("Please Check your Serial Connection and try again"));
    fake.session.linkDisplay.editStatus().trouble.clear();
    windows.refresh();
    EXPECT_EQ(line->text(), "Please Check your Serial Connection and try again");
}

TEST_F(Workspace, RendersTheStateOfTheLink) {
    LinkStatus& status = fake.session.linkDisplay.editStatus();
    status.title = "Monitoring...";
    status.line1 = "Receiving";
    status.line2 = "second";
    status.activity = "{Monitoring}";
    status.image = LinkImage::Monitor;
    status.port = "3";
    status.serialNumber = "001234";
    status.firmware = "ZQA5099";
    status.unitLabel = "A Std";
    status.send = Lamp::Sending;
    status.receive = Lamp::Received;
    status.progressVisible = true;
    status.progressPercent = 42;
    status.progressText = "42%";
    windows.refresh();
    EXPECT_EQ(find<QLabel>("lblCommTitle")->text(), "Monitoring...");
    EXPECT_EQ(find<QLabel>("lblCommStatus1")->text(), "Receiving");
    EXPECT_EQ(find<QLabel>("lblCommStatus2")->text(), "second");
    EXPECT_EQ(find<QLabel>("lblActivity")->text(), "{Monitoring}");
    EXPECT_EQ(find<QLabel>("lblCOMM")->text(), "3");
    EXPECT_EQ(find<QLabel>("lblSerialNumber")->text(), "001234");
    EXPECT_EQ(find<QLabel>("lblFirmware")->text(), "ZQA5099");
    EXPECT_EQ(find<QLabel>("lblOrbUnit")->text(), "A Std");
    EXPECT_EQ(find<QLabel>("imgNotify")->accessibleDescription(), "Monitor");
    EXPECT_EQ(find<QProgressBar>("ProgressBar1")->value(), 42);
    EXPECT_FALSE(find<QProgressBar>("ProgressBar1")->isHidden());
    EXPECT_EQ(find<QLabel>("lblProgress_Percentage")->text(), "42%");
    EXPECT_EQ(find<QLabel>("lblComm_Send_Icon")->palette().color(QPalette::Window), QColor(255, 0, 0));
    EXPECT_EQ(find<QLabel>("lblComm_Rcv_Icon")->palette().color(QPalette::Window), QColor(0, 192, 0));
}

TEST_F(Workspace, LampsAtRestHaveTheColourOfAButton) {
    fake.session.linkDisplay.editStatus().send = Lamp::Sending;
    windows.refresh();
    fake.session.linkDisplay.editStatus().send = Lamp::Rest;
    windows.refresh();
    EXPECT_EQ(find<QLabel>("lblComm_Send_Icon")->palette().color(QPalette::Window),
              lookColors(DisplayMode::Night).button);
}

TEST_F(Workspace, ThePortListShowsNumberDeviceAndDescription) {
    auto* ports = find<QComboBox>("cmbCOMM");
    ASSERT_GE(ports->count(), 1);
    EXPECT_EQ(ports->itemText(0), "1  /dev/fake  A port for tests");
    EXPECT_EQ(ports->currentData().toInt(), 1);
}

TEST_F(Workspace, ChoosingAPortStoresAndOpensIt) {
    fake.port.presentNumber = 4;
    auto* ports = qobject_cast<PortCombo*>(find<QComboBox>("cmbCOMM"));
    ports->fill(4, {});
    Q_EMIT ports->activated(ports->currentIndex());
    EXPECT_EQ(fake.settings.get("System", "CommPort"), "4");
    EXPECT_EQ(fake.session.link.commPort(), 4);
    EXPECT_TRUE(fake.session.linkDisplay.status().connected);
    windows.refresh();
    EXPECT_EQ(find<QLabel>("lblCOMM")->text(), "4");
}

TEST_F(Workspace, ThePanelShowsThePortInUseWhateverTheOptionsHaveStored) {
    fake.session.link.ORB_Initialize();
    windows.refresh();
    auto* ports = qobject_cast<PortCombo*>(find<QComboBox>("cmbCOMM"));
    fake.session.link.commPort(7, {});  // what an Apply does
    fake.settings.set("System", "CommPort", "7");
    windows.refresh();
    EXPECT_EQ(find<QLabel>("lblCOMM")->text(), "1");
    EXPECT_EQ(ports->selectedNumber(), 1);

    fake.port.presentNumber = 7;
    fake.session.link.ORB_Initialize();
    windows.refresh();
    EXPECT_EQ(find<QLabel>("lblCOMM")->text(), "7");
    EXPECT_EQ(ports->selectedNumber(), 7);
}

TEST_F(Workspace, ThePortInUseHasOneNumberInThePanelAndInItsList) {
    fake.session.link.ORB_Initialize();
    windows.refresh();
    ASSERT_EQ(find<QLabel>("lblCOMM")->text(), "1");
    auto* ports = qobject_cast<PortCombo*>(find<QComboBox>("cmbCOMM"));
    fake.port.presentNumber = 2;  // a simulated unit has come, and moved it on
    ports->showPopup();
    EXPECT_EQ(ports->currentText().left(1), "2");
    EXPECT_EQ(find<QLabel>("lblCOMM")->text(), "2");
    windows.refresh();
    EXPECT_EQ(find<QLabel>("lblCOMM")->text(), "2");
    ports->hidePopup();
}

TEST_F(Workspace, ADeviceThatIsAwayIsNotShownAsTheOneThatHasItsNumberNow) {
    auto* ports = qobject_cast<PortCombo*>(find<QComboBox>("cmbCOMM"));
    ports->fill(1, "usb:0403:6001:AB12");
    EXPECT_EQ(ports->currentText(), QStringLiteral("\u2013  (not present)")) << "its number is another's";
    EXPECT_EQ(ports->selectedIdentity(), "usb:0403:6001:AB12");
    EXPECT_EQ(ports->itemText(0), "1  /dev/fake  A port for tests");
    ports->fill(3, "fake");
    EXPECT_EQ(ports->selectedNumber(), 1) << "the number follows";
}

TEST_F(Workspace, TheLinkConsoleIsShownByItsSetting) {
    EXPECT_FALSE(find<QListView>("lstCommInfo")->isHidden()) << "never stored counts as on";
    windows.tell(&WindowNews::showCommList, false);
    EXPECT_TRUE(find<QListView>("lstCommInfo")->isHidden());
}

TEST_F(Workspace, WithoutNewsNothingIsDrawnAgain) {
    windows.refresh();
    find<QLabel>("lblCommTitle")->setText("touched");
    windows.refresh();
    EXPECT_EQ(find<QLabel>("lblCommTitle")->text(), "touched");
}

}  // namespace
}  // namespace zentaq
