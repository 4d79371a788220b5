// What can go wrong between a healthy unit and a program: spoilt, late, missing and refused replies, a pulled
// cable, a unit that resets. Stands behind the unit, which knows nothing of it, and is repeatable by its
// seed.
#pragma once

#include <chrono>
#include <optional>
#include <random>
#include <span>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "sim/frame_layout.h"

namespace zentaq::sim {

using Delay = std::chrono::milliseconds;

enum class FaultKind {
    LoseByte,   ///< one byte of the reply is missing
    ExtraByte,  ///< one byte too many
    FlipBit,    ///< one bit is wrong
    WrongSum,   ///< the last byte of a reply with a head is wrong
    Silence,    ///< no reply
    Late,       ///< the reply begins later
    Split,      ///< the reply pauses in its middle
    Refuse,     ///< "AR" in place of the reply
    HangUp,     ///< no reply, and the cable is out for a while
    Reset,      ///< the unit resets in the middle of its reply and boots for a while
    Noise       ///< a unit at another rate: it understands nothing and answers with random bytes
};

struct Fault {
    FaultKind kind = FaultKind::Silence;
    Delay delay{};        ///< of Late, Split, HangUp and Reset
    std::string command;  ///< "W", "P1", "line" for a line of programming; empty: every command
    int occurrence = 0;   ///< only at the n-th such command, for a line: of its transfer; 0: at each
    double percent = 100;
};

/// Reads "KIND[=MILLISECONDS][@COMMAND[#N]][%PERCENT]": "lose-byte@W%5", "late=300", "refuse@line#12".
/// Throws Failure for anything else.
Fault parseFault(std::string_view text);
/// "lose-byte, extra-byte, ...".
std::string faultList();

/// A kind of fault, as it is told to a user.
struct FaultOption {
    std::string_view name;     ///< "late"
    std::string_view meaning;  ///< in words
    FaultKind kind;
    Delay usualDelay{};  ///< 0: it knows no time
};
std::span<const FaultOption> faultOptions();
/// The text for parseFault from an option's name and the words behind it: "late" and "300@W" are
/// "late=300@W", "silence" and "@B#2" are "silence@B#2", "silence" and nothing is "silence".
std::string faultText(std::string_view name, std::string_view words);

/// A reply as it goes out.
struct FaultyReply {
    struct Piece {
        Delay after{};  ///< behind the moment at which the reply would have begun
        Bytes bytes;
    };
    std::vector<Piece> pieces;
    std::optional<Delay> cableOut;
    std::optional<Delay> resetFor;  ///< the unit resets and boots this long
};

class FaultInjector {
 public:
    explicit FaultInjector(std::vector<Fault> faults = {}, unsigned seed = 1);

    /// The answer to a burst that noise strikes: the unit must not hear it. Nothing for any other burst.
    std::optional<FaultyReply> mishear(const Bytes& burst);
    /// What becomes of the reply to a burst. A burst without a reply is let be and not counted. Noise is no
    /// matter of a reply and stays out of it.
    FaultyReply apply(const Bytes& burst, const Bytes& reply);

 private:
    using Counts = std::vector<std::pair<std::string, int>>;
    /// Which one of its command this is, counted from 1.
    static int count(Counts& seen, const std::string& command);
    bool strikes(const Fault& fault, const std::string& command, int occurrence);
    void spoil(const Fault& fault, FaultyReply& reply);
    void damage(FaultKind kind, Bytes& bytes);
    std::size_t anyBelow(std::size_t limit);

    std::vector<Fault> faults_;
    Counts answered_;
    Counts heard_;  ///< requests, for noise
    std::mt19937 random_;
};

}  // namespace zentaq::sim
