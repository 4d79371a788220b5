#include "guide_maker.h"

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <map>
#include <vector>

#include "base/errors.h"
#include "base/file_reader.h"
#include "guide/guide.h"
#include "markdown_page.h"

namespace zentaq {

namespace {

namespace fs = std::filesystem;

constexpr auto styleName = "guide.css";

using Pages = std::map<std::string, MarkdownPage>;

std::string contentOf(const fs::path& path) {
    return readFile(path.string(), limits::guidePage);
}

void write(const fs::path& path, const std::string& content) {
    std::ofstream file(path, std::ios::binary);
    file << content << std::flush;
    if (!file) throw FileError(path.string() + " cannot be written");
}

Pages readPages(const fs::path& source) {
    Pages pages;
    for (const auto& entry : fs::directory_iterator(source)) {
        if (entry.path().extension() != ".md") continue;
        const std::string chapter = entry.path().stem().string();
        pages[chapter] = readMarkdown(chapter, contentOf(entry.path()));
    }
    return pages;
}

bool leadsOutside(const std::string& target) {
    return target.starts_with("http://") || target.starts_with("https://");
}

/// A link split into page and anchor; "#anchor" means the page that it stands on.
struct Target {
    std::string chapter, anchor;
    bool isPage = true;
};

Target targetOf(const std::string& link, const std::string& chapter) {
    constexpr std::string_view extension = ".md";
    const auto hash = link.find('#');
    const std::string page = link.substr(0, hash);
    Target target{page, hash == std::string::npos ? std::string() : link.substr(hash + 1)};
    if (page.empty()) {
        target.chapter = chapter;
    } else if (page.ends_with(extension)) {
        target.chapter = page.substr(0, page.size() - extension.size());
    } else {
        target.isPage = false;
    }
    return target;
}

bool leadsSomewhere(const std::string& link, const std::string& chapter, const Pages& pages) {
    if (leadsOutside(link)) return true;
    const Target target = targetOf(link, chapter);
    const auto page = pages.find(target.chapter);
    if (!target.isPage || page == pages.end()) return false;
    return target.anchor.empty() || std::ranges::find(page->second.sections, target.anchor,
                                                      &GuideSection::anchor) != page->second.sections.end();
}

/// Chapters in the order in which the contents name them first.
std::vector<std::string> chapterOrder(const Pages& pages) {
    std::vector<std::string> order{Guide::contentsChapter};
    for (const PageLink& link : pages.at(Guide::contentsChapter).links) {
        const std::string chapter = targetOf(link.target, Guide::contentsChapter).chapter;
        if (std::ranges::find(order, chapter) == order.end()) order.push_back(chapter);
    }
    return order;
}

std::string mistakesIn(const fs::path& source, const Pages& pages) {
    std::string mistakes;
    const auto add = [&](const std::string& chapter, const std::string& what) {
        mistakes += (source / (chapter + ".md")).string() + ":" + what + "\n";
    };
    if (!pages.contains(Guide::contentsChapter)) {
        add(Guide::contentsChapter, "1: the page of contents is missing");
        return mistakes;
    }
    const std::vector<std::string> order = chapterOrder(pages);
    for (const auto& [chapter, page] : pages) {
        for (const std::string& mistake : page.mistakes) add(chapter, mistake);
        for (const PageLink& link : page.links) {
            if (!leadsSomewhere(link.target, chapter, pages)) {
                add(chapter, std::to_string(link.line) + ": dead link " + link.target);
            }
        }
        if (std::ranges::find(order, chapter) == order.end()) {
            add(chapter, "1: the page of contents does not link this chapter");
        }
    }
    return mistakes;
}

std::string escaped(const std::string& text) {
    std::string result;
    for (const char letter : text) {
        if (letter == '&') {
            result += "&amp;";
        } else if (letter == '<') {
            result += "&lt;";
        } else {
            result += letter;
        }
    }
    return result;
}

/// Former chapter, contents, next chapter.
std::string footer(const std::vector<std::string>& order, std::size_t place, const Pages& pages) {
    const auto link = [&](const std::string& chapter, const char* word) {
        return std::string(word) + " <a href=\"" + chapter + ".html\">" +
               escaped(pages.at(chapter).sections.front().title) + "</a>";
    };
    if (place == 0) return {};
    std::string html = "<hr>\n<p class=\"way\">";
    if (place > 1) html += link(order[place - 1], "Before:") + " &nbsp; ";
    html += "<a href=\"index.html\">Contents</a>";
    if (place + 1 < order.size()) html += " &nbsp; " + link(order[place + 1], "Next:");
    return html + "</p>\n";
}

std::string pageHtml(const MarkdownPage& page, const std::string& foot) {
    return "<!DOCTYPE html>\n<html lang=\"en\">\n<head>\n<meta charset=\"utf-8\">\n<title>" +
           escaped(page.sections.front().title) + "</title>\n<link rel=\"stylesheet\" href=\"" + styleName +
           "\">\n</head>\n<body>\n" + page.html + foot + "</body>\n</html>\n";
}

std::string indexLines(const MarkdownPage& page) {
    std::string lines;
    for (const GuideSection& section : page.sections) {
        lines += section.chapter + '\t' + std::to_string(section.level) + '\t' + section.anchor + '\t' +
                 section.title;
        for (const std::string& block : section.blocks) lines += '\t' + block;
        lines += '\n';
    }
    return lines;
}

}  // namespace

void makeGuide(const std::string& source, const std::string& target) {
    const Pages pages = readPages(source);
    const std::string mistakes = mistakesIn(source, pages);
    if (!mistakes.empty()) throw Failure(mistakes);
    fs::remove_all(target);
    fs::create_directories(target);
    const std::vector<std::string> order = chapterOrder(pages);
    std::string index;
    for (std::size_t place = 0; place < order.size(); ++place) {
        const MarkdownPage& page = pages.at(order[place]);
        write(fs::path(target) / (order[place] + ".html"), pageHtml(page, footer(order, place, pages)));
        index += indexLines(page);
    }
    write(fs::path(target) / Guide::indexName, index);
    write(fs::path(target) / styleName, contentOf(fs::path(source) / styleName));
}

}  // namespace zentaq
