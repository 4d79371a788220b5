// Datalogs, markers and conditions that went wrong by chance: each reader takes or refuses them, and what it
// takes is whole. A few thousand in every run; ZENTAQ_MUTATIONS=1000000 asks for more.
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <bit>
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <random>
#include <span>
#include <sstream>
#include <string>
#include <string_view>
#include <vector>

#include "base/errors.h"
#include "base/file_reader.h"
#include "live/datalog_reader.h"
#include "logs/log_export.h"
#include "logs/log_expression.h"
#include "logs/log_marks.h"

namespace zentaq {
namespace {

constexpr int fewMutations = 9000;

/// Of each of the three kinds; together not fewer than are wanted.
int mutationsOfAKind() {
    constexpr int kinds = 3;
    const char* wanted = std::getenv("ZENTAQ_MUTATIONS");
    return ((wanted == nullptr ? fewMutations : std::atoi(wanted)) + kinds - 1) / kinds;
}

/// Spoils a text in some places. The same seed does the same.
class Mutations {
 public:
    Mutations(std::vector<std::string> good, std::vector<std::string_view> pieces, unsigned seed)
        : good_(std::move(good)), pieces_(std::move(pieces)), random_(seed) {}

    std::string next() {
        std::string text = good_[below(good_.size())];
        for (std::size_t times = 1 + below(6); times > 0; --times) spoil(text);
        return text;
    }

 private:
    std::size_t below(std::size_t end) {
        return std::uniform_int_distribution<std::size_t>(0, end - 1)(random_);
    }
    std::size_t place(const std::string& text) { return below(text.size() + 1); }

    void spoil(std::string& text) {
        const std::size_t at = place(text);
        switch (below(7)) {
            case 0:
                if (at < text.size()) text[at] = static_cast<char>(below(256));
                return;
            case 1:
                if (at < text.size()) text[at] = static_cast<char>(text[at] ^ (1 << below(8)));
                return;
            case 2:
                text.erase(at, below(40));
                return;
            case 3:
                text.insert(at, text.substr(place(text), below(200)));
                return;
            case 4:
                text.insert(at, pieces_[below(pieces_.size())]);
                return;
            case 5:
                text.resize(at);
                return;
            default: {
                const std::string& other = good_[below(good_.size())];
                text = text.substr(0, at) + other.substr(place(other));
            }
        }
    }

    std::vector<std::string> good_;
    std::vector<std::string_view> pieces_;
    std::mt19937 random_;
};

// ---- Datalogs

std::string lineOf(int fields, int step, char separator) {
    std::string line = std::to_string(step);
    for (int field = 1; field < fields; ++field) {
        line += separator;
        line += field % 3 == 0 ? std::to_string(field * step % 700) + ".25" : std::to_string(field % 90);
    }
    return line + "\r\n";
}

std::string goodDatalog(const std::string& banner, int fields, char separator) {
    std::string text =
        banner.empty() ? "" : banner + "\tZQA-405099\r\n1\t10\t90\t0\t0\tkPa\t14.7\r\nFrame\tRPM\r\n";
    for (int step = 1; step <= 6; ++step) text += lineOf(fields, step, separator);
    return text;
}

std::vector<std::string> goodDatalogs() {
    return {goodDatalog("ZENTAQ 4.10 DATALOG", 67, '\t'), goodDatalog("ZENTAQ 4.5 DATALOG", 67, '\t'),
            goodDatalog("ZENTAQ 4.0 DATALOG", 40, '\t'), goodDatalog("ZENTAQ 4.0 DATALOG", 40, ','),
            goodDatalog("", 62, ',')};
}

struct WholeRows : DatalogSink {
    std::size_t columns = 0;
    std::int64_t rows = 0;
    std::int64_t lastLine = 0;
    int heads = 0;
    bool whole = true;

    void head(const DatalogHead& head) override {
        ++heads;
        columns = head.columns.size();
    }
    void row(std::span<const double> values, std::int64_t line) override {
        whole = whole && values.size() == columns && columns > 0 && line > lastLine;
        for (const double value : values) whole = whole && std::isfinite(static_cast<float>(value));
        lastLine = line;
        ++rows;
    }
};

Mutations spoiledDatalogs(unsigned seed) {
    return {goodDatalogs(),
            {"\t",
             ",",
             "\r\n",
             "\n",
             "nan",
             "inf",
             "-",
             "1e999",
             "-1e-400",
             "3e38",
             "1e300",
             "1e-310",
             "0x1p4",
             " ",
             "\"",
             "\t\t\t",
             "ZENTAQ 4.0 DATALOG\t",
             "ZENTAQ 4.10 DATALOG\r\n",
             std::string_view("\0", 1),
             "\xff\xfe",
             "99999999999999999999999999"},
            seed};
}

TEST(DatalogsThatWentWrong, GiveWholeRowsOrAreRefused) {
    Mutations mutations = spoiledDatalogs(1);
    int read = 0;
    for (int count = mutationsOfAKind(); count > 0; --count) {
        const std::string text = mutations.next();
        std::istringstream in(text);
        WholeRows sink;
        try {
            const DatalogReading reading = readDatalog(in, sink);
            ASSERT_EQ(reading.rows, sink.rows) << text;
            ASSERT_EQ(sink.heads, 1) << text;
            ASSERT_LE(reading.warnings.size(), mostDatalogWarnings) << text;
            ++read;
        } catch (const Failure&) {
            ASSERT_EQ(sink.rows, 0) << text;
        }
        ASSERT_TRUE(sink.whole) << text;
    }
    EXPECT_GT(read, 0);
}

/// A big-endian number of two or four bytes.
std::uint32_t bigEndian(std::string_view bytes) {
    std::uint32_t number = 0;
    for (const char byte : bytes) number = number << 8U | static_cast<unsigned char>(byte);
    return number;
}

/// Every field of every record is a number.
bool hasNumbersAlone(std::string_view mlg, std::size_t fields, std::size_t records) {
    const std::size_t length = 4 + fields * 4 + 1;
    const std::size_t first = bigEndian(mlg.substr(14, 4));
    if (mlg.size() != first + records * length) return false;
    for (std::size_t i = 0; i < records * fields; ++i) {
        const std::size_t at = first + i / fields * length + 4 + i % fields * 4;
        if (!std::isfinite(std::bit_cast<float>(bigEndian(mlg.substr(at, 4))))) return false;
    }
    return true;
}

std::string exported(const std::string& log, LogExport format, const ExportedLog& about) {
    std::istringstream in(log);
    std::ostringstream out;
    exportLog(in, out, format, about);
    return out.str();
}

// An export costs a hundred times what a line does, so each tenth of them is enough.
TEST(DatalogsThatWentWrong, AreExportedInWholeLinesAndNumbers) {
    Mutations mutations = spoiledDatalogs(4);
    Mutations spoiledMarks({"0.02\tstart\n0.06\tlap one\n60\tgear 3 \u00e4\n"},
                           {"\t", "\n", "\x1b[2J", "nan", "-1"}, 5);
    int read = 0;
    for (int count = mutationsOfAKind() / 10; count > 0; --count) {
        const std::string text = mutations.next();
        const std::vector<LogMark> marks = marksIn(spoiledMarks.next());
        std::istringstream in(text);
        WholeRows sink;
        try {
            readDatalog(in, sink);
        } catch (const Failure&) {
            continue;
        }
        ++read;
        const auto rows = static_cast<std::size_t>(sink.rows);
        const ExportedLog about{"a\"b\n.dat", 0, marks};
        const std::string csv = exported(text, LogExport::Csv, about);
        const auto lines = static_cast<std::size_t>(std::ranges::count(csv, '\n'));
        ASSERT_EQ(lines, rows + 1) << text;
        const std::string_view heading = std::string_view(csv).substr(0, csv.find('\n'));
        const auto fields = static_cast<std::size_t>(std::ranges::count(heading, ',')) + 1;
        ASSERT_EQ(static_cast<std::size_t>(std::ranges::count(csv, ',')), lines * (fields - 1)) << text;
        ASSERT_EQ(csv.find("inf"), csv.npos) << text;
        ASSERT_EQ(csv.find("nan"), csv.npos) << text;

        const std::string msl = exported(text, LogExport::Msl, about);
        ASSERT_EQ(static_cast<std::size_t>(std::ranges::count(msl, '\n')), 3 + rows + marks.size()) << text;
        const std::string mlg = exported(text, LogExport::Mlg, {"a.dat", 0, {}});
        ASSERT_TRUE(hasNumbersAlone(mlg, fields, rows)) << text;
    }
    EXPECT_GT(read, 0);
}

// ---- Markers

TEST(MarkersThatWentWrong, ComeInTheOrderOfTheirTimesAndAreWrittenBackTheSame) {
    Mutations mutations(
        {"1.5\tstart\n12.25\tlap one\n60\tgear 3 \u00e4\n", "0\ta\n0\tb\n", ""},
        {"\t", "\n", "\r", "nan", "inf", "-1", "1e308", "1e400", ",", std::string_view("\0", 1), "\x1b[2J"},
        2);
    for (int count = mutationsOfAKind(); count > 0; --count) {
        const std::string text = mutations.next();
        const std::vector<LogMark> marks = marksIn(text);
        double before = -HUGE_VAL;
        for (const LogMark& mark : marks) {
            ASSERT_TRUE(std::isfinite(mark.seconds) && mark.seconds >= before) << text;
            before = mark.seconds;
        }
        const std::string written = marksText(marks);
        ASSERT_EQ(marksText(marksIn(written)), written) << text;
    }
}

// ---- Conditions

TEST(ConditionsThatWentWrong, HaveAValueOrTellWhere) {
    const std::vector<std::string> columns{"RPM", "MAP", "AAFR", "DAFR", "TPS"};
    Mutations mutations({"RPM > 3000 and MAP > 80 and abs(AAFR - DAFR) > 0.5",
                         "not (RPM <= 900 or TPS != 0.5) and max(MAP, 20) % 7 == 3",
                         "min(RPM, 1000) / -(MAP - 2 * TPS) >= 1.5e2", "sqrt(round(floor(ceil(RPM))))",
                         "((((RPM))))", "-1 < -MAP"},
                        {"(",
                         ")",
                         " and ",
                         " or ",
                         "not ",
                         "RPM",
                         "1e999",
                         ".",
                         "..",
                         "<=",
                         "==",
                         "=",
                         "!",
                         "%",
                         ",",
                         "abs",
                         "abs(",
                         "((((((((",
                         "\t",
                         "\n",
                         "\xc3",
                         std::string_view("\0", 1),
                         "999999999999999999999"},
                        3);
    constexpr std::array<float, 5> row{3500.0F, 0.0F, -14.7F, 14.7F, 5.0F};
    int understood = 0;
    for (int count = mutationsOfAKind(); count > 0; --count) {
        const std::string text = mutations.next();
        try {
            const LogExpression expression(text, columns);
            const auto at = [&](int column) { return row.at(static_cast<std::size_t>(column)); };
            const double value = expression.value(at);
            ASSERT_EQ(expression.holds(at), !std::isnan(value) && value != 0) << text;
            ++understood;
        } catch (const ExpressionError& error) {
            ASSERT_LE(error.place, text.size()) << text;
            ASSERT_FALSE(std::string_view(error.what()).empty()) << text;
        }
    }
    EXPECT_GT(understood, 0);
}

}  // namespace
}  // namespace zentaq
