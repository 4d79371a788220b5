#include "platform/device_keeper.h"

#include <gtest/gtest.h>

#include <cerrno>

#include "base/errors.h"

namespace zentaq {
namespace {

const PortInfo adapter{1, "/dev/ttyUSB0", "FTDI", "usb:0403:6001:AB1"};

TEST(DeviceKeeper, FindsItsDeviceUnderAnotherNameAndNumberByItsIdentity) {
    DeviceKeeper keeper;
    EXPECT_FALSE(keeper.findIn({adapter}));
    keeper.keep(adapter);
    const PortInfo stranger{1, "/dev/ttyUSB0", "FTDI", "usb:0403:6001:ZZ9"};
    EXPECT_FALSE(keeper.findIn({stranger}));
    const PortInfo again{2, "/dev/ttyUSB1", "FTDI", adapter.identity};
    ASSERT_TRUE(keeper.findIn({stranger, again}));
    EXPECT_EQ(keeper.findIn({stranger, again})->device, "/dev/ttyUSB1");
    keeper.forget();
    EXPECT_FALSE(keeper.keeps());
    EXPECT_FALSE(keeper.findIn({again}));
}

TEST(DeviceKeeper, LooksOnceInAQuarterOfASecond) {
    DeviceKeeper keeper;
    keeper.lookLater(1'000'000);
    EXPECT_FALSE(keeper.timeToLook(1'249'999));
    EXPECT_TRUE(keeper.timeToLook(1'250'000));
    EXPECT_FALSE(keeper.timeToLook(1'250'001));
    EXPECT_TRUE(keeper.timeToLook(1'500'000));
}

TEST(DeviceKeeper, ANumberThatIsInNoListFails) {
    EXPECT_EQ(portOfNumber({adapter}, 1).device, "/dev/ttyUSB0");
    EXPECT_THROW(portOfNumber({adapter}, 2), Failure);
}

TEST(OpeningTrouble, TellsWhatToDo) {
    EXPECT_EQ(openingTrouble("/nonexistent", EACCES),
              "you may not use it: join the group dialout (sudo usermod -aG dialout $USER) and log in again");
    EXPECT_EQ(openingTrouble("/nonexistent", EBUSY), "in use by another program");
    EXPECT_EQ(openingTrouble("/nonexistent", ENODEV), "the adapter has gone");
    EXPECT_EQ(openingTrouble("/nonexistent", ENOENT), "No such file or directory");
}

}  // namespace
}  // namespace zentaq
