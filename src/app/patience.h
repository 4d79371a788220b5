// Waits for a disk: what takes longer than a moment is told in a box that goes by itself, and can be given up
// there. Frames of the engine come meanwhile.
#pragma once

#include <functional>
#include <optional>
#include <string>

namespace zentaq {

class Session;

/// How long nothing is said.
inline constexpr int momentMs = 200;

/// Runs `work`, which owns all that it touches and throws nothing. False: the user has given it up, and
/// whatever it comes to is of no use any more. `what` is told: "Opening tune.ZQ4OA".
bool waitPatiently(Session& session, const std::string& what, const std::function<void()>& work);

/// What the disk knows of a path.
struct FileLook {
    bool there = false;
    bool sample = false;  ///< in the folder of those that come with the program
    bool inHand = false;  ///< the current file, maybe by another name
};

/// Nothing: the user has given it up.
std::optional<FileLook> lookAt(Session& session, const std::string& path);

}  // namespace zentaq
