// The two folders that the program finds its data by.
#pragma once

#include <string>

namespace zentaq {

/// The folder of the program's executable, without a slash at its end.
std::string applicationFolder();

/// The user's documents folder + "/Zentaq". Not created.
std::string userFolder();

}  // namespace zentaq
