// Calibration files of every length and with every kind of hostile number in every cell, for every unit kind:
// opened or refused whole, read by every reader, turned into an image, saved with the same cells.
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/mman.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <bit>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <limits>
#include <optional>
#include <string>
#include <vector>

#include "base/errors.h"
#include "unit/every_reader.h"
#include "unit/recording_host.h"
#include "unit/unit.h"
#include "unit/unit_fixture.h"

namespace zentaq::testing {
namespace {

constexpr int headerFloats = 3;

/// A file in memory that can be opened by a path and cut.
class MemoryFile {
 public:
    MemoryFile() : descriptor_(::memfd_create("calibration", MFD_CLOEXEC)) {}
    ~MemoryFile() { ::close(descriptor_); }
    MemoryFile(const MemoryFile&) = delete;
    MemoryFile& operator=(const MemoryFile&) = delete;
    std::string path() const { return "/proc/self/fd/" + std::to_string(descriptor_); }
    void put(std::string_view bytes, std::size_t at = 0) const {
        ASSERT_EQ(::pwrite(descriptor_, bytes.data(), bytes.size(), static_cast<off_t>(at)),
                  static_cast<ssize_t>(bytes.size()));
    }
    void length(std::size_t bytes) const {
        ASSERT_EQ(::ftruncate(descriptor_, static_cast<off_t>(bytes)), 0);
    }

 private:
    int descriptor_;
};

std::size_t offsetOf(int cell) {
    return 4 * static_cast<std::size_t>(headerFloats + cell);
}

std::uint32_t bitsOf(float value) {
    return std::bit_cast<std::uint32_t>(value);
}

struct Hostile {
    const char* name;
    std::uint32_t bits;
    bool alone = false;  ///< also tried in each cell alone
};
const std::vector<Hostile>& hostiles() {
    static const std::vector<Hostile> values = {
        {"NaN", 0x7FC00000, true},
        {"negative NaN with a payload", 0xFFC12345},
        {"signalling NaN", 0x7F800001},
        {"infinity", 0x7F800000, true},
        {"negative infinity", 0xFF800000, true},
        {"largest", 0x7F7FFFFF, true},
        {"most negative", 0xFF7FFFFF},
        {"smallest denormal", 0x00000001, true},
        {"negative denormal", 0x807FFFFF},
        {"beyond 16 bits", bitsOf(32768.0F)},
        {"beyond 32 bits", bitsOf(-4e9F), true},
    };
    return values;
}

/// One calibration with its host, as a program that opens one file after another has it.
struct Program {
    explicit Program(const UnitKind& kind) : unit(kind, host) { host.head.currentUnit = 0; }
    RecordingHost host;
    Unit unit;
};

class FileOfAnyKind : public ::testing::TestWithParam<int> {
 protected:
    const UnitKind* kind = unitKindOfSlot(GetParam());
    void SetUp() override { ASSERT_NE(kind, nullptr); }

    /// Header and plain values: nothing in it needs a repair, every cell can be told from its neighbours.
    std::vector<float> plainFile(int cells) const {
        std::vector<float> floats(static_cast<std::size_t>(headerFloats + cells));
        floats[0] = kind->fileKind;
        floats[1] = 10.2F;
        floats[2] = static_cast<float>(kind->expected.release * 1000 + kind->expected.build);
        for (int i = 0; i < cells; ++i) floats[static_cast<std::size_t>(headerFloats + i)] = plainCell(i);
        return floats;
    }
    /// Small whole numbers; 16 where the tables' sizes stand, ratings and units as sensors have them.
    float plainCell(int cell) const {
        if (cell < headerFloats) return static_cast<float>(cell + 1);  // the control bytes
        if (kind->cells.hasAxisWords && cell >= 2292 && cell <= 2297) return 16;
        if (kind->cells.hasAxisWords && (cell == 2290 || cell == 2291)) return 55;
        if (cell == kind->cells.mapBar || cell == kind->cells.legacyBar) return 2;
        if (cell == kind->cells.mapUnits || cell == kind->cells.mapId) return 1;
        return static_cast<float>(10 + cell % 37);
    }
};

std::string kindName(const ::testing::TestParamInfo<int>& info) {
    const UnitKind* kind = unitKindOfSlot(info.param);
    std::string name = kind == nullptr ? "none" : std::string(kind->model);
    std::erase_if(name, [](char c) { return std::isalnum(static_cast<unsigned char>(c)) == 0; });
    return name + std::to_string(info.param);
}

// ---- Lengths

class FileOfEveryLength : public FileOfAnyKind {
 protected:
    /// Cells that a repair may fill in a file that ends before them, so that they are not 0.
    bool mayBeSeeded(int cell) const {
        const CellMap& cells = kind->cells;
        const auto within = [&](int first, int count) {
            return first != CellMap::none && cell >= first && cell < first + count;
        };
        return within(cells.baroTrim, 8) || cell == cells.ratio || cell == cells.mapBar ||
               cell == cells.legacyBar || (cells.hasAxisWords && within(2226, 72)) ||
               within(pressureAxis(), 32);
    }
    int pressureAxis() const {
        for (const Parameter& row : kind->parameters)
            if (row.name == "MAPTBL") return row.index;
        return CellMap::none;
    }
};
INSTANTIATE_TEST_SUITE_P(Kinds, FileOfEveryLength, ::testing::Values(3, 4, 5, 6, 7, 8), kindName);

TEST_P(FileOfEveryLength, LoadsWithAZeroTailOrIsRefusedWhole) {
    constexpr int tooMany = Unit::cellCount + 2;
    const std::string whole = bytesOf(plainFile(tooMany));
    const MemoryFile file;
    Program program(*kind);
    Unit& unit = program.unit;
    for (std::size_t length = 0; length <= whole.size(); ++length) {
        file.put(whole);
        file.length(length);
        const std::size_t floats = length / 4;
        if (floats < headerFloats) {
            ASSERT_THROW(unit.FileOpen(file.path()), FileError) << length;
            continue;
        }
        const int cells = static_cast<int>(floats) - headerFloats;
        if (cells > Unit::cellCount) {
            ASSERT_THROW(unit.FileOpen(file.path()), BoundsError) << length;
            ASSERT_EQ(unit.DirectIndex(Unit::cellCount - 1), plainCell(Unit::cellCount - 1));
            continue;
        }
        unit.AssignDirectIndex(77, Unit::cellCount - 1);  // of the calibration before
        ASSERT_NO_THROW(unit.FileOpen(file.path())) << length;
        // Bytes behind the last whole float change nothing: one length of four is looked at cell by cell.
        const int first = length % 4 == 0 ? 0 : std::max(0, cells - 2);
        for (int i = first; i < std::min(cells, Unit::cellCount); ++i) {
            if (unit.DirectIndex(i) == plainCell(i) || mayBeSeeded(i)) continue;
            FAIL() << "cell " << i << " of a file of " << length << " bytes is " << unit.DirectIndex(i);
        }
        for (int i = cells; i < (length % 4 == 0 ? Unit::cellCount : std::min(cells + 2, Unit::cellCount));
             ++i) {
            if (unit.DirectIndex(i) == 0 || mayBeSeeded(i)) continue;
            FAIL() << "cell " << i << " behind a file of " << length << " bytes is " << unit.DirectIndex(i);
        }
    }
}

// ---- Firmware codes

class OddFirmwareCode : public FileOfAnyKind {
 protected:
    void open(Program& program, float code) const {
        std::vector<float> floats = plainFile(kind->fileFloats);
        floats[2] = code;
        const MemoryFile file;
        file.put(bytesOf(floats));
        program.unit.FileOpen(file.path());
    }
};
INSTANTIATE_TEST_SUITE_P(Kinds, OddFirmwareCode, ::testing::Values(3, 4, 5, 6, 7, 8), kindName);

// It is saved as unknown firmware: what it opens as now and then must be the same.
TEST_P(OddFirmwareCode, ThatRoundsToNothingIsAsGoodAsNone) {
    for (const float code : {0.0F, 1e-43F, -1e-43F, 0.3F, -0.4F}) {
        SCOPED_TRACE(code);
        Program program(*kind);
        open(program, code);
        EXPECT_EQ(program.unit.FW_Release(), kind->expected.release);
        EXPECT_EQ(program.unit.FW_Build(), kind->expected.build);
    }
}

TEST_P(OddFirmwareCode, BeyondAnyReleaseIsRefused) {
    for (const float code : {4e7F, -4e7F, 1e38F, std::numeric_limits<float>::infinity(), std::nanf("")}) {
        SCOPED_TRACE(code);
        Program program(*kind);
        EXPECT_THROW(open(program, code), Overflow);
    }
}

// ---- Hostile numbers

class HostileCell : public FileOfAnyKind {};
INSTANTIATE_TEST_SUITE_P(Kinds, HostileCell, ::testing::Values(3, 4, 5, 6, 7, 8), kindName);

/// The first cell that is not, bit by bit, what the file holds; nothing when all are.
std::optional<int> firstOtherCell(const Unit& unit, const std::string& file) {
    for (int i = 0; i < unit.kind().fileFloats; ++i) {
        std::uint32_t expected = 0;
        std::memcpy(&expected, file.data() + offsetOf(i), sizeof expected);
        if (bitsOf(unit.DirectIndex(i)) != expected) return i;
    }
    return std::nullopt;
}

constexpr int sizeOfTables = 2292;
bool isSizeOfTables(const UnitKind& kind, int cell) {
    return kind.cells.hasAxisWords && cell == sizeOfTables;
}
/// Cells that must be whole numbers before a file can be opened: the control bytes and the tables' size.
bool isNeededToOpen(const UnitKind& kind, int cell) {
    return cell < 3 || isSizeOfTables(kind, cell);
}
/// A file without a size for its tables gets 16 for each, in the file as the calibration shows it.
void seedSizes(std::string& file) {
    constexpr int sizes = 6;
    constexpr float oldSize = 16;
    for (int i = 0; i < sizes; ++i) std::memcpy(file.data() + offsetOf(sizeOfTables + i), &oldSize, 4);
}

// Each hostile number in each cell alone, so that no other one hides what it does.
TEST_P(HostileCell, OpensAsItIsOrIsRefusedWholeAndNoReaderFails) {
    const std::string plain = bytesOf(plainFile(kind->fileFloats));
    const MemoryFile file;
    file.put(plain);
    Program program(*kind);
    Unit& unit = program.unit;
    unit.FileOpen(file.path());
    ASSERT_EQ(firstOtherCell(unit, plain), std::nullopt) << "a plain file needs no repair";
    int refusedImages = 0;
    for (int cell = 0; cell < kind->fileFloats; ++cell) {
        for (std::size_t i = 0; i < hostiles().size(); ++i) {
            if (!hostiles()[i].alone) continue;
            SCOPED_TRACE(std::string(hostiles()[i].name) + " in cell " + std::to_string(cell));
            std::string poisoned = plain;
            std::memcpy(poisoned.data() + offsetOf(cell), &hostiles()[i].bits, 4);
            file.put(std::string_view(poisoned).substr(offsetOf(cell), 4), offsetOf(cell));
            program.host.forget();
            try {
                unit.FileOpen(file.path());
                if (isSizeOfTables(*kind, cell)) seedSizes(poisoned);
                ASSERT_EQ(firstOtherCell(unit, poisoned), std::nullopt);
            } catch (const Failure&) {
                ASSERT_TRUE(isNeededToOpen(*kind, cell));
                continue;
            }
            try {
                unit.ConvertData();
                unit.sRecordText();
            } catch (const Failure&) {
                ++refusedImages;
            }
            // All readers for a few of the numbers of each cell, another few in the next cell.
            if ((static_cast<std::size_t>(cell) + i) % hostiles().size() < 2) {
                ASSERT_GT(EveryReader(unit, Elements::FirstAndLast).run().given, 300);
            }
        }
        file.put(std::string_view(plain).substr(offsetOf(cell), 4), offsetOf(cell));
    }
    EXPECT_GT(refusedImages, 1000);
}

// Every 31st cell at once, for all 31 beginnings: each cell is saved with each number.
TEST_P(HostileCell, IsSavedAsItWasOpened) {
    const TemporaryFolder folder;
    const std::string path = folder.file("Tune" + std::string(kind->extension));
    constexpr int step = 31;
    for (const Hostile& hostile : hostiles()) {
        for (int first = 0; first < step; ++first) {
            SCOPED_TRACE(std::string(hostile.name) + " in cells from " + std::to_string(first));
            std::string poisoned = bytesOf(plainFile(kind->fileFloats));
            for (int cell = first; cell < kind->fileFloats; cell += step) {
                if (isNeededToOpen(*kind, cell)) continue;
                std::memcpy(poisoned.data() + offsetOf(cell), &hostile.bits, 4);
            }
            const MemoryFile file;
            file.put(poisoned);
            Program program(*kind);
            ASSERT_NO_THROW(program.unit.FileOpen(file.path()));
            // The name of the file takes the 24 cells of the calibration's name.
            program.unit.BinFile(path);
            std::string expected = poisoned;
            const std::size_t name = offsetOf(kind->cells.name);
            for (int i = 0; i < 24; ++i) {
                const float character = program.unit.DirectIndex(kind->cells.name + i);
                std::memcpy(expected.data() + name + 4 * static_cast<std::size_t>(i), &character, 4);
            }
            program.unit.SaveFile();
            const std::string saved = contentOf(path);
            ASSERT_EQ(saved.size(), expected.size());
            const auto [mine, other] = std::ranges::mismatch(saved, expected);
            ASSERT_EQ(mine, saved.end()) << "byte " << mine - saved.begin();
        }
    }
}

}  // namespace
}  // namespace zentaq::testing
