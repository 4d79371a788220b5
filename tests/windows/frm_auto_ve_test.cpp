// AutoVE on the open table, through its windows.
#include "windows/frm_auto_ve.h"

#include <QPushButton>
#include <chrono>
#include <cmath>
#include <thread>

#include "app/flight_record.h"
#include "windows/table_windows_fixture.h"

namespace zentaq {
namespace {

class AutoVeOverTheTable : public TableWindowsTest {
 protected:
    AutoVeOverTheTable() {
        unit().set("EGO_LMT", 15);
        unit().set("VE", 12.4, 17);
        openVe();
    }
    void openAutoVe() {
        tableAction("AutoVE")->trigger();
        settle();
        dialog = form().findChild<FrmAutoVE*>();
        ASSERT_NE(dialog, nullptr);
    }
    template <typename Control>
    Control* in(const char* name) {
        return dialog->findChild<Control*>(name);
    }
    /// Speeds go up by 500 rpm and pressures by 5 kPa: stored row 1, column 1 is 1000 rpm at 25 kPa.
    std::string log(int rows) const {
        std::string text = "Frame,RPM,MAP,EGOC\n";
        for (int i = 1; i <= rows; ++i) text += std::to_string(i) + ",1100,26,10\n";
        return fake.folder.write("run.dat", text);
    }
    void runLog(int rows) {
        fake.dialogs.files = {log(rows)};
        in<QPushButton>("cmdDataLogAutoVE")->click();
        for (int i = 0; i < 500 && fake.session.AutoVEActive; ++i) {
            settle();
            std::this_thread::sleep_for(std::chrono::milliseconds(1));
        }
        settle();
    }
    QString cell(int row, int column) { return grid().model()->index(row - 1, column - 1).data().toString(); }

    FrmAutoVE* dialog = nullptr;
};

TEST_F(AutoVeOverTheTable, ItsWindowSaysWhatItIsAndWhatCanBeDone) {
    openAutoVe();
    EXPECT_EQ(dialog->windowTitle(), "Start AutoVE");
    EXPECT_TRUE(dialog->isModal());
    EXPECT_FALSE(in<QPushButton>("cmdLiveAutoVE")->isEnabled());
    EXPECT_EQ(in<QPushButton>("cmdLiveAutoVE")->text(), "Please connect ECU.");
    EXPECT_EQ(in<QPushButton>("cmdDataLogAutoVE")->text(), "Using a data log");
    EXPECT_EQ(in<QPushButton>("cmdCancel")->text(), "Exit");
    EXPECT_EQ(in<QLineEdit>("txtAutoVEConst")->text(), "50");
    in<QPushButton>("cmdCancel")->click();
    settle();
    EXPECT_EQ(form().findChild<FrmAutoVE*>(), nullptr);
}

TEST_F(AutoVeOverTheTable, KeptChangesAreInTheCalibration) {
    openAutoVe();
    fake.dialogs.answers = {Answer::Yes};
    runLog(300);
    EXPECT_GT(ve(17), 12.4F);
    EXPECT_EQ(ve(17), std::round(ve(17)));
    EXPECT_THAT(fake.dialogs.boxes, testing::Contains(testing::Field(&Box::title, "Save")));
    for (const Box& box : fake.dialogs.boxes) std::cerr << box.title << ": " << box.text << "\n";
    EXPECT_TRUE(fake.session.DataModified);
}

TEST_F(AutoVeOverTheTable, ChangesThatAreNotKeptLeaveTheTableAsItWas) {
    openAutoVe();
    fake.dialogs.answers = {Answer::No};
    runLog(300);
    EXPECT_EQ(ve(17), 12.4F);
    EXPECT_EQ(cell(15, 2), "12.4");
}

TEST_F(AutoVeOverTheTable, ClosingTheTableAsksAndEndsIt) {
    openAutoVe();
    fake.dialogs.files = {log(200000)};
    in<QPushButton>("cmdDataLogAutoVE")->click();
    settle();
    ASSERT_TRUE(fake.session.AutoVEActive);
    fake.dialogs.answers = {Answer::No};
    form().close();
    settle();
    EXPECT_FALSE(fake.session.AutoVEActive);
    EXPECT_EQ(lastBox().title, "AutoVE");
    EXPECT_THAT(lastBox(), Tells("Leaving the VE table turns off AutoVE."));
    EXPECT_EQ(ve(17), 12.4F);
}

}  // namespace
}  // namespace zentaq
