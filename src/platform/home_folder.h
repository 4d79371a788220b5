// The home folder of the user who runs the program, whatever the surroundings say: what is started by a
// service or by cron often has no HOME.
#pragma once

#include <filesystem>

namespace zentaq {

/// HOME where it tells a whole path, else what the system knows of the user. Throws FileError.
std::filesystem::path homeFolder();

/// Puts that into HOME, for the libraries that look there. Before any thread is begun.
void settleHome();

}  // namespace zentaq
