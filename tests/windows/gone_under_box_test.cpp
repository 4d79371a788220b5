// Windows that go while a box of theirs is read: what comes behind the box touches nothing of them.
#include <gtest/gtest.h>

#include <QClipboard>
#include <QHeaderView>
#include <QListWidget>

#include "windows/table_windows_fixture.h"

namespace zentaq {
namespace {

class GoneUnderBox : public TableWindowsTest {
 protected:
    GoneUnderBox() {
        openVe();
        stand(16, 1);
        fake.dialogs.boxes.clear();
        fake.session.DataModified = false;
    }
    void tableGoes() {
        fake.dialogs.meanwhile = [this](const std::string&) { windows.removeForms(); };
    }
    void typeTimeOfGap() {
        timeOfGap()->setFocus();
        timeOfGap()->setText("99999");
    }
    void expectGoneBehindOneBox() {
        settle();
        EXPECT_EQ(windows.table(), nullptr);
        EXPECT_EQ(fake.dialogs.boxes.size(), 1u);
        EXPECT_FALSE(fake.session.DataModified);
        EXPECT_EQ(unit().get("VE", 0), 0);
        EXPECT_EQ(unit().get("scale1"), 5);
    }
};

TEST_F(GoneUnderBox, ATableUnderTheRefusalOfACell) {
    type("99");
    tableGoes();
    key(Qt::Key_Return, "\r");
    expectGoneBehindOneBox();
}

TEST_F(GoneUnderBox, ATableUnderTheRefusalOfItsTimeOfGap) {
    typeTimeOfGap();
    tableGoes();
    keyTo(*timeOfGap(), Qt::Key_Return, "\r");
    expectGoneBehindOneBox();
}

TEST_F(GoneUnderBox, ATableWhoseTimeOfGapWasLeft) {
    typeTimeOfGap();
    tableGoes();
    QFocusEvent leaves(QEvent::FocusOut, Qt::MouseFocusReason);
    QApplication::sendEvent(timeOfGap(), &leaves);
    expectGoneBehindOneBox();
}

TEST_F(GoneUnderBox, ATableUnderTheRefusalOfWhatWasPasted) {
    QApplication::clipboard()->setText("99\t99\n99\t99");
    tableGoes();
    key(Qt::Key_V);  // no text: the shortcut follows
    keyTo(grid(), Qt::Key_V, {}, Qt::ControlModifier);
    expectGoneBehindOneBox();
}

TEST_F(GoneUnderBox, ATableUnderTheRefusalOfAStep) {
    unit().set("VE", 50, 0);
    windows.showUnit();
    tableGoes();
    key(Qt::Key_Period, ".");
    settle();
    EXPECT_EQ(windows.table(), nullptr);
    EXPECT_EQ(unit().get("VE", 0), 50);
}

TEST_F(GoneUnderBox, ATableUnderTheQuestionWhetherToDiscard) {
    fake.dialogs.answers = {Answer::Yes};
    tableGoes();
    tableAction("Discard")->trigger();
    expectGoneBehindOneBox();
}

TEST_F(GoneUnderBox, ATableUnderTheRefusalOfAnAxisStop) {
    fake.dialogs.inputs = {std::string("1")};  // not above its neighbor
    fake.dialogs.meanwhile = [this](const std::string& title) {
        if (title != "Table Setup") windows.removeForms();
    };
    Q_EMIT grid().horizontalHeader()->sectionDoubleClicked(3);
    settle();
    EXPECT_EQ(windows.table(), nullptr);
    EXPECT_EQ(unit().get("RPMTBL", 3), 2000);
}

TEST_F(GoneUnderBox, ATableThatShowsAnotherOneWhenItsAxisStopIsGiven) {
    fake.dialogs.inputs = {std::string("2100")};
    fake.dialogs.meanwhile = [this](const std::string& title) {
        if (title == "Table Setup") windows.removeForms();
        windows.openTable("ADV", "Ignition Advance Table");
    };
    Q_EMIT grid().horizontalHeader()->sectionDoubleClicked(3);
    settle();
    EXPECT_EQ(unit().get("RPMTBL", 3), 2000);
}

TEST_F(GoneUnderBox, ASaveBehindTheRefusalDoesNotRun) {
    type("99");
    tableGoes();
    bool ran = false;
    windows.afterEdits("Save", [&] { ran = true; });
    EXPECT_FALSE(ran);
    expectGoneBehindOneBox();
}

TEST_F(GoneUnderBox, AnotherTableIsNotBuiltIntoOneThatHasGone) {
    type("99");
    tableGoes();
    windows.openTable("ADV", "Ignition Advance Table");
    expectGoneBehindOneBox();
}

TEST_F(GoneUnderBox, TheFormOfTheGeneralParametersUnderTheRefusalOfAField) {
    windows.openGeneralConfig();
    settle();
    auto* field = windows.generalConfig()->findChild<QLineEdit*>("txtRPM");
    const float before = unit().get("REV_Limiter");
    field->setFocus();
    field->setText("999999");
    fake.dialogs.meanwhile = [this](const std::string&) { delete windows.generalConfig(); };
    keyTo(*field, Qt::Key_Return, "\r");
    settle();
    EXPECT_EQ(windows.generalConfig(), nullptr);
    EXPECT_EQ(fake.dialogs.boxes.size(), 1u);
    EXPECT_EQ(unit().get("REV_Limiter"), before);
}

TEST_F(GoneUnderBox, TheSensorManagerUnderItsWarning) {
    fake.session.DatabaseFile = builtReference();
    fake.session.retryReference();
    windows.openSensorEditor();
    settle();
    auto* list = windows.sensorEditor()->findChild<QListWidget*>("lstMAPSensors");
    ASSERT_NE(list, nullptr);
    auto* create = windows.sensorEditor()->findChild<QPushButton*>("cmdNew");
    ASSERT_NE(create, nullptr);
    fake.dialogs.answers = {Answer::Yes};
    fake.dialogs.meanwhile = [this](const std::string&) { delete windows.sensorEditor(); };
    create->click();
    settle();
    EXPECT_EQ(windows.sensorEditor(), nullptr);
}

}  // namespace
}  // namespace zentaq
