#include "windows/frm_config_link_panel.h"

#include <gtest/gtest.h>

#include <QLabel>

#include "windows/window_fixture.h"

namespace zentaq {
namespace {

class FrameTimesOnThePanel : public WindowTest {
 protected:
    QLabel* times() { return find<QLabel>("lblFrameTimes"); }
    QLabel* line1() { return find<QLabel>("lblCommStatus1"); }
    void show(const char* text) {
        fake.session.linkDisplay.showFrameTimes(text);
        windows.refresh();
        windows.main().refresh();
    }
    void monitoring() {
        fake.session.linkDisplay.COMM_StatusMessage("Monitoring...", "Receiving", "", "Monitor");
    }
};

TEST_F(FrameTimesOnThePanel, TakeThePlaceOfTheFirstLineWhileFramesCome) {
    ASSERT_NE(times(), nullptr);
    monitoring();
    show("");
    EXPECT_TRUE(times()->isHidden());
    EXPECT_FALSE(line1()->isHidden());
    show("53 frames/s: unit 0.4, wire 17.2, adapter 0.0, program 1.3 ms");
    EXPECT_FALSE(times()->isHidden());
    EXPECT_TRUE(line1()->isHidden());
    EXPECT_EQ(times()->text(), "53 frames/s: unit 0.4, wire 17.2, adapter 0.0, program 1.3 ms");
}

TEST_F(FrameTimesOnThePanel, NeverHideAWarning) {
    fake.session.linkDisplay.COMM_StatusMessage("Adapter unplugged", "It has gone.", "", "Warning");
    show("53 frames/s: unit 0.4, wire 17.2, adapter 0.0, program 1.3 ms");
    EXPECT_TRUE(times()->isHidden());
    EXPECT_FALSE(line1()->isHidden());
}

TEST_F(FrameTimesOnThePanel, ExplainTheirWordsInTheTooltip) {
    show("53 frames/s: unit 0.4, wire 17.2, adapter 0.0, program 1.3 ms");
    for (const char* word : {"unit: ", "wire: ", "adapter: ", "program: "}) {
        EXPECT_TRUE(times()->toolTip().contains(QLatin1String(word))) << word;
    }
    show("");
    EXPECT_TRUE(times()->toolTip().isEmpty());
}

TEST_F(FrameTimesOnThePanel, FitOnASmallScreen) {
    windows.main().resize(1366, 768);
    monitoring();
    show("118 frames/s: unit 10.4, wire 17.2, adapter 16.0, program 12.3 ms");
    windows.main().grab();
    EXPECT_LE(times()->fontMetrics().horizontalAdvance(times()->text()), times()->width());
}

TEST_F(FrameTimesOnThePanel, LeaveANameThatLooksLikeHtmlAName) {
    fake.session.linkDisplay.COMM_StatusMessage("Unit", "<b>ORB</b>\x1B", "", "Warning");
    windows.refresh();
    EXPECT_EQ(line1()->text(), "<b>ORB</b>\\x1B");
    EXPECT_EQ(line1()->toolTip(), "<p>&lt;b&gt;ORB&lt;/b&gt;\\x1B</p>")
        << "a tip that looks like HTML is drawn as such";
    fake.session.linkDisplay.COMM_StatusMessage("Unit", "ORB A & co", "", "Warning");
    windows.refresh();
    EXPECT_EQ(line1()->toolTip(), "ORB A & co");
}

}  // namespace
}  // namespace zentaq
