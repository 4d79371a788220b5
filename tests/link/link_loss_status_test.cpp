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

TEST_F(LinkLossStatus, APortThatCannotBeOpenedIsNotTakenForAUnitThatDoesNotAnswer) {
    port.refuseAll();
    ASSERT_FALSE(link.RS232_Initialize(3));
    ASSERT_FALSE(link.status().trouble.empty());
    const std::string trouble = link.status().trouble;
    link.Send_ORB_Command("E");  // as the poller does, into the void
    ticks(1100);
    ASSERT_TRUE(link.CurrentCommand().empty());
    EXPECT_EQ(statusTexts(), (Texts{"No Connection Mode", "Port is Currently Not Available.",
                                    "Please Check your Serial Connection and try again"}));
    EXPECT_EQ(link.status().trouble, trouble) << "the system's reason";
    EXPECT_EQ(link.status().image, LinkImage::NoConnect);
    EXPECT_FALSE(link.status().connected);
}

TEST_F(LinkLossStatus, TheReasonGoesWithTheTrouble) {
    port.refuse(3);
    link.RS232_Initialize(3);
    ASSERT_FALSE(link.status().trouble.empty());
    link.RS232_Initialize(1);
    EXPECT_EQ(link.status().trouble, "");
}

}  // namespace
}  // namespace zentaq
