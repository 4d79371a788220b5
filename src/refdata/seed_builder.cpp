#include "refdata/seed_builder.h"

#include <SQLiteCpp/SQLiteCpp.h>
#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <filesystem>

#include "base/errors.h"
#include "base/file_type.h"
#include "refdata/schema.h"
#include "refdata/seed_checks.h"
#include "refdata/seed_table.h"

namespace zentaq::refdata {

namespace {

namespace fs = std::filesystem;

/// A file that goes away unless it is moved to its target.
class Draft {
 public:
    explicit Draft(const std::string& target) : target_(target), path_(target + ".new") {
        refuseOtherThanFile(target);
        remove();
    }
    Draft(const Draft&) = delete;
    Draft& operator=(const Draft&) = delete;
    ~Draft() { remove(); }

    const std::string& path() const { return path_; }

    void publish() {
        const int file = ::open(path_.c_str(), O_RDONLY | O_CLOEXEC);
        const bool flushed = file >= 0 && ::fsync(file) == 0;
        if (file >= 0) ::close(file);
        if (!flushed) throw FileError("Cannot write " + path_);
        std::error_code failed;
        fs::rename(path_, target_, failed);
        if (failed) throw FileError("Cannot write " + target_ + ": " + failed.message());
    }

 private:
    void remove() const {
        std::error_code ignored;
        fs::remove(path_, ignored);
    }
    std::string target_;
    std::string path_;
};

std::string columnText(const Column& column) {
    const std::string name = '"' + column.name + '"';
    if (column.rowKey) return name + " INTEGER PRIMARY KEY AUTOINCREMENT";
    switch (column.type) {
        case ColumnType::Integer:
        case ColumnType::Boolean:
            return name + " INTEGER";
        case ColumnType::Text:
            return name + " TEXT";
        case ColumnType::NameText:  // names are found whatever their case
            return name + " TEXT COLLATE NOCASE";
        case ColumnType::Number:
            break;
    }
    return name + " REAL";
}

std::string joined(const std::vector<Column>& columns, std::string (*text)(const Column&)) {
    std::string list;
    for (const Column& column : columns) list += (list.empty() ? "" : ", ") + text(column);
    return list;
}

void createTables(SQLite::Database& file) {
    for (const Table& made : tables()) {
        file.exec("CREATE TABLE \"" + made.name + "\" (" + joined(made.columns, columnText) + ")");
    }
}

SQLite::Statement insertInto(SQLite::Database& file, const Table& target) {
    const auto name = [](const Column& column) { return '"' + column.name + '"'; };
    const auto mark = [](const Column&) { return std::string("?"); };
    return {file, "INSERT INTO \"" + target.name + "\" (" + joined(target.columns, name) + ") VALUES (" +
                      joined(target.columns, mark) + ")"};
}

void bindCell(SQLite::Statement& insert, int place, const SeedTable& seed, const SeedRow& row,
              const Column& column) {
    switch (column.type) {
        case ColumnType::Integer:
        case ColumnType::Boolean:
            insert.bind(place, seed.integer(row, column.name));
            return;
        case ColumnType::Number:
            insert.bind(place, seed.number(row, column.name));
            return;
        case ColumnType::Text:
        case ColumnType::NameText:
            insert.bind(place, seed.text(row, column.name));
    }
}

void fill(SQLite::Database& file, const Table& target, const SeedTable& seed) {
    SQLite::Statement insert = insertInto(file, target);
    for (const SeedRow& row : seed.rows()) {
        int place = 0;
        for (const Column& column : target.columns) bindCell(insert, ++place, seed, row, column);
        insert.exec();
        insert.reset();
    }
}

// A set runs down its column; shorter sets leave the rest of their column empty.
void fillDefaults(SQLite::Database& file, const DefaultsValues& values) {
    std::size_t longest = 0;
    for (const auto& [name, list] : values) longest = std::max(longest, list.size());
    const Table& target = table("Defaults");
    SQLite::Statement insert = insertInto(file, target);
    for (std::size_t row = 0; row < longest; ++row) {
        int place = 0;
        for (const Column& column : target.columns) {
            const std::vector<double>& list = values.find(column.name)->second;
            ++place;
            if (row < list.size()) {
                insert.bind(place, list[row]);
            } else {
                insert.bind(place);
            }
        }
        insert.exec();
        insert.reset();
    }
}

struct Seeds {
    SeedTable engines;
    SeedTable sensors;
    SeedTable help;
    SeedTable tips;
    DefaultsValues defaults;
};

Seeds readSeeds(const std::string& folder) {
    Seeds seeds{SeedTable::read(folder + "/engines.tsv"), SeedTable::read(folder + "/mapcals.tsv"),
                SeedTable::read(folder + "/fasthelp.tsv"), SeedTable::read(folder + "/tips.tsv"),
                readDefaults(SeedTable::read(folder + "/defaults.tsv"))};
    checkEngines(seeds.engines);
    checkSensors(seeds.sensors);
    checkHelp(seeds.help);
    checkTips(seeds.tips);
    return seeds;
}

void writeDatabase(const std::string& path, const Seeds& seeds) {
    SQLite::Database file(path, SQLite::OPEN_READWRITE | SQLite::OPEN_CREATE);
    file.exec("PRAGMA journal_mode = MEMORY");
    SQLite::Transaction transaction(file);
    createTables(file);
    fill(file, table("Engines"), seeds.engines);
    fill(file, table("MAPCals"), seeds.sensors);
    fill(file, table("FastHelp"), seeds.help);
    fill(file, table("Tips"), seeds.tips);
    fillDefaults(file, seeds.defaults);
    transaction.commit();
}

}  // namespace

void buildDatabase(const std::string& seedsFolder, const std::string& output) {
    const Seeds seeds = readSeeds(seedsFolder);
    Draft draft(output);
    try {
        writeDatabase(draft.path(), seeds);
    } catch (const SQLite::Exception& failure) {
        throw FileError("Cannot write " + draft.path() + ": " + failure.what());
    }
    draft.publish();
}

}  // namespace zentaq::refdata
