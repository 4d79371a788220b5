// Says in words what the bytes on the line mean. Follows the conversation as the link does: the kind of the
// unit comes from its identification, lines of a transfer are told from commands.
#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <string_view>

#include "link/link_commands.h"
#include "trace/trace_line.h"
#include "unit/unit_kind.h"

namespace zentaq {

class WireWords {
 public:
    /// The unit that the link knows already; slot 0 for none.
    void unit(int slot, bool oldFirmware);
    bool knowsUnit() const { return kind_ != &nullKind(); }
    /// "; the unit on the link is of kind 3, ORB A"; empty for none.
    std::string unitText() const;

    /// What was written. The reply that follows is taken for its answer.
    void command(TraceLine& line);
    /// Whether `beginning` is that of an identification longer than the link asked for: the first one of a
    /// session is asked for by the length of the oldest format. Its rest belongs to the same answer.
    bool awaitsRest(std::string_view beginning);
    /// The answer as it was given to the program.
    void reply(TraceLine& line);
    /// An answer of which only this came.
    void partOfReply(TraceLine& line) const;

    /// Key of the last command; "?" for bytes that are none.
    const std::string& key() const { return key_; }
    /// "line 12, " while the lines of a transfer go out; else empty.
    std::string lineText() const;

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
    std::string codes(Bytes reply) const;
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
