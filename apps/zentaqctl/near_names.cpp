#include "near_names.h"

#include <algorithm>
#include <sstream>
#include <utility>
#include <vector>

#include "base/text.h"

namespace zentaq::ctl {

namespace {

constexpr std::size_t mostSuggestions = 3;
constexpr std::size_t longestName = 100;  ///< nobody means a name of which so much is typed

bool holdsEveryWord(const std::string& name, const std::string& wanted) {
    std::istringstream words(wanted);
    bool any = false;
    for (std::string word; words >> word; any = true) {
        if (name.find(word) == std::string::npos) return false;
    }
    return any;
}

std::vector<std::string> withEveryWord(std::span<const std::string> names, const std::string& wanted) {
    std::vector<std::string> found;
    for (const std::string& name : names) {
        if (found.size() < mostSuggestions && holdsEveryWord(upper(name), wanted)) found.push_back(name);
    }
    return found;
}

/// Single characters to change, insert or leave out on the way from one word to the other.
int editsBetween(std::string_view from, std::string_view to) {
    std::vector<int> above(to.size() + 1);
    for (std::size_t i = 0; i <= to.size(); ++i) above[i] = static_cast<int>(i);
    for (std::size_t row = 1; row <= from.size(); ++row) {
        std::vector<int> line(to.size() + 1, static_cast<int>(row));
        for (std::size_t i = 1; i <= to.size(); ++i) {
            const int change = above[i - 1] + (from[row - 1] == to[i - 1] ? 0 : 1);
            line[i] = std::min({change, above[i] + 1, line[i - 1] + 1});
        }
        above = std::move(line);
    }
    return above.back();
}

/// Up to a third of a name may be wrong.
std::vector<std::string> nearest(std::span<const std::string> names, const std::string& wanted) {
    std::vector<std::pair<int, std::string>> near;
    for (const std::string& name : names) {
        const int edits = editsBetween(wanted, upper(name));
        const auto longer = std::max(name.size(), wanted.size());
        if (edits * 3 <= static_cast<int>(longer)) near.emplace_back(edits, name);
    }
    std::ranges::stable_sort(near, {}, &std::pair<int, std::string>::first);
    // Beside a name that is all but right the others only confuse.
    if (!near.empty()) {
        const int most = 2 * near.front().first + 1;
        std::erase_if(near, [&](const auto& each) { return each.first > most; });
    }
    if (near.size() > mostSuggestions) near.resize(mostSuggestions);
    std::vector<std::string> found;
    found.reserve(near.size());
    for (auto& [edits, name] : near) found.push_back(std::move(name));
    return found;
}

}  // namespace

int placeOf(std::span<const std::string> names, std::string_view wanted) {
    const std::string word = upper(trimmed(wanted));
    const auto found = std::ranges::find_if(names, [&](const std::string& n) { return upper(n) == word; });
    return found == names.end() ? -1 : static_cast<int>(found - names.begin());
}

std::string suggestion(std::span<const std::string> names, std::string_view wanted) {
    const std::string word = upper(trimmed(wanted));
    if (word.size() > longestName) return {};
    std::vector<std::string> near = withEveryWord(names, word);
    if (near.empty()) near = nearest(names, word);
    if (near.empty()) return {};
    for (std::string& name : near) name = '"' + name + '"';  // names of engines have commas in them
    return "; did you mean " + joinedByOr(near) + "?";
}

std::string joinedByOr(std::span<const std::string> names) {
    std::string text = names.front();
    for (std::size_t i = 1; i < names.size(); ++i) text += (i + 1 == names.size() ? " or " : ", ") + names[i];
    return text;
}

std::string nearWord(std::span<const std::string> names, const std::string& name) {
    if (name.size() > longestName) return {};
    const std::string wanted = upper(name);
    // Names of few letters are all near to each other.
    const int most = wanted.size() < 4 ? 0 : wanted.size() < 7 ? 1 : 2;
    std::string nearest;
    int fewest = most + 1;
    for (const std::string& each : names) {
        const std::string known = upper(each);
        // "KnockActive" for opt_KnockActive: the head of a name is soon forgotten.
        const bool lacksHead = most > 0 && known.ends_with("_" + wanted);
        const int edits = lacksHead ? 1 : editsBetween(wanted, known);
        if (edits >= fewest) continue;
        fewest = edits;
        nearest = each;
    }
    return nearest;
}

}  // namespace zentaq::ctl
