// Datalogs, markers and conditions that went wrong by chance: each reader takes or refuses them, and what it
// takes is whole. A few thousand in every run; ZENTAQ_MUTATIONS=1000000 asks for more.
#include <gtest/gtest.h>

#include <array>
#include <cmath>
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
#include "logs/log_expression.h"
#include "logs/log_marks.h"

namespace zentaq {
namespace {

constexpr int fewMutations = 9000;

int wantedMutations() {
    const char* wanted = std::getenv("ZENTAQ_MUTATIONS");
    return wanted == nullptr ? fewMutations : std::atoi(wanted);
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
        for (const double value : values) whole = whole && std::isfinite(value);
        lastLine = line;
        ++rows;
    }
};

TEST(DatalogsThatWentWrong, GiveWholeRowsOrAreRefused) {
    Mutations mutations(goodDatalogs(),
                        {"\t", ",", "\r\n", "\n", "nan", "inf", "-", "1e999", "-1e-400", "0x1p4", " ", "\"",
                         "\t\t\t", "ZENTAQ 4.0 DATALOG\t", "ZENTAQ 4.10 DATALOG\r\n",
                         std::string_view("\0", 1), "\xff\xfe", "99999999999999999999999999"},
                        1);
    int read = 0;
    for (int count = wantedMutations() / 3; count > 0; --count) {
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

// ---- Markers

TEST(MarkersThatWentWrong, ComeInTheOrderOfTheirTimesAndAreWrittenBackTheSame) {
    Mutations mutations(
        {"1.5\tstart\n12.25\tlap one\n60\tgear 3 \u00e4\n", "0\ta\n0\tb\n", ""},
        {"\t", "\n", "\r", "nan", "inf", "-1", "1e308", "1e400", ",", std::string_view("\0", 1), "\x1b[2J"},
        2);
    for (int count = wantedMutations() / 3; count > 0; --count) {
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
    for (int count = wantedMutations() / 3; count > 0; --count) {
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
