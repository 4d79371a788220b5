// The home folder of a user whose surroundings do not tell it.
#include "platform/home_folder.h"

#include <gtest/gtest.h>
#include <pwd.h>
#include <unistd.h>

#include <cstdlib>
#include <string>

#include "scoped_variable.h"

namespace zentaq {
namespace {

std::string homeOfTheSystem() {
    const passwd* user = ::getpwuid(::getuid());
    return user == nullptr ? std::string() : user->pw_dir;
}

TEST(HomeFolder, IsWhatHomeTells) {
    const ScopedVariable home("HOME", "/home/tuner & sons");
    EXPECT_EQ(homeFolder(), "/home/tuner & sons");
    settleHome();
    EXPECT_STREQ(std::getenv("HOME"), "/home/tuner & sons");
}

TEST(HomeFolder, IsTheSystemsWhereHomeIsMissingEmptyOrNoWholePath) {
    if (homeOfTheSystem().empty()) GTEST_SKIP() << "NOT TESTED: the system does not know this user";
    const char* const others[] = {nullptr, "", "tuner"};
    for (const char* other : others) {
        const ScopedVariable home("HOME", other);
        EXPECT_EQ(homeFolder(), homeOfTheSystem());
        settleHome();
        ASSERT_NE(std::getenv("HOME"), nullptr);
        EXPECT_EQ(std::getenv("HOME"), homeOfTheSystem());
    }
}

}  // namespace
}  // namespace zentaq
