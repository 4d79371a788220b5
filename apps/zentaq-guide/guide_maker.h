// Makes the guide's pages and its index from a folder of Markdown files, and refuses dead links.
#pragma once

#include <string>

namespace zentaq {

/// Reads every .md file of `source`, index.md first; the order of its links is the order of the chapters.
/// Writes a page for each, guide.css and the index guide.tsv into `target`, which is made anew.
/// Throws Failure with one line a mistake ("file:line: what"), and nothing is written then.
void makeGuide(const std::string& source, const std::string& target);

}  // namespace zentaq
