// Windows that go while a box of theirs is read: what comes behind the box touches nothing of them.
#include <gtest/gtest.h>

#include <QClipboard>
#include <QHeaderView>
#include <QListWidget>

#include "windows/window_fixture.h"

namespace zentaq {
namespace {

class GoneUnderBox : public WindowTest {
 protected:
    GoneUnderBox() {
        windows.main().activateWindow();
        openCalibration();
        for (int i = 0; i < 16; ++i) {
            unit().set("RPMTBL", 500 * (i + 1), i);
            unit().set("MAPTBL", 20 + 5 * i, i);
        }
        unit().set("scale1", 5);
        windows.main().run("mnuVETbl");
        settle();
        form().grid().setCurrentIndex(form().grid().model()->index(15, 0));
        fake.dialogs.boxes.clear();
        fake.session.DataModified = false;
    }
    Unit& unit() { return fake.session.currentUnitObject(); }
    FrmTable& form() { return *windows.table(); }
    static void settle() {
        for (int i = 0; i < 3; ++i) QCoreApplication::processEvents();
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    }
    void tableGoes() {
        fake.dialogs.meanwhile = [this](const std::string&) { windows.removeForms(); };
    }
    static void key(QWidget& target, int code, const QString& text = {}) {
        QKeyEvent press(QEvent::KeyPress, code, Qt::NoModifier, text);
        QApplication::sendEvent(&target, &press);
    }
    void type(const QString& digits) {
        for (const QChar digit : digits) {
            QWidget* box = &form().inputBox();
            key(box->isVisible() ? *box : static_cast<QWidget&>(form().grid()), digit.unicode(),
                QString(digit));
        }
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
    key(form().inputBox(), Qt::Key_Return, "\r");
    expectGoneBehindOneBox();
}

TEST_F(GoneUnderBox, ATableUnderTheRefusalOfItsTimeOfGap) {
    auto* gap = form().findChild<QLineEdit*>("txtTOG");
    gap->setFocus();
    gap->setText("99999");
    tableGoes();
    key(*gap, Qt::Key_Return, "\r");
    expectGoneBehindOneBox();
}

TEST_F(GoneUnderBox, ATableWhoseTimeOfGapWasLeft) {
    auto* gap = form().findChild<QLineEdit*>("txtTOG");
    gap->setFocus();
    gap->setText("99999");
    tableGoes();
    QFocusEvent leaves(QEvent::FocusOut, Qt::MouseFocusReason);
    QApplication::sendEvent(gap, &leaves);
    expectGoneBehindOneBox();
}

TEST_F(GoneUnderBox, ATableUnderTheRefusalOfWhatWasPasted) {
    QApplication::clipboard()->setText("99\t99\n99\t99");
    tableGoes();
    key(form().grid(), Qt::Key_V);  // no text: the shortcut follows
    QKeyEvent paste(QEvent::KeyPress, Qt::Key_V, Qt::ControlModifier);
    QApplication::sendEvent(&form().grid(), &paste);
    expectGoneBehindOneBox();
}

TEST_F(GoneUnderBox, ATableUnderTheRefusalOfAStep) {
    unit().set("VE", 50, 0);
    windows.showUnit();
    tableGoes();
    key(form().grid(), Qt::Key_Period, ".");
    settle();
    EXPECT_EQ(windows.table(), nullptr);
    EXPECT_EQ(unit().get("VE", 0), 50);
}

TEST_F(GoneUnderBox, ATableUnderTheQuestionWhetherToDiscard) {
    fake.dialogs.answers = {Answer::Yes};
    tableGoes();
    form().findChild<QAction*>("Discard")->trigger();
    expectGoneBehindOneBox();
}

TEST_F(GoneUnderBox, ATableUnderTheRefusalOfAnAxisStop) {
    fake.dialogs.inputs = {std::string("1")};  // not above its neighbor
    fake.dialogs.meanwhile = [this](const std::string& title) {
        if (title != "Table Setup") windows.removeForms();
    };
    Q_EMIT form().grid().horizontalHeader()->sectionDoubleClicked(3);
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
    Q_EMIT form().grid().horizontalHeader()->sectionDoubleClicked(3);
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
    key(*field, Qt::Key_Return, "\r");
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
