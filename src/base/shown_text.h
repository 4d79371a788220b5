// Texts from outside as they are shown: a unit's name, a file or a value must not speak to a terminal, add a
// line to a log, or hide and reorder what a reader sees. Each way out of the program goes through here.
#pragma once

#include <cstddef>
#include <streambuf>
#include <string>
#include <string_view>

namespace zentaq {

/// Whether a character is seen, and changes nothing around it: no control character, no line end, nothing
/// without width, nothing that turns the direction of writing.
bool isShownAsItIs(char32_t code);
/// Whether a text is nothing but printable ASCII: nearly each is, and needs no second copy.
bool isPlain(std::string_view text);

/// On one line: what is not shown as it is becomes \n, \r, \t, \x1B (a control character, or a byte of no
/// character) or \u{202E}. A backslash stays one: the text is for reading.
std::string shownLine(std::string_view text);
/// The same, but line breaks and tabs stay.
std::string shownLines(std::string_view text);

/// A value inside a sentence: on one line, and cut in its middle beyond so many characters.
std::string shownBriefly(std::string_view text, std::size_t most = 80);
/// An error as it is told: on one line, line breaks as blanks, and of bounded length; what is wrong and what
/// to do stand at the ends of a text, so a long one is cut in its middle.
std::string shownError(std::string_view text);
/// What a box says, bounded in the same way; line breaks and tabs stay.
std::string shownInBox(std::string_view text);

/// Stands in front of a stream's buffer: whatever is written goes on as shownLines() makes it.
class ShownBuffer : public std::streambuf {
 public:
    /// `next` outlives the object.
    explicit ShownBuffer(std::streambuf& next) : next_(next) {}
    ~ShownBuffer() override;
    ShownBuffer(const ShownBuffer&) = delete;
    ShownBuffer& operator=(const ShownBuffer&) = delete;

 protected:
    int_type overflow(int_type character) override;
    std::streamsize xsputn(const char* text, std::streamsize count) override;
    int sync() override;

 private:
    bool pass(std::string_view text, bool whole);

    std::streambuf& next_;
    std::string begun_;  ///< bytes of a character whose others are still to come
};

}  // namespace zentaq
