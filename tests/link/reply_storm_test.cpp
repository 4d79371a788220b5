// A slice of the storm that bench/link_soak runs by the million under the sanitizers.
#include <gtest/gtest.h>

#include "link/soak_replies.h"

namespace zentaq {
namespace {

TEST(ReplyStorm, NoReplyOfAnyKindToAnyCommandThrowsOrLeavesItsRange) {
    ReplyStorm storm;
    ReplySource source(20260101);
    for (int i = 0; i < 20'000; ++i) {
        const ReplySource::Reply reply = source.next();
        ASSERT_EQ(storm.strike(reply.kind, reply.command, reply.bytes), "") << "reply " << i;
    }
}

TEST(ReplyStorm, TheSourceGivesLongShortAndEmptyReplies) {
    ReplySource source(1);
    int empty = 0, whole = 0, longer = 0;
    for (int i = 0; i < 2000; ++i) {
        const std::size_t size = source.next().bytes.size();
        if (size == 0) ++empty;
        if (size == 65) ++whole;
        if (size > 70) ++longer;
    }
    EXPECT_GT(empty, 20);
    EXPECT_GT(whole, 5);
    EXPECT_GT(longer, 20);
}

}  // namespace
}  // namespace zentaq
