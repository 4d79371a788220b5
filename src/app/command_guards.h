// What commands ask before they begin.
#pragma once

#include <functional>
#include <string>

namespace zentaq {

class Session;

/// Runs a command that stores, programs, saves or closes: it means what the user has typed before it, also
/// where that still waits for the unit. `caption` tells the user which command it was.
void afterEdits(Session& session, const std::string& caption, const std::function<void()>& command);

/// While a transfer runs or waits to: tells that the command must wait, and answers true. Commands that
/// would change the calibration, the port or the line under it begin with this question.
bool refusedByTransfer(Session& session);
/// While a port is searched: the same for commands that open a port.
bool refusedBySearch(Session& session);

/// The same for Kill Engine, in a box.
void tellKillRefused(Session& session);

/// A question whose key is No from the start: whether the user said Yes.
bool agrees(Session& session, const std::string& title, const std::string& text);

}  // namespace zentaq
