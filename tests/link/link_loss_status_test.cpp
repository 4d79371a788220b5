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
    EXPECT_EQ(host.linkDisplay.status().title, "Connecting...");
    EXPECT_EQ(host.linkDisplay.status().line1, "The unit does not answer.");
    EXPECT_EQ(host.linkDisplay.status().image, LinkImage::Warning);
    EXPECT_EQ(host.linkDisplay.status().send, Lamp::Rest);
    EXPECT_EQ(host.linkDisplay.status().receive, Lamp::Rest);
}

TEST_F(LinkLossStatus, APortThatCannotBeOpenedIsNotTakenForAUnitThatDoesNotAnswer) {
    port.refuseAll();
    ASSERT_FALSE(link.RS232_Initialize(3));
    ASSERT_FALSE(host.linkDisplay.status().trouble.empty());
    const std::string trouble = host.linkDisplay.status().trouble;
    link.Send_ORB_Command("E");  // as the poller does, into the void
    ticks(1100);
    ASSERT_TRUE(link.CurrentCommand().empty());
    EXPECT_EQ(statusTexts(), (Texts{"No Connection Mode", "Port is Currently Not Available.",
                                    "Please Check your Serial Connection and try again"}));
    EXPECT_EQ(host.linkDisplay.status().trouble, trouble) << "the system's reason";
    EXPECT_EQ(host.linkDisplay.status().image, LinkImage::NoConnect);
    EXPECT_FALSE(host.linkDisplay.status().connected);
}

TEST_F(LinkLossStatus, TheReasonGoesWithTheTrouble) {
    port.refuse(3);
    link.RS232_Initialize(3);
    ASSERT_FALSE(host.linkDisplay.status().trouble.empty());
    link.RS232_Initialize(1);
    EXPECT_EQ(host.linkDisplay.status().trouble, "");
}

}  // namespace
}  // namespace zentaq
