#include "base/text.h"

#include <algorithm>

namespace zentaq {

namespace {

char upperChar(char c) {
    return c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c;
}

bool isBlank(char c) {
    return c == ' ' || c == '\t' || c == '\r' || c == '\n';
}

}  // namespace

std::string_view trimmed(std::string_view text) {
    while (!text.empty() && isBlank(text.front())) text.remove_prefix(1);
    while (!text.empty() && isBlank(text.back())) text.remove_suffix(1);
    return text;
}

std::string upper(std::string_view text) {
    std::string result{text};
    std::transform(result.begin(), result.end(), result.begin(), upperChar);
    return result;
}

std::string fixedWidth(std::string_view text, std::size_t width) {
    std::string field{text.substr(0, width)};
    field.resize(width, ' ');
    return field;
}

std::string rightAligned(std::string text, std::size_t width) {
    if (text.size() < width) text.insert(0, width - text.size(), ' ');
    return text;
}

std::vector<std::string> split(std::string_view text, char separator) {
    std::vector<std::string> parts;
    for (;;) {
        const auto at = text.find(separator);
        parts.emplace_back(text.substr(0, at));
        if (at == std::string_view::npos) return parts;
        text.remove_prefix(at + 1);
    }
}

bool startsWithNoCase(std::string_view text, std::string_view head) {
    return text.size() >= head.size() && upper(text.substr(0, head.size())) == upper(head);
}

std::string fileNameOf(std::string_view path) {
    const auto slash = path.find_last_of("/\\");
    return std::string(slash == std::string_view::npos ? path : path.substr(slash + 1));
}

std::string extensionOf(std::string_view path) {
    const std::string name = fileNameOf(path);
    const auto dot = name.rfind('.');
    return dot == std::string::npos ? std::string{} : name.substr(dot);
}

}  // namespace zentaq
