// What holds for every calibration that has been opened, whatever its file held.
#pragma once

#include <array>
#include <bit>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "base/channels.h"
#include "base/errors.h"
#include "base/file_reader.h"
#include "fuzzing.h"
#include "live/ecu.h"
#include "sim/srecord.h"
#include "tables/table_model.h"
#include "unit/every_reader.h"
#include "unit/recording_host.h"
#include "unit/unit.h"

namespace zentaq::fuzzing {

/// The cells bit by bit: two NaNs are equal when they are the same.
using CellBits = std::array<std::uint32_t, Unit::cellCount>;
inline CellBits cellBits(const Unit& unit) {
    CellBits bits;
    for (int i = 0; i < Unit::cellCount; ++i)
        bits[static_cast<std::size_t>(i)] = std::bit_cast<std::uint32_t>(unit.DirectIndex(i));
    return bits;
}

/// The surroundings of a calibration, with a sensor for every number.
class FuzzHost : public RecordingHost {
 public:
    FuzzHost() { head.currentUnit = 0; }
    std::optional<SensorFacts> mapSensor(int id) override { return SensorFacts{0.05F, 0.1F, id % 7}; }
};

/// Runs a command that may refuse what it finds; answers whether it was done.
template <typename Command>
bool doneOrRefused(Command&& command) {
    try {
        command();
        return true;
    } catch (const Failure&) {
        return false;
    }
}

/// The S-records of the image are whole, and a unit that receives them holds the memory bytes.
inline void checkImage(Unit& unit) {
    if (!doneOrRefused([&] { unit.ConvertData(); })) return;
    std::vector<std::uint8_t> memory;
    std::string text;
    // Cells that go into the image as they stand may be beyond every byte.
    const bool hasMemory = doneOrRefused([&] { memory = unit.memoryBytes(); });
    const bool hasText = doneOrRefused([&] { text = unit.sRecordText(); });
    require(hasMemory == hasText, "the memory and its records are refused together");
    if (!hasText) return;
    std::vector<std::uint8_t> received;
    std::size_t at = 0;
    bool ended = false;
    while (at < text.size()) {
        const std::size_t end = text.find("\r\n", at);
        require(end != std::string::npos && !ended,
                "a line of the image ends, and the end record is the last");
        const auto record = sim::parseSRecord(text.substr(at, end - at));
        require(record.has_value(), "a line of the image is an S-record");
        ended = record->type == '9';
        if (!ended) {
            require(record->address == Unit::baseAddress + static_cast<int>(received.size()),
                    "the records follow each other");
            received.insert(received.end(), record->data.begin(), record->data.end());
        }
        at = end + 2;
    }
    require(ended && received == memory, "the records carry the memory");
}

/// What windows read of a calibration.
inline void readAsWindows(Unit& unit) {
    Ecu ecu;
    const LiveValues live;
    PaintMemory paint;
    for (const std::string_view table : {"ADV", "AFR", "SPW", "VE", "GPO1", "GPO2"}) {
        TableModel model(unit, ecu, live, paint);
        doneOrRefused([&] { model.Setup_Grid(table, "", false); });
    }
}

/// A calibration saved and opened again has the same cells, and saving it once more gives the same file.
/// `mayBeSeeded`: cells that opening fills in.
inline void checkSaveAndOpen(Unit& unit, FuzzHost& host, const std::string& path,
                             bool (*mayBeSeeded)(const CellMap&, int cell) = nullptr) {
    unit.BinFile(path);
    if (!doneOrRefused([&] { unit.SaveFile(); })) return require(false, "an opened calibration can be saved");
    const std::string saved = readFile(path, limits::calibration);

    FuzzHost otherHost;
    otherHost.firmwareIsKnownFromLink = host.firmwareIsKnownFromLink;
    Unit other(unit.kind(), otherHost);
    if (host.firmwareIsKnownFromLink) {  // the same unit is still on the link
        other.FW_Release(unit.FW_Release());
        other.FW_Build(unit.FW_Build());
    }
    require(doneOrRefused([&] { other.FileOpen(path); }), "a saved calibration can be opened");
    const CellBits inHand = cellBits(unit);
    const CellBits opened = cellBits(other);
    bool seeded = false;
    for (std::size_t i = 0; i < opened.size(); ++i) {
        if (opened[i] == inHand[i]) continue;
        seeded = mayBeSeeded != nullptr && mayBeSeeded(unit.kind().cells, static_cast<int>(i));
        require(seeded, "a calibration opened again has the same cell " + std::to_string(i));
    }
    if (seeded) return;
    other.BinFile(path);
    other.SaveFile();
    require(readFile(path, limits::calibration) == saved, "saving it once more gives the same file");
}

}  // namespace zentaq::fuzzing
