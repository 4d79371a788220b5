// What can go wrong between a healthy unit and a program: spoilt, late, missing and refused replies, a pulled
// cable. Stands behind the unit, which knows nothing of it, and is repeatable by its seed.
#pragma once

#include <chrono>
#include <optional>
#include <random>
#include <string>
#include <string_view>
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
    HangUp      ///< no reply, and the cable is out for a while
};

struct Fault {
    FaultKind kind = FaultKind::Silence;
    Delay delay{};        ///< of Late, Split and HangUp
    std::string command;  ///< "W", "P1", "line" for a line of programming; empty: every command
    int occurrence = 0;   ///< only at the n-th such command, for a line: of its transfer; 0: at each
    double percent = 100;
};

/// Reads "KIND[=MILLISECONDS][@COMMAND[#N]][%PERCENT]": "lose-byte@W%5", "late=300", "refuse@line#12".
/// Throws Failure for anything else.
Fault parseFault(std::string_view text);
/// "lose-byte, extra-byte, ...".
std::string faultList();

/// A reply as it goes out.
struct FaultyReply {
    struct Piece {
        Delay after{};  ///< behind the moment at which the reply would have begun
        Bytes bytes;
    };
    std::vector<Piece> pieces;
    std::optional<Delay> cableOut;
};

class FaultInjector {
 public:
    explicit FaultInjector(std::vector<Fault> faults = {}, unsigned seed = 1);

    /// What becomes of the reply to a burst. A burst without a reply is let be and not counted.
    FaultyReply apply(const Bytes& burst, const Bytes& reply);

 private:
    bool strikes(const Fault& fault, const std::string& command);
    void spoil(const Fault& fault, FaultyReply& reply);
    void damage(FaultKind kind, Bytes& bytes);
    std::size_t anyBelow(std::size_t limit);

    std::vector<Fault> faults_;
    std::vector<std::pair<std::string, int>> seen_;
    std::mt19937 random_;
};

}  // namespace zentaq::sim
