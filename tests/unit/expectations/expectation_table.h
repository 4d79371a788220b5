// Reads the tables of expectations: what every member of a unit kind does with one entry.
// A table that cannot be read whole is a failure of the test, never a shorter list of lines.
#pragma once

#include <algorithm>
#include <cmath>
#include <fstream>
#include <iterator>
#include <optional>
#include <set>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

namespace zentaq::testing {

/// A number of a table; "~" before it: right to about seven digits only.
struct ExpectedNumber {
    float value = 0;
    bool approximate = false;

    bool matches(float seen) const {
        if (!approximate) return seen == value;
        return std::fabs(seen - value) <= 1e-6F * std::max(1.0F, std::fabs(value));
    }
};

/// "34=50", or "byte 2=128" for a control byte.
struct ExpectedCell {
    int index = 0;  ///< cell, or the control byte counted from 1
    bool isControlByte = false;
    ExpectedNumber number;
};

/// "58=33 52": elements of the image from an index on.
struct ExpectedBytes {
    int index = 0;
    std::vector<double> values;
};

struct Expectation {
    std::string place;  ///< file and line
    std::string member;
    bool absent = false;
    int count = 1;
    int element = 0;
    std::vector<std::string> given;
    std::optional<std::pair<ExpectedNumber, ExpectedNumber>> limits;
    std::vector<float> listed;         ///< the only numbers accepted, ascending; empty: any within the limits
    std::string rangeText;             ///< "%v" stands for the entry
    std::optional<std::string> entry;  ///< nothing for a member that is only read
    std::vector<ExpectedCell> stored;
    ExpectedNumber reads;
    std::vector<ExpectedBytes> image;
    bool otherBytesFollow = false;
    std::vector<std::string> records;  ///< in their order; empty: nothing is sent
    std::optional<int> polling;        ///< nothing: the reader does not mind IndexPolling

    bool hasRange() const { return limits.has_value() || !listed.empty(); }
};

namespace table_reading {

inline std::vector<std::string> split(const std::string& text, const std::string& mark) {
    std::vector<std::string> parts;
    std::size_t start = 0;
    for (std::size_t end = text.find(mark); end != std::string::npos; end = text.find(mark, start)) {
        parts.push_back(text.substr(start, end - start));
        start = end + mark.size();
    }
    parts.push_back(text.substr(start));
    return parts;
}

inline float numberFrom(const std::string& text) {
    std::size_t used = 0;
    const float value = std::stof(text, &used);
    if (used != text.size()) throw std::runtime_error("no number: " + text);
    return value;
}

inline ExpectedNumber expectedNumber(const std::string& text) {
    if (text.starts_with('~')) return {numberFrom(text.substr(1)), true};
    return {numberFrom(text), false};
}

inline std::pair<std::string, std::string> halves(const std::string& text) {
    const auto mark = text.find('=');
    if (mark == std::string::npos) throw std::runtime_error("no '=' in: " + text);
    return {text.substr(0, mark), text.substr(mark + 1)};
}

inline ExpectedCell expectedCell(const std::string& text) {
    const auto [place, number] = halves(text);
    const bool control = place.starts_with("byte ");
    return {std::stoi(control ? place.substr(5) : place), control, expectedNumber(number)};
}

inline ExpectedBytes expectedBytes(const std::string& text) {
    const auto [place, numbers] = halves(text);
    ExpectedBytes bytes{std::stoi(place), {}};
    for (const std::string& number : split(numbers, " ")) {
        bytes.values.push_back(static_cast<double>(numberFrom(number)));
    }
    return bytes;
}

inline void readRange(Expectation& row, const std::string& minimum, const std::string& maximum) {
    const std::string oneOf = "one of ";
    if (minimum.starts_with(oneOf)) {
        for (const std::string& number : split(minimum.substr(oneOf.size()), " ")) {
            row.listed.push_back(numberFrom(number));
        }
    } else if (minimum != "-") {
        row.limits = {expectedNumber(minimum), expectedNumber(maximum)};
    }
}

inline Expectation expectation(const std::vector<std::string>& fields) {
    Expectation row;
    row.member = fields.at(0);
    if (fields.size() != 13) throw std::runtime_error(row.member + " has not 13 fields");
    row.count = std::stoi(fields[1]);
    row.element = std::stoi(fields[2]);
    if (fields[3] != "-") row.given = split(fields[3], "; ");
    readRange(row, fields[4], fields[5]);
    if (fields[6] != "-") row.rangeText = fields[6];
    if (fields[7] != "-") row.entry = fields[7];
    if (fields[8] != "-") {
        for (const std::string& cell : split(fields[8], "; ")) row.stored.push_back(expectedCell(cell));
    }
    row.reads = expectedNumber(fields[9]);
    if (fields[10] != "-") {
        for (const std::string& bytes : split(fields[10], "; ")) {
            if (bytes == "+") {
                row.otherBytesFollow = true;
            } else {
                row.image.push_back(expectedBytes(bytes));
            }
        }
    }
    if (fields[11] != "-") row.records = split(fields[11], "; ");
    if (fields[12] != "ignored") row.polling = std::stoi(fields[12]);
    return row;
}

}  // namespace table_reading

/// All lines of a table of `tests/unit/expectations`, those of its parent included. Throws when a file is
/// missing or a line is broken.
inline std::vector<Expectation> readExpectations(const std::string& path) {
    std::ifstream file(path);
    if (!file) throw std::runtime_error("cannot read " + path);
    std::vector<Expectation> rows;
    std::vector<Expectation> inherited;
    std::set<std::string> own;
    std::string text;
    bool heading = true;
    for (int line = 1; std::getline(file, text); ++line) {
        if (text.empty() || text.starts_with('#')) continue;
        const std::string place = path + ":" + std::to_string(line);
        const auto fields = table_reading::split(text, "\t");
        if (std::exchange(heading, false)) {
            if (fields[0] == "parent")
                inherited = readExpectations(path.substr(0, path.rfind('/') + 1) + fields.at(1));
            continue;
        }
        try {
            if (fields[0] == "absent") {
                for (const std::string& member : table_reading::split(fields.at(1), " "))
                    rows.push_back({.place = place, .member = member, .absent = true});
                continue;
            }
            rows.push_back(table_reading::expectation(fields));
        } catch (const std::exception& failure) {
            throw std::runtime_error(place + ": " + failure.what());
        }
        rows.back().place = place;
    }
    for (const Expectation& row : rows) own.insert(row.member);
    std::ranges::copy_if(inherited, std::back_inserter(rows),
                         [&](const Expectation& row) { return !own.contains(row.member); });
    return rows;
}

}  // namespace zentaq::testing
