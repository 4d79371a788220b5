#include "sim/image_check.h"

#include <vector>

namespace zentaq::sim {

namespace {

std::vector<std::string> linesOf(std::string_view text) {
    std::vector<std::string> lines;
    while (!text.empty()) {
        const std::size_t end = text.find('\n');
        std::string_view line = text.substr(0, end);
        if (line.ends_with('\r')) line.remove_suffix(1);
        lines.emplace_back(line);
        if (end == std::string_view::npos) break;
        text.remove_prefix(end + 1);
    }
    return lines;
}

std::string send(SimulatedUnit& unit, const std::string& text) {
    const Bytes reply = unit.feed(Bytes(text.begin(), text.end()));
    return {reply.begin(), reply.end()};
}

}  // namespace

ImageVerdict programImage(SimulatedUnit& unit, std::string_view sRecordText) {
    ImageVerdict verdict;
    if (send(unit, "P1") != "AX") {
        verdict.why = "programming was not begun";
        return verdict;
    }
    const std::string lineEnd = unit.profile().linesEndInLineFeed ? "\r\n" : "";
    for (const std::string& line : linesOf(sRecordText)) {
        ++verdict.lines;
        const std::string reply = send(unit, line + lineEnd);
        if (reply == "AX") continue;
        verdict.accepted = reply == "PN";
        if (!verdict.accepted) {
            verdict.why = "line " + std::to_string(verdict.lines) +
                          (reply == "AR" ? " was refused: " : " was not answered: ") + line;
        }
        break;
    }
    if (!verdict.accepted && verdict.why.empty())
        verdict.why = "the lines ended before the image was verified";
    // An image that broke off must not keep the unit waiting for its rest.
    if (!verdict.accepted) unit.advance(2 * SimulatedUnit::programmingPatienceSeconds);
    return verdict;
}

bool acceptsImage(std::string_view model, std::string_view sRecordText, std::string* why) {
    ImageVerdict verdict;
    if (const UnitProfile* profile = findProfile(model)) {
        SimulatedUnit unit(*profile, defaultIdentity(*profile));
        verdict = programImage(unit, sRecordText);
    } else {
        verdict.why = "there is no unit \"" + std::string(model) + "\"";
    }
    if (why != nullptr) *why = verdict.why;
    return verdict.accepted;
}

}  // namespace zentaq::sim
