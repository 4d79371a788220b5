// Help that fits a terminal of 80 columns: descriptions are broken between words.
// The library itself leaves lines as long as they are.
#pragma once

#include <CLI/CLI.hpp>
#include <sstream>
#include <string>

class HelpFormatter : public CLI::Formatter {
 public:
    HelpFormatter() { column_width(nameColumns); }

    std::string make_option_desc(const CLI::Option* option) const override {
        return broken(option->get_description(), lineColumns - nameColumns);
    }

 private:
    static constexpr std::size_t lineColumns = 80;
    static constexpr std::size_t nameColumns = 28;

    /// The words of a text in lines of at most so many columns. A longer word has a line of its own.
    static std::string broken(const std::string& text, std::size_t columns) {
        std::istringstream words(text);
        std::string lines;
        std::size_t used = 0;
        for (std::string word; words >> word; used += word.size()) {
            const bool fits = used + 1 + word.size() <= columns;
            if (used > 0) lines += fits ? ' ' : '\n';
            used = fits && used > 0 ? used + 1 : 0;
            lines += word;
        }
        return lines;
    }
};
