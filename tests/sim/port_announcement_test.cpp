#include "sim/port_announcement.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <time.h>

#include <fstream>

#include "base/errors.h"
#include "platform/port_list.h"
#include "sim/pseudo_terminal.h"
#include "sim_helpers.h"

namespace zentaq::sim {
namespace {

namespace fs = std::filesystem;

class PortAnnouncementTest : public testing::Test {
 protected:
    const test::TemporaryFolder folder;
    const fs::path link = folder.path() / "orb-a-1";
};

TEST_F(PortAnnouncementTest, LinkStandsAsLongAsTheObject) {
    {
        const PortAnnouncement announcement(link, "/dev/pts/77");
        EXPECT_EQ(fs::read_symlink(link), "/dev/pts/77");
        EXPECT_EQ(announcement.path(), link);
    }
    EXPECT_FALSE(fs::is_symlink(link));
    EXPECT_TRUE(fs::is_empty(folder.path()));
}

TEST_F(PortAnnouncementTest, LinkOfADeadSimulatorIsReplaced) {
    fs::create_symlink("/dev/pts/76", link);
    const PortAnnouncement announcement(link, "/dev/pts/77");
    EXPECT_EQ(fs::read_symlink(link), "/dev/pts/77");
}

TEST_F(PortAnnouncementTest, NameOfALivingSimulatorIsRefusedAndItsLinkStays) {
    const PortAnnouncement first(link, "/dev/pts/76");
    EXPECT_THROW(PortAnnouncement(link, "/dev/pts/77"), FileError);
    EXPECT_EQ(fs::read_symlink(link), "/dev/pts/76");
}

TEST_F(PortAnnouncementTest, FileInTheWayIsNotTouched) {
    std::ofstream(link) << "precious";
    EXPECT_THROW(PortAnnouncement(link, "/dev/pts/77"), FileError);
    EXPECT_EQ(fs::file_size(link), 8u);
}

TEST_F(PortAnnouncementTest, LinkThatSomebodyElseHasTakenOverIsLeft) {
    {
        const PortAnnouncement announcement(link, "/dev/pts/77");
        fs::remove(link);
        fs::create_symlink("/dev/pts/99", link);
    }
    EXPECT_EQ(fs::read_symlink(link), "/dev/pts/99");
}

TEST_F(PortAnnouncementTest, LinkOfAKilledSimulatorIsNoPortWhenItsTerminalIsSomebodyElses) {
    const PseudoTerminal terminal;
    const PortAnnouncement announcement(link, terminal.devicePath());
    ASSERT_EQ(simulatedPorts(folder.path()).size(), 1u);
    // An hour older than the terminal.
    timespec times[2];
    ::clock_gettime(CLOCK_REALTIME, &times[0]);
    times[0].tv_sec -= 3600;
    times[1] = times[0];
    ASSERT_EQ(::utimensat(AT_FDCWD, link.c_str(), times, AT_SYMLINK_NOFOLLOW), 0);
    EXPECT_TRUE(simulatedPorts(folder.path()).empty());
}

TEST_F(PortAnnouncementTest, MissingFolderIsAnError) {
    EXPECT_THROW(PortAnnouncement(folder.path() / "none" / "orb-a-1", "/dev/pts/77"), FileError);
}

}  // namespace
}  // namespace zentaq::sim
