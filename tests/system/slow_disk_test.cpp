// The whole program while the disk does not answer: it looks at the unit, shows it and takes keys, and tells
// of the save when the file is on the disk.
#include <sys/syscall.h>
#include <unistd.h>

#include <atomic>
#include <chrono>
#include <thread>

#include "system/flight_bench.h"

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

/// So that a test that fails leaves no thread waiting.
struct BusyDisk {
    BusyDisk() { diskBusy = true; }
    ~BusyDisk() { diskBusy = false; }
    BusyDisk(const BusyDisk&) = delete;
    BusyDisk& operator=(const BusyDisk&) = delete;
    static void end() { diskBusy = false; }
};

class SlowDisk : public FlightBench {
 protected:
    /// A change that is not in the file yet; answers what is.
    std::string change() {
        EXPECT_TRUE(program->open(calibration));
        EXPECT_TRUE(program->session.currentUnitObject().set("REV_Limiter", 6100.0));
        program->session.markModified();
        return TemporaryFolder::read(calibration);
    }
};

TEST_F(SlowDisk, FramesGoOnWhileASaveWaitsAndTheBoxComesWhenItIsOnTheDisk) {
    startUnit();
    startProgram();
    Session& session = program->session;
    ASSERT_TRUE(found());
    const std::string before = change();
    constexpr const char* saved = "Data has been saved Successfully!";

    BusyDisk disk;
    program->commands.saves.save();
    ASSERT_TRUE(comes([] { return flushesWaiting == 1; }));
    EXPECT_TRUE(framesCome(51));
    EXPECT_FALSE(program->boxShown(saved));
    EXPECT_TRUE(session.DataModified);
    EXPECT_EQ(TemporaryFolder::read(calibration), before);

    // What needs the save waits for it, with the frames going on; the engine can be stopped.
    program->commands.files.close();
    program->commands.unit.killEngine();
    EXPECT_TRUE(framesCome(51));
    EXPECT_EQ(session.CurrentFile, calibration);
    EXPECT_EQ(flushesWaiting, 1);

    BusyDisk::end();
    ASSERT_TRUE(told(saved));
    ASSERT_TRUE(comes([&] { return session.CurrentFile.empty(); }));
    EXPECT_NE(TemporaryFolder::read(calibration), before);
}

TEST_F(SlowDisk, TheEndOfTheProgramWaitsForTheSaveWithTheWindowsOpen) {
    startProgram();
    const std::string before = change();

    BusyDisk disk;
    program->windows.main().close();  // "Save changes?" is answered OK
    ASSERT_TRUE(comes([] { return flushesWaiting == 1; }));
    EXPECT_TRUE(program->windows.main().isVisible());
    program->windows.main().close();
    Program::runFor(100);
    EXPECT_TRUE(program->windows.main().isVisible());

    BusyDisk::end();
    ASSERT_TRUE(comes([&] { return program->windows.closed(); }));
    EXPECT_NE(TemporaryFolder::read(calibration), before);
}

}  // namespace
}  // namespace zentaq
