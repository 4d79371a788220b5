// Lines of text as a PDF document: one fixed-pitch font, one page of paper for each page of the text.
#pragma once

#include <string>
#include <string_view>

namespace zentaq {

/// What fits on A4 and on Letter laid on their side, with margins of half an inch.
inline constexpr int pdfColumns = 150;
inline constexpr int pdfLines = 54;

/// `text` is UTF-8; '\n' ends a line, '\f' a page. A character beyond Latin-1 becomes '?'. `title` is the
/// document's.
std::string textPdf(std::string_view text, std::string_view title);

}  // namespace zentaq
