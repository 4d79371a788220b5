#include "sim/memory_file.h"

#include <gtest/gtest.h>

#include <fstream>

#include "base/errors.h"
#include "sim_helpers.h"

namespace zentaq::sim {
namespace {

using test::TemporaryFolder;

TEST(MemoryFile, WhatIsWrittenIsRead) {
    const TemporaryFolder folder;
    const auto file = folder.path() / "unit.mem";
    writeMemoryFile(file, {1, 0, 255, 13, 10});
    EXPECT_EQ(readMemoryFile(file, 5), (Bytes{1, 0, 255, 13, 10}));
    writeMemoryFile(file, {9, 8, 7, 6, 5});
    EXPECT_EQ(readMemoryFile(file, 5), (Bytes{9, 8, 7, 6, 5}));
}

TEST(MemoryFile, NothingIsLeftBesideIt) {
    const TemporaryFolder folder;
    writeMemoryFile(folder.path() / "unit.mem", {1, 2});
    const std::filesystem::directory_iterator files(folder.path());
    EXPECT_EQ(std::distance(begin(files), end(files)), 1);
}

TEST(MemoryFile, MissingOrEmptyFileIsNoContent) {
    const TemporaryFolder folder;
    EXPECT_FALSE(readMemoryFile(folder.path() / "none", 5));
    std::ofstream(folder.path() / "empty");
    EXPECT_FALSE(readMemoryFile(folder.path() / "empty", 5));
}

TEST(MemoryFile, AnotherSizeIsAnError) {
    const TemporaryFolder folder;
    writeMemoryFile(folder.path() / "unit.mem", {1, 2});
    EXPECT_THROW(readMemoryFile(folder.path() / "unit.mem", 3), FileError);
    EXPECT_THROW(readMemoryFile(folder.path() / "unit.mem", 1), FileError);
}

TEST(MemoryFile, FolderThatDoesNotExistIsAnError) {
    const TemporaryFolder folder;
    EXPECT_THROW(writeMemoryFile(folder.path() / "none" / "unit.mem", {1}), FileError);
}

}  // namespace
}  // namespace zentaq::sim
