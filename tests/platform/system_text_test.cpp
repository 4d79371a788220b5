#include "platform/system_text.h"

#include <gtest/gtest.h>

#include "temporary_folder.h"

namespace zentaq {
namespace {

TEST(SystemText, NamesTheSystemAndItsReleaseOnOneLine) {
    const std::string text = systemText();
    EXPECT_TRUE(text.starts_with("Linux ")) << text;
    std::string release = TemporaryFolder::read("/proc/sys/kernel/osrelease");
    release.erase(release.find_last_not_of('\n') + 1);
    EXPECT_NE(text.find(release), std::string::npos) << text;
    EXPECT_EQ(text.find('\n'), std::string::npos);
}

}  // namespace
}  // namespace zentaq
