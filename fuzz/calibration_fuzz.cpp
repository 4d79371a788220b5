// Calibration files with anything in them: opened or refused whole, read, turned into an image, saved, opened
// again. The first byte of an input says for which unit and link, the rest is the file.
#include <algorithm>
#include <cstdint>
#include <span>
#include <string>

#include "calibration_checks.h"
#include "unit/safe_file.h"

namespace zentaq::fuzzing {
namespace {

struct Surroundings {
    const UnitKind* kind;
    bool linked;       ///< a unit has told its firmware
    bool overOldFile;  ///< the save goes over the file itself, which may be longer
    bool oldUnit;
    bool windows;  ///< windows show the calibration
};

Surroundings surroundingsOf(std::uint8_t byte) {
    return {&unitKinds()[(byte & 7U) % unitKinds().size()], (byte & 8U) != 0, (byte & 16U) != 0,
            (byte & 32U) != 0, (byte & 64U) != 0};
}

/// The program around a calibration: nothing on the link, or a unit that has told its firmware.
void tellFirmware(const Surroundings& around, Unit& unit, FuzzHost& host) {
    if (!around.linked) return;
    unit.FW_Release(around.oldUnit ? 2 : unit.kind().expected.release);
    unit.FW_Build(10);
    host.firmwareIsKnownFromLink = true;
}

/// Windows repair what they show, so they get a calibration of their own.
void readInWindows(const Surroundings& around, const std::string& path) {
    FuzzHost host;
    Unit unit(*around.kind, host);
    tellFirmware(around, unit, host);
    unit.FileOpen(path);
    readAsWindows(unit);
}

void run(const Surroundings& around, std::string_view content) {
    static const ScratchFolder folder;
    FuzzHost host;
    Unit unit(*around.kind, host);
    tellFirmware(around, unit, host);
    unit.AssignDirectIndex(77, 40);
    const CellBits before = cellBits(unit);
    const int release = unit.FW_Release();

    const MemoryFile file(content);
    if (!doneOrRefused([&] { unit.FileOpen(file.path()); })) {
        require(cellBits(unit) == before && unit.FW_Release() == release && host.header().fileState.empty(),
                "a file that is refused leaves the calibration as it was");
        return;
    }
    testing::EveryReader(unit, testing::Elements::FirstAndLast).run();
    checkImage(unit);

    const std::string path = folder.file("Tune" + std::string(unit.kind().extension));
    std::filesystem::remove(path);
    if (around.overOldFile) writeFileSafely(path, content);
    // Only the file's own start is written: what a longer file held beyond it is not there in a new one.
    if (!around.overOldFile)
        for (int i = unit.kind().fileFloats; i < Unit::cellCount; ++i) unit.AssignDirectIndex(0, i);
    checkSaveAndOpen(unit, host, path);
    if (around.windows) readInWindows(around, file.path());
}

}  // namespace
}  // namespace zentaq::fuzzing

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    if (size == 0) return 0;
    const std::span bytes(data, size);
    zentaq::fuzzing::run(zentaq::fuzzing::surroundingsOf(bytes[0]),
                         zentaq::fuzzing::textOf(bytes.subspan(1)));
    return 0;
}
