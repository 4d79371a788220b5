// What stands at a path where a file is meant: a program that reads or writes there must neither wait for the
// other end of a pipe, nor raise the lines of a port, nor put a file in the place of a device.
#pragma once

#include <sys/stat.h>

#include <string>

namespace zentaq {

/// Empty for a file, else what it is: "it is a pipe, not a file".
std::string otherThanFile(const struct stat& status);

/// For whoever is about to write: throws FileError where something else than a file has the name, or where a
/// file cannot have it. A name that is free is fine, and a link counts as what it leads to.
void refuseOtherThanFile(const std::string& path);

}  // namespace zentaq
