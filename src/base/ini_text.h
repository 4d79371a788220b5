// Texts by section and key as a settings file holds them: "[Section]" lines, and below each its "key=value"
// lines; ';' begins a comment. Files of the store that the program had before read the same. Nothing here
// touches the disk.
#pragma once

#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace zentaq {

class IniText {
 public:
    IniText() = default;
    /// Whatever the text is, what can be read of it is.
    explicit IniText(std::string_view text);

    /// Whether there was anything that is no line of settings: text() leaves it out.
    bool isDamaged() const { return damaged_; }

    /// Nothing where the key has none. A hand-edited value with commas is its parts, joined by commas.
    std::optional<std::string> value(const std::string& section, const std::string& key) const;
    void set(const std::string& section, const std::string& key, const std::string& value);

    /// Sections and keys by name. What is not set anew keeps its value, whatever it is.
    std::string text() const;

 private:
    friend class IniReader;
    using Parts = std::vector<std::string>;
    using Section = std::map<std::string, Parts>;

    struct Name {
        std::string section;
        std::string key;
    };

    /// A '/' in a section's name begins the key.
    static Name nameOf(const std::string& section, const std::string& key);
    Parts& partsOf(const std::string& section, const std::string& key);

    std::map<std::string, Section> sections_;  ///< keys above all sections stand in the one without a name
    bool damaged_ = false;
};

}  // namespace zentaq
