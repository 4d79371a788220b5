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

// Each command gets every length behind every head, from one kind or another.
TEST(ReplyStorm, RepliesOfEveryLengthBehindEveryHeadEndTheirCommand) {
    const std::string heads[] = {"", "\xFA\xA5\x55", "\xFA\xA5\x54", "AX", "AR", "PN"};
    ReplyStorm storm;
    std::mt19937 random(20240917);
    for (unsigned pair = 0; pair < ReplyStorm::kinds * ReplyStorm::commands; ++pair) {
        for (unsigned length = 1; length <= 80; ++length) {
            const std::string& head = heads[(length + pair) % std::size(heads)];
            sim::Bytes reply(head.begin(), head.end());
            while (reply.size() < length) reply.push_back(static_cast<std::uint8_t>(random()));
            reply.resize(length);
            ASSERT_EQ(storm.strike(pair / ReplyStorm::commands, pair, reply), "")
                << length << " bytes, head " << head;
        }
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
