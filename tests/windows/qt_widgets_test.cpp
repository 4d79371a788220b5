#include <gtest/gtest.h>

#include <QApplication>
#include <QComboBox>
#include <QDialog>
#include <QFileDialog>
#include <QInputDialog>
#include <QLabel>
#include <QMessageBox>
#include <QPushButton>
#include <QScreen>
#include <QScrollArea>
#include <QScrollBar>
#include <QTimer>
#include <deque>

#include "app/fake_platform.h"
#include "qt/application.h"
#include "qt/line_model.h"
#include "qt/look.h"
#include "qt/qt_dialogs.h"
#include "qt/value_label.h"
#include "windows/outlined.h"

namespace zentaq {
namespace {

TEST(Look, TextIsReadableByDayAndByNight) {
    for (const DisplayMode mode : {DisplayMode::Day, DisplayMode::Night}) {
        const LookColors colors = lookColors(mode);
        EXPECT_GE(contrast(colors.text, colors.background), 7);
        EXPECT_GE(contrast(colors.text, colors.surface), 7);
        EXPECT_GE(contrast(colors.text, colors.alternate), 7);
        EXPECT_GE(contrast(colors.mutedText, colors.background), 7);
        EXPECT_GE(contrast(colors.accentText, colors.accent), 7);
        EXPECT_GE(contrast(colors.highlightText, colors.highlight), 7);
        EXPECT_GE(contrast(colors.alarm, colors.surface), 4.5);
        EXPECT_GE(contrast(colors.warning, colors.surface), 4.5);
        EXPECT_GE(contrast(colors.good, colors.surface), 4.5);
    }
}

TEST(Look, ChangesThePaletteOfTheWholeProgram) {
    applyLook(*qApp, DisplayMode::Day);
    EXPECT_EQ(qApp->palette().color(QPalette::Window), lookColors(DisplayMode::Day).background);
    applyLook(*qApp, DisplayMode::Night);
    EXPECT_EQ(qApp->palette().color(QPalette::Window), lookColors(DisplayMode::Night).background);
    EXPECT_EQ(appliedLook(*qApp), DisplayMode::Night);
}

TEST(ValueLabel, KeepsItsSizeWhateverTheNumber) {
    ValueLabel label("-000.0");
    label.showValue("1.1");
    const QSize narrow = label.sizeHint();
    label.showValue("-888.8");
    EXPECT_EQ(label.sizeHint(), narrow);
    EXPECT_EQ(label.text(), "-888.8");
}

TEST(ValueLabel, GrowsWithItsFont) {
    ValueLabel label("000");
    const QSize before = label.sizeHint();
    label.setFont(valueFont(2.0));
    EXPECT_GT(label.sizeHint().width(), before.width());
    EXPECT_GT(label.sizeHint().height(), before.height());
}

TEST(LineModel, TellsOnlyTheNewLines) {
    std::deque<std::string> lines{"one"};
    LineModel model(lines);
    EXPECT_TRUE(model.sync());
    std::vector<std::pair<int, int>> inserted;
    int resets = 0;
    QObject::connect(&model, &QAbstractItemModel::rowsInserted, &model,
                     [&](const QModelIndex&, int first, int last) { inserted.emplace_back(first, last); });
    QObject::connect(&model, &QAbstractItemModel::modelReset, &model, [&] { ++resets; });
    lines.push_back("two");
    lines.push_back("three");
    EXPECT_TRUE(model.sync());
    EXPECT_EQ(inserted, (std::vector<std::pair<int, int>>{{1, 2}}));
    EXPECT_EQ(resets, 0);
    EXPECT_FALSE(model.sync());
}

TEST(LineModel, ShowsAResultThatWasAddedToTheLastLine) {
    std::deque<std::string> lines{"  - Converting Data..."};
    LineModel model(lines);
    model.sync();
    int changes = 0;
    QObject::connect(&model, &QAbstractItemModel::dataChanged, &model, [&] { ++changes; });
    lines.back() += " SUCCESS!";
    model.sync();
    EXPECT_EQ(changes, 1);
    EXPECT_EQ(model.data(model.index(0), Qt::DisplayRole).toString(), "  - Converting Data... SUCCESS!");
}

TEST(LineModel, StartsAnewWhenTheListWasCleared) {
    std::deque<std::string> lines(100, "old");
    LineModel model(lines);
    model.sync();
    lines = {"new"};
    EXPECT_FALSE(model.data(model.index(50), Qt::DisplayRole).isValid());
    EXPECT_TRUE(model.sync());
    EXPECT_EQ(model.rowCount(), 1);
}

TEST(FileFilters, BecomeNameFilters) {
    EXPECT_EQ(nameFilters("Zentaq4 File|*.ZQ4*|Zentaq BIN file|*.BIN"),
              (QStringList{"Zentaq4 File (*.ZQ4*)", "Zentaq BIN file (*.BIN)"}));
    EXPECT_EQ(nameFilters("Norvalia Firmware(*.nv3)|*.nv3"), QStringList{"Norvalia Firmware (*.nv3)"});
    EXPECT_EQ(nameFilters("Half"), QStringList{});
}

TEST(FileFilters, GiveTheBareExtension) {
    EXPECT_EQ(bareExtension("ZQ4OA"), "ZQ4OA");
    EXPECT_EQ(bareExtension(".ZQ4OA"), "ZQ4OA");
    EXPECT_EQ(bareExtension("Zentaq4 ORBA File|*.ZQ4OA"), "ZQ4OA");
}

/// Does something to the dialog that is about to open.
template <typename Dialog, typename Action>
void whenOpen(Action action) {
    QTimer::singleShot(0, [action] {
        auto* dialog = qobject_cast<Dialog*>(QApplication::activeModalWidget());
        ASSERT_NE(dialog, nullptr);
        action(*dialog);
    });
}

TEST(QtDialogs, ABoxShowsTitleAndTextAndAnswersItsButton) {
    QtDialogs dialogs;
    QString title;
    QString text;
    whenOpen<QMessageBox>([&](QMessageBox& box) {
        title = box.windowTitle();
        text = box.text();
        box.button(QMessageBox::No)->click();
    });
    EXPECT_EQ(dialogs.show({"Print", "Are you sure?\nReally?", Icon::Question, Buttons::YesNo}), Answer::No);
    EXPECT_EQ(title, "Print");
    EXPECT_EQ(text, "Are you sure?\nReally?");
}

TEST(QtDialogs, ABoxShowsTextsFromOutsideEscapedAndNeverTheWholeOfAFile) {
    QtDialogs dialogs;
    QString title;
    QString text;
    const auto look = [&](QMessageBox& box) {
        title = box.windowTitle();
        text = box.text();
        box.close();
    };
    whenOpen<QMessageBox>(look);
    dialogs.show({.title = "Tune\xE2\x80\xAE\nB", .text = "Calibration \x1B[1m\xE2\x80\x8B<b>x</b>\nkept"});
    EXPECT_EQ(title, "Tune\\u{202E}\\nB");
    EXPECT_EQ(text, "Calibration \\x1B[1m\\u{200B}<b>x</b>\nkept");
    whenOpen<QMessageBox>(look);
    dialogs.show({.title = "Failed", .text = std::string(35'000, 'x') + " is no number"});
    EXPECT_LE(text.size(), 3000);
    EXPECT_TRUE(text.endsWith(" is no number"));
}

TEST(QtDialogs, AQuestionForATextShowsANameThatLooksLikeHtmlAsAName) {
    QtDialogs dialogs;
    bool shown = false;
    whenOpen<QInputDialog>([&](QInputDialog& box) {
        EXPECT_EQ(box.labelText(), "Name of <b>x</b>\\x1B");
        for (const auto* label : box.findChildren<QLabel*>()) {
            shown = true;
            EXPECT_EQ(label->textFormat(), Qt::PlainText);
        }
        box.reject();
    });
    dialogs.input("Create", "Name of <b>x</b>\x1B", "");
    EXPECT_TRUE(shown);
}

TEST(QtDialogs, ALineThatIsTooLongForTheScreenIsBrokenAndNotCut) {
    QtDialogs dialogs;
    std::string text = "The first line.\n";
    for (int i = 0; i < 60; ++i) text += "There is now no firmware. ";
    bool shown = false;
    whenOpen<QMessageBox>([&](QMessageBox& box) {
        const auto* label = box.findChild<QLabel*>("qt_msgbox_label");
        ASSERT_NE(label, nullptr);
        shown = true;
        EXPECT_LE(label->geometry().right(), box.width());
        EXPECT_GE(label->height(), label->fontMetrics().height() * 4);
        box.close();
    });
    dialogs.show({.title = "Failed", .text = text, .icon = Icon::Exclamation});
    EXPECT_TRUE(shown);
}

TEST(QtDialogs, ATextThatIsHigherThanTheScreenScrollsAndTheButtonsStayInSight) {
    QtDialogs dialogs;
    std::string lines = "line 1";
    std::string paragraph;
    for (int i = 2; i <= 90; ++i) lines += "\nline " + std::to_string(i);
    for (int i = 0; i < 110; ++i) paragraph += "There is now no firmware. ";
    for (const std::string& text : {lines, lines + "\n" + paragraph}) {
        bool shown = false;
        whenOpen<QMessageBox>([&](QMessageBox& box) {
            const auto* area = box.findChild<QScrollArea*>("boxText");
            ASSERT_NE(area, nullptr);
            shown = true;
            EXPECT_LE(box.height(), box.screen()->availableGeometry().height());
            EXPECT_TRUE(box.rect().contains(box.button(QMessageBox::Ok)->geometry()));
            EXPECT_GT(area->verticalScrollBar()->maximum(), 0);
            EXPECT_LE(area->widget()->width(), area->viewport()->width());
            box.close();
        });
        dialogs.show({.title = "Refused", .text = text, .icon = Icon::Exclamation});
        EXPECT_TRUE(shown);
    }
}

TEST(QtDialogs, AShortTextHasNothingToScroll) {
    QtDialogs dialogs;
    bool shown = false;
    whenOpen<QMessageBox>([&](QMessageBox& box) {
        shown = true;
        EXPECT_EQ(box.findChild<QScrollArea*>("boxText"), nullptr);
        box.close();
    });
    dialogs.show({.title = "Refused", .text = "one\ntwo\nthree", .icon = Icon::Exclamation});
    EXPECT_TRUE(shown);
}

TEST(QtDialogs, ClosingABoxByOtherMeansDeclines) {
    QtDialogs dialogs;
    whenOpen<QMessageBox>([](QMessageBox& box) { box.close(); });
    EXPECT_EQ(dialogs.show({"Shutdown", "?", Icon::Question, Buttons::OkCancel}), Answer::Cancel);
    whenOpen<QMessageBox>([](QMessageBox& box) { box.close(); });
    EXPECT_EQ(dialogs.show({"File", "?", Icon::Question, Buttons::YesNo}), Answer::No);
}

TEST(QtDialogs, ABoxThatWaitsHasCancelAlone) {
    QtDialogs dialogs;
    const Box waiting{.title = "Waiting for the Disk", .text = "Opening . . .", .buttons = Buttons::Cancel};
    whenOpen<QMessageBox>([](QMessageBox& box) {
        EXPECT_EQ(box.buttons().size(), 1);
        box.button(QMessageBox::Cancel)->click();
    });
    EXPECT_EQ(dialogs.show(waiting), Answer::Cancel);
    whenOpen<QMessageBox>([](QMessageBox& box) { box.close(); });
    EXPECT_EQ(dialogs.show(waiting), Answer::Cancel);
}

TEST(QtDialogs, ABoxGoesWithWhatItIsAboutAndDeclines) {
    QtDialogs dialogs;
    bool running = true;
    whenOpen<QMessageBox>([&](QMessageBox& box) {
        EXPECT_TRUE(boxEndsByItself());
        running = false;
        // One that stays would hold the test.
        QTimer::singleShot(5000, &box, [&box] {
            ADD_FAILURE() << "the box stands";
            box.close();
        });
    });
    EXPECT_EQ(dialogs.show({.title = "Transfer Running",
                            .text = "End the program all the same?",
                            .icon = Icon::Critical,
                            .buttons = Buttons::YesNo,
                            .stands = [&] { return running; }}),
              Answer::No);
    EXPECT_FALSE(boxEndsByItself());
}

TEST(QtDialogs, TheKeyAtHandAgreesUnlessTheBoxSaysOtherwise) {
    QtDialogs dialogs;
    const auto answerAtHand = [&](Buttons buttons, bool declines) {
        whenOpen<QMessageBox>([](QMessageBox& box) { box.defaultButton()->click(); });
        return dialogs.show(
            {.title = "t", .text = "x", .icon = Icon::Question, .buttons = buttons, .declines = declines});
    };
    EXPECT_EQ(answerAtHand(Buttons::YesNo, false), Answer::Yes);
    EXPECT_EQ(answerAtHand(Buttons::YesNo, true), Answer::No);
    EXPECT_EQ(answerAtHand(Buttons::OkCancel, false), Answer::Ok);
    EXPECT_EQ(answerAtHand(Buttons::OkCancel, true), Answer::Cancel);
    EXPECT_EQ(answerAtHand(Buttons::Ok, true), Answer::Ok);
}

TEST(QtDialogs, SavingAddsTheDefaultExtensionAsksNothingAndCreatesNothing) {
    const TemporaryFolder folder;
    QtDialogs dialogs;
    FileRequest request;
    request.title = "Zentaq4 User Calibration Files";
    request.folder = folder.path();
    request.filter = "Zentaq4 File|*.ZQ4*|Zentaq4 ORBA File|*.ZQ4OA";
    request.filterIndex = 2;
    request.defaultExtension = "ZQ4OA";
    QString filter;
    whenOpen<QFileDialog>([&](QFileDialog& dialog) {
        filter = dialog.selectedNameFilter();
        EXPECT_EQ(dialog.windowTitle(), "Zentaq4 User Calibration Files");
        dialog.selectFile("mine");
        QMetaObject::invokeMethod(&dialog, "accept");
    });
    EXPECT_EQ(dialogs.saveFile(request), folder.path("mine.ZQ4OA"));
    EXPECT_EQ(filter, "Zentaq4 ORBA File (*.ZQ4OA)");
    EXPECT_FALSE(std::filesystem::exists(folder.path("mine.ZQ4OA")));
}

TEST(QtDialogs, ForOpeningAndForSavingItIsThatOfTheDesktopAndAsksNothingOfItsOwn) {
    QtDialogs dialogs;
    int looks = 0;
    const auto look = [&](QFileDialog& dialog) {
        ++looks;
        EXPECT_FALSE(dialog.testOption(QFileDialog::DontUseNativeDialog));
        EXPECT_TRUE(dialog.testOption(QFileDialog::DontConfirmOverwrite));
        dialog.reject();
    };
    whenOpen<QFileDialog>(look);
    dialogs.openFile({});
    whenOpen<QFileDialog>(look);
    dialogs.saveFile({});
    EXPECT_EQ(looks, 2);
}

TEST(QtDialogs, TheFolderOfAFileDialogAsksForNoMoreRoomBehindItsReading) {
    QtDialogs dialogs;
    int looks = 0;
    whenOpen<QFileDialog>([&](QFileDialog& dialog) {
        ++looks;
        auto* path = dialog.findChild<QComboBox*>("lookInCombo");
        ASSERT_NE(path, nullptr);
        const int asked = path->minimumSizeHint().width();
        path->addItem(QString(200, 'W'));
        EXPECT_EQ(path->minimumSizeHint().width(), asked);
        dialog.reject();
    });
    dialogs.openFile({});
    EXPECT_EQ(looks, 1);
}

TEST(QtDialogs, CancellingAFileDialogGivesAnEmptyName) {
    QtDialogs dialogs;
    whenOpen<QFileDialog>([](QFileDialog& dialog) { dialog.reject(); });
    EXPECT_EQ(dialogs.openFile({}), "");
}

TEST(Application, TellsAFailureOfAnEventHandlerAndGoesOn) {
    auto* application = qobject_cast<Application*>(qApp);
    ASSERT_NE(application, nullptr);
    std::vector<std::string> told;
    application->onFailure([&](const std::string& why) { told.push_back(why); });
    QTimer::singleShot(0, application, [] { throw Failure("a handler failed"); });
    QTimer::singleShot(0, application, [] { throw Failure("another one at the same time"); });
    for (int i = 0; i < 5; ++i) QCoreApplication::processEvents();
    EXPECT_EQ(told, std::vector<std::string>{"a handler failed"});
    QTimer::singleShot(0, application, [] { throw Failure("a later one"); });
    for (int i = 0; i < 5; ++i) QCoreApplication::processEvents();
    EXPECT_EQ(told.back(), "a later one");
    application->onFailure({});
}

}  // namespace
}  // namespace zentaq
