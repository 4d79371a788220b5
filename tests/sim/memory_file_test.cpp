#include "sim/memory_file.h"

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <sys/sysmacros.h>

#include <fstream>

#include "base/errors.h"
#include "sim_helpers.h"

namespace zentaq::sim {
namespace {

class MemoryFileTest : public testing::Test {
 protected:
    const test::TemporaryFolder folder;
    const std::filesystem::path file = folder.path() / "unit.mem";
};

TEST_F(MemoryFileTest, WhatIsWrittenIsRead) {
    writeMemoryFile(file, {1, 0, 255, 13, 10});
    EXPECT_EQ(readMemoryFile(file, 5), (Bytes{1, 0, 255, 13, 10}));
    writeMemoryFile(file, {9, 8, 7, 6, 5});
    EXPECT_EQ(readMemoryFile(file, 5), (Bytes{9, 8, 7, 6, 5}));
}

TEST_F(MemoryFileTest, NothingIsLeftBesideIt) {
    writeMemoryFile(file, {1, 2});
    const std::filesystem::directory_iterator files(folder.path());
    EXPECT_EQ(std::distance(begin(files), end(files)), 1);
}

TEST_F(MemoryFileTest, MissingOrEmptyFileIsNoContent) {
    EXPECT_FALSE(readMemoryFile(folder.path() / "none", 5));
    std::ofstream(folder.path() / "empty");
    EXPECT_FALSE(readMemoryFile(folder.path() / "empty", 5));
}

TEST_F(MemoryFileTest, WhatIsNoFileOrTooLongIsRefusedUnread) {
    ASSERT_EQ(::mkfifo(file.c_str(), 0600), 0);
    EXPECT_THROW(readMemoryFile(file, 5), FileError) << "a pipe would hold the simulator up";
    std::filesystem::remove(file);
    std::ofstream(file) << "x";
    std::filesystem::resize_file(file, std::uintmax_t{1} << 40);
    EXPECT_THROW(readMemoryFile(file, 5), FileError);
    std::filesystem::remove(file);
    std::filesystem::create_symlink("unit.mem", file);
    EXPECT_THROW(readMemoryFile(file, 5), FileError) << "a link in a circle";
}

TEST_F(MemoryFileTest, AnotherSizeIsAnError) {
    writeMemoryFile(file, {1, 2});
    EXPECT_THROW(readMemoryFile(file, 3), FileError);
    EXPECT_THROW(readMemoryFile(file, 1), FileError);
}

std::string refusalOf(const std::filesystem::path& file) {
    std::string why;
    endOnFailure([&] { writeMemoryFile(file, {1}); }, [&](const std::string& text) { why = text; });
    return why;
}

TEST_F(MemoryFileTest, FolderThatDoesNotExistIsAnError) {
    const auto other = folder.path() / "none" / "unit.mem";
    EXPECT_EQ(refusalOf(other), "Cannot write " + other.string() + ": No such file or directory");
}

TEST_F(MemoryFileTest, WhatIsNoFileIsNeverReplacedByOne) {
    ASSERT_EQ(::mkfifo(file.c_str(), 0600), 0);
    EXPECT_EQ(refusalOf(file), "Cannot write " + file.string() + ": it is a pipe, not a file");
    EXPECT_TRUE(std::filesystem::is_fifo(file));
    std::filesystem::remove(file);
    if (::mknod(file.c_str(), S_IFCHR | 0600, makedev(1, 7)) == 0) {  // a full device
        EXPECT_EQ(refusalOf(file), "Cannot write " + file.string() + ": it is a device, not a file");
        EXPECT_TRUE(std::filesystem::is_character_file(file));
        std::filesystem::remove(file);
    }
    std::filesystem::create_directory(file);
    EXPECT_EQ(refusalOf(file), "Cannot write " + file.string() + ": Is a directory");
}

TEST_F(MemoryFileTest, ANameThatIsTooLongIsToldWithIt) {
    const auto other = folder.path() / std::string(300, 'n');
    EXPECT_EQ(refusalOf(other), "Cannot write " + other.string() + ": File name too long");
    EXPECT_THROW(readMemoryFile(other, 5), FileError);
}

}  // namespace
}  // namespace zentaq::sim
