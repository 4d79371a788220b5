// Words to a reader that takes them, and to one that does not.
#include "platform/dropping_output.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <pty.h>
#include <sys/socket.h>
#include <termios.h>

#include <array>
#include <string>

#include "temporary_folder.h"

namespace zentaq {
namespace {

std::string readFrom(int descriptor) {
    std::string bytes(4096, '\0');
    const auto count = ::read(descriptor, bytes.data(), bytes.size());
    bytes.resize(count > 0 ? static_cast<std::size_t>(count) : 0);
    return bytes;
}

class TwoEnds {
 public:
    explicit TwoEnds(const std::array<int, 2>& ends) : reader(ends[0]), writer(ends[1]) {}
    ~TwoEnds() {
        ::close(reader);
        ::close(writer);
    }
    TwoEnds(const TwoEnds&) = delete;
    TwoEnds& operator=(const TwoEnds&) = delete;
    const int reader;
    const int writer;
};

std::array<int, 2> terminal() {
    std::array<int, 2> ends{};
    ::openpty(&ends[0], &ends[1], nullptr, nullptr, nullptr);
    return ends;
}
std::array<int, 2> pipeEnds() {
    std::array<int, 2> ends{};
    EXPECT_EQ(::pipe(ends.data()), 0);
    return ends;
}
std::array<int, 2> sockets() {
    std::array<int, 2> ends{};
    EXPECT_EQ(::socketpair(AF_UNIX, SOCK_STREAM, 0, ends.data()), 0);
    return ends;
}

TEST(DroppingOutput, IsReadWhereSomebodyReads) {
    for (const auto& ends : {terminal(), pipeEnds(), sockets()}) {
        const TwoEnds both(ends);
        DroppingOutput(both.writer).write("10%");
        EXPECT_EQ(readFrom(both.reader), "10%");
    }
}

// A megabyte is more than each of them holds: without dropping, these would stand for ever.
TEST(DroppingOutput, IsDroppedWhereNobodyReads) {
    for (const auto& ends : {terminal(), pipeEnds(), sockets()}) {
        const TwoEnds both(ends);
        const DroppingOutput output(both.writer);
        for (int i = 0; i < 256; ++i) output.write(std::string(4096, 'x'));
        EXPECT_EQ(readFrom(both.reader).front(), 'x');
    }
}

TEST(DroppingOutput, IsDroppedOnATerminalThatWasStopped) {
    const TwoEnds both(terminal());
    ASSERT_EQ(::tcflow(both.writer, TCOOFF), 0);
    const DroppingOutput output(both.writer);
    output.write("dropped");
    ASSERT_EQ(::tcflow(both.writer, TCOON), 0);
    output.write("shown");
    EXPECT_EQ(readFrom(both.reader), "shown");
}

TEST(DroppingOutput, LeavesTheSettingsOfWhoeverSharesTheDescriptorAlone) {
    for (const auto& ends : {terminal(), pipeEnds(), sockets()}) {
        const TwoEnds both(ends);
        DroppingOutput(both.writer).write("x");
        EXPECT_EQ(::fcntl(both.writer, F_GETFL) & O_NONBLOCK, 0);
    }
}

TEST(DroppingOutput, GoesOnBehindWhatAFileHolds) {
    const TemporaryFolder folder;
    const std::string file = folder.write("log", "");
    const int log = ::open(file.c_str(), O_WRONLY);
    ASSERT_EQ(::write(log, "first ", 6), 6);
    DroppingOutput(log).write("second");
    ::close(log);
    EXPECT_EQ(TemporaryFolder::read(file), "first second");
}

TEST(DroppingOutput, AClosedDescriptorFailsNobody) {
    DroppingOutput(-1).write("nothing");
}

}  // namespace
}  // namespace zentaq
