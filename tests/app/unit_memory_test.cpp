#include "app/unit_memory.h"

#include <gtest/gtest.h>

namespace zentaq {
namespace {

class UnitMemoryTest : public ::testing::Test {
 protected:
    UnitMemory memory;

    UnitMemoryTest() { memory.unitIs(1234, "ORB A 001234"); }
    void stored() { memory.heard({LinkEvent::ChangesSaved}); }
    void loseLink() { memory.heard({LinkEvent::LinkLost}); }
};

TEST_F(UnitMemoryTest, AChangeIsNotStoredUntilTheUnitSaysSo) {
    EXPECT_FALSE(memory.changesNotStored());
    memory.changeSent();
    EXPECT_TRUE(memory.changesNotStored());
    memory.storeAsked();
    EXPECT_TRUE(memory.changesNotStored());
    stored();
    EXPECT_FALSE(memory.changesNotStored());
}

TEST_F(UnitMemoryTest, AChangeSentBehindTheCommandToStoreIsNotStoredByIt) {
    memory.changeSent();
    memory.storeAsked();
    memory.changeSent();
    stored();
    EXPECT_TRUE(memory.changesNotStored());
    memory.storeAsked();
    stored();
    EXPECT_FALSE(memory.changesNotStored());
}

TEST_F(UnitMemoryTest, TwoCommandsToStoreAreAnsweredInTheirOrder) {
    memory.changeSent();
    memory.storeAsked();
    memory.changeSent();
    memory.storeAsked();
    stored();
    EXPECT_TRUE(memory.changesNotStored());
    stored();
    EXPECT_FALSE(memory.changesNotStored());
}

TEST_F(UnitMemoryTest, AnAnswerThatNobodyAskedForStoresNothing) {
    memory.changeSent();
    stored();
    EXPECT_TRUE(memory.changesNotStored());
}

TEST_F(UnitMemoryTest, ACommandToStoreThatTheLinkLostIsAnsweredByNobody) {
    memory.changeSent();
    memory.storeAsked();
    loseLink();
    memory.changeSent();
    memory.storeAsked();
    stored();
    EXPECT_FALSE(memory.changesNotStored()) << "the answer is that of the second command";
}

TEST_F(UnitMemoryTest, AWholeProgramAndANewFirmwareForgetTheChangesAndADatalogDoesNot) {
    const auto ended = [this](TransferMode mode, TransferResult result) {
        memory.changeSent();
        memory.transferEnded({.mode = mode, .result = result});
        return memory.changesNotStored();
    };
    EXPECT_FALSE(ended(TransferMode::Calibration, TransferResult::Verified));
    EXPECT_FALSE(ended(TransferMode::Firmware, TransferResult::RanOut));
    EXPECT_TRUE(ended(TransferMode::Datalog, TransferResult::Verified));
    EXPECT_TRUE(ended(TransferMode::Calibration, TransferResult::Refused));
    EXPECT_TRUE(ended(TransferMode::Calibration, TransferResult::NotAnswered));
}

TEST_F(UnitMemoryTest, TheSameUnitThatIsBackStillHasItsChangesAndAnotherHasNone) {
    memory.changeSent();
    loseLink();
    EXPECT_TRUE(memory.lost());
    memory.unitIs(1234, "ORB A 001234");
    EXPECT_FALSE(memory.lost());
    EXPECT_TRUE(memory.changesNotStored());
    memory.unitIs(1235, "ORB A 001235");
    EXPECT_FALSE(memory.changesNotStored());
    EXPECT_EQ(memory.name(), "ORB A 001235");
}

TEST_F(UnitMemoryTest, NothingIsLostWhereNoUnitWas) {
    UnitMemory fresh;
    fresh.heard({LinkEvent::LinkLost});
    EXPECT_FALSE(fresh.lost());
}

TEST_F(UnitMemoryTest, AnAdapterIsAwayUntilItIsBackOrAnotherPortIsTaken) {
    memory.heard({LinkEvent::AdapterAway, "A cable", "/dev/x"});
    EXPECT_TRUE(memory.adapterAway());
    memory.heard({LinkEvent::AdapterBack, "A cable", "/dev/x"});
    EXPECT_FALSE(memory.adapterAway());
    memory.heard({LinkEvent::AdapterAway, "A cable", "/dev/x"});
    memory.heard({LinkEvent::PortNamed, "2", "other"});
    EXPECT_FALSE(memory.adapterAway());
}

TEST_F(UnitMemoryTest, FramesComeForAsLongAsTheyAreWaitedFor) {
    EXPECT_FALSE(memory.framesCome(0, 1'000'000)) << "none has come";
    EXPECT_FALSE(memory.framesCame());
    memory.frameCame(5'000'000);
    EXPECT_TRUE(memory.framesCome(6'000'000, 1'000'000));
    EXPECT_FALSE(memory.framesCome(6'000'001, 1'000'000));
    EXPECT_TRUE(memory.framesCame());
}

}  // namespace
}  // namespace zentaq
