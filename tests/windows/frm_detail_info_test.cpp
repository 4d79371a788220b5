// The detail monitor in the place of the dashboard.
#include "windows/frm_detail_info.h"

#include "windows/window_fixture.h"

namespace zentaq {
namespace {

class DetailMonitor : public WindowTest {
 protected:
    FrmDashBoard& dashboard() { return *windows.dashboard(); }
    FrmDetailInfo& detail() { return dashboard().detail(); }
    void open() {
        activate(windows.main());
        dashboard().showDetail(true);
        QApplication::processEvents();
    }
    QString value(const char* caption) {
        auto* label = detail().findChild<QLabel*>(QString("lblDetail_") + caption);
        return label == nullptr ? "none" : label->text();
    }
    void frame() {
        ++fake.session.live.frames;
        fake.clock.nowUs += 1'000'000;
        dashboard().UPDATE_DISPLAY();
        QApplication::processEvents();
    }
};

TEST_F(DetailMonitor, StandsInThePlaceOfTheDialsAndGivesItBack) {
    open();
    EXPECT_TRUE(detail().isVisible());
    EXPECT_FALSE(dashboard().panel().isVisible());
    EXPECT_TRUE(find<QPushButton>("btnShowDash")->hasFocus());
    find<QPushButton>("btnShowDash")->click();
    EXPECT_FALSE(detail().isVisible());
    EXPECT_TRUE(dashboard().panel().isVisible());
}

TEST_F(DetailMonitor, EscapeLeavesIt) {
    open();
    QKeyEvent escape(QEvent::KeyPress, Qt::Key_Escape, Qt::NoModifier);
    QApplication::sendEvent(&detail(), &escape);
    EXPECT_FALSE(detail().isVisible());
}

TEST_F(DetailMonitor, FollowsTheFrames) {
    open();
    EXPECT_EQ(value("RPM"), "");
    fake.session.live.RPM = 3210;
    frame();
    EXPECT_EQ(value("RPM"), "3210");
    EXPECT_EQ(value("ExtRet"), "-");
}

TEST_F(DetailMonitor, HasAsManyColumnsAsThereIsRoomFor) {
    windows.main().resize(1366, 700);
    open();
    const auto labels = detail().findChildren<QLabel*>("lblDetailCaption");
    ASSERT_GE(labels.size(), 53);
    std::set<int> lefts;
    for (QLabel* label : labels) lefts.insert(label->parentWidget()->x());
    EXPECT_GE(lefts.size(), 5U);
}

TEST_F(DetailMonitor, FoldingTheDashboardLeavesIt) {
    open();
    commands.toggleDashboard();
    QApplication::processEvents();
    EXPECT_FALSE(detail().isVisible());
}

}  // namespace
}  // namespace zentaq
