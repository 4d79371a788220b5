#include "base/errors.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <new>
#include <stdexcept>
#include <string>

#include "base/rounding.h"

namespace zentaq {
namespace {

using ::testing::HasSubstr;
using ::testing::Not;
using ::testing::StartsWith;

TEST(FailureTexts, AFailureOfTheCoreSpeaksForItself) {
    EXPECT_EQ(textOfFailure(FileError("Cannot open tune.ZQ4OA")), "Cannot open tune.ZQ4OA");
}

TEST(FailureTexts, MemoryThatIsShortIsCalledThat) {
    EXPECT_EQ(textOfFailure(std::bad_alloc()),
              "There is not enough memory for this. Close other programs and try again.");
}

TEST(FailureTexts, AFolderThatCannotBeUsedIsNamedWithTheReason) {
    std::string told;
    endOnFailure([] { std::filesystem::create_directories("/proc/none"); },
                 [&](const std::string& why) { told = why; });
    EXPECT_EQ(told, "/proc/none: No such file or directory");
}

TEST(FailureTexts, AFaultOfTheProgramIsOwnedUpTo) {
    EXPECT_THAT(textOfFailure(std::out_of_range("basic_string::substr")),
                StartsWith("The program has met a fault of its own"));
}

TEST(FailureTexts, EndOnFailureReportsThem) {
    std::string told;
    EXPECT_FALSE(endOnFailure([] { throw std::bad_alloc(); }, [&](const std::string& why) { told = why; }));
    EXPECT_THAT(told, HasSubstr("memory"));
    EXPECT_THAT(told, Not(HasSubstr("bad_alloc")));
}

TEST(FailureTexts, ANumberThatFitsNoIntegerIsTold) {
    try {
        toInt16(70'000);
        FAIL();
    } catch (const Overflow& failure) {
        EXPECT_STREQ(failure.what(), "The number 70000 does not fit here: -32768 to 32767 do");
    }
}

}  // namespace
}  // namespace zentaq
