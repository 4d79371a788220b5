// What the program prints, into a document in the place of a printer.
#include <QPrinter>
#include <QToolBar>
#include <fstream>

#include "qt/look.h"
#include "windows/window_fixture.h"

namespace zentaq {
namespace {

using ::testing::Contains;
using ::testing::HasSubstr;

class Printing : public WindowTest {
 protected:
    Printing() {
        windows.choosePrinter = [this](QPrinter& printer, QWidget*) {
            ++asked;
            printer.setOutputFormat(QPrinter::PdfFormat);
            printer.setOutputFileName(QString::fromStdString(paper));
            return agreed;
        };
        openCalibration();
    }
    const std::deque<std::string>& log() { return fake.session.console.lines(); }
    std::string document() const {
        std::ifstream file(paper, std::ios::binary);
        return {std::istreambuf_iterator<char>(file), {}};
    }
    void pressToolbar() {
        auto* bar = windows.main().findChild<QToolBar*>("Toolbar1");
        for (QAction* action : bar->actions()) {
            if (action->text() == "Print") action->trigger();
        }
        QApplication::processEvents();
    }

    std::string paper = fake.folder.path("paper.pdf");
    int asked = 0;
    bool agreed = true;
};

TEST_F(Printing, TheCalibrationIsPrintedAsAListing) {
    windows.main().run("mnuPrintBIN");
    EXPECT_EQ(asked, 1);
    EXPECT_THAT(document(), testing::StartsWith("%PDF-"));
    EXPECT_THAT(log(), Contains(HasSubstr("USER: Print .BIN File Requested.")));
    EXPECT_THAT(log(), Contains(AllOf(HasSubstr("Printing Bin File Infomation..."), HasSubstr("SUCCESS!"))));
}

TEST_F(Printing, WhoGivesTheDialogUpPrintsNothing) {
    agreed = false;
    windows.main().run("mnuPrintBIN");
    windows.main().run("mnuPrintCurrentForm");
    EXPECT_EQ(asked, 2);
    EXPECT_EQ(document(), "");
    EXPECT_THAT(log(), Contains(HasSubstr("Print Request Aborted.")).Times(2));
    EXPECT_THAT(log(), testing::Not(Contains(HasSubstr("Requested."))));
}

TEST_F(Printing, TheFormInFrontIsPrintedAndTheLookStays) {
    windows.nightMode();
    windows.main().run("mnuPrintCurrentForm");
    EXPECT_THAT(document(), testing::StartsWith("%PDF-"));
    EXPECT_THAT(log(), Contains(HasSubstr("USER: Print Current Form Requested.")));
    EXPECT_EQ(appliedLook(*qApp), DisplayMode::Night);
}

int pagesOf(const std::string& pdf) {
    int pages = 0;
    for (std::size_t at = pdf.find("/Type /Page\n"); at != std::string::npos;
         at = pdf.find("/Type /Page\n", at + 1))
        ++pages;
    return pages;
}

TEST_F(Printing, WhatTheScreenShowsAPartOfIsPrintedWholeBehindThePictureOfTheForm) {
    auto* tree = find<QTreeWidget>("treeZentaq");
    const auto open = [&](const char* page) {
        Q_EMIT tree->itemActivated(tree->findItems(page, Qt::MatchExactly | Qt::MatchRecursive).value(0), 0);
        for (int i = 0; i < 3; ++i) QApplication::processEvents();
    };
    windows.main().resize(900, 480);
    open("Advanced Parameters");
    windows.main().run("mnuPrintCurrentForm");
    EXPECT_EQ(pagesOf(document()), 2) << "its fields have no room on the screen";
    windows.main().resize(1900, 1400);
    open("Idle Advance");
    windows.main().run("mnuPrintCurrentForm");
    EXPECT_EQ(pagesOf(document()), 1);
}

TEST_F(Printing, ALongOverviewIsPrintedToItsEnd) {
    for (int i = 0; i < 256; ++i) fake.session.currentUnitObject().set("VE", 1, i);
    windows.main().run("mnuPrintCurrentForm");
    windows.showUnit();
    windows.main().resize(900, 480);
    QApplication::processEvents();
    windows.main().run("mnuPrintCurrentForm");
    // 256 changes and what is in doubt, 54 lines a page, behind the picture.
    EXPECT_GE(pagesOf(document()), 6);
}

TEST_F(Printing, TheToolbarAsksFirstAndPrintsWhatTheSettingSays) {
    fake.dialogs.answers.push_back(Answer::No);
    pressToolbar();
    EXPECT_EQ(lastBox().title, "Print");
    EXPECT_EQ(lastBox().text, "Are you sure you want to send this information to the Printer?");
    EXPECT_EQ(asked, 0);
    fake.settings.set("System", "Print", "1");
    fake.dialogs.answers.push_back(Answer::Yes);
    pressToolbar();
    EXPECT_THAT(log(), Contains(HasSubstr("USER: Print .BIN File Requested.")));
    fake.settings.set("System", "Print", "0");
    fake.dialogs.answers.push_back(Answer::Yes);
    pressToolbar();
    EXPECT_THAT(log(), Contains(HasSubstr("USER: Print Current Form Requested.")));
}

TEST_F(Printing, APaperThatCannotBeWrittenIsSaid) {
    paper = fake.folder.path("no/such/folder/paper.pdf");
    windows.main().run("mnuPrintCurrentForm");
    EXPECT_EQ(lastBox().title, "Error 1000");
    EXPECT_EQ(lastBox().text,
              "Error 1000:\nThis form cannot be printed.\nCheck Printer Setup and try again.");
}

TEST_F(Printing, WithoutACalibrationThereIsNoListing) {
    commands.files.close();
    commands.printing.print(PrintCommands::calibrationFile);
    EXPECT_EQ(lastBox().title, "Error 1003");
    EXPECT_EQ(asked, 0);
}

}  // namespace
}  // namespace zentaq
