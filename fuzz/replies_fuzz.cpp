// Replies with anything in them, to every command, from every kind of unit: through the link's handlers and
// through each decoder by itself. An input is a row of replies: kind, command, length, bytes.
#include <cstdint>
#include <span>

#include "fuzzing.h"
#include "link/soak_replies.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace zentaq;
    constexpr std::size_t head = 3;
    constexpr int most = 40;
    ReplyStorm storm;
    std::span<const std::uint8_t> rest(data, size);
    for (int i = 0; i < most && rest.size() >= head; ++i) {
        const std::size_t length = std::min<std::size_t>(rest[2], rest.size() - head);
        const std::string broken = storm.strike(rest[0], rest[1], rest.subspan(head, length));
        fuzzing::require(broken.empty(), broken.empty() ? "" : broken);
        rest = rest.subspan(head + length);
    }
    return 0;
}
