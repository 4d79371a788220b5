// The commands of zentaqctl, the calibration tool without windows. Each works on one file, writes plain
// text to `out`, and throws Failure with one line of text where it is refused or fails.
#pragma once

#include <iosfwd>
#include <optional>
#include <string>

#include "refdata/database.h"

namespace zentaq::ctl {

/// What all commands share. The database is optional: without it engines and sensors are unknown.
struct Context {
    const Database* database = nullptr;
    std::ostream& out;
    std::ostream& notes;  ///< what a user must know though the command was done
};

struct FirmwareChoice {
    int release = 0;
    int build = 0;
};

/// "5.99" as release and build. Nothing for a text of another form.
std::optional<FirmwareChoice> parseFirmware(const std::string& text);

void info(const Context& context, const std::string& file);
/// Without an index all values: a table as its rows, a curve on one line.
void get(const Context& context, const std::string& file, const std::string& member,
         std::optional<int> index);
void set(const std::string& file, const std::string& member, const std::string& value, int index,
         const std::string& outputFile, const Context& context);
void image(const Context& context, const std::string& file, std::optional<FirmwareChoice> firmware,
           const std::string& outputFile);
void record(const Context& context, const std::string& file, const std::string& member,
            const std::string& value, int index);

}  // namespace zentaq::ctl
