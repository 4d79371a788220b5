// Each fault of a layout, made on purpose, is found; what is whole tells nothing.
#include "windows/layout_faults.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QCheckBox>
#include <QComboBox>
#include <QHeaderView>
#include <QListWidget>
#include <QScrollArea>
#include <QSplitter>
#include <QTabBar>
#include <QTableWidget>
#include <QToolButton>
#include <QVBoxLayout>

namespace zentaq {
namespace {

using testing::AllOf;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

class LayoutFaults : public testing::Test {
 protected:
    static constexpr QSize size{400, 300};
    QWidget window;

    LayoutFaults() {
        window.setObjectName("frmTest");
        window.resize(size);
    }
    template <typename Control>
    Control* put(Control* control, const char* name, const QRect& place) {
        control->setObjectName(name);
        control->setParent(&window);
        control->setGeometry(place);
        return control;
    }
    std::vector<std::string> faults() {
        window.show();
        QApplication::processEvents();
        return layoutFaults(window, window.geometry());
    }
};

TEST_F(LayoutFaults, AreNoneWhereEverythingHasItsRoom) {
    put(new QLabel("Rev limit"), "lblRev", {10, 10, 200, 40});
    put(new QPushButton("Save"), "cmdSave", {10, 60, 200, 40});
    put(new QComboBox, "cmbEngine", {10, 110, 200, 40});
    EXPECT_THAT(faults(), IsEmpty());
}

TEST_F(LayoutFaults, TellALabelThatIsCut) {
    auto* label = put(new QLabel("Maximum engine rev limit"), "lblRev", {10, 10, 40, 40});
    const QSize needed = label->fontMetrics().size(0, label->text());
    EXPECT_THAT(
        faults(),
        ElementsAre("clipped text: frmTest/lblRev (QLabel): \"Maximum engine rev limit\" has 40x40 of " +
                    std::to_string(needed.width()) + "x" + std::to_string(needed.height()) +
                    " (room 400x300)"));
}

TEST_F(LayoutFaults, TellALabelWhoseLastLineIsCut) {
    auto* label =
        put(new QLabel("Maximum engine rev limit of the engine in hand"), "lblRev", {10, 10, 120, 22});
    label->setWordWrap(true);
    EXPECT_THAT(faults(), ElementsAre(HasSubstr("clipped text: frmTest/lblRev")));
    label->resize(120, 200);
    EXPECT_THAT(faults(), IsEmpty());
}

TEST_F(LayoutFaults, TellAButtonACheckBoxAndAToolButtonThatAreCut) {
    put(new QPushButton("Auto Detect Port"), "cmdDetect", {10, 10, 60, 40});
    put(new QCheckBox("Show Console at Start Up"), "chkConsole", {10, 60, 60, 40});
    auto* tool = put(new QToolButton, "cmdDock", {10, 110, 30, 40});
    tool->setText("Undock");
    const std::vector<std::string> found = faults();
    for (const char* name : {"cmdDetect", "chkConsole", "cmdDock"}) {
        EXPECT_THAT(found, testing::Contains(HasSubstr(std::string("clipped text: frmTest/") + name)));
    }
}

TEST_F(LayoutFaults, TellAChoiceThatIsElided) {
    auto* box = put(new QComboBox, "cmbEngine", {10, 10, 70, 40});
    box->addItem("8 Cylinder, Common Coil");
    EXPECT_THAT(faults(),
                testing::Contains(HasSubstr("clipped text: frmTest/cmbEngine (QComboBox): \"8 Cyl")));
}

TEST_F(LayoutFaults, LeaveOutAChoiceWithAllOfItInTheToolTip) {
    auto* box = put(new QComboBox, "cmbEngine", {10, 10, 120, 40});
    box->setSizeAdjustPolicy(QComboBox::AdjustToMinimumContentsLengthWithIcon);
    box->addItem("8 Cylinder, Common Coil, Distributor");
    box->setToolTip(box->currentText());
    EXPECT_THAT(faults(), IsEmpty());
}

TEST_F(LayoutFaults, ALabelIsNotExcusedByItsToolTip) {
    put(new QLabel("Rev limit"), "lblRev", {10, 10, 20, 40})->setToolTip("Rev limit");
    EXPECT_THAT(faults(), ElementsAre(HasSubstr("clipped text: frmTest/lblRev")));
}

TEST_F(LayoutFaults, TellAnEntryOfAListThatIsElided) {
    auto* list = put(new QListWidget, "lstSensors", {10, 10, 100, 100});
    list->addItem("1 bar");
    list->addItem("3 bar, of the second pattern, in pounds per square inch");
    list->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    list->setResizeMode(QListView::Adjust);
    list->setTextElideMode(Qt::ElideRight);
    list->item(1)->setSizeHint({50, 20});
    EXPECT_THAT(faults(), ElementsAre(HasSubstr("\"3 bar, of the second")));
}

TEST_F(LayoutFaults, TellAHeaderThatIsCut) {
    auto* table = put(new QTableWidget(1, 2), "grdTable", {10, 10, 300, 100});
    table->setHorizontalHeaderLabels({"RPM", "Manifold pressure in kPa"});
    table->setColumnWidth(1, 32);
    EXPECT_THAT(faults(), testing::Contains(HasSubstr("\"Manifold pressure in kPa\" has 32x")));
}

TEST_F(LayoutFaults, TellACellWhoseDigitsAreCutAndNotOneThatLacksRoomForLetters) {
    auto* table = put(new QTableWidget(1, 1), "grdTable", {10, 10, 300, 100});
    table->setItem(0, 0, new QTableWidgetItem("88"));
    table->setWordWrap(false);
    table->verticalHeader()->setMinimumSectionSize(1);
    table->verticalHeader()->hide();
    const QFontMetrics metrics = table->fontMetrics();
    table->setRowHeight(0, metrics.height() - 1);
    EXPECT_THAT(faults(), IsEmpty());
    table->setRowHeight(0, metrics.capHeight());
    EXPECT_THAT(faults(), ElementsAre(HasSubstr("\"88\"")));
}

TEST_F(LayoutFaults, TellATabThatIsCut) {
    auto* bar = put(new QTabBar, "tabPages", {10, 10, 90, 40});
    bar->setUsesScrollButtons(false);
    bar->setElideMode(Qt::ElideRight);
    bar->addTab("Communications");
    bar->addTab("Data points");
    EXPECT_THAT(faults(), testing::Contains(HasSubstr("\"Communications\"")));
}

TEST_F(LayoutFaults, TellAControlOutsideItsParent) {
    put(new QWidget, "fraOut", {380, 10, 60, 40});
    EXPECT_THAT(faults(), ElementsAre(AllOf(HasSubstr("outside its parent: frmTest/fraOut (QWidget)"),
                                            HasSubstr("60x40 at 380,10 in 400x300"))));
}

TEST_F(LayoutFaults, WhatIsScrolledDownToIsInItsPlace) {
    auto* area = put(new QScrollArea, "scrGeneral", {10, 10, 200, 200});
    auto* page = new QWidget;
    page->setFixedSize(150, 800);
    area->setWidget(page);
    EXPECT_THAT(faults(), IsEmpty());
}

TEST_F(LayoutFaults, TellAPageThatScrollsSideways) {
    auto* area = put(new QScrollArea, "scrGeneral", {10, 10, 200, 200});
    auto* page = new QWidget;
    page->setFixedSize(800, 100);
    area->setWidget(page);
    EXPECT_THAT(faults(), ElementsAre(HasSubstr("scrolls sideways: frmTest/scrGeneral")));
}

TEST_F(LayoutFaults, TellAWindowOutsideTheScreen) {
    window.show();
    const QRect small(window.geometry().topLeft(), QSize(300, 300));
    EXPECT_THAT(layoutFaults(window, small),
                ElementsAre(HasSubstr("outside the screen: frmTest (QWidget): 400x300")));
}

TEST_F(LayoutFaults, TellTwoControlsOnTopOfEachOther) {
    put(new QWidget, "fraOne", {10, 10, 100, 100});
    put(new QWidget, "fraTwo", {100, 100, 100, 100});
    EXPECT_THAT(faults(), ElementsAre("overlap: frmTest/fraOne (QWidget): 100x100 at 10,10 and "
                                      "frmTest/fraTwo (QWidget) 100x100 at 100,100 (room 400x300)"));
}

TEST_F(LayoutFaults, AVeilPartsWhatItDimsFromWhatStandsOnIt) {
    put(new QWidget, "fraGauge", {10, 10, 100, 100});
    auto* veil = put(new QWidget, "fraVeil", window.rect());
    put(new QWidget, "fraNotice", {50, 50, 100, 40});
    EXPECT_EQ(faults().size(), 3U) << "each two of them";
    veil->setAttribute(Qt::WA_TransparentForMouseEvents);
    EXPECT_THAT(faults(), IsEmpty());
    put(new QWidget, "fraOther", {60, 60, 100, 40})->show();
    EXPECT_THAT(faults(), ElementsAre(HasSubstr("overlap: frmTest/fraNotice")));
}

TEST_F(LayoutFaults, NeighboursMayShareALine) {
    put(new QWidget, "fraOne", {10, 10, 100, 100});
    put(new QWidget, "fraTwo", {109, 10, 100, 100});
    EXPECT_THAT(faults(), IsEmpty());
}

TEST_F(LayoutFaults, TellAControlThatIsSqueezed) {
    auto* part = put(new QWidget, "fraPart", {10, 10, 100, 50});
    auto* column = new QVBoxLayout(part);
    for (int i = 0; i < 4; ++i) column->addWidget(new QLineEdit(part));
    EXPECT_THAT(faults(), testing::Contains(HasSubstr("squeezed: frmTest/fraPart (QWidget): 100x50 of ")));
}

TEST_F(LayoutFaults, TellWhatASplitterHasSwallowed) {
    auto* split = put(new QSplitter, "splMain", {10, 10, 300, 200});
    split->addWidget(new QListWidget);
    auto* gone = new QListWidget;
    gone->setObjectName("lstGone");
    split->addWidget(gone);
    split->setSizes({300, 0});
    EXPECT_THAT(faults(), testing::Contains(AllOf(HasSubstr("lstGone"))));
}

TEST_F(LayoutFaults, LeaveOutWhatIsHidden) {
    put(new QLabel("Maximum engine rev limit"), "lblRev", {10, 10, 20, 40})->hide();
    EXPECT_THAT(faults(), IsEmpty());
}

}  // namespace
}  // namespace zentaq
