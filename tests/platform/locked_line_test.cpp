// A port that another program has: whose it is can be told, since the name that stands for a port needs no
// right to it.
#include "platform/locked_line.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <pwd.h>
#include <sys/prctl.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/sysmacros.h>
#include <sys/un.h>
#include <unistd.h>

#include <cerrno>
#include <cstddef>
#include <cstdlib>
#include <functional>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "platform/other_process.h"
#include "unit/child_apart.h"

namespace zentaq {
namespace {

constexpr const char* busy = "in use by another program";

/// A terminal of this test, and another process that does something and then waits for its end.
class LineOfOthers : public ::testing::Test {
 protected:
    LineOfOthers() : master(::posix_openpt(O_RDWR | O_NOCTTY | O_CLOEXEC)) {
        ::grantpt(master.get());
        ::unlockpt(master.get());
        device = ::ptsname(master.get());
    }
    ~LineOfOthers() override {
        // The next test has a terminal of another number: who holds one is asked once a second.
        static std::vector<PosixHandle> former;
        former.push_back(std::move(master));
    }
    void startOther(const std::function<bool()>& begin) {
        child.emplace([&](const OtherProcess::Say& say) {
            say(begin() ? '1' : '0');
            for (;;) ::pause();
        });
        EXPECT_EQ(child->said(), '1');
    }
    bool bindsName() const {
        struct stat about {};
        ::stat(device.c_str(), &about);
        const std::string name = "zentaq4-line-" + std::to_string(major(about.st_rdev)) + "-" +
                                 std::to_string(minor(about.st_rdev));
        sockaddr_un address{};
        address.sun_family = AF_UNIX;
        name.copy(address.sun_path + 1, name.size());
        const auto length = static_cast<socklen_t>(offsetof(sockaddr_un, sun_path) + 1 + name.size());
        const int socket = ::socket(AF_UNIX, SOCK_DGRAM, 0);
        return ::bind(socket, reinterpret_cast<const sockaddr*>(&address), length) == 0;
    }

    PosixHandle master;
    std::string device;
    std::optional<OtherProcess> child;
};

TEST_F(LineOfOthers, TheProgramThatHasItIsNamedWithItsProcessAndUser) {
    startOther([this] {
        ::prctl(PR_SET_NAME, "dash\x1B[2J");
        static LockedLine held;
        held = openLocked(device);
        return held.line.valid();
    });
    const LockedLine refused = openLocked(device);
    EXPECT_TRUE(refused.busy);
    EXPECT_FALSE(refused.line.valid());
    EXPECT_FALSE(refused.lock.valid());
    const passwd* user = ::getpwuid(::getuid());
    EXPECT_EQ(refused.trouble, std::string(busy) + ": dash\\x1B[2J (process " + std::to_string(child->id()) +
                                   ", user " +
                                   (user == nullptr ? std::to_string(::getuid()) : user->pw_name) + ")");
}

TEST_F(LineOfOthers, AProgramThatOnlyTookTheNameIsNamedToo) {
    startOther([this] { return bindsName(); });
    const LockedLine refused = openLocked(device);
    EXPECT_TRUE(refused.busy);
    EXPECT_NE(refused.trouble.find("(process " + std::to_string(child->id()) + ", user "), std::string::npos)
        << refused.trouble;
}

TEST_F(LineOfOthers, OfAnotherUsersProgramIsToldThatItIsOne) {
    if (::geteuid() != 0) GTEST_SKIP() << "NOT TESTED: needs two users";
    startOther([this] { return bindsName(); });
    const std::string trouble = testing::answerOfChild([this] {
        return testing::becomeOrdinary() ? openLocked(device).trouble : std::string("not possible here");
    });
    EXPECT_EQ(trouble, std::string(busy) + ": one of another user");
}

TEST_F(LineOfOthers, ItIsFreeWhenTheProgramHasGone) {
    startOther([this] { return bindsName(); });
    child->crash();
    EXPECT_TRUE(openLocked(device).line.valid());
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
