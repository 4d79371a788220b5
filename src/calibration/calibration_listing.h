// A calibration file as text, one value a line, for version control: what changed between two days reads as
// a few lines. The text holds every bit of the file. The form is told in docs/text-form.md.
#pragma once

#include <string>
#include <string_view>

#include "base/errors.h"

namespace zentaq {

/// A listing cannot be turned back into a file. The text is one line and names the line where one is at
/// fault.
class ListingError : public Failure {
 public:
    using Failure::Failure;
};

/// The listing of a calibration file, lines ended by '\n'. `fileBytes` is the whole file, of any unit kind
/// and any length from 12 bytes on; of a kind that is not known the cells are listed by number. Throws
/// Failure when the file ends inside its header.
std::string listingOf(std::string_view fileBytes);

/// Whether a text begins as a listing does.
bool beginsListing(std::string_view text);

/// The file that a listing tells: fileFromListing(listingOf(bytes)) == bytes for every file.
/// Throws ListingError on the first line that is wrong, and when a value is missing.
std::string fileFromListing(std::string_view text);

}  // namespace zentaq
