#include "link_texts.h"

#include "base/text.h"

namespace zentaq::ctl {

std::string onOneLine(std::string_view text) {
    std::string line;
    for (const std::string& part : split(std::string(text), '\n')) {
        if (trimmed(part).empty()) continue;
        if (!line.empty()) line += ' ';
        line += trimmed(part);
    }
    return line;
}

}  // namespace zentaq::ctl
