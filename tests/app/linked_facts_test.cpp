// What the unit on the link has told of itself, as pages and windows show it beside the calibration in hand.
#include <gtest/gtest.h>

#include "app/calibration_floats.h"
#include "app/command_fixture.h"

namespace zentaq {
namespace {

class LinkedFacts : public CommandTest {
 protected:
    std::string tune() { return writeFloats(fake.folder.path("tune.ZQ4OA"), wholeFloats()); }
    void expectUnit(const std::string& serial, const std::string& firmware) {
        EXPECT_EQ(unit().Serial(), serial);
        EXPECT_EQ(unit().FirmWare(), firmware);
    }
};

TEST_F(LinkedFacts, StandBesideACalibrationThatIsOpenedBehindTheUnit) {
    connect(200001, "ZQA-405099");
    open(tune());
    expectUnit("200001", "ZQA-405099");
}

TEST_F(LinkedFacts, StandBesideTheNextCalibrationWhenTheFormerOneWasClosed) {
    connect(200001, "ZQA-405099");
    open(tune());
    commands.files.close();
    open(tune());
    expectUnit("200001", "ZQA-405099");
}

TEST_F(LinkedFacts, AreThoseOfNoUnitOfAnotherKind) {
    connect(700001, "ZQD-405099");
    open(tune());
    ASSERT_EQ(session.slotInHand(), 3);
    expectUnit("", "");
}

TEST_F(LinkedFacts, AreThoseOfTheUnitThatCameLast) {
    connect(200001, "ZQA-405099");
    open(tune());
    loseUnit();
    connect(200777, "ZQA-405098");
    expectUnit("200777", "ZQA-405098");
}

}  // namespace
}  // namespace zentaq
