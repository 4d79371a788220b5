#include "sim/port_announcement.h"

#include <gtest/gtest.h>

#include <fstream>

#include "base/errors.h"
#include "sim_helpers.h"

namespace zentaq::sim {
namespace {

namespace fs = std::filesystem;
using test::TemporaryFolder;

TEST(PortAnnouncement, LinkStandsAsLongAsTheObject) {
    const TemporaryFolder folder;
    const fs::path link = folder.path() / "orb-a-1";
    {
        const PortAnnouncement announcement(link, "/dev/pts/77");
        EXPECT_EQ(fs::read_symlink(link), "/dev/pts/77");
        EXPECT_EQ(announcement.path(), link);
    }
    EXPECT_FALSE(fs::is_symlink(link));
    EXPECT_TRUE(fs::is_empty(folder.path()));
}

TEST(PortAnnouncement, LinkOfADeadSimulatorIsReplaced) {
    const TemporaryFolder folder;
    const fs::path link = folder.path() / "orb-a-1";
    fs::create_symlink("/dev/pts/76", link);
    const PortAnnouncement announcement(link, "/dev/pts/77");
    EXPECT_EQ(fs::read_symlink(link), "/dev/pts/77");
}

TEST(PortAnnouncement, NameOfALivingSimulatorIsRefusedAndItsLinkStays) {
    const TemporaryFolder folder;
    const fs::path link = folder.path() / "orb-a-1";
    const PortAnnouncement first(link, "/dev/pts/76");
    EXPECT_THROW(PortAnnouncement(link, "/dev/pts/77"), FileError);
    EXPECT_EQ(fs::read_symlink(link), "/dev/pts/76");
}

TEST(PortAnnouncement, FileInTheWayIsNotTouched) {
    const TemporaryFolder folder;
    const fs::path link = folder.path() / "orb-a-1";
    std::ofstream(link) << "precious";
    EXPECT_THROW(PortAnnouncement(link, "/dev/pts/77"), FileError);
    EXPECT_EQ(fs::file_size(link), 8u);
}

TEST(PortAnnouncement, LinkThatSomebodyElseHasTakenOverIsLeft) {
    const TemporaryFolder folder;
    const fs::path link = folder.path() / "orb-a-1";
    {
        const PortAnnouncement announcement(link, "/dev/pts/77");
        fs::remove(link);
        fs::create_symlink("/dev/pts/99", link);
    }
    EXPECT_EQ(fs::read_symlink(link), "/dev/pts/99");
}

TEST(PortAnnouncement, MissingFolderIsAnError) {
    const TemporaryFolder folder;
    EXPECT_THROW(PortAnnouncement(folder.path() / "none" / "orb-a-1", "/dev/pts/77"), FileError);
}

}  // namespace
}  // namespace zentaq::sim
