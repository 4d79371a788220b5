// The texts that a user reads, as the tests of names and spelling go through them: reference data, guide,
// documents, and the sentences that stand in the sources.
#pragma once

#include <algorithm>
#include <cctype>
#include <filesystem>
#include <map>
#include <set>
#include <sstream>
#include <string>
#include <string_view>
#include <vector>

#include "base/text.h"
#include "refdata/seed_table.h"
#include "temporary_folder.h"

namespace zentaq::usertexts {

namespace fs = std::filesystem;

inline std::string content(const fs::path& file) {
    return TemporaryFolder::read(file.string());
}

struct Help {
    std::string topic, text;
};
inline const std::map<std::string, Help>& helpTexts() {
    static const auto all = [] {
        const auto table = refdata::SeedTable::read(ZENTAQ_SOURCE_DIR "/data/seeds/fasthelp.tsv");
        std::map<std::string, Help> read;
        for (const auto& row : table.rows()) {
            read[upper(table.text(row, "HELP_KEY"))] = {table.text(row, "TOPIC"), table.text(row, "HELP")};
        }
        return read;
    }();
    return all;
}

/// What stands between quotes in a source, a line each; comments and headers' names are left out.
inline std::string literalsOf(const std::string& source) {
    std::string found;
    for (std::size_t i = 0; i < source.size(); ++i) {
        const std::string_view rest = std::string_view(source).substr(i);
        if (rest.starts_with("//") || rest.starts_with("#include")) {
            i = std::min(source.find('\n', i), source.size());
        } else if (rest.starts_with("'\"'")) {
            i += 2;
        } else if (source[i] == '"') {
            for (++i; i < source.size() && source[i] != '"'; ++i) {
                if (source[i] == '\\')
                    ++i;
                else
                    found += source[i];
            }
            found += '\n';
        }
    }
    return found;
}

/// Literals with a blank or a capital are sentences and captions; others are names of the code.
inline std::string sentencesOf(const fs::path& source) {
    std::string kept;
    std::istringstream lines(content(source));
    // Search words of the options are what a user may type, in either spelling.
    for (std::string line; std::getline(lines, line);) {
        if (line.find(".words = ") == std::string::npos) kept += line + "\n";
    }
    std::istringstream literals(literalsOf(kept));
    std::string sentences;
    for (std::string line; std::getline(literals, line);) {
        const bool caption = !line.empty() && (line[0] == '&' || (line[0] >= 'A' && line[0] <= 'Z'));
        if (caption || line.find(' ') != std::string::npos) sentences += line + "\n";
    }
    return sentences;
}

inline std::string lower(std::string text) {
    std::ranges::transform(text, text.begin(), [](unsigned char c) { return std::tolower(c); });
    return text;
}

/// Every text that a user reads, by its file: data, guide, documents, and the sentences of the sources.
inline const std::map<std::string, std::string>& userTexts() {
    static const auto all = [] {
        std::map<std::string, std::string> texts;
        const fs::path root = ZENTAQ_SOURCE_DIR;
        const auto add = [&](const char* folder, const std::set<std::string>& endings, auto&& read) {
            for (const auto& file : fs::recursive_directory_iterator(root / folder)) {
                if (!endings.contains(file.path().extension().string())) continue;
                texts[fs::relative(file.path(), root).string()] = lower(read(file.path()));
            }
        };
        for (const char* folder : {"data", "docs"})
            add(folder, {".md", ".tsv", ".1", ".txt", ".css"}, content);
        for (const char* folder : {"src", "apps"}) add(folder, {".cpp", ".h"}, sentencesOf);
        texts["README.md"] = lower(content(root / "README.md"));
        return texts;
    }();
    return all;
}

inline bool isLetter(char c) {
    return c >= 'a' && c <= 'z';
}

/// Words to look for: "colour" anywhere; "=grey" as a word of its own.
inline std::vector<std::string> placesOf(std::string_view words) {
    const bool whole = words.starts_with('=');
    if (whole) words.remove_prefix(1);
    std::vector<std::string> places;
    for (const auto& [file, text] : userTexts()) {
        for (auto at = text.find(words); at != std::string::npos; at = text.find(words, at + 1)) {
            const std::size_t end = at + words.size();
            const bool joined =
                (at > 0 && isLetter(text[at - 1])) || (end < text.size() && isLetter(text[end]));
            if (whole && joined) continue;
            places.push_back(file + ": " + text.substr(at < 30 ? 0 : at - 30, 80));
        }
    }
    return places;
}

}  // namespace zentaq::usertexts
