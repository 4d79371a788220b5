#include "windows/frm_fast_help.h"

#include <gtest/gtest.h>

#include <QAction>
#include <QApplication>
#include <QDeadlineTimer>
#include <QLineEdit>
#include <QVBoxLayout>

#include "app/fake_platform.h"
#include "windows/key_press.h"

namespace zentaq {
namespace {

const HelpRow revLimit{1, "Rev Limit", "Speed of the limiter. Set it low first.", "helprevl"};
const HelpRow arrows{2, "Arrow Keys", "They move the view. Try it.", "helparrow"};

/// What the guide is opened on.
struct GuideAsked : WindowSet {
    void open(std::string_view name, const std::string& topic, const std::string&) override {
        if (name == window::help) topics += QString::fromStdString(topic);
    }
    QStringList topics;
};

class FastHelp : public ::testing::Test {
 protected:
    QWidget frame;
    QLineEdit field{&frame};
    QLineEdit other{&frame};
    QAction helpKey{&frame};
    FakeSession fake;
    GuideAsked guide;
    FrmFastHelp help{fake.session, &frame};
    int asked = 0;

    FastHelp() {
        auto* layout = new QVBoxLayout(&frame);
        layout->addWidget(&field);
        layout->addWidget(&other);
        helpKey.setShortcut(Qt::Key_F2);
        helpKey.setShortcutContext(Qt::ApplicationShortcut);
        frame.addAction(&helpKey);
        fake.session.attach(guide);
        QObject::connect(&helpKey, &QAction::triggered, &frame, [this] { ++asked; });
        frame.show();
        frame.activateWindow();
        field.setFocus();
        QApplication::processEvents();
        help.show(revLimit);
        QApplication::processEvents();
    }
    QString text(const char* label) { return help.findChild<QLabel*>(QLatin1String(label))->text(); }
};

TEST_F(FastHelp, ShowsTopicAndTextAndDoesNotBlockTheProgram) {
    EXPECT_EQ(help.windowTitle(), "Fast Help");
    EXPECT_EQ(text("lblTopic"), "Rev Limit");
    EXPECT_EQ(text("lblHelp"), "Speed of the limiter. Set it low first.");
    EXPECT_FALSE(help.isModal());
    EXPECT_TRUE(help.isActiveWindow());
}

TEST_F(FastHelp, ARowOfTheDatabaseIsShownEscaped) {
    help.show({3, "Rev\x1B[1m\n<b>Limit</b>", "Low\tfirst.\n\xE2\x80\xAEThen <i>high</i>.\x07", "helprevl"});
    EXPECT_EQ(text("lblTopic"), "Rev\\x1B[1m\\n<b>Limit</b>");
    EXPECT_EQ(text("lblHelp"), "Low\tfirst.\n\\u{202E}Then <i>high</i>.\\x07");
    EXPECT_EQ(help.findChild<QLabel*>("lblTopic")->textFormat(), Qt::PlainText);
    EXPECT_EQ(help.findChild<QLabel*>("lblHelp")->textFormat(), Qt::PlainText);
    EXPECT_FALSE(help.accessibleDescription().contains(u'\x1B'));
}

TEST_F(FastHelp, EscAndEnterCloseAndTheFieldHasTheFocusAgain) {
    for (const int key : {Qt::Key_Escape, Qt::Key_Return}) {
        help.show(revLimit);
        QApplication::processEvents();
        pressKey(key);
        QApplication::processEvents();
        EXPECT_FALSE(help.isVisible()) << key;
        EXPECT_EQ(QApplication::focusWidget(), &field) << key;
    }
}

TEST_F(FastHelp, F2ClosesAndDoesNotAskForHelpAgain) {
    pressKey(Qt::Key_F2);
    QApplication::processEvents();
    EXPECT_FALSE(help.isVisible());
    EXPECT_EQ(asked, 0);
    EXPECT_EQ(QApplication::focusWidget(), &field);
    pressKey(Qt::Key_F2);  // in the field it does
    EXPECT_EQ(asked, 1);
}

TEST_F(FastHelp, ASecondFieldTakesTheOpenWindowAndGetsTheFocus) {
    frame.activateWindow();
    other.setFocus();
    QApplication::processEvents();
    help.show(arrows);
    QApplication::processEvents();
    EXPECT_EQ(text("lblTopic"), "Arrow Keys");
    pressKey(Qt::Key_Escape);
    QApplication::processEvents();
    EXPECT_EQ(QApplication::focusWidget(), &other);
}

TEST_F(FastHelp, AnEntryShownFromInsideTheWindowKeepsTheField) {
    help.show(arrows);
    QApplication::processEvents();
    pressKey(Qt::Key_Escape);
    QApplication::processEvents();
    EXPECT_EQ(QApplication::focusWidget(), &field);
}

TEST_F(FastHelp, TheGuideIsAskedForByKeyboardAtTheRightPlace) {
    pressKey(Qt::Key_M, Qt::AltModifier);
    // A button that is pressed by its letter stays down for a moment before it acts.
    const QDeadlineTimer patience(2000);
    while (guide.topics.isEmpty() && !patience.hasExpired()) QApplication::processEvents();
    EXPECT_EQ(guide.topics, QStringList("ignition#rev-limiter"));
    EXPECT_FALSE(help.isVisible());
}

TEST_F(FastHelp, EnterOnTheLinkAsksForTheGuideToo) {
    pressKey(Qt::Key_Tab);
    ASSERT_EQ(QApplication::focusWidget(), help.findChild<QPushButton*>("cmdGuide"));
    pressKey(Qt::Key_Return);
    EXPECT_EQ(guide.topics.count(), 1);
}

TEST_F(FastHelp, WithoutAPlaceInTheGuideThereIsNoLink) {
    EXPECT_TRUE(help.findChild<QPushButton*>("cmdGuide")->isVisible());
    help.show(arrows);
    EXPECT_FALSE(help.findChild<QPushButton*>("cmdGuide")->isVisible());
}

TEST_F(FastHelp, AFieldThatIsGoneMeanwhileIsNoTrouble) {
    auto* passing = new QLineEdit(&frame);
    passing->show();
    frame.activateWindow();
    passing->setFocus();
    help.show(arrows);
    delete passing;
    pressKey(Qt::Key_Escape);
    EXPECT_FALSE(help.isVisible());
}

TEST_F(FastHelp, AScreenReaderGetsTheWholeEntry) {
    EXPECT_EQ(help.accessibleDescription(), "Rev Limit. Speed of the limiter. Set it low first.");
    EXPECT_EQ(help.findChild<QLabel*>("lblTopic")->accessibleDescription(), "Topic");
    EXPECT_EQ(help.findChild<QLabel*>("lblHelp")->accessibleDescription(), "Help text");
}

}  // namespace
}  // namespace zentaq
