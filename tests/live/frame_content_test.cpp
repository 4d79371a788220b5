// Which live values a reply carries.
#include <gtest/gtest.h>

#include <algorithm>

#include "live/frame_decoder.h"

namespace zentaq {
namespace {

bool carries(const FrameContent& content, decltype(Channel::value) value) {
    return std::ranges::find(content.values, &channelOf(value)) != content.values.end();
}

TEST(FrameContent, OfANarrowFrameLacksWhatOnlyTheWideOneHas) {
    const auto content = contentOfFrame(orbaKind(), 'F');
    ASSERT_TRUE(content);
    EXPECT_EQ(content->values.size(), 20U);
    EXPECT_TRUE(carries(*content, &LiveValues::RPM));
    EXPECT_TRUE(carries(*content, &LiveValues::CHKE));
    EXPECT_FALSE(carries(*content, &LiveValues::INJ_TOG));
    EXPECT_FALSE(carries(*content, &LiveValues::SECPERCENT));
    EXPECT_EQ(content->pins, (std::vector<int>{0, 1, 2, 3, 4, 5, 6, 7}));
}

TEST(FrameContent, OfTheIgnitionUnitHasNineValues) {
    const auto content = contentOfFrame(pzk2Kind(), 'F');
    ASSERT_TRUE(content);
    EXPECT_EQ(content->values.size(), 9U);
    EXPECT_TRUE(content->pins.empty());
}

TEST(FrameContent, IsNothingWhereAKindGivesNoSuchReply) {
    EXPECT_FALSE(contentOfFrame(orbaKind(), 'I'));
    EXPECT_FALSE(contentOfFrame(pzk2Kind(), 'W'));
    EXPECT_FALSE(contentOfFrame(nullKind(), 'D'));
    EXPECT_FALSE(contentOfFrame(nullKind(), 'F'));
    EXPECT_FALSE(contentOfFrame(orbaKind(), 'X'));
}

}  // namespace
}  // namespace zentaq
