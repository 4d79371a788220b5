#include "base/box_texts.h"

#include <gtest/gtest.h>

#include "base/message_codes.h"

namespace zentaq {
namespace {

TEST(BoxTexts, AProgramWithoutBoxesTellsThemOnOneLine) {
    EXPECT_EQ(errorLine(codes::PortInUse), "Error 1001: Port is already in use by another process.");
    EXPECT_EQ(messageLine(codes::UnitLost),
              "This unit will no longer communicate. The firmware upgrade operation failed. Please contact "
              "Norvalia for repairs.");
    EXPECT_EQ(onOneLine("Cannot write a\r\n\n b \n"), "Cannot write a b");
}

TEST(BoxTexts, ANumberThatIsNoneHasNone) {
    EXPECT_EQ(errorText(999), nullptr);
    EXPECT_EQ(messageText(codes::NoSensor + 100), nullptr);
}

}  // namespace
}  // namespace zentaq
