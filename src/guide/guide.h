// The user guide as the help window needs it: its chapters and sections in order, and a search over them.
// The build writes guide.tsv beside the pages; this reads it and knows nothing of Markdown or HTML.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace zentaq {

/// One heading of the guide with the text below it, up to the next heading.
struct GuideSection {
    std::string chapter;              ///< stem of the page, "tables"
    int level = 1;                    ///< 1 for the chapter itself, 2 and 3 below it
    std::string anchor;               ///< name of the heading in the page; empty for level 1
    std::string title;                ///< the heading
    std::vector<std::string> blocks;  ///< paragraphs, list entries and table rows as plain text

    /// "tables" or "tables#moving-the-cursor".
    std::string topic() const { return anchor.empty() ? chapter : chapter + "#" + anchor; }
};

/// A section that has all the words searched for.
struct GuideHit {
    std::string topic;
    std::string title;     ///< "Tables: Moving the cursor"
    std::string sentence;  ///< the one that has most of the words
};

class Guide {
 public:
    static constexpr const char* indexName = "guide.tsv";
    /// The page that every chapter is linked from.
    static constexpr const char* contentsChapter = "index";

    Guide() = default;
    explicit Guide(std::vector<GuideSection> sections) : sections_(std::move(sections)) {}
    /// Throws FileError, naming the file, when the guide is missing or its index is damaged.
    static Guide read(const std::string& folder);

    const std::vector<GuideSection>& sections() const { return sections_; }
    /// The section of a topic; nullptr for none.
    const GuideSection* find(std::string_view topic) const;
    /// The title of a chapter; empty for none.
    std::string chapterTitle(std::string_view chapter) const;

    /// The sections in which every word stands, best first; words count from their beginning, without case:
    /// "inj" finds "injector". No words find nothing.
    std::vector<GuideHit> search(std::string_view words) const;

 private:
    std::vector<GuideSection> sections_;
};

/// The words of a search, in capitals, each once.
std::vector<std::string> searchWords(std::string_view text);

/// Where the program's help begins, as the help entry `support/MAIN.hlp` below the application folder names
/// it: the folder of the guide's pages. Empty when the entry is missing or names nothing.
std::string guideFolder(const std::string& applicationFolder);

}  // namespace zentaq
