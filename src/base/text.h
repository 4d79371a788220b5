// Small text tools on bytes. Texts in the core are UTF-8; texts that go to a unit are single bytes.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace zentaq {

std::string_view trimmed(std::string_view text);
std::string upper(std::string_view text);
/// Left-justified, blank-padded or cut to exactly `width` characters.
std::string fixedWidth(std::string_view text, std::size_t width);
/// Blanks in front, up to `width` characters; a longer text stays whole.
std::string rightAligned(std::string text, std::size_t width);
std::vector<std::string> split(std::string_view text, char separator);
bool startsWithNoCase(std::string_view text, std::string_view head);

/// The bare file name of a path: what stands behind the last '/' or '\'.
std::string fileNameOf(std::string_view path);
/// The extension with its dot, as written; empty if there is none.
std::string extensionOf(std::string_view path);

}  // namespace zentaq
