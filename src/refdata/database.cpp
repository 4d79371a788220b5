#include "refdata/database.h"

#include <SQLiteCpp/SQLiteCpp.h>
#include <fcntl.h>
#include <sqlite3.h>
#include <unistd.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <filesystem>
#include <fstream>

#include "base/errors.h"
#include "base/file_reader.h"
#include "base/number_text.h"
#include "base/text.h"
#include "refdata/schema.h"
#include "refdata/sensor_match.h"

namespace zentaq {

namespace {

/// Table Defaults as it was last read. Its table is wide and each new calibration asks for a hundred sets.
struct DefaultsRead {
    int version = 0;  ///< of the file's content; 0: nothing read yet
    std::vector<std::string> names;
    std::vector<std::vector<float>> sets;  ///< by name, empty cells left out
};

}  // namespace

struct Database::Handle {
    std::string path;
    bool readOnly = false;
    SQLite::Database file;
    DefaultsRead defaults;
    int readings = 0;                                ///< that live, one inside another
    std::optional<SQLite::Transaction> transaction;  ///< of the outermost one

    /// Throws Failure.
    void requireWritable() const {
        if (readOnly) throw Failure("Reference database " + path + ": the file is write-protected");
        // The change would be gone with the end of the reading.
        if (readings > 0) throw Failure("Reference database " + path + ": it is being read");
    }
};

namespace {

namespace fs = std::filesystem;

// Long enough for another program's short write, short enough not to be seen by the user.
constexpr int busyTimeoutMs = 150;

/// Result codes of the database library, which keeps them for good.
namespace sqlite_code {
constexpr int error = 1;
constexpr int busy = 5;
constexpr int locked = 6;
constexpr int corrupt = 11;
constexpr int tooBig = 18;
constexpr int noDatabase = 26;
}  // namespace sqlite_code

std::string reasonOf(const SQLite::Exception& failure) {
    switch (failure.getErrorCode()) {
        case sqlite_code::busy:
        case sqlite_code::locked:
            return "it is locked: it is in use by another program; try again";
        case sqlite_code::corrupt:
        case sqlite_code::noDatabase:
            return "the file is damaged (" + std::string(failure.what()) + ")";
        case sqlite_code::tooBig:
            return std::string(limits::databaseText.what) + " has at most " +
                   std::to_string(limits::databaseText.bytes) + " bytes, and one here has more";
        default:
            return failure.what();
    }
}

/// Runs a piece of work on the file; what the database layer throws comes out as a Failure.
template <typename Work>
auto guarded(const std::string& path, Work&& work) {
    try {
        return work();
    } catch (const SQLite::Exception& failure) {
        throw Failure("Reference database " + path + ": " + reasonOf(failure));
    }
}

[[noreturn]] void refuse(const std::string& path, const std::string& reason) {
    throw FileError("Cannot open the reference database " + path + ": " + reason);
}

void requireDatabaseFile(const std::string& path) {
    std::error_code failed;
    const fs::file_status status = fs::status(path, failed);
    if (status.type() == fs::file_type::not_found) refuse(path, "the file is missing");
    if (failed) refuse(path, "the file cannot be read (" + failed.message() + ")");
    if (!fs::is_regular_file(status)) refuse(path, "it is not a file");
    const std::uintmax_t size = fs::file_size(path, failed);
    if (!failed && size > limits::database.bytes) {
        refuse(path, "it has " + std::to_string(size) + " bytes; " + std::string(limits::database.what) +
                         " has at most " + std::to_string(limits::database.bytes));
    }
    constexpr std::string_view mark("SQLite format 3\0", 16);
    std::ifstream file(path, std::ios::binary);
    if (!file) refuse(path, "the file cannot be read");
    std::string head(mark.size(), ' ');
    file.read(head.data(), static_cast<std::streamsize>(head.size()));
    if (!file || head != mark) refuse(path, "the file is not a database");
}

// An administrator may write any file, yet a file marked as write-protected shall stay as it is; and a file
// that others may write may still be closed to this user.
bool writeProtected(const std::string& path) {
    std::error_code failed;
    const fs::perms all = fs::status(path, failed).permissions();
    constexpr fs::perms anyWrite = fs::perms::owner_write | fs::perms::group_write | fs::perms::others_write;
    if (failed || (all & anyWrite) == fs::perms::none) return true;
    return ::faccessat(AT_FDCWD, path.c_str(), W_OK, AT_EACCESS) != 0;
}

SQLite::Database openFile(const std::string& path, bool readOnly) {
    const int flags = readOnly ? SQLite::OPEN_READONLY : SQLite::OPEN_READWRITE;
    SQLite::Database file(path, flags, busyTimeoutMs);
    sqlite3_limit(file.getHandle(), SQLITE_LIMIT_LENGTH, static_cast<int>(limits::databaseText.bytes));
    return file;
}

/// A view can answer without end, however small the file is.
bool isTable(const SQLite::Database& file, const std::string& name) {
    SQLite::Statement query(file, "SELECT type FROM sqlite_master WHERE name = ? COLLATE NOCASE");
    query.bind(1, name);
    return query.executeStep() && query.getColumn(0).getString() == "table";
}

std::vector<std::string> columnsOf(const SQLite::Database& file, std::string_view table) {
    SQLite::Statement query(file, "SELECT name FROM pragma_table_info(?)");
    query.bind(1, std::string(table));
    std::vector<std::string> names;
    while (query.executeStep()) names.push_back(query.getColumn(0).getString());
    return names;
}

void requireWhole(const SQLite::Database& file, const std::string& path) {
    for (const refdata::Table& table : refdata::tables()) {
        // A log of hours would take seconds to look through, and is written anew before it is read.
        if (table.scratch) continue;
        SQLite::Statement check(file, "PRAGMA quick_check('" + table.name + "')");
        if (!check.executeStep() || check.getColumn(0).getString() != "ok")
            refuse(path, "the file is damaged");
    }
}

void requireSchema(const SQLite::Database& file, const std::string& path) {
    for (const refdata::Table& table : refdata::tables()) {
        const std::vector<std::string> columns = columnsOf(file, table.name);
        if (columns.empty()) refuse(path, "table " + table.name + " is missing");
        if (!isTable(file, table.name)) refuse(path, table.name + " is no table");
        for (const refdata::Column& column : table.columns) {
            if (std::find(columns.begin(), columns.end(), column.name) != columns.end()) continue;
            refuse(path, "table " + table.name + " has no column " + column.name);
        }
    }
}

float number(SQLite::Statement& row, const std::string& column) {
    return static_cast<float>(row.getColumn(column.c_str()).getDouble());
}

EngineRow readEngine(SQLite::Statement& row) {
    EngineRow engine;
    engine.orbUnit = row.getColumn("OrbUnit").getInt();
    engine.orbSubType = row.getColumn("OrbSubType").getInt();
    engine.optType = row.getColumn("OptType").getInt();
    engine.displayValue = row.getColumn("DisplayValue").getString();
    for (const EngineNumber& each : engineNumbers) engine.*each.field = number(row, each.column);
    for (std::size_t entry = 0; entry < engine.injTbl.size(); ++entry) {
        engine.injTbl[entry] = number(row, "InjTBL_" + std::to_string(entry + 1));
    }
    engine.rotary = row.getColumn("Stroke").getDouble() != 0;
    engine.editDfub = row.getColumn("EditDFUB").getInt() != 0;
    engine.defaultSplit = row.getColumn("DefaultSplit").getInt();
    return engine;
}

MapSensorRow readSensor(SQLite::Statement& row) {
    return {row.getColumn("ID").getInt(), row.getColumn("Description").getString(), number(row, "Scale"),
            number(row, "Offset"), row.getColumn("Units").getInt()};
}

ConfigRow readConfig(SQLite::Statement& row) {
    return {row.getColumn("BinFile").getString(), row.getColumn("OrbUnit").getInt(),
            row.getColumn("OrbName").getString()};
}

HelpRow readHelp(SQLite::Statement& row) {
    return {row.getColumn("ID").getInt(), row.getColumn("TOPIC").getString(),
            row.getColumn("HELP").getString(), row.getColumn("HELP_KEY").getString()};
}

void bindAll(SQLite::Statement&, int) {}

template <typename First, typename... Rest>
void bindAll(SQLite::Statement& statement, int place, const First& first, const Rest&... rest) {
    if constexpr (std::is_convertible_v<First, std::string_view>) {
        statement.bind(place, std::string(std::string_view(first)));
    } else {
        statement.bind(place, first);
    }
    bindAll(statement, place + 1, rest...);
}

/// All rows of a query, each through `read`.
template <typename Row, typename... Values>
std::vector<Row> rows(const SQLite::Database& file, const char* sql, Row (*read)(SQLite::Statement&),
                      const Values&... values) {
    SQLite::Statement query(file, sql);
    bindAll(query, 1, values...);
    std::vector<Row> found;
    while (query.executeStep()) found.push_back(read(query));
    return found;
}

/// The first row of a query, if there is one.
template <typename Row, typename... Values>
std::optional<Row> firstRow(const SQLite::Database& file, const char* sql, Row (*read)(SQLite::Statement&),
                            const Values&... values) {
    SQLite::Statement query(file, sql);
    bindAll(query, 1, values...);
    if (!query.executeStep()) return std::nullopt;
    return read(query);
}

/// Runs a change; the number of rows it touched.
template <typename... Values>
int change(SQLite::Database& file, const char* sql, const Values&... values) {
    SQLite::Statement statement(file, sql);
    bindAll(statement, 1, values...);
    return statement.exec();
}

/// A number that changes when another program has changed the file. Fails as a query does.
int contentVersion(const SQLite::Database& file) {
    SQLite::Statement query(file, "PRAGMA data_version");
    return query.executeStep() ? query.getColumn(0).getInt() : 0;
}

void readDefaults(const SQLite::Database& file, DefaultsRead& read) {
    const int version = contentVersion(file);
    if (version != 0 && version == read.version) return;
    DefaultsRead fresh;
    SQLite::Statement query(file, "SELECT * FROM Defaults ORDER BY rowid");
    const int columns = query.getColumnCount();
    for (int column = 0; column < columns; ++column) fresh.names.emplace_back(query.getColumnName(column));
    fresh.sets.resize(fresh.names.size());
    while (query.executeStep()) {
        for (int column = 0; column < columns; ++column) {
            if (query.isColumnNull(column)) continue;
            fresh.sets[static_cast<std::size_t>(column)].push_back(
                static_cast<float>(query.getColumn(column).getDouble()));
        }
    }
    fresh.version = version;
    read = std::move(fresh);
}

void requireSensor(const MapSensorRow& sensor) {
    if (trimmed(sensor.description).empty()) throw Failure("A MAP sensor needs a name.");
    if (!std::isfinite(sensor.scale) || !std::isfinite(sensor.offset) || sensor.scale == 0) {
        throw Failure("MAP sensor " + sensor.description + " has no slope.");
    }
    // The sensor editor offers the units up to 5; a calibration may bring a sensor of %Flow along.
    constexpr int percentFlow = 6;
    if (sensor.units < 0 || sensor.units > percentFlow)
        throw Failure("MAP sensor " + sensor.description + " has no unit.");
}

/// Looks through the whole file, which one state of it and one lock are enough for.
void requireSound(SQLite::Database& file, const std::string& path) {
    const SQLite::Transaction reading(file);
    requireSchema(file, path);
    requireWhole(file, path);
}

}  // namespace

Database::Reading::Reading(const Database& database) : handle_(*database.handle_) {
    if (handle_.readings == 0) {
        guarded(handle_.path, [&] { handle_.transaction.emplace(handle_.file); });
    }
    ++handle_.readings;
}

Database::Reading::~Reading() {
    if (--handle_.readings == 0) handle_.transaction.reset();
}

Database::Database(std::unique_ptr<Handle> handle) : handle_(std::move(handle)) {}
Database::Database(Database&&) noexcept = default;
Database& Database::operator=(Database&&) noexcept = default;
Database::~Database() = default;

Database Database::open(const std::string& path) {
    requireDatabaseFile(path);
    const bool readOnly = writeProtected(path);
    try {
        auto handle =
            std::unique_ptr<Handle>(new Handle{path, readOnly, openFile(path, readOnly), {}, 0, {}});
        requireSound(handle->file, path);
        return Database(std::move(handle));
    } catch (const SQLite::Exception& failure) {
        // What the library finds to be wrong while it opens a file, it finds in the file.
        const bool spoilt = failure.getErrorCode() == sqlite_code::error;
        refuse(path,
               spoilt ? "the file is damaged (" + std::string(failure.what()) + ")" : reasonOf(failure));
    }
}

bool Database::readOnly() const {
    return handle_->readOnly;
}

std::optional<EngineRow> Database::engine(int kind, int optType) const {
    return guarded(handle_->path, [&] {
        return firstRow(handle_->file, "SELECT * FROM Engines WHERE OrbUnit = ? AND OptType = ?", readEngine,
                        kind, optType);
    });
}

std::optional<EngineRow> Database::engineByName(std::string_view displayValue, int kind) const {
    return guarded(handle_->path, [&] {
        return firstRow(handle_->file, "SELECT * FROM Engines WHERE DisplayValue = ? AND OrbUnit = ?",
                        readEngine, displayValue, kind);
    });
}

std::vector<EngineRow> Database::engines(int kind, int variant) const {
    return guarded(handle_->path, [&] {
        return rows(handle_->file,
                    "SELECT * FROM Engines WHERE OrbUnit = ? AND (OrbSubType = 0 OR OrbSubType = ?) "
                    // By name, with 2 cylinders before 10 and names without a number last.
                    "ORDER BY CAST(DisplayValue AS INTEGER) = 0, CAST(DisplayValue AS INTEGER), "
                    "DisplayValue",
                    readEngine, kind, variant);
    });
}

std::optional<MapSensorRow> Database::mapSensor(int id) const {
    return guarded(handle_->path, [&] {
        return firstRow(handle_->file, "SELECT * FROM MAPCals WHERE ID = ?", readSensor, id);
    });
}

std::optional<MapSensorRow> Database::mapSensorByName(std::string_view description) const {
    return guarded(handle_->path, [&] {
        return firstRow(handle_->file, "SELECT * FROM MAPCals WHERE Description = ?", readSensor,
                        description);
    });
}

std::optional<MapSensorRow> Database::mapSensorByValues(float scale, float offset) const {
    if (!std::isfinite(scale) || !std::isfinite(offset)) return std::nullopt;
    const double wantedScale = plainNumber(scale);
    const double wantedOffset = plainNumber(offset);
    std::optional<MapSensorRow> nearest;
    double nearestDistance = 0;
    for (MapSensorRow& sensor : mapSensors()) {
        const double distance = refdata::sensorDistance(plainNumber(sensor.scale), plainNumber(sensor.offset),
                                                        wantedScale, wantedOffset);
        if (distance < 0 || (nearest && distance >= nearestDistance)) continue;
        nearest = std::move(sensor);
        nearestDistance = distance;
    }
    return nearest;
}

std::vector<MapSensorRow> Database::mapSensors() const {
    return guarded(handle_->path,
                   [&] { return rows(handle_->file, "SELECT * FROM MAPCals ORDER BY ID", readSensor); });
}

int Database::addMapSensor(const MapSensorRow& sensor) {
    handle_->requireWritable();
    requireSensor(sensor);
    if (mapSensorByName(sensor.description)) throw Failure("There is already a sensor with that name.");
    return guarded(handle_->path, [&] {
        change(handle_->file,
               "INSERT INTO MAPCals (Description, Scale, \"Offset\", Units) VALUES (?, ?, ?, ?)",
               sensor.description, plainNumber(sensor.scale), plainNumber(sensor.offset), sensor.units);
        return static_cast<int>(handle_->file.getLastInsertRowid());
    });
}

bool Database::updateMapSensor(const MapSensorRow& sensor) {
    handle_->requireWritable();
    requireSensor(sensor);
    return guarded(handle_->path, [&] {
        return change(handle_->file,
                      "UPDATE MAPCals SET Scale = ?, \"Offset\" = ?, Units = ? WHERE Description = ?",
                      plainNumber(sensor.scale), plainNumber(sensor.offset), sensor.units,
                      sensor.description) > 0;
    });
}

bool Database::deleteMapSensor(std::string_view description) {
    handle_->requireWritable();
    return guarded(handle_->path, [&] {
        return change(handle_->file, "DELETE FROM MAPCals WHERE Description = ?", description) > 0;
    });
}

std::vector<std::string> Database::defaultsSets() const {
    guarded(handle_->path, [&] { readDefaults(handle_->file, handle_->defaults); });
    return handle_->defaults.names;
}

std::vector<float> Database::defaults(std::string_view set) const {
    guarded(handle_->path, [&] { readDefaults(handle_->file, handle_->defaults); });
    const std::vector<std::string>& names = handle_->defaults.names;
    const std::string wanted = upper(set);
    const auto column = std::ranges::find(names, wanted, [](const std::string& name) { return upper(name); });
    if (column == names.end()) throw Failure("Table Defaults has no set " + std::string(set));
    return handle_->defaults.sets[static_cast<std::size_t>(column - names.begin())];
}

std::optional<HelpRow> Database::help(std::string_view key) const {
    return guarded(handle_->path, [&] {
        return firstRow(handle_->file, "SELECT * FROM FastHelp WHERE HELP_KEY = ?", readHelp, key);
    });
}

std::vector<std::string> Database::tips() const {
    const auto read = +[](SQLite::Statement& row) { return row.getColumn(0).getString(); };
    return guarded(handle_->path,
                   [&] { return rows(handle_->file, "SELECT HELP FROM Tips ORDER BY rowid", read); });
}

std::string Database::tip(int number) const {
    const std::vector<std::string> all = tips();
    if (number < 1 || number > static_cast<int>(all.size())) throw BoundsError();
    return all[static_cast<std::size_t>(number - 1)];
}

std::optional<ConfigRow> Database::config(std::string_view binFile) const {
    return guarded(handle_->path, [&] {
        return firstRow(handle_->file, "SELECT * FROM Configs WHERE BinFile = ?", readConfig, binFile);
    });
}

void Database::storeConfig(const ConfigRow& config) {
    handle_->requireWritable();
    guarded(handle_->path, [&] {
        SQLite::Transaction both(handle_->file);
        const int updated =
            change(handle_->file, "UPDATE Configs SET OrbUnit = ?, OrbName = ? WHERE BinFile = ?",
                   config.orbUnit, config.orbName, config.binFile);
        if (updated == 0) {
            change(handle_->file, "INSERT INTO Configs (BinFile, OrbUnit, OrbName) VALUES (?, ?, ?)",
                   config.binFile, config.orbUnit, config.orbName);
        }
        both.commit();
    });
}

}  // namespace zentaq
