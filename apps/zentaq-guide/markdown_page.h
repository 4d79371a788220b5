// One page of the guide: its Markdown as HTML, its sections for the index, and where its links lead.
#pragma once

#include <string>
#include <vector>

#include "guide/guide.h"

namespace zentaq {

struct PageLink {
    std::string target;  ///< as written: "tables.md#keys", "#keys" or an address
    int line = 0;
};

struct MarkdownPage {
    std::string html;  ///< what stands between <body> and </body>
    std::vector<GuideSection> sections;
    std::vector<PageLink> links;
    std::vector<std::string> mistakes;  ///< "12: what is wrong", by line
};

/// Reads one page. Mistakes do not throw; they are collected, so that one build shows all of them.
MarkdownPage readMarkdown(const std::string& chapter, const std::string& markdown);

/// "Moving the cursor" becomes "moving-the-cursor".
std::string anchorOf(const std::string& title);

}  // namespace zentaq
