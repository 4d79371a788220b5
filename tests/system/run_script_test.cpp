// The program as a user starts it: a real window on a virtual screen, found from outside.
#include <gtest/gtest.h>

#include <cstdlib>

namespace {

TEST(RunScript, HeadlessCheckSeesTheMainWindowAndTheIdentifiedUnit) {
    const std::string command = std::string("cd '") + ZENTAQ_SOURCE_DIR +
                                "' && ZENTAQ_APP_FOLDER='" ZENTAQ_APP_DIR "' ./run --headless-check";
    EXPECT_EQ(std::system(command.c_str()), 0);
}

TEST(RunScript, AnUnknownOptionIsRefusedWithTheUsage) {
    const std::string command =
        std::string("cd '") + ZENTAQ_SOURCE_DIR + "' && ./run --no-such-option 2>/dev/null";
    const int status = std::system(command.c_str());
    EXPECT_EQ(WEXITSTATUS(status), 2);
}

}  // namespace
