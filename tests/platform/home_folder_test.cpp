// The home folder of a user whose surroundings do not tell it.
#include "platform/home_folder.h"

#include <gtest/gtest.h>
#include <pwd.h>
#include <unistd.h>

#include <cstdlib>
#include <string>

namespace zentaq {
namespace {

class HomeFolder : public ::testing::Test {
 protected:
    ~HomeFolder() override {
        if (known) {
            setenv("HOME", before.c_str(), 1);
        } else {
            unsetenv("HOME");
        }
    }
    static std::string ofTheSystem() {
        const passwd* user = ::getpwuid(::getuid());
        return user == nullptr ? std::string() : user->pw_dir;
    }

    bool known = std::getenv("HOME") != nullptr;
    std::string before = known ? std::getenv("HOME") : "";
};

TEST_F(HomeFolder, IsWhatHomeTells) {
    setenv("HOME", "/home/tuner & sons", 1);
    EXPECT_EQ(homeFolder(), "/home/tuner & sons");
    settleHome();
    EXPECT_STREQ(std::getenv("HOME"), "/home/tuner & sons");
}

TEST_F(HomeFolder, IsTheSystemsWhereHomeIsMissingEmptyOrNoWholePath) {
    if (ofTheSystem().empty()) GTEST_SKIP() << "NOT TESTED: the system does not know this user";
    const char* const others[] = {nullptr, "", "tuner"};
    for (const char* other : others) {
        other == nullptr ? unsetenv("HOME") : setenv("HOME", other, 1);
        EXPECT_EQ(homeFolder(), ofTheSystem());
        settleHome();
        ASSERT_NE(std::getenv("HOME"), nullptr);
        EXPECT_EQ(std::getenv("HOME"), ofTheSystem());
    }
}

}  // namespace
}  // namespace zentaq
