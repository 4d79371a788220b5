#include "windows/frm_options.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QAbstractButton>
#include <QScrollBar>
#include <QTabBar>

#include "qt/colour_swatch.h"
#include "qt/help_key.h"
#include "qt/look.h"
#include "windows/frm_options_fixture.h"

namespace zentaq {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;

class OptionsWindow : public OptionsWindowTest {
 protected:
    void openMonitorPage() {
        open();
        form->showPage(FrmOptions::monitorPage);
    }
    std::vector<std::string> hits() {
        std::vector<std::string> lines;
        const auto* list = the<QListWidget>("lstFound");
        for (int i = 0; i < list->count(); ++i) lines.push_back(list->item(i)->text().toStdString());
        return lines;
    }
};

// ---- Opening and closing

TEST_F(OptionsWindow, OpensOnItsFirstPageAndSaysSoInTheLog) {
    open();
    EXPECT_EQ(form->windowTitle(), "Options");
    EXPECT_EQ(form->objectName(), "frmOptions");
    EXPECT_FALSE(form->isModal());
    EXPECT_EQ(page(), 0);
    EXPECT_THAT(lastLog(), HasSubstr("Control Panel Initialized."));
}

TEST_F(OptionsWindow, OpensThePageWithTheColoursForTheMenu) {
    openMonitorPage();
    EXPECT_EQ(page(), FrmOptions::monitorPage);
    EXPECT_TRUE(the<QPushButton>("cmdChoose")->isVisible());
    form->showPage(99);
    EXPECT_EQ(page(), 0);
}

TEST_F(OptionsWindow, CancelClosesAndAppliesNothing) {
    open();
    enter("txtPollRate", "5");
    press("cmdCancel");
    EXPECT_FALSE(form->isVisible());
    EXPECT_EQ(closings, 1);
    EXPECT_EQ(stored("PollRate"), "");
    EXPECT_THAT(lastLog(), HasSubstr("Control Panel Terminated."));
}

TEST_F(OptionsWindow, EscapeAndTheWindowsOwnButtonCloseAsCancelDoes) {
    open();
    sendKey(Qt::Key_Escape);
    EXPECT_FALSE(form->isVisible());
    EXPECT_EQ(closings, 1);
    open();
    form->close();
    EXPECT_FALSE(form->isVisible());
    EXPECT_EQ(closings, 2);
}

TEST_F(OptionsWindow, OkAppliesAndCloses) {
    open();
    enter("txtPollRate", "5");
    press("cmdOK");
    EXPECT_FALSE(form->isVisible());
    EXPECT_EQ(stored("PollRate"), "5");
    EXPECT_THAT(lastLog(), HasSubstr("Control Panel Terminated."));
    EXPECT_THAT(lastLog(1), HasSubstr("**NOTE: Some changes require program restart before taking effect."));
    EXPECT_THAT(lastLog(2), HasSubstr("Application Options Have Been Applied."));
}

TEST_F(OptionsWindow, EnterInAFieldIsOk) {
    open();
    enter("txtPollRate", "6");
    sendKey(Qt::Key_Return);
    EXPECT_FALSE(form->isVisible());
    EXPECT_EQ(stored("PollRate"), "6");
}

TEST_F(OptionsWindow, ShownAgainItReadsTheStoreAgain) {
    open();
    enter("txtPollRate", "7");
    press("cmdCancel");
    form->show();
    EXPECT_EQ(text("txtPollRate"), "");
    EXPECT_THAT(lastLog(), HasSubstr("Control Panel Initialized."));
}

TEST_F(OptionsWindow, EndingTheProgramUnloadsAnOpenWindow) {
    open();
    form.reset();
    EXPECT_THAT(lastLog(), HasSubstr("Control Panel Terminated."));
    EXPECT_EQ(closings, 0);
}

TEST_F(OptionsWindow, OpensWhereItWasClosed) {
    open();
    const QSize own(700, 520);
    form->move(40, 30);
    form->resize(own);
    press("cmdCancel");
    open();
    EXPECT_EQ(form->size(), own);
    EXPECT_EQ(form->pos(), QPoint(40, 30));
}

// ---- A refused entry

TEST_F(OptionsWindow, OkStaysOpenWithTheFocusInARefusedAlarm) {
    open();
    toPage(OptionPage::Display);
    enter("txtMATvalue", "151");
    toPage(OptionPage::Print);
    press("cmdOK");
    EXPECT_TRUE(form->isVisible());
    EXPECT_EQ(closings, 0);
    EXPECT_EQ(page(), static_cast<int>(OptionPage::Display));
    EXPECT_EQ(focusName(), "txtMATvalue");
    EXPECT_EQ(the<QLineEdit>("txtMATvalue")->selectedText(), "151");
    EXPECT_THAT(fake.dialogs.boxes, ElementsAre(Tells("(-40 - 150\u00B0C) - Invalid Entry.")));
    EXPECT_NE(form->marked(), nullptr);
}

// ---- Search

TEST_F(OptionsWindow, ASearchLeadsToTheOptionAndMarksIt) {
    open();
    tabTo("txtFind");
    sendText("overheat");
    EXPECT_THAT(hits(), ElementsAre("CLT Alarm  (Display & temperatures)"));
    EXPECT_TRUE(the<QListWidget>("lstFound")->isVisible());
    sendKey(Qt::Key_Return);
    EXPECT_TRUE(form->isVisible());
    EXPECT_EQ(page(), static_cast<int>(OptionPage::Display));
    EXPECT_EQ(focusName(), "txtCLTvalue");
    ASSERT_NE(form->marked(), nullptr);
    EXPECT_TRUE(form->marked()->isAncestorOf(the<QLineEdit>("txtCLTvalue")));
    EXPECT_EQ(form->marked()->palette().color(QPalette::Window), lookColors(DisplayMode::Night).highlight);
    EXPECT_FALSE(the<QListWidget>("lstFound")->isVisible());
    EXPECT_EQ(text("txtFind"), "");
    sendKey(Qt::Key_Tab);
    EXPECT_EQ(form->marked(), nullptr);
}

TEST_F(OptionsWindow, ArrowsMoveOverTheOptionsFound) {
    open();
    tabTo("txtFind");
    sendText("port");
    sendKey(Qt::Key_Up);
    EXPECT_EQ(the<QListWidget>("lstFound")->currentRow(), 0);
    sendKey(Qt::Key_Down);
    EXPECT_EQ(the<QListWidget>("lstFound")->currentRow(), 1);
    sendKey(Qt::Key_Enter);
    EXPECT_EQ(focusName(), "cmdAutoDetectPort");
}

TEST_F(OptionsWindow, ASearchInVainSaysSoAndPressesNothing) {
    open();
    tabTo("txtFind");
    sendText("carburettor");
    EXPECT_THAT(hits(), ElementsAre("No option found"));
    sendKey(Qt::Key_Down);
    sendKey(Qt::Key_Return);
    EXPECT_TRUE(form->isVisible());
    sendKey(Qt::Key_Escape);
    EXPECT_TRUE(form->isVisible());
    EXPECT_EQ(text("txtFind"), "");
    sendKey(Qt::Key_Escape);
    EXPECT_FALSE(form->isVisible());
}

TEST_F(OptionsWindow, ASearchForADataPointLeadsToItsEntry) {
    open();
    tabTo("txtFind");
    sendText("knock retard");
    sendKey(Qt::Key_Return);
    EXPECT_EQ(focusName(), "viewList");
    EXPECT_EQ(the<QListWidget>("viewList")->currentItem()->text(), "Knock Retard");
}

TEST_F(OptionsWindow, ASearchForADisabledOptionStillShowsItsPage) {
    fake.settings.set("System", "MonitorMode", "1");
    open();
    form->goTo("txtNeedleColor");
    EXPECT_EQ(page(), FrmOptions::monitorPage);
    EXPECT_NE(form->marked(), nullptr);
    EXPECT_FALSE(the<QLineEdit>("txtNeedleColor")->hasFocus());
}

// ---- Colours

TEST_F(OptionsWindow, AChosenColourIsShownAndStoredWithApply) {
    fake.settings.set("System", "DashLights", "65280");
    openMonitorPage();
    EXPECT_EQ(the<ColourSwatch>("swtxtDashLights")->colour(), QColor(0, 255, 0));
    EXPECT_EQ(the<ColourSwatch>("swtxtNeedleColor")->colour(), std::nullopt);
    QColor offered;
    QString title;
    form->chooseColourWith([&](const QColor& initial, const QString& asked, QWidget*) {
        offered = initial;
        title = asked;
        return std::optional(QColor(1, 2, 3));
    });
    press("cmdChoose2");
    EXPECT_EQ(offered, QColor(0, 255, 0));
    EXPECT_EQ(title, "Dash Lights");
    // 1 + 256 * 2 + 65536 * 3
    EXPECT_EQ(text("txtDashLights"), "197121");
    EXPECT_EQ(the<ColourSwatch>("swtxtDashLights")->colour(), QColor(1, 2, 3));
    EXPECT_EQ(stored("DashLights"), "65280");
    apply();
    EXPECT_EQ(stored("DashLights"), "197121");
}

TEST_F(OptionsWindow, EachChooseButtonHasItsField) {
    openMonitorPage();
    int red = 0;
    form->chooseColourWith(
        [&](const QColor&, const QString&, QWidget*) { return std::optional(QColor(++red, 0, 0)); });
    press("cmdChoose");
    press("cmdChoose2");
    press("cmdChoose3");
    EXPECT_EQ(text("txtNeedleColor"), "1");
    EXPECT_EQ(text("txtDashLights"), "2");
    EXPECT_EQ(text("txtLabelLights"), "3");
}

TEST_F(OptionsWindow, ADeclinedColourDialogChangesNothing) {
    fake.settings.set("System", "NeedleColor", "255");
    openMonitorPage();
    form->chooseColourWith([](const QColor&, const QString&, QWidget*) { return std::nullopt; });
    press("cmdChoose");
    EXPECT_EQ(text("txtNeedleColor"), "255");
}

TEST_F(OptionsWindow, ASwatchFollowsATypedNumber) {
    openMonitorPage();
    enter("txtNeedleColor", "16711680");
    EXPECT_EQ(the<ColourSwatch>("swtxtNeedleColor")->colour(), QColor(0, 0, 255));
    enter("txtNeedleColor", "blue");
    EXPECT_EQ(the<ColourSwatch>("swtxtNeedleColor")->colour(), std::nullopt);
}

TEST_F(OptionsWindow, DayModeLeavesNothingToChoose) {
    openMonitorPage();
    EXPECT_FALSE(the<QLabel>("lblColorHint")->isVisible());
    tabTo("optMonitorMode(0)");
    sendKey(Qt::Key_Down);
    EXPECT_EQ(stored("MonitorMode"), "1");
    for (const char* button : {"cmdChoose", "cmdChoose2", "cmdChoose3"})
        EXPECT_FALSE(the<QPushButton>(button)->isEnabled()) << button;
    EXPECT_FALSE(the<QLineEdit>("txtNeedleColor")->isEnabled());
    EXPECT_TRUE(the<QLabel>("lblColorHint")->isVisible());
    sendKey(Qt::Key_Up);
    EXPECT_EQ(stored("MonitorMode"), "0");
    EXPECT_TRUE(the<QPushButton>("cmdChoose")->isEnabled());
}

TEST(ColourText, IsRedPlus256GreenPlus65536Blue) {
    EXPECT_EQ(colourText(QColor(255, 0, 0)), "255");
    EXPECT_EQ(colourText(QColor(0, 255, 0)), "65280");
    EXPECT_EQ(colourText(QColor(0, 0, 255)), "16711680");
    EXPECT_EQ(colourText(QColor(255, 255, 255)), "16777215");
    EXPECT_EQ(colourText(QColor(0, 0, 0)), "0");
}

// ---- Others that store the same settings

TEST_F(OptionsWindow, FollowsTheDayModeOfTheMenu) {
    open();
    ASSERT_TRUE(the<QRadioButton>("optMonitorMode(0)")->isChecked());
    commands.dayMode();
    EXPECT_TRUE(the<QRadioButton>("optMonitorMode(1)")->isChecked());
    EXPECT_FALSE(the<QPushButton>("cmdChoose")->isEnabled());
    commands.nightMode();
    EXPECT_TRUE(the<QRadioButton>("optMonitorMode(0)")->isChecked());
}

TEST_F(OptionsWindow, FollowsTheTableWindowWhenItComesToTheFront) {
    open();
    enter("txtPollRate", "5");
    fake.settings.set("System", "TableColor", "1");
    QEvent activated(QEvent::WindowActivate);
    QApplication::sendEvent(form.get(), &activated);
    EXPECT_TRUE(the<QCheckBox>("chkAFRColors")->isChecked());
    EXPECT_EQ(text("txtPollRate"), "5");
}

// ---- The port search

TEST_F(OptionsWindow, ASearchWithoutAUnitTellsAndGivesTheButtonsBack) {
    fake.port.presentNumber = 0;
    fake.settings.set("System", "CommPort", "4");
    fake.session.link.commPort(4);
    open();
    press("cmdAutoDetectPort");
    QApplication::processEvents();
    ASSERT_EQ(fake.dialogs.boxes.size(), 1u);
    EXPECT_EQ(fake.dialogs.boxes[0].text, "Could not Find ORB Unit.  Please check the serial connection.");
    EXPECT_EQ(stored("CommPort"), "4");
    EXPECT_EQ(the<QComboBox>("cmbCOMM")->currentData().toInt(), 4);
    EXPECT_TRUE(the<QPushButton>("cmdOK")->isEnabled());
    EXPECT_EQ(focusName(), "cmdAutoDetectPort");
}

// ---- For every user

TEST_F(OptionsWindow, EveryControlIsReachedWithTheTabKey) {
    open();
    std::set<std::string> reached;
    for (const OptionPageRow& row : optionPages()) {
        toPage(row.page);
        the<QTabWidget>("SSTab1")->setFocus();
        for (int i = 0; i < 60; ++i) {
            sendKey(Qt::Key_Tab);
            reached.insert(focusName());
        }
    }
    for (const OptionRow& row : optionTable()) {
        if (row.index == 1) continue;  // the arrows lead to the other button of a group
        EXPECT_TRUE(reached.contains(controlName(row))) << controlName(row);
    }
    for (const char* name :
         {"txtFind", "cmdChoose", "cmdChoose2", "cmdChoose3", "cmdOK", "cmdCancel", "cmdApply"})
        EXPECT_TRUE(reached.contains(name)) << name;
}

TEST_F(OptionsWindow, EveryControlHasAnAccessibleNameAndAHelpKey) {
    open();
    for (const OptionRow& row : optionTable()) {
        const std::string name = controlName(row);
        auto* control = the<QWidget>(name.c_str());
        ASSERT_NE(control, nullptr) << name;
        EXPECT_EQ(control->accessibleName().toStdString(), plainCaption(row.caption));
        QString helpKey;
        for (const QWidget* at = control; at != nullptr && helpKey.isEmpty(); at = at->parentWidget())
            helpKey = at->property("fastHelpKey").toString();
        EXPECT_EQ(helpKey.toStdString(), row.help) << name;
    }
}

TEST_F(OptionsWindow, TellsWhatTheOptionInHandIsFor) {
    open();
    form->resize(the<QTabWidget>("SSTab1")->tabBar()->sizeHint().width() + 200, 600);
    QApplication::processEvents();
    tabTo("chkCOMM");
    EXPECT_EQ(label("lblOptionHelp"), "Remembered with the other options; nothing depends on it.");
}

TEST_F(OptionsWindow, FitsASmallLaptopAndClipsNothing) {
    constexpr QSize laptop(1366, 768);
    open();
    // The screen of the tests may be smaller than the window wishes to be.
    EXPECT_LE(form->sizeHint().width(), laptop.width());
    EXPECT_LE(form->sizeHint().height(), laptop.height() - 80);  // a title bar and a task bar
    form->resize(form->sizeHint());
    QApplication::processEvents();
    const QTabBar* tabs = the<QTabWidget>("SSTab1")->tabBar();
    EXPECT_GE(tabs->width(), tabs->sizeHint().width());
    toPage(OptionPage::DataPoints);
    QApplication::processEvents();
    EXPECT_EQ(the<QListWidget>("viewList")->horizontalScrollBar()->maximum(), 0);
    EXPECT_EQ(the<QListWidget>("viewList")->verticalScrollBar()->maximum(), 0);
    for (const OptionPageRow& row : optionPages()) {
        toPage(row.page);
        QApplication::processEvents();
        for (const QWidget* widget : form->findChildren<QWidget*>()) {
            const bool text =
                qobject_cast<const QAbstractButton*>(widget) != nullptr ||
                (qobject_cast<const QLabel*>(widget) != nullptr && widget != the<QLabel>("lblOptionHelp"));
            if (!text || !widget->isVisible() || widget->objectName().isEmpty()) continue;
            if (widget->objectName().startsWith("qt_") || widget->objectName().startsWith("Scroll")) continue;
            EXPECT_GE(widget->width(), widget->sizeHint().width()) << widget->objectName().toStdString();
            EXPECT_GE(widget->height(), widget->sizeHint().height()) << widget->objectName().toStdString();
            EXPECT_EQ(widget->visibleRegion().boundingRect().size(), widget->size())
                << widget->objectName().toStdString();
        }
    }
}

// ---- The pages on a narrow screen

TEST_F(OptionsWindow, CtrlTabTurnsThePagesRoundWithTheTabsAndWithoutThem) {
    open();
    for (const int width : {the<QTabWidget>("SSTab1")->tabBar()->sizeHint().width() + 200, 500}) {
        form->resize(width, 600);
        form->showPage(5);
        QApplication::processEvents();
        pressKey(Qt::Key_Tab, Qt::ControlModifier);
        EXPECT_EQ(page(), 6);
        pressKey(Qt::Key_PageDown, Qt::ControlModifier);
        EXPECT_EQ(page(), 0) << "behind the last comes the first";
        pressKey(Qt::Key_Backtab, Qt::ControlModifier | Qt::ShiftModifier);
        EXPECT_EQ(page(), 6);
        pressKey(Qt::Key_PageUp, Qt::ControlModifier);
        EXPECT_EQ(page(), 5);
        EXPECT_EQ(the<QComboBox>("cmbPage")->currentIndex(), 5);
    }
}

TEST_F(OptionsWindow, AFieldThatIsTurnedAwayGivesTheKeyboardToTheTabs) {
    open();
    form->resize(the<QTabWidget>("SSTab1")->tabBar()->sizeHint().width() + 200, 600);
    QApplication::processEvents();
    tabTo("chkCOMM");
    pressKey(Qt::Key_Tab, Qt::ControlModifier);
    EXPECT_EQ(page(), 1);
    EXPECT_EQ(form->focusWidget(), the<QTabWidget>("SSTab1")->tabBar());
    tabTo("cmdOK");
    pressKey(Qt::Key_Tab, Qt::ControlModifier);
    EXPECT_EQ(page(), 2);
    EXPECT_EQ(focusName(), "cmdOK") << "what stays in sight keeps it";
}

TEST_F(OptionsWindow, WhereTheTabsHaveNoRoomAListOfThePagesStandsInTheirPlace) {
    open();
    auto* tabs = the<QTabWidget>("SSTab1");
    auto* list = the<QComboBox>("cmbPage");
    form->resize(tabs->tabBar()->sizeHint().width() + 200, 600);
    QApplication::processEvents();
    EXPECT_FALSE(tabs->tabBar()->isHidden());
    EXPECT_TRUE(list->isHidden());

    tabs->tabBar()->setFocus();
    form->resize(500, 600);
    QApplication::processEvents();
    EXPECT_TRUE(tabs->tabBar()->isHidden());
    EXPECT_FALSE(list->isHidden());
    EXPECT_EQ(form->focusWidget(), list) << "the keyboard goes along";
    EXPECT_EQ(list->property(helpKeyProperty), tabs->property(helpKeyProperty)) << "F2 tells of the page";
    EXPECT_EQ(list->count(), 7);
    EXPECT_EQ(list->itemText(3), "Tables & graphs");
    list->setCurrentIndex(3);
    Q_EMIT list->activated(3);
    EXPECT_EQ(page(), 3);
    form->showPage(5);
    EXPECT_EQ(list->currentIndex(), 5);

    form->resize(tabs->tabBar()->sizeHint().width() + 200, 600);
    QApplication::processEvents();
    EXPECT_FALSE(tabs->tabBar()->isHidden());
    EXPECT_EQ(form->focusWidget(), tabs->tabBar());
}

}  // namespace
}  // namespace zentaq
