// Makes the reference database file from the readable seed tables, checking that their rows agree
// with each other and with what a calibration can hold.
#pragma once

#include <string>

namespace zentaq::refdata {

/// Reads engines.tsv, mapcals.tsv, defaults.tsv, fasthelp.tsv and tips.tsv of `seedsFolder` and makes the
/// database file `output` with all tables, the scratch tables and Configs empty. The file is written beside
/// its target and renamed at the end, so a failure leaves an older file whole. Equal seeds give equal bytes.
/// Throws SeedError ("file:line: what") on the first row that is wrong, FileError when a file cannot be
/// read or written.
void buildDatabase(const std::string& seedsFolder, const std::string& output);

}  // namespace zentaq::refdata
