#include "link/link_summary.h"

#include <gtest/gtest.h>

namespace zentaq {
namespace {

LinkStatus monitoring() {
    LinkStatus status;
    status.title = "Monitoring...";
    status.line1 = "Receiving";
    status.unitLabel = "A Std";
    status.serialNumber = "200001";
    status.port = "3";
    return status;
}

TEST(LinkSummary, TellsTheUnitAndThePort) {
    EXPECT_EQ(linkSummary(monitoring()), "Monitoring...  ORB A Std  S/N 200001  Port 3");
}

TEST(LinkSummary, LeavesOutWhatIsNotKnown) {
    LinkStatus status;
    EXPECT_EQ(linkSummary(status), "");
    status.port = "3";
    EXPECT_EQ(linkSummary(status), "Port 3");
    status.title = "Connecting...";
    EXPECT_EQ(linkSummary(status), "Connecting...  Port 3");
}

TEST(LinkSummary, TellsTheReasonBeforeTheAdviceAndProgressBeforeBoth) {
    LinkStatus status = monitoring();
    status.line2 = "Please check";
    EXPECT_EQ(linkSummary(status), "Monitoring...  Please check");
    status.trouble = "in use by another program";
    EXPECT_EQ(linkSummary(status), "Monitoring...  in use by another program");
    status.progressVisible = true;
    status.progressText = "42%";
    EXPECT_EQ(linkSummary(status), "Monitoring...  42%");
}

}  // namespace
}  // namespace zentaq
