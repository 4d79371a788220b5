#include "sim/image_check.h"

#include <gtest/gtest.h>

#include "sim_helpers.h"

namespace zentaq::sim {
namespace {

using namespace test;

std::string image(int rows, const char* lineEnd = "\r\n") {
    std::string text;
    for (int row = 0; row < rows; ++row) text += imageRow(row, 4) + lineEnd;
    return text + endRecord + lineEnd;
}

TEST(ImageCheck, ImageOfTheRightLengthIsAcceptedAndHeld) {
    SimulatedUnit unit = orbA();
    const ImageVerdict verdict = programImage(unit, image(147));
    EXPECT_TRUE(verdict.accepted) << verdict.why;
    EXPECT_EQ(verdict.lines, 148);
    EXPECT_EQ(verdict.why, "");
    EXPECT_EQ(unit.memory()[2351], (2351 + 4) % 251);
}

TEST(ImageCheck, LineEndsOfTheTextDoNotMatter) {
    for (const char* model : {"A", "L"}) {
        EXPECT_TRUE(acceptsImage(model, image(147, "\n"))) << model;
        EXPECT_TRUE(acceptsImage(model, image(147, "\r\n"))) << model;
    }
}

TEST(ImageCheck, RefusalTellsTheLine) {
    std::string why = "something";
    EXPECT_TRUE(acceptsImage("PZK-2", image(64), &why));
    EXPECT_EQ(why, "");
    EXPECT_FALSE(acceptsImage("PZK-2", image(147), &why));
    EXPECT_EQ(why, "line 65 was refused: " + imageRow(64, 4));
    EXPECT_FALSE(acceptsImage("A", image(64), &why));
    EXPECT_EQ(why, std::string("line 65 was refused: ") + endRecord);
}

TEST(ImageCheck, TextWithoutItsEndIsNotVerifiedAndLeavesTheUnitReady) {
    SimulatedUnit unit = orbA();
    const Bytes before = unit.memory();
    std::string text;
    for (int row = 0; row < 147; ++row) text += imageRow(row, 4) + "\n";
    const ImageVerdict verdict = programImage(unit, text);
    EXPECT_FALSE(verdict.accepted);
    EXPECT_EQ(verdict.why, "the lines ended before the image was verified");
    EXPECT_EQ(unit.memory(), before);
    EXPECT_EQ(ask(unit, "E").size(), 8u);
}

TEST(ImageCheck, EmptyTextAndUnknownModelAreNoImage) {
    std::string why;
    EXPECT_FALSE(acceptsImage("A", "", &why));
    EXPECT_EQ(why, "the lines ended before the image was verified");
    EXPECT_FALSE(acceptsImage("Q", image(147), &why));
    EXPECT_EQ(why, "there is no unit \"Q\"");
}

TEST(ImageCheck, EmptyLineIsNotAnswered) {
    std::string why;
    EXPECT_FALSE(acceptsImage("A", imageRow(0, 4) + "\n\n" + imageRow(1, 4) + "\n", &why));
    EXPECT_EQ(why, "line 2 was not answered: ");
}

}  // namespace
}  // namespace zentaq::sim
