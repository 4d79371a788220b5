#include "guide/guide.h"

#include <algorithm>
#include <cctype>
#include <optional>

#include "base/errors.h"
#include "base/file_reader.h"
#include "base/text.h"

namespace zentaq {

namespace {

// What a word is worth by where it stands. A heading tells more than the text below it, and a whole word more
// than a beginning.
constexpr int wholeWordInTitle = 24;
constexpr int beginningInTitle = 14;
constexpr int wordInChapterTitle = 6;
constexpr int wholeWordInText = 4;
constexpr int beginningInText = 2;
/// More places in one text than this say nothing more.
constexpr int placesThatCount = 5;

bool isWordCharacter(char letter) {
    const auto byte = static_cast<unsigned char>(letter);
    return std::isalnum(byte) != 0 || byte >= 0x80 || letter == '_';
}

/// What a word finds in a text.
struct Found {
    int whole = 0, beginnings = 0;
    bool any() const { return whole + beginnings > 0; }
};

Found count(const std::string& capitals, const std::string& word) {
    Found found;
    for (auto at = capitals.find(word); at != std::string::npos; at = capitals.find(word, at + 1)) {
        if (at > 0 && isWordCharacter(capitals[at - 1])) continue;
        const auto end = at + word.size();
        const bool whole = end == capitals.size() || !isWordCharacter(capitals[end]);
        ++(whole ? found.whole : found.beginnings);
    }
    return found;
}

int scoreOfTitle(const std::string& title, const std::string& word) {
    const Found found = count(title, word);
    if (found.whole > 0) return wholeWordInTitle;
    return found.any() ? beginningInTitle : 0;
}

int scoreOfText(const std::string& text, const std::string& word) {
    const Found found = count(text, word);
    return std::min(found.whole, placesThatCount) * wholeWordInText +
           std::min(found.beginnings, placesThatCount) * beginningInText;
}

std::string joined(const std::vector<std::string>& blocks) {
    std::string text;
    for (const std::string& block : blocks) text += block + '\n';
    return text;
}

/// How well a section answers; nothing when a word is missing, or when none stands in the section itself.
std::optional<int> scoreOf(const GuideSection& section, const std::string& chapterTitle,
                           const std::vector<std::string>& words) {
    const std::string title = upper(section.title);
    const std::string text = upper(joined(section.blocks));
    const std::string chapter = upper(chapterTitle);
    int score = 0;
    bool own = false;
    for (const std::string& word : words) {
        const int here = scoreOfTitle(title, word) + scoreOfText(text, word);
        const int above = count(chapter, word).any() ? wordInChapterTitle : 0;
        if (here + above == 0) return {};
        own = own || here > 0;
        score += here + above;
    }
    if (!own) return {};
    return score;
}

std::vector<std::string> sentencesOf(const std::string& block) {
    std::vector<std::string> sentences;
    std::size_t begin = 0;
    for (std::size_t at = 0; at + 1 < block.size(); ++at) {
        const bool end = (block[at] == '.' || block[at] == '?' || block[at] == '!') && block[at + 1] == ' ';
        if (!end) continue;
        sentences.push_back(block.substr(begin, at + 1 - begin));
        begin = at + 2;
    }
    if (begin < block.size()) sentences.push_back(block.substr(begin));
    return sentences;
}

std::string bestSentence(const GuideSection& section, const std::vector<std::string>& words) {
    std::string best;
    int bestScore = -1;
    for (const std::string& block : section.blocks) {
        for (const std::string& sentence : sentencesOf(block)) {
            const std::string capitals = upper(sentence);
            int score = 0;
            for (const std::string& word : words) {
                const Found found = count(capitals, word);
                if (found.any()) score += found.whole > 0 ? wholeWordInText : beginningInText;
            }
            if (score <= bestScore) continue;
            bestScore = score;
            best = sentence;
        }
    }
    return best;
}

/// Without what stands behind the last line end, where that is nothing.
std::vector<std::string> linesOf(const std::string& text) {
    std::vector<std::string> lines = split(text, '\n');
    if (lines.back().empty()) lines.pop_back();
    return lines;
}

GuideSection sectionOf(const std::string& line, const std::string& file) {
    constexpr std::size_t fixedFields = 4;
    std::vector<std::string> fields = split(line, '\t');
    const bool whole = fields.size() >= fixedFields && !fields[0].empty() && fields[1].size() == 1 &&
                       fields[1][0] >= '1' && fields[1][0] <= '3';
    if (!whole) throw FileError(file + " is no index of a guide");
    GuideSection section;
    section.chapter = fields[0];
    section.level = fields[1][0] - '0';
    section.anchor = fields[2];
    section.title = fields[3];
    section.blocks.assign(fields.begin() + fixedFields, fields.end());
    return section;
}

}  // namespace

Guide Guide::read(const std::string& folder) {
    const std::string path = folder + "/" + indexName;
    std::string text;
    endOnFailure(
        [&] { text = readFile(path, limits::guideIndex); },
        [&](const std::string& why) { throw FileError("The user guide is not at " + folder + ". " + why); });
    std::vector<GuideSection> sections;
    for (const std::string& line : linesOf(text)) sections.push_back(sectionOf(line, path));
    if (sections.empty()) throw FileError(path + " is empty");
    return Guide(std::move(sections));
}

const GuideSection* Guide::find(std::string_view topic) const {
    const auto found = std::ranges::find(sections_, topic, &GuideSection::topic);
    return found == sections_.end() ? nullptr : &*found;
}

std::string Guide::chapterTitle(std::string_view chapter) const {
    const GuideSection* section = find(chapter);
    return section == nullptr ? std::string() : section->title;
}

std::vector<GuideHit> Guide::search(std::string_view text) const {
    const std::vector<std::string> words = searchWords(text);
    if (words.empty()) return {};
    std::vector<std::pair<int, GuideHit>> ranked;
    for (const GuideSection& section : sections_) {
        if (section.chapter == contentsChapter) continue;  // it only repeats the titles
        const std::string chapter = chapterTitle(section.chapter);
        const auto score = scoreOf(section, chapter, words);
        if (!score) continue;
        const std::string title = section.level == 1 ? chapter : chapter + ": " + section.title;
        ranked.push_back({*score, {section.topic(), title, bestSentence(section, words)}});
    }
    std::ranges::stable_sort(ranked, std::ranges::greater{}, &std::pair<int, GuideHit>::first);
    std::vector<GuideHit> hits;
    hits.reserve(ranked.size());
    for (auto& [score, hit] : ranked) hits.push_back(std::move(hit));
    return hits;
}

std::vector<std::string> searchWords(std::string_view text) {
    std::vector<std::string> words;
    std::string word;
    const auto take = [&] {
        if (!word.empty() && std::ranges::find(words, word) == words.end()) words.push_back(word);
        word.clear();
    };
    for (const char letter : upper(text)) {
        if (isWordCharacter(letter)) {
            word += letter;
        } else {
            take();
        }
    }
    take();
    return words;
}

std::string guideFolder(const std::string& applicationFolder) {
    constexpr std::string_view head = "Start page: ";
    const std::string support = applicationFolder + "/support";
    std::string entry;
    skipFailing([&] { entry = readFile(support + "/MAIN.hlp", limits::helpEntry); });
    for (const std::string& line : linesOf(entry)) {
        if (!line.starts_with(head)) continue;
        const std::string page(trimmed(std::string_view(line).substr(head.size())));
        const auto slash = page.rfind('/');
        return slash == std::string::npos ? support : support + "/" + page.substr(0, slash);
    }
    return {};
}

}  // namespace zentaq
