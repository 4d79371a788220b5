#include "markdown_page.h"

#include <md4c-html.h>
#include <md4c.h>

#include <algorithm>
#include <cctype>
#include <regex>
#include <set>

#include "base/errors.h"
#include "base/text.h"

namespace zentaq {

namespace {

/// Tables as in the project's other documents; HTML in a page would get past the checks.
constexpr unsigned dialect = MD_FLAG_TABLES | MD_FLAG_NOHTML | MD_FLAG_COLLAPSEWHITESPACE;
constexpr int deepestHeading = 3;
constexpr auto betweenCells = " - ";

std::string singleBlanks(std::string_view text) {
    std::string result;
    for (const char letter : text) {
        const bool blank = std::isspace(static_cast<unsigned char>(letter)) != 0;
        if (!blank) result += letter;
        if (blank && !result.empty() && result.back() != ' ') result += ' ';
    }
    return std::string(trimmed(result));
}

int lineOf(const std::string& markdown, std::size_t place) {
    const auto end = markdown.begin() + static_cast<std::ptrdiff_t>(std::min(place, markdown.size()));
    return 1 + static_cast<int>(std::count(markdown.begin(), end, '\n'));
}

/// Collects sections and links while the library walks over the page.
class Walk {
 public:
    Walk(std::string chapter, const std::string& markdown)
        : chapter_(std::move(chapter)), markdown_(markdown) {}

    MarkdownPage run() {
        MD_PARSER parser{};
        parser.flags = dialect;
        parser.enter_block = [](MD_BLOCKTYPE type, void* detail, void* walk) {
            return static_cast<Walk*>(walk)->enter(type, detail);
        };
        parser.leave_block = [](MD_BLOCKTYPE type, void*, void* walk) {
            return static_cast<Walk*>(walk)->leave(type);
        };
        parser.enter_span = [](MD_SPANTYPE type, void* detail, void* walk) {
            return static_cast<Walk*>(walk)->enterSpan(type, detail);
        };
        parser.leave_span = [](MD_SPANTYPE, void*, void*) { return 0; };
        parser.text = [](MD_TEXTTYPE type, const MD_CHAR* text, MD_SIZE size, void* walk) {
            return static_cast<Walk*>(walk)->text(type, {text, size});
        };
        if (md_parse(markdown_.data(), static_cast<MD_SIZE>(markdown_.size()), &parser, this) != 0) {
            throw Failure(chapter_ + ".md cannot be read");
        }
        checkHeadings();
        return std::move(page_);
    }

 private:
    int enter(MD_BLOCKTYPE type, void* detail) {
        if (type == MD_BLOCK_H) level_ = static_cast<int>(static_cast<MD_BLOCK_H_DETAIL*>(detail)->level);
        if (type == MD_BLOCK_UL || type == MD_BLOCK_OL || type == MD_BLOCK_H) takeBlock();
        if ((type == MD_BLOCK_TD || type == MD_BLOCK_TH) && !text_.empty()) text_ += betweenCells;
        return 0;
    }
    int leave(MD_BLOCKTYPE type) {
        if (type == MD_BLOCK_H) takeHeading();
        if (type == MD_BLOCK_P || type == MD_BLOCK_LI || type == MD_BLOCK_TR || type == MD_BLOCK_CODE) {
            takeBlock();
        }
        return 0;
    }
    int enterSpan(MD_SPANTYPE type, void* detail) {
        if (type != MD_SPAN_A && type != MD_SPAN_IMG) return 0;
        const MD_ATTRIBUTE& written = type == MD_SPAN_A ? static_cast<MD_SPAN_A_DETAIL*>(detail)->href
                                                        : static_cast<MD_SPAN_IMG_DETAIL*>(detail)->src;
        const std::string target(written.text, written.size);
        // The same target may stand many times; each is looked for behind the one before.
        const auto found = markdown_.find("](" + target, searchFrom_);
        const int line = found == std::string::npos ? 0 : lineOf(markdown_, found);
        if (found != std::string::npos) searchFrom_ = found + 1;
        page_.links.push_back({target, line});
        return 0;
    }
    int text(MD_TEXTTYPE type, std::string_view written) {
        if (type == MD_TEXT_SOFTBR || type == MD_TEXT_BR) {
            text_ += ' ';
        } else {
            text_ += written;
        }
        return 0;
    }

    void takeHeading() {
        GuideSection section;
        section.chapter = chapter_;
        section.level = level_;
        section.title = singleBlanks(text_);
        if (level_ > 1) section.anchor = anchorOf(section.title);
        page_.sections.push_back(std::move(section));
        text_.clear();
    }
    void takeBlock() {
        const std::string block = singleBlanks(text_);
        text_.clear();
        if (block.empty()) return;
        if (page_.sections.empty()) {
            fail("the page does not begin with its title");
        } else {
            page_.sections.back().blocks.push_back(block);
        }
    }

    void checkHeadings() {
        if (page_.sections.empty()) return fail("the page has no title");
        std::set<std::string> anchors;
        for (std::size_t i = 0; i < page_.sections.size(); ++i) {
            const GuideSection& section = page_.sections[i];
            if ((i == 0) != (section.level == 1)) fail("the one title of a page stands at its head");
            if (section.level > deepestHeading) fail("the heading \"" + section.title + "\" is too deep");
            if (!anchors.insert(section.anchor).second) {
                fail("the heading \"" + section.title + "\" stands twice");
            }
        }
    }
    void fail(const std::string& what) { page_.mistakes.push_back("1: " + what); }

    std::string chapter_;
    const std::string& markdown_;
    MarkdownPage page_;
    std::string text_;
    int level_ = 0;
    std::size_t searchFrom_ = 0;
};

std::string htmlOf(const std::string& markdown) {
    std::string html;
    const auto take = [](const MD_CHAR* text, MD_SIZE size, void* whole) {
        static_cast<std::string*>(whole)->append(text, size);
    };
    if (md_html(markdown.data(), static_cast<MD_SIZE>(markdown.size()), take, &html, dialect, 0) != 0) {
        throw Failure("a page cannot be turned into HTML");
    }
    return html;
}

/// Gives headings the names that links lead to. Angle brackets of the text itself are escaped by the library,
/// so a tag found here is one.
std::string withAnchors(const std::string& html, const std::vector<GuideSection>& sections) {
    static const std::regex heading("<h([1-6])>");
    std::string result;
    auto section = sections.begin();
    auto at = html.begin();
    for (std::sregex_iterator tag(html.begin(), html.end(), heading), end; tag != end; ++tag) {
        result.append(at, (*tag)[0].first);
        at = (*tag)[0].second;
        const std::string name = section->anchor.empty() ? "top" : section->anchor;
        result.append("<h").append((*tag)[1].str()).append(" id=\"").append(name);
        result.append("\"><a name=\"").append(name).append("\"></a>");
        ++section;
    }
    result.append(at, html.end());
    return result;
}

std::string withPageLinks(const std::string& html) {
    static const std::regex link("<a href=\"([A-Za-z0-9_-]+)\\.md(#[^\"]*)?\"");
    return std::regex_replace(html, link, "<a href=\"$1.html$2\"");
}

/// A block of code ends with its last line; the break behind it would show as an empty one.
std::string withTightCode(const std::string& html) {
    static const std::regex end("\n</code></pre>");
    return std::regex_replace(html, end, "</code></pre>");
}

}  // namespace

std::string anchorOf(const std::string& title) {
    std::string anchor;
    for (const char letter : title) {
        const auto byte = static_cast<unsigned char>(letter);
        if (std::isalnum(byte) != 0) anchor += static_cast<char>(std::tolower(byte));
        const bool gap = letter == ' ' || letter == '-' || letter == '/';
        if (gap && !anchor.empty() && anchor.back() != '-') anchor += '-';
    }
    while (!anchor.empty() && anchor.back() == '-') anchor.pop_back();
    return anchor;
}

MarkdownPage readMarkdown(const std::string& chapter, const std::string& markdown) {
    MarkdownPage page = Walk(chapter, markdown).run();
    if (page.mistakes.empty()) {
        page.html = withTightCode(withPageLinks(withAnchors(htmlOf(markdown), page.sections)));
    }
    return page;
}

}  // namespace zentaq
