#include <gtest/gtest.h>

#include <random>

#include "link/link_bench.h"
#include "link/link_commands.h"

namespace zentaq {
namespace {

constexpr std::uint32_t serialOf(int slot) {
    switch (slot) {
        case 4:
            return 300000;
        case 5:
            return 500000;
        case 6:
            return 350000;
        case 7:
            return 700000;
        default:
            return 200000;
    }
}

/// Replies as a broken line or a strange device makes them: of every length up to 80, of any content.
class HostileReplies : public LinkBench, public testing::WithParamInterface<int> {
 protected:
    /// The command is put in flight and gets this reply, whatever length was asked for.
    void answer(const std::string& command, const std::string& reply) {
        link.Send_ORB_Command(command);
        // Behind a frame that was too long the line rests first.
        for (int i = 0; i < 22 && link.CurrentCommand() != command; ++i) ticks(1);
        port.setReceiveThreshold(1);
        port.send(atOnce(reply));
        // The rest of an identify is waited for.
        ticks(command == "E" ? 45 : 2);
    }

    std::string randomBytes(std::size_t length) {
        std::string text(length, '\0');
        for (char& c : text) c = static_cast<char>(anyByte(random));
        return text;
    }

    /// Lets time pass until nothing is in flight, active or queued.
    void runToRest() {
        const auto busy = [&] {
            return link.transfer().active() || !link.CurrentCommand().empty() || link.ring().count() > 0;
        };
        for (int i = 0; i < 10'000 && busy(); ++i) ticks(1);
        EXPECT_FALSE(link.transfer().active());
        EXPECT_EQ(link.CurrentCommand(), "");
        EXPECT_EQ(link.ring().count(), 0);
    }

    /// A unit of this kind is on the link and nothing is in flight; slot 0: no unit.
    void meet(int slot) {
        forget();
        if (slot == 0 || link.linked().LinkedUnitKind == slot) return;
        port.once("E", identifyReply(serialOf(slot)));
        link.Send_ORB_Command("E");
        runToRest();
        ASSERT_EQ(link.linked().LinkedUnitKind, slot);
    }

    std::mt19937 random{20240917};
    std::uniform_int_distribution<int> anyByte{0, 255};
};

TEST_P(HostileReplies, OfAnyLengthAndContentEndTheirCommandAndLeaveTheLinkUsable) {
    open();
    for (const CommandRow& row : commandTable()) {
        const std::string command = row.key == "Z" ? std::string("Z\xFF") : std::string(row.key);
        for (const std::string head : {"", "\xFA\xA5\x55", "\xFA\xA5\x54", "AX", "AR", "PN"}) {
            for (std::size_t length = 1; length <= 80; ++length) {
                SCOPED_TRACE(command + ", " + std::to_string(length) + " bytes, head " + head);
                meet(GetParam());
                std::string reply = head + randomBytes(length);
                reply.resize(length);
                answer(command, reply);
                // The lines of a transfer go on; everything else is over with its reply, whatever it held.
                if (!row.isBulk) {
                    EXPECT_NE(link.CurrentCommand(), command);
                }
                runToRest();
                if (HasFailure()) return;
            }
        }
    }
    meet(3);
}

INSTANTIATE_TEST_SUITE_P(Kinds, HostileReplies, testing::Values(0, 3, 4, 5, 6, 7));

}  // namespace
}  // namespace zentaq
