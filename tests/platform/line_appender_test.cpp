// A file that grows line by line beside the program.
#include "platform/line_appender.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <thread>

#include "no_file_grows.h"
#include "temporary_folder.h"

namespace zentaq {
namespace {

void waitFor(const LineAppender& file) {
    while (!file.idle()) std::this_thread::yield();
}

TEST(LineAppender, WritesHeadAndLinesInTheirOrder) {
    const TemporaryFolder folder;
    LineAppender file;
    file.begin(folder.file("a.dat"), "head\n");
    for (int i = 0; i < 1000; ++i) file.append(std::to_string(i) + "\n");
    waitFor(file);
    std::string wanted = "head\n";
    for (int i = 0; i < 1000; ++i) wanted += std::to_string(i) + "\n";
    EXPECT_EQ(TemporaryFolder::read(folder.file("a.dat")), wanted);
    EXPECT_EQ(file.written(), 1000);
    EXPECT_EQ(file.failure(), "");
}

TEST(LineAppender, WhatStoodThereBeforeGoes) {
    const TemporaryFolder folder;
    folder.write("a.dat", "old old old\n");
    LineAppender file;
    file.begin(folder.file("a.dat"), "new\n");
    waitFor(file);
    EXPECT_EQ(TemporaryFolder::read(folder.file("a.dat")), "new\n");
}

TEST(LineAppender, WritesAllBeforeItGoes) {
    const TemporaryFolder folder;
    {
        LineAppender file;
        file.begin(folder.file("a.dat"), "head\n");
        file.append("line\n");
    }
    EXPECT_EQ(TemporaryFolder::read(folder.file("a.dat")), "head\nline\n");
}

/// Lines one after the other, each told in `pipe` when it is on the disk, until the process is killed.
[[noreturn]] void appendUntilKilled(const std::string& path, int pipe) {
    LineAppender file;
    file.begin(path, "head\n");
    for (std::int64_t line = 0;; ++line) {
        file.append(std::to_string(line) + "\n");
        while (file.written() <= line) std::this_thread::yield();
        if (::write(pipe, "", 1) != 1) ::_exit(1);
    }
}

TEST(LineAppender, AProgramThatIsKilledLosesTheLineInHandAndNoOther) {
    const TemporaryFolder folder;
    for (int told : {1, 2, 7, 40, 150, 600}) {
        int ends[2];
        ASSERT_EQ(::pipe(ends), 0);
        const pid_t child = ::fork();
        if (child == 0) appendUntilKilled(folder.file("a.dat"), ends[1]);
        ::close(ends[1]);
        char byte = 0;
        for (int line = 0; line < told; ++line) ASSERT_EQ(::read(ends[0], &byte, 1), 1);
        ::kill(child, SIGKILL);
        while (::read(ends[0], &byte, 1) == 1) ++told;
        ::close(ends[0]);
        ::waitpid(child, nullptr, 0);
        std::string wanted = "head\n";
        for (int line = 0; line < told; ++line) wanted += std::to_string(line) + "\n";
        const std::string found = TemporaryFolder::read(folder.file("a.dat"));
        EXPECT_TRUE(found == wanted || found == wanted + std::to_string(told) + "\n") << told;
    }
}

TEST(LineAppender, AFolderThatIsNotThereIsToldWithPathAndReason) {
    const TemporaryFolder folder;
    LineAppender file;
    file.begin(folder.file("none/a.dat"), "head\n");
    file.append("line\n");
    waitFor(file);
    EXPECT_THAT(file.failure(), testing::HasSubstr("none/a.dat: No such file or directory"));
    EXPECT_EQ(file.written(), 0);
}

TEST(LineAppender, AFileThatVanishesEndsItAndIsNotMadeAgainWithoutItsHead) {
    const TemporaryFolder folder;
    LineAppender file;
    file.begin(folder.file("a.dat"), "head\n");
    file.append("one\n");
    waitFor(file);
    std::filesystem::remove(folder.file("a.dat"));
    file.append("two\n");
    file.append("three\n");
    waitFor(file);
    EXPECT_THAT(file.failure(), testing::HasSubstr("No such file"));
    EXPECT_FALSE(std::filesystem::exists(folder.file("a.dat")));
    EXPECT_EQ(file.written(), 1);
}

TEST(LineAppender, AFullDiskKeepsWhatWasWritten) {
    const TemporaryFolder folder;
    LineAppender file;
    file.begin(folder.file("a.dat"), "head\n");
    file.append("one\n");
    waitFor(file);
    {
        const NoFileGrows full;
        file.append("two\n");
        waitFor(file);
    }
    EXPECT_NE(file.failure(), "");
    EXPECT_THAT(TemporaryFolder::read(folder.file("a.dat")), testing::StartsWith("head\none\n"));
}

}  // namespace
}  // namespace zentaq
