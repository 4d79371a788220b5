// Files of the older generation with anything in them: imported or refused whole, read, turned into an image,
// saved as a calibration of today. The first byte of an input says for which unit, the rest is the file.
#include <cmath>
#include <cstdint>
#include <span>
#include <string>
#include <vector>

#include "calibration_checks.h"

namespace zentaq::fuzzing {
namespace {

/// An engine for every number, so that the layout of the reference data is taken, or none.
class OldFileHost : public FuzzHost {
 public:
    explicit OldFileHost(bool knowsEngines) : knowsEngines_(knowsEngines) {}
    std::optional<EngineFacts> engine(int, int optionType) override {
        if (!knowsEngines_) return {};
        const auto number = static_cast<float>(optionType % 60);
        EngineFacts facts;
        facts.toothMin = 1;
        facts.toothMax = number;
        facts.engType = number;
        facts.injTbl.fill(number);
        return facts;
    }

 private:
    bool knowsEngines_;
};

/// An import does not seed the barometric trim; the next opening does, and sets the ratio with it.
bool isBarometric(const CellMap& cells, int cell) {
    if (cells.baroTrim == CellMap::none) return false;
    return (cell >= cells.baroTrim && cell < cells.baroTrim + 8) || cell == cells.ratio;
}

void run(std::uint8_t byte, std::string_view content) {
    static const ScratchFolder folder;
    static const std::vector<const UnitKind*> kindsWithOldFiles = [] {
        std::vector<const UnitKind*> kinds;
        for (const UnitKind& kind : unitKinds()) {
            if (!kind.oldFileBytes.empty()) kinds.push_back(&kind);
        }
        return kinds;
    }();
    const UnitKind& kind = *kindsWithOldFiles[(byte & 3U) % kindsWithOldFiles.size()];
    const bool linked = (byte & 8U) != 0;
    OldFileHost host((byte & 4U) != 0);
    Unit unit(kind, host);
    if (linked) {
        unit.FW_Release((byte & 16U) != 0 ? 2 : kind.expected.release);
        host.firmwareIsKnownFromLink = true;
    }
    unit.AssignDirectIndex(77, 40);
    const CellBits before = cellBits(unit);
    const int release = unit.FW_Release();

    const MemoryFile file(content);
    if (!doneOrRefused([&] { unit.OldFileOpen(file.path()); })) {
        require(cellBits(unit) == before && unit.FW_Release() == release && host.header().fileState.empty(),
                "a file that is refused leaves the calibration as it was");
        return;
    }
    for (int i = 0; i < Unit::cellCount; ++i)
        require(std::isfinite(unit.DirectIndex(i)), "an import leaves no cell without a number");
    testing::EveryReader(unit, testing::Elements::FirstAndLast).run();
    checkImage(unit);
    if ((byte & 32U) != 0) readAsWindows(unit);

    const std::string path = folder.file("Tune" + std::string(kind.extension));
    std::filesystem::remove(path);
    for (int i = kind.fileFloats; i < Unit::cellCount; ++i)
        require(unit.DirectIndex(i) == 0, "an import writes no cell that no file holds");
    checkSaveAndOpen(unit, host, path, isBarometric);
    require(std::filesystem::file_size(path) == 4U * static_cast<unsigned>(3 + kind.fileFloats),
            "a saved import has the length of its kind");
}

}  // namespace
}  // namespace zentaq::fuzzing

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    if (size == 0) return 0;
    const std::span bytes(data, size);
    zentaq::fuzzing::run(bytes[0], zentaq::fuzzing::textOf(bytes.subspan(1)));
    return 0;
}
