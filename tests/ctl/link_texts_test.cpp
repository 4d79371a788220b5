// The lines of zentaqctl say what the boxes of the windows say.
#include "../../apps/zentaqctl/link_texts.h"

#include "app/fake_platform.h"
#include "app/messages.h"
#include "gmock/gmock.h"

namespace zentaq {
namespace {

std::string joined(std::string text) {
    std::ranges::replace(text, '\n', ' ');
    return text;
}

class LinkTexts : public testing::Test {
 protected:
    std::string box() const { return joined(dialogs.boxes.back().text); }

    ScriptedDialogs dialogs;
    Messages messages{dialogs, [](std::string_view) {}, [](const std::string&) {}};
};

TEST_F(LinkTexts, ErrorsAreThoseOfTheBoxes) {
    messages.Display_Error(1001);
    EXPECT_EQ(box(), ctl::portInUse);
    messages.Display_Error(1005);
    EXPECT_EQ(box(), ctl::noUnitConnected);
    messages.Display_Error(1006);
    EXPECT_EQ(box(), ctl::incorrectUnit);
}

TEST_F(LinkTexts, TheWarningIsThatOfTheBox) {
    messages.Display_Warning(1007);
    EXPECT_EQ(box(), ctl::olderFirmware);
}

TEST_F(LinkTexts, MessagesAreThoseOfTheBoxes) {
    messages.Display_Message(1002);
    EXPECT_EQ(box(), ctl::programmed);
    messages.Display_Message(1003);
    EXPECT_EQ(box(), ctl::notProgrammed);
    messages.Display_Message(1004);
    EXPECT_EQ(box(), ctl::firmwareFailed);
    messages.Display_Message(1005);
    EXPECT_EQ(box(), ctl::firmwareNotStarted);
    messages.Display_Message(1008);
    EXPECT_EQ(box(), ctl::loadCalibration);
    messages.Display_Message(1009);
    EXPECT_EQ(box(), ctl::unitLost);
    messages.Display_Message(1006);
    EXPECT_EQ(box(), ctl::downloaded);
    messages.Display_Message(1007);
    EXPECT_EQ(box(), ctl::notDownloaded);
}

}  // namespace
}  // namespace zentaq
