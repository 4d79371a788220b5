#include "base/file_reader.h"

#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>

#include <cstring>
#include <filesystem>
#include <functional>
#include <string>

#include "base/errors.h"
#include "temporary_folder.h"

namespace zentaq {
namespace {

namespace fs = std::filesystem;
using ::testing::HasSubstr;

constexpr FileLimit small{"a small file", 100};

std::string failureOf(const std::function<void()>& action) {
    try {
        action();
    } catch (const FileError& failure) {
        return failure.what();
    }
    return "done";
}

class FileReader : public ::testing::Test {
 protected:
    std::string whyNot(const std::string& file) {
        return failureOf([&] { readFile(file, small); });
    }
    TemporaryFolder folder;
    std::string path = folder.file("a file");
};

TEST_F(FileReader, GivesEveryByteOfAFileUpToTheLimit) {
    for (const std::size_t length : {0U, 1U, 99U, 100U}) {
        std::string content(length, '\0');
        for (std::size_t i = 0; i < length; ++i) content[i] = static_cast<char>(i * 7 % 256);
        EXPECT_EQ(readFile(folder.write("a file", content), small), content);
    }
    const std::string large(300'001, 'x');
    EXPECT_EQ(readFile(folder.write("a file", large), limits::trace), large);
}

TEST_F(FileReader, RefusesOneByteMoreWithBothLengths) {
    folder.write("a file", std::string(101, 'x'));
    EXPECT_EQ(whyNot(path), "Cannot read " + path + ": it has 101 bytes; a small file has at most 100");
}

// A file with a hole has the length, and costs nothing; nobody could read it in time, or hold it.
TEST_F(FileReader, RefusesATerabyteBeforeReadingIt) {
    folder.write("a file", "");
    ASSERT_EQ(::truncate(path.c_str(), off_t{1} << 40), 0);
    EXPECT_EQ(whyNot(path),
              "Cannot read " + path + ": it has 1099511627776 bytes; a small file has at most 100");
    EXPECT_EQ(readFileStart(path, 12), std::string(12, '\0'));
}

TEST_F(FileReader, RefusesAFileThatTellsNoSizeAndIsTooLong) {
    EXPECT_THAT(whyNot("/proc/self/smaps"),
                HasSubstr("it has more than 100 bytes; a small file has at most"));
    EXPECT_FALSE(readFile("/proc/self/stat", limits::calibration).empty());
}

TEST_F(FileReader, GivesTheStartOfAFileOfAnyLength) {
    folder.write("a file", "0123456789");
    EXPECT_EQ(readFileStart(path, 4), "0123");
    EXPECT_EQ(readFileStart(path, 40), "0123456789");
}

TEST_F(FileReader, TellsWhatCannotBeOpened) {
    EXPECT_EQ(whyNot(path), "Cannot open " + path + ": No such file or directory");
    EXPECT_EQ(whyNot(folder.path().string()), "Cannot read " + folder.path().string() + ": Is a directory");
    EXPECT_EQ(whyNot(""), "Cannot open : No such file or directory");
}

TEST_F(FileReader, RefusesPipesSocketsAndDevicesWithoutWaiting) {
    ASSERT_EQ(::mkfifo(path.c_str(), 0600), 0);
    EXPECT_EQ(whyNot(path), "Cannot read " + path + ": it is a pipe, not a file");
    EXPECT_EQ(failureOf([&] { readFileStart(path, 4); }),
              "Cannot read " + path + ": it is a pipe, not a file");
    EXPECT_EQ(failureOf([&] { checkFile(path, small); }),
              "Cannot read " + path + ": it is a pipe, not a file");
    EXPECT_EQ(whyNot("/dev/zero"), "Cannot read /dev/zero: it is a device, not a file");

    const std::string address = folder.file("socket");
    sockaddr_un name{};
    name.sun_family = AF_UNIX;
    std::memcpy(name.sun_path, address.c_str(), address.size() + 1);
    const int socket = ::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
    ASSERT_EQ(::bind(socket, reinterpret_cast<const sockaddr*>(&name), sizeof name), 0);
    EXPECT_EQ(whyNot(address), "Cannot read " + address + ": it is a socket, not a file");
    ::close(socket);
}

TEST_F(FileReader, FollowsALinkAndTellsOneInACircle) {
    folder.write("a file", "content");
    fs::create_symlink("a file", folder.file("link"));
    EXPECT_EQ(readFile(folder.file("link"), small), "content");
    fs::create_symlink("circle", folder.file("circle"));
    EXPECT_THAT(whyNot(folder.file("circle")), HasSubstr("Too many levels of symbolic links"));
}

TEST_F(FileReader, ChecksAFileForWhoeverReadsItByALibrary) {
    EXPECT_NO_THROW(checkFile(path, small)) << "a missing one is for the library to tell";
    folder.write("a file", std::string(100, 'x'));
    EXPECT_NO_THROW(checkFile(path, small));
    folder.write("a file", std::string(101, 'x'));
    EXPECT_THROW(checkFile(path, small), FileError);
}

// ---- Streams

class StreamReader : public ::testing::Test {
 protected:
    void SetUp() override { ASSERT_EQ(::pipe2(ends, O_CLOEXEC | O_NONBLOCK), 0); }
    void TearDown() override {
        ::close(ends[0]);
        if (ends[1] >= 0) ::close(ends[1]);
    }
    void write(const std::string& text) const {
        ASSERT_EQ(::write(ends[1], text.data(), text.size()), std::ssize(text));
    }
    void end() {
        ::close(ends[1]);
        ends[1] = -1;
    }
    int ends[2] = {-1, -1};
};

TEST_F(StreamReader, ReadsToTheEnd) {
    write("zwei ");
    write("Stücke");
    end();
    EXPECT_EQ(readStream(ends[0], "the standard input", small), "zwei Stücke");
}

// The writer has not ended, so whoever reads on would wait; here it would fail, as the pipe does not block.
TEST_F(StreamReader, RefusesWhatIsTooLongWithoutWaitingForItsEnd) {
    write(std::string(5000, 'x'));
    EXPECT_EQ(failureOf([&] { readStream(ends[0], "the standard input", small); }),
              "Cannot read the standard input: it has more than 100 bytes; a small file has at most 100");
}

}  // namespace
}  // namespace zentaq
