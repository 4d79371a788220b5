// The whole program while the disk does not answer: it looks at the unit, shows it and takes keys, and tells
// of the save when the file is on the disk.
#include <gtest/gtest.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <atomic>
#include <chrono>
#include <thread>

#include "system/flight_rig.h"

namespace {

std::atomic<bool> diskBusy = false;
std::atomic<int> flushesWaiting = 0;

}  // namespace

/// Takes the place of the system's own in this program: a flush ends when the disk has time.
extern "C" int fsync(int descriptor) {
    ++flushesWaiting;
    while (diskBusy) std::this_thread::sleep_for(std::chrono::milliseconds(1));
    --flushesWaiting;
    return static_cast<int>(::syscall(SYS_fsync, descriptor));
}

namespace zentaq {
namespace {

constexpr int slowPatienceMs = 20'000;

/// So that a test that fails leaves no thread waiting.
struct BusyDisk {
    BusyDisk() { diskBusy = true; }
    ~BusyDisk() { diskBusy = false; }
    BusyDisk(const BusyDisk&) = delete;
    BusyDisk& operator=(const BusyDisk&) = delete;
    static void end() { diskBusy = false; }
};

class SlowDisk : public testing::Test {
 protected:
    int argc_ = 1;
    std::string name_ = "slow_disk";
    char* argv_[2] = {name_.data(), nullptr};
    QApplication application{argc_, argv_};
    TemporaryFolder folder;
    std::string link = folder.path("unit");
    std::string calibration = folder.path("slow.ZQ4OA");

    void SetUp() override {
        std::filesystem::create_directory(folder.path("app"));
        std::filesystem::copy_file(anySample(), calibration);
    }
};

TEST_F(SlowDisk, FramesGoOnWhileASaveWaitsAndTheBoxComesWhenItIsOnTheDisk) {
    UnitProcess unit(link, folder.path("memory.bin"));
    ASSERT_TRUE(unit.ready());
    Program program(application, folder.path("app"), link);
    Session& session = program.session;
    program.kernel.load();
    ASSERT_TRUE(Program::waitFor([&] { return program.identified(); }, slowPatienceMs));
    ASSERT_TRUE(program.open(calibration));
    ASSERT_TRUE(session.currentUnitObject().set("REV_Limiter", 6100.0));
    session.markModified();
    const std::string before = TemporaryFolder::read(calibration);
    const auto told = [&] { return program.boxShown("Data has been saved Successfully!"); };

    BusyDisk disk;
    program.commands.saves.save();
    ASSERT_TRUE(Program::waitFor([] { return flushesWaiting == 1; }, slowPatienceMs));
    const auto frames = session.live.frames;
    EXPECT_TRUE(Program::waitFor([&] { return session.live.frames > frames + 50; }, slowPatienceMs));
    EXPECT_FALSE(told());
    EXPECT_TRUE(session.DataModified);
    EXPECT_EQ(TemporaryFolder::read(calibration), before);

    // What needs the save waits for it, with the frames going on; the engine can be stopped.
    program.commands.files.close();
    program.commands.unit.killEngine();
    const auto later = session.live.frames;
    EXPECT_TRUE(Program::waitFor([&] { return session.live.frames > later + 50; }, slowPatienceMs));
    EXPECT_EQ(session.CurrentFile, calibration);
    EXPECT_EQ(flushesWaiting, 1);

    BusyDisk::end();
    ASSERT_TRUE(Program::waitFor(told, slowPatienceMs));
    ASSERT_TRUE(Program::waitFor([&] { return session.CurrentFile.empty(); }, slowPatienceMs));
    EXPECT_NE(TemporaryFolder::read(calibration), before);
}

TEST_F(SlowDisk, TheEndOfTheProgramWaitsForTheSaveWithTheWindowsOpen) {
    Program program(application, folder.path("app"), link);
    Session& session = program.session;
    program.kernel.load();
    ASSERT_TRUE(program.open(calibration));
    ASSERT_TRUE(session.currentUnitObject().set("REV_Limiter", 6100.0));
    session.markModified();
    const std::string before = TemporaryFolder::read(calibration);

    BusyDisk disk;
    program.windows.main().close();  // "Save changes?" is answered OK
    ASSERT_TRUE(Program::waitFor([] { return flushesWaiting == 1; }, slowPatienceMs));
    EXPECT_TRUE(program.windows.main().isVisible());
    program.windows.main().close();
    Program::runFor(100);
    EXPECT_TRUE(program.windows.main().isVisible());

    BusyDisk::end();
    ASSERT_TRUE(Program::waitFor([&] { return program.windows.closed(); }, slowPatienceMs));
    EXPECT_NE(TemporaryFolder::read(calibration), before);
}

}  // namespace
}  // namespace zentaq
