#include <gtest/gtest.h>

#include "link/link_bench.h"

namespace zentaq {
namespace {

class LinkLossStatus : public LinkBench {};

TEST_F(LinkLossStatus, ALostLinkNoLongerSaysWhatItsLastReplyWas) {
    identify(200000, "ZQA-404099");
    link.Send_ORB_Command("F");
    ticks(90);
    EXPECT_EQ(link.linked().LinkedUnitKind, 0);
    EXPECT_EQ(link.status().title, "Connecting...");
    EXPECT_EQ(link.status().line1, "The unit does not answer.");
    EXPECT_EQ(link.status().image, LinkImage::Warning);
    EXPECT_EQ(link.status().send, Lamp::Rest);
    EXPECT_EQ(link.status().receive, Lamp::Rest);
}

}  // namespace
}  // namespace zentaq
