// Member by member, for every unit kind: limits, texts, cells, image bytes, records and polling answers,
// compared with tables that were worked out apart from the program (expectations/*.tsv).
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <map>
#include <set>

#include "base/errors.h"
#include "base/number_text.h"
#include "unit/expectations/expectation_table.h"
#include "unit/expectations/kind_calibration.h"

namespace zentaq::testing {
namespace {

using ::testing::IsEmpty;

constexpr float infinity = std::numeric_limits<float>::infinity();

struct KindCase {
    const char* name;
    const UnitKind& (*kind)();
    const char* table;
};

void PrintTo(const KindCase& kind, std::ostream* out) {
    *out << kind.name;
}

class Expectations : public ::testing::TestWithParam<KindCase> {
 protected:
    const UnitKind& kind = GetParam().kind();
    const std::string path = std::string(ZENTAQ_SOURCE_DIR) + "/tests/unit/expectations/" + GetParam().table;
    const std::vector<Expectation> rows = readExpectations(path);

    /// Runs `check` for each line of a present member; failures name the line.
    template <typename Check>
    void forEachLine(Check&& check) {
        for (const Expectation& row : rows) {
            if (row.absent) continue;
            SCOPED_TRACE(row.place + ": " + row.member);
            try {
                check(row);
            } catch (const std::exception& failure) {
                ADD_FAILURE() << failure.what();
            }
        }
    }
    template <typename Check>
    void forEachEntry(Check&& check) {
        forEachLine([&](const Expectation& row) {
            if (row.entry) check(row);
        });
    }
    /// The lines whose limits are two numbers, with the limits in 32 bits.
    template <typename Check>
    void forEachRange(Check&& check) {
        forEachEntry([&](const Expectation& row) {
            if (!row.limits) return;
            KindCalibration cal(kind, row);
            const Limits limits = cal.unit.limits(row.member, row.element);
            const auto& [minimum, maximum] = *row.limits;
            EXPECT_PRED1([&](float seen) { return minimum.matches(seen); }, limits.minimum) << minimum.value;
            EXPECT_PRED1([&](float seen) { return maximum.matches(seen); }, limits.maximum) << maximum.value;
            check(row, minimum.approximate ? limits.minimum : minimum.value,
                  maximum.approximate ? limits.maximum : maximum.value);
        });
    }
};

std::string rangeTextFor(const Expectation& row, float entry) {
    std::string text = row.rangeText;
    if (const auto mark = text.find("%v"); mark != std::string::npos)
        text.replace(mark, 2, numberText(entry));
    return text;
}

// ---- The tables are whole

TEST_P(Expectations, NameEveryMemberOfTheKindAndNoOther) {
    std::set<std::string> named;
    for (const Expectation& row : rows) {
        if (!row.absent) named.insert(row.member);
    }
    std::set<std::string> members;
    for (const Parameter& row : kind.parameters) members.emplace(row.name);
    EXPECT_EQ(named, members);
}

TEST_P(Expectations, NameEveryMemberOfTheOrbAAsPresentOrAbsent) {
    std::set<std::string> named;
    for (const Expectation& row : rows) named.insert(row.member);
    for (const Parameter& row : orbaKind().parameters) {
        EXPECT_TRUE(named.contains(std::string(row.name))) << row.name;
    }
}

TEST_P(Expectations, HoldTheFirstSecondAndLastElementOfEveryCurve) {
    std::map<std::string, std::set<int>> elements;
    forEachLine([&](const Expectation& row) { elements[row.member].insert(row.element); });
    forEachLine([&](const Expectation& row) {
        for (const int element : {0, std::min(1, row.count - 1), row.count - 1}) {
            EXPECT_TRUE(elements[row.member].contains(element)) << element;
        }
    });
}

// ---- Entries

TEST_P(Expectations, AnEntryChangesItsCellsAndNoOther) {
    forEachEntry([&](const Expectation& row) {
        KindCalibration cal(kind, row);
        auto cells = cal.cells();
        auto bytes = cal.controlBytes();
        ASSERT_TRUE(cal.unit.set(row.member, *row.entry, row.element));
        const auto after = cal.cells();
        for (const auto& [index, isControlByte, number] : row.stored) {
            const auto i = static_cast<std::size_t>(index);
            if (isControlByte) {
                bytes.at(i - 1) = static_cast<int>(number.value);
            } else {
                EXPECT_TRUE(number.matches(after.at(i))) << "cell " << index << " is " << after.at(i);
                cells.at(i) = after.at(i);
            }
        }
        for (std::size_t i = 0; i < cells.size(); ++i) EXPECT_EQ(after[i], cells[i]) << "cell " << i;
        EXPECT_EQ(cal.controlBytes(), bytes);
    });
}

TEST_P(Expectations, AnEntryReadsBack) {
    forEachLine([&](const Expectation& row) {
        KindCalibration cal(kind, row);
        if (row.entry) cal.unit.set(row.member, *row.entry, row.element);
        const float seen = cal.unit.get(row.member, row.element);
        EXPECT_FLOAT_EQ(seen, row.reads.value);
    });
}

TEST_P(Expectations, ATypedEntryAndANumberAreTheSame) {
    forEachEntry([&](const Expectation& row) {
        KindCalibration typed(kind, row);
        KindCalibration given(kind, row);
        typed.unit.set(row.member, " " + *row.entry + " ", row.element);
        given.unit.set(row.member, static_cast<double>(table_reading::numberFrom(*row.entry)), row.element);
        EXPECT_EQ(typed.cells(), given.cells());
        EXPECT_EQ(typed.controlBytes(), given.controlBytes());
    });
}

TEST_P(Expectations, AMemberThatIsOnlyReadTakesNoEntry) {
    forEachLine([&](const Expectation& row) {
        if (row.entry) return;
        KindCalibration cal(kind, row);
        cal.unit.ONFLY_MODE(true);
        const auto cells = cal.cells();
        EXPECT_FALSE(cal.unit.set(row.member, 5, row.element));
        EXPECT_EQ(cal.cells(), cells);
        EXPECT_THAT(cal.host.sent, IsEmpty());
    });
}

TEST_P(Expectations, BlankTextIsRefusedBeforeTheRangeIsLookedAt) {
    forEachEntry([&](const Expectation& row) {
        KindCalibration cal(kind, row);
        cal.unit.ONFLY_MODE(true);
        const auto cells = cal.cells();
        const auto bytes = cal.controlBytes();
        EXPECT_EQ(refusalOf(cal.unit.set(row.member, "", row.element)), Refusal{1005});
        EXPECT_EQ(refusalOf(cal.unit.set(row.member, "  ", row.element)), Refusal{1005});
        EXPECT_THAT(cal.host.sent, IsEmpty());
        EXPECT_EQ(cal.cells(), cells);
        EXPECT_EQ(cal.controlBytes(), bytes);
    });
}

// ---- Limits

TEST_P(Expectations, TheLimitsAndWhatLiesJustInsideAreStored) {
    forEachRange([&](const Expectation& row, float minimum, float maximum) {
        for (const float entry :
             {minimum, std::nextafter(minimum, infinity), std::nextafter(maximum, -infinity), maximum}) {
            KindCalibration cal(kind, row);
            EXPECT_TRUE(cal.unit.set(row.member, static_cast<double>(entry), row.element)) << entry;
            EXPECT_EQ(limitsOf(cal.unit, *cal.unit.find(row.member), row.element, entry).text,
                      rangeTextFor(row, entry));
        }
    });
}

TEST_P(Expectations, WhatLiesJustOutsideIsRefusedWithTheRangeTextAndNothingChanges) {
    forEachRange([&](const Expectation& row, float minimum, float maximum) {
        for (const float entry : {std::nextafter(minimum, -infinity), std::nextafter(maximum, infinity)}) {
            KindCalibration cal(kind, row);
            cal.unit.limits(row.member, row.element);  // repairs what a look at the limits repairs
            cal.unit.ONFLY_MODE(true);
            const auto cells = cal.cells();
            const std::string text = rangeTextFor(row, entry);
            const std::string limits = numberText(minimum) + " to " + numberText(maximum);
            EXPECT_EQ(refusalOf(cal.unit.set(row.member, static_cast<double>(entry), row.element)),
                      (Refusal{1001, text, numberText(entry), limits}));
            EXPECT_EQ(cal.cells(), cells);
            EXPECT_THAT(cal.host.sent, IsEmpty());
        }
    });
}

TEST_P(Expectations, OnlyListedNumbersAreStored) {
    forEachEntry([&](const Expectation& row) {
        if (row.listed.empty()) return;
        for (std::size_t i = 0; i < row.listed.size(); ++i) {
            const float listed = row.listed[i];
            KindCalibration cal(kind, row);
            EXPECT_TRUE(cal.unit.set(row.member, static_cast<double>(listed), row.element)) << listed;
            EXPECT_EQ(cal.unit.get(row.member, row.element), listed);
            const auto cells = cal.cells();
            for (const float other : {std::nextafter(listed, -infinity), std::nextafter(listed, infinity)}) {
                const Refusal refusal =
                    refusalOf(cal.unit.set(row.member, static_cast<double>(other), row.element));
                EXPECT_EQ(refusal.warning, 1001);
                EXPECT_EQ(refusal.text, row.rangeText);
                EXPECT_EQ(refusal.entry, numberText(other));
            }
            EXPECT_EQ(cal.cells(), cells);
        }
    });
}

TEST_P(Expectations, AMemberWithoutARangeTakesAnyNumber) {
    forEachEntry([&](const Expectation& row) {
        if (row.hasRange()) return;
        KindCalibration cal(kind, row);
        EXPECT_TRUE(cal.unit.limits(row.member, row.element).unlimited());
        EXPECT_TRUE(cal.unit.set(row.member, *row.entry, row.element));
    });
}

// ---- Image

TEST_P(Expectations, TheImageTakesTheBytesOfAnEntryAndNoOthers) {
    forEachEntry([&](const Expectation& row) {
        KindCalibration cal(kind, row);
        auto expected = cal.image();
        cal.unit.set(row.member, *row.entry, row.element);
        const auto image = cal.image();
        for (const auto& [first, values] : row.image) {
            for (std::size_t i = 0; i < values.size(); ++i) {
                const std::size_t index = static_cast<std::size_t>(first) + i;
                EXPECT_EQ(static_cast<double>(image.at(index)), values[i]) << "byte " << index;
                expected.at(index) = image.at(index);
            }
        }
        if (row.otherBytesFollow) return;
        for (std::size_t i = 0; i < image.size(); ++i) EXPECT_EQ(image[i], expected[i]) << "byte " << i;
    });
}

// ---- On the fly

TEST_P(Expectations, AChangeOnTheFlySendsItsRecord) {
    forEachEntry([&](const Expectation& row) {
        KindCalibration cal(kind, row);
        cal.unit.ONFLY_MODE(true);
        ASSERT_TRUE(cal.unit.set(row.member, *row.entry, row.element));
        EXPECT_EQ(cal.host.sent, row.records);
        EXPECT_THAT(cal.host.log, IsEmpty());
    });
}

TEST_P(Expectations, NothingIsSentWithoutOnFlyMode) {
    forEachEntry([&](const Expectation& row) {
        KindCalibration cal(kind, row);
        cal.unit.set(row.member, *row.entry, row.element);
        EXPECT_THAT(cal.host.sent, IsEmpty());
    });
}

TEST_P(Expectations, SilentModeKeepsTheFourTablesQuietAndNoOtherMember) {
    const std::set<std::string> quiet = {"ADV", "VE", "SPW", "Get_AFR"};
    forEachEntry([&](const Expectation& row) {
        KindCalibration cal(kind, row);
        cal.unit.ONFLY_MODE(true);
        cal.unit.SILENT_MODE(true);
        ASSERT_TRUE(cal.unit.set(row.member, *row.entry, row.element));
        EXPECT_EQ(cal.host.sent.size(), quiet.contains(row.member) ? 0U : row.records.size());
        cal.unit.SILENT_MODE(false);
        EXPECT_FLOAT_EQ(cal.unit.get(row.member, row.element), row.reads.value);
    });
}

// ---- Polling

TEST_P(Expectations, IndexPollingAnswersTheIndexWhateverTheCellHolds) {
    forEachLine([&](const Expectation& row) {
        KindCalibration cal(kind, row);
        cal.unit.IndexPolling(true);
        if (row.polling) {
            EXPECT_EQ(cal.unit.get(row.member, row.element), static_cast<float>(*row.polling));
        }
        if (row.entry) cal.unit.set(row.member, *row.entry, row.element);
        EXPECT_FLOAT_EQ(cal.unit.get(row.member, row.element),
                        row.polling ? static_cast<float>(*row.polling) : row.reads.value);
    });
}

// ---- Curves and tables

TEST_P(Expectations, EveryElementHasItsOwnCellEvenlyBetweenTheFirstAndTheLast) {
    std::map<std::string, std::vector<const Expectation*>> curves;
    forEachEntry([&](const Expectation& row) {
        if (row.count > 1) curves[row.member].push_back(&row);
    });
    EXPECT_FALSE(curves.empty());
    for (const auto& [member, lines] : curves) {
        SCOPED_TRACE(member);
        const auto cellOf = [&](int element) {
            const auto line =
                std::ranges::find_if(lines, [&](const Expectation* row) { return row->element == element; });
            return (*line)->stored.front().index;
        };
        const Expectation& row = *lines.front();
        const int first = cellOf(0);
        const int stride = cellOf(1) - first;
        EXPECT_EQ(cellOf(row.count - 1), first + (row.count - 1) * stride);
        KindCalibration cal(kind, row);
        const ExpectedNumber& stored = row.stored.front().number;
        for (int i = 0; i < row.count; ++i) {
            const int cell = first + i * stride;
            EXPECT_FALSE(stored.matches(cal.unit.DirectIndex(cell))) << "cell " << cell << " before its turn";
            EXPECT_TRUE(cal.unit.set(member, *row.entry, i));
            EXPECT_TRUE(stored.matches(cal.unit.DirectIndex(cell))) << "cell " << cell;
            EXPECT_FLOAT_EQ(cal.unit.get(member, i), row.reads.value) << i;
        }
        for (const int outside : {-1, row.count}) {
            EXPECT_THROW(cal.unit.get(member, outside), BoundsError) << outside;
            EXPECT_THROW(cal.unit.set(member, *row.entry, outside), BoundsError) << outside;
        }
    }
}

TEST_P(Expectations, EveryElementPollsItsOwnIndex) {
    forEachLine([&](const Expectation& row) {
        if (row.count == 1 || row.element != 0 || !row.polling) return;
        const auto second = std::ranges::find_if(
            rows, [&](const Expectation& other) { return other.member == row.member && other.element == 1; });
        const int stride = second->polling.value() - *row.polling;
        KindCalibration cal(kind, row);
        cal.unit.IndexPolling(true);
        for (int i = 0; i < row.count; ++i) {
            EXPECT_EQ(cal.unit.get(row.member, i), static_cast<float>(*row.polling + i * stride)) << i;
        }
    });
}

TEST_P(Expectations, CurvesAreFoundByTheirReaderAndWriterNames) {
    forEachLine([&](const Expectation& row) {
        if (row.count == 1) return;
        const std::string bare = row.member.starts_with("Get_") ? row.member.substr(4) : row.member;
        const KindCalibration cal(kind);
        ASSERT_NE(cal.unit.find(row.member), nullptr);
        EXPECT_EQ(cal.unit.find("Get_" + bare), cal.unit.find(row.member));
        EXPECT_EQ(cal.unit.find("Set_" + bare), cal.unit.find(row.member));
    });
}

// ---- Members that a kind lacks

TEST_P(Expectations, AMissingMemberIsSilent) {
    for (const Expectation& row : rows) {
        if (!row.absent) continue;
        SCOPED_TRACE(row.member);
        const std::string bare = row.member.starts_with("Get_") ? row.member.substr(4) : row.member;
        KindCalibration cal(kind);
        cal.unit.ONFLY_MODE(true);
        const auto cells = cal.cells();
        const auto bytes = cal.controlBytes();
        std::vector<std::string> names = {row.member};
        if (bare != "AFR") names.insert(names.end(), {"Get_" + bare, "Set_" + bare});
        for (const std::string& name : names) {
            EXPECT_FALSE(cal.unit.has(name));
            for (const int element : {0, 7, 300}) {
                EXPECT_EQ(cal.unit.get(name, element), 0);
                for (const Entry& entry : {Entry(10), Entry("")}) {
                    const auto outcome = cal.unit.set(name, entry, element);
                    EXPECT_FALSE(outcome);
                    EXPECT_EQ(refusalOf(outcome), Refusal{}) << "nothing to tell";
                }
            }
            cal.unit.store(name, 10);
            cal.unit.IndexPolling(true);
            EXPECT_EQ(cal.unit.get(name), 0);
            cal.unit.IndexPolling(false);
        }
        EXPECT_EQ(cal.cells(), cells);
        EXPECT_EQ(cal.controlBytes(), bytes);
        EXPECT_THAT(cal.host.sent, IsEmpty());
    }
}

INSTANTIATE_TEST_SUITE_P(
    AllKinds, Expectations,
    ::testing::Values(KindCase{"OrbA", orbaKind, "orba.tsv"}, KindCase{"OrbL", orbLiteKind, "orblite.tsv"},
                      KindCase{"OrbC", orbcKind, "orbc.tsv"}, KindCase{"OrbD", orbdKind, "orbd.tsv"},
                      KindCase{"OrbD6", orbd6Kind, "orbd.tsv"}, KindCase{"Pzk2", pzk2Kind, "pzk2.tsv"}),
    [](const auto& row) { return std::string(row.param.name); });

}  // namespace
}  // namespace zentaq::testing
