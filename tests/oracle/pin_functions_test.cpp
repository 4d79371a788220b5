// Every function of every pin of every kind, chosen and given its parameters in the input/output manager: the
// unit's memory must come out as the second encoder makes it of the saved file.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <map>
#include <string>

#include "app/fake_platform.h"
#include "app/pin_manager.h"
#include "base/number_text.h"
#include "base/text.h"

namespace zentaq {
namespace {

struct PinSample {
    const char* name;
    const char* file;
    int slot;
};

void PrintTo(const PinSample& sample, std::ostream* out) {
    *out << sample.name;
}

class PinFunctions : public testing::TestWithParam<PinSample> {
 protected:
    PinFunctions() {
        const std::string data = fake.folder.path("reference.pak");
        std::filesystem::copy_file(builtReference(), data);
        fake.session.database = Database::open(data);
        fake.session.makeUnits();
        fake.session.CurrentUnit(static_cast<float>(GetParam().slot));
        unit().FileOpen(std::string(ZENTAQ_APP_DIR "/samples/") + GetParam().file);
        for (const GpioPinRow& row : manager.pins()) manager.choose(row.pin, 0);
    }
    Unit& unit() { return fake.session.currentUnitObject(); }

    /// Saves what is in hand, with what the program makes of it for the unit.
    void save(const std::string& what) {
        const std::string stem = "f" + std::to_string(records.size());
        std::ofstream out(folder.path() / (stem + std::string(unit().kind().extension)), std::ios::binary);
        const std::string bytes = unit().fileContent().bytes;
        out << bytes;
        // A unit that has converted another function before keeps bytes that this one does not name.
        Unit fresh(unit().kind(), fake.session);
        fresh.FileOpen(stem, bytes);
        fresh.ConvertData();
        records[stem] = {what, fresh.sRecordText()};
    }
    /// A value in the range of a row, as a user types it; empty for a row that takes none.
    static std::string entryFor(const GpioParamRow& row, int turn) {
        if (row.parameter < 0) return {};
        if (row.limits.unlimited()) return numberText(3 + turn);
        if (!row.limits.listed.empty())
            return numberText(row.limits.listed[static_cast<std::size_t>(turn) % row.limits.listed.size()]);
        const double low = row.limits.minimum;
        const double high = row.limits.maximum;
        return numberText(std::round(low + (high - low) * (turn % 5 + 1) / 7));
    }

    /// Where two texts part: "12: ours / theirs"; empty where they do not.
    static std::string firstLineOf(const std::string& ours, const std::string& theirs) {
        const auto left = split(ours, '\n');
        const auto right = split(theirs, '\n');
        for (std::size_t i = 0; i < std::max(left.size(), right.size()); ++i) {
            const std::string one = i < left.size() ? left[i] : "(none)";
            const std::string other = i < right.size() ? right[i] : "(none)";
            if (one != other) return std::to_string(i) + ": " + one + " / " + other;
        }
        return {};
    }

    struct Record {
        std::string what;
        std::string text;
    };
    FakeSession fake;
    PinManager manager{fake.session};
    const TemporaryFolder folder;
    std::map<std::string, Record> records;
};

TEST_P(PinFunctions, GiveTheUnitTheBytesOfTheSecondEncoder) {
    int chosen = 0;
    int entered = 0;
    for (const GpioPinRow& pin : manager.pins()) {
        for (const GpioFunctionList::Item& function : manager.functions(pin.pin).items) {
            manager.choose(pin.pin, function.code);
            ASSERT_EQ(GpioModel(unit()).storedCode(pin.pin), function.code) << pin.text << function.text;
            const std::string what = pin.text + ": " + function.text;
            ++chosen;
            for (const GpioParamRow& row : manager.parameters(pin.pin)) {
                if (row.parameter < 0) continue;
                EXPECT_EQ(unit().Get_GPIO_Param(pin.pin, row.parameter), 0) << what << ": " << row.label;
            }
            save(what + ", chosen");
            const auto rows = manager.parameters(pin.pin);
            for (std::size_t i = 0; i < rows.size(); ++i) {
                const std::string entry = entryFor(rows[i], chosen + static_cast<int>(i));
                if (!entry.empty() && manager.enter(pin.pin, static_cast<int>(i), entry)) ++entered;
            }
            save(what + ", with parameters");
        }
        manager.choose(pin.pin, 0);
    }
    EXPECT_GT(chosen, 20);
    EXPECT_GT(entered, chosen);
    const std::string script = "'" ZENTAQ_PYTHON "' -B '" ZENTAQ_SOURCE_DIR
                               "/tests/oracle/encode_files.py' '" +
                               folder.path().string() + "'";
    ASSERT_EQ(std::system(script.c_str()), 0);
    for (const auto& [stem, record] : records) {
        const std::string theirs = TemporaryFolder::read(folder.path() / (stem + ".s19"));
        EXPECT_EQ(firstLineOf(record.text, theirs), "") << record.what;
    }
    RecordProperty("functions", chosen);
}

INSTANTIATE_TEST_SUITE_P(EveryKind, PinFunctions,
                         testing::Values(PinSample{"OrbA", "Street 2.0 Four.ZQ4OA", 3},
                                         PinSample{"OrbL", "ORB L Six.ZQ4OL", 4},
                                         PinSample{"Pzk2", "PZK-2 Classic Four.ZQ4PZK", 5},
                                         PinSample{"OrbC", "ORB C Six.ZQ4OC", 6},
                                         PinSample{"OrbD", "ORB D Four.ZQ4OD", 7}),
                         [](const auto& row) { return std::string(row.param.name); });

}  // namespace
}  // namespace zentaq
