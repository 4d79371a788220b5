// The reference database: engines, MAP sensors, default values, help texts, tips, the kinds of known
// calibration files, and the scratch tables of log playback. One handle serves the whole program.
#pragma once

#include <array>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace zentaq {

/// One engine configuration for one unit kind. Numbers go into the calibration member of the same meaning.
struct EngineRow {
    int orbUnit = 0;           ///< unit kind: UnitKind::engines
    int orbSubType = 0;        ///< 0 for all variants of the kind, or a variant number
    int optType = 0;           ///< engine option number, `Option_Type`
    std::string displayValue;  ///< name in the engine lists
    float ignRev = 0;          ///< ignition events in one turn of the crank, `IGN_REV`
    float p1EgTp = 0;          ///< ignition layout code, `P1EGTP`
    float p2EgTp = 0;          ///< tach code (high nibble) and engine type code (low nibble), `P2EGTP`
    float cylinders = 0;       ///< `CYL_Number`; rotors of a rotary engine
    float engType = 0;         ///< 0 port injection, 1 throttle body, `Engine_Type`
    float maxOffset = 0;       ///< `TOOTHMAX`, teeth
    float minOffset = 0;       ///< `TOOTHMIN`, teeth
    float offsetA = 0;         ///< `TOFFSET1`, teeth
    float offsetB = 0;         ///< `TOFFSET2`, teeth
    float injEvents = 0;       ///< injection events in one engine cycle, `INJ_Events`
    float injMode = 0;         ///< 0 sequential, 1 paired, 2 bank, 3 throttle body, `INJ_Mode`
    float phdSeq = 0;          ///< 3 sequential, 2 paired, 1 neither, `PHDSEQ`
    float injReset = 0;  ///< event at which the injection sequence starts anew, 0 for never, `INJ_Reset`
    std::array<float, 8> injTbl{};  ///< injector outputs opened at each event, one bit an output
    bool rotary = false;            ///< column Stroke, `Rotary`
    bool editDfub = false;          ///< the dual plug table can be edited
    int defaultSplit = 0;           ///< default of the dual plug split, degrees
};

/// A number of an engine: its column, and the member that takes it.
struct EngineNumber {
    const char* column;
    std::string_view member;
    float EngineRow::*field;
};
inline constexpr std::array<EngineNumber, 13> engineNumbers = {
    {{"IGNRev", "IGN_REV", &EngineRow::ignRev},
     {"P1EgTp", "P1EGTP", &EngineRow::p1EgTp},
     {"P2EgTp", "P2EGTP", &EngineRow::p2EgTp},
     {"Cylinders", "CYL_Number", &EngineRow::cylinders},
     {"EngType", "Engine_Type", &EngineRow::engType},
     {"MaxOffset", "TOOTHMAX", &EngineRow::maxOffset},
     {"MinOffset", "TOOTHMIN", &EngineRow::minOffset},
     {"Offset_A", "TOFFSET1", &EngineRow::offsetA},
     {"Offset_B", "TOFFSET2", &EngineRow::offsetB},
     {"InjEvents", "INJ_Events", &EngineRow::injEvents},
     {"InjMode", "INJ_Mode", &EngineRow::injMode},
     {"PhdSeq", "PHDSEQ", &EngineRow::phdSeq},
     {"InjReset", "INJ_Reset", &EngineRow::injReset}}};

/// One MAP sensor: volts = scale * pressure + offset.
struct MapSensorRow {
    int id = 0;               ///< `MAP_ID`
    std::string description;  ///< unique name, compared without case
    float scale = 0;          ///< volts per user unit
    float offset = 0;         ///< volts at user zero
    int units = 1;            ///< 0 or 1 kPa, 2 PSIA, 3 PSIG, 4 mmHg, 5 inHg, 6 %Flow
};

/// What is remembered of a calibration file.
struct ConfigRow {
    std::string binFile;  ///< full path, compared exactly
    int orbUnit = 0;      ///< unit kind
    std::string orbName;  ///< entry of the model list
};

struct HelpRow {
    int id = 0;
    std::string topic;
    std::string text;
    std::string key;
};

class Database {
    struct Handle;

 public:
    /// Opens a database file; a write-protected one for reading only. Nothing is created.
    /// Throws FileError, with a text that names the file and the reason, when the file is missing, cannot be
    /// read, is no database, is damaged, or lacks a table or column.
    static Database open(const std::string& path);
    Database(Database&&) noexcept;
    Database& operator=(Database&&) noexcept;
    ~Database();

    bool readOnly() const;

    /// All that is read while it lives is of one state of the file, which is locked and looked at once for
    /// all of it. Others cannot write meanwhile, nor can its owner: it lives as long as a few queries take,
    /// and no box is opened under it. There may be one inside another.
    class Reading {
     public:
        /// Throws Failure.
        explicit Reading(const Database& database);
        ~Reading();
        Reading(const Reading&) = delete;
        Reading& operator=(const Reading&) = delete;

     private:
        Handle& handle_;
    };

    // A query that the file cannot answer throws Failure. A file locked by another program for
    // longer than a fifth of a second counts as such: no call waits longer.

    /// The engine of an option number. Here and below `kind` is UnitKind::engines.
    std::optional<EngineRow> engine(int kind, int optType) const;
    std::optional<EngineRow> engineByName(std::string_view displayValue, int kind) const;
    /// The engines to choose from for a variant, by name: those for all variants and those for this one.
    std::vector<EngineRow> engines(int kind, int variant) const;

    std::optional<MapSensorRow> mapSensor(int id) const;
    std::optional<MapSensorRow> mapSensorByName(std::string_view description) const;
    /// The sensor of a calibration's slope and offset, as the calibration holds them or rounded to 4
    /// decimals. Both numbers are compared in their plain decimal form and may be half a step of the 4th
    /// decimal off; of several rows the nearest is taken, and of equally near ones the one with the lowest
    /// ID.
    std::optional<MapSensorRow> mapSensorByValues(float scale, float offset) const;
    /// All sensors in the order of their ID.
    std::vector<MapSensorRow> mapSensors() const;

    /// Adds a sensor under a fresh ID, which is returned; `sensor.id` is not looked at. Throws Failure when
    /// the name is empty or taken, the slope is 0, a number is not finite, or the file is write-protected.
    int addMapSensor(const MapSensorRow& sensor);
    /// Rewrites units, slope and offset of the sensor named `sensor.description`. False if there is none.
    /// Throws Failure as addMapSensor does.
    bool updateMapSensor(const MapSensorRow& sensor);
    /// False if there is none of this name.
    bool deleteMapSensor(std::string_view description);

    /// A set of default values in order, empty cells left out. The name is compared without case.
    /// Throws Failure if there is no such set.
    std::vector<float> defaults(std::string_view set) const;
    /// The names of all sets.
    std::vector<std::string> defaultsSets() const;

    /// The help entry of a key, compared without case.
    std::optional<HelpRow> help(std::string_view key) const;
    std::vector<std::string> tips() const;
    /// A tip by number, from 1. Throws BoundsError outside the list.
    std::string tip(int number) const;

    std::optional<ConfigRow> config(std::string_view binFile) const;
    /// Remembers the kind and model of a file: its row is updated, or added if there is none.
    void storeConfig(const ConfigRow& config);

 private:
    explicit Database(std::unique_ptr<Handle> handle);
    std::unique_ptr<Handle> handle_;
};

}  // namespace zentaq
