// Says in words what the bytes on the line mean. Follows the conversation as the link does: the kind of the
// unit comes from its identification, lines of a transfer are told from commands.
#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <string_view>

#include "link/link_commands.h"
#include "link/trace_line.h"
#include "unit/unit_kind.h"

namespace zentaq {

class WireWords {
 public:
    /// The unit that the link knows already; slot 0 for none.
    void unit(int slot, bool oldFirmware);
    bool knowsUnit() const { return kind_ != &nullKind(); }

    /// What was written. The reply that follows is taken for its answer.
    void command(TraceLine& line);
    /// The answer as it was given to the program.
    void reply(TraceLine& line);
    /// An answer of which only this came.
    void partOfReply(TraceLine& line) const;

    /// Key of the last command; "?" for bytes that are none.
    const std::string& key() const { return key_; }

 private:
    using Bytes = std::span<const std::uint8_t>;

    bool isLine(std::string_view bytes) const;
    int expected() const;
    std::string expectedText() const;
    std::string countText(std::size_t count) const;
    std::string saying(TraceLine& line, Bytes reply);
    std::string shortAnswer(TraceLine& line, Bytes reply);
    std::string identification(TraceLine& line, Bytes reply);
    std::string record(Bytes reply);
    bool hasSum(Bytes reply) const;
    void judge(TraceLine& line, Bytes reply) const;

    const UnitKind* kind_ = &nullKind();
    bool oldFirmware_ = false;
    std::string key_ = "?";
    const CommandRow* row_ = nullptr;
    std::string bulk_;  ///< P1 or P3 while its lines follow
    int line_ = 0;
    int records_ = 0;
    int expected_ = 0;
};

}  // namespace zentaq
