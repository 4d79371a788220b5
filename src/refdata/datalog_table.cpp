#include "refdata/datalog_table.h"

#include <SQLiteCpp/SQLiteCpp.h>

#include <cmath>
#include <optional>

#include "base/errors.h"
#include "refdata/schema.h"

namespace zentaq {

namespace {

/// A program that stores a sensor has the file for a moment; one that imports as well for a block.
constexpr int patienceMs = 5000;
constexpr int cacheKilobytes = 16 * 1024;
/// Whole numbers that a number of the database holds exactly; they take less room than the others.
constexpr double mostWhole = 9e15;

std::string insertInto(const refdata::Table& table) {
    std::string places;
    for (std::size_t i = 0; i < table.columns.size(); ++i) places += i == 0 ? "?" : ",?";
    return "INSERT INTO " + table.name + " VALUES (" + places + ")";
}

}  // namespace

struct DatalogTable::Handle {
    std::string path;
    std::string table;
    SQLite::Database file;
    std::optional<SQLite::Statement> insert;
    std::optional<SQLite::Transaction> block;
    std::int64_t rowsInBlock = 0;

    template <typename Work>
    void guarded(Work&& work) const {
        try {
            work();
        } catch (const SQLite::Exception& failure) {
            throw Failure("Reference database " + path + ": " + failure.what());
        }
    }
};

DatalogTable::DatalogTable(const std::string& database, std::string_view table) {
    try {
        handle_.reset(
            new Handle{database,
                       std::string(table),
                       SQLite::Database(database, SQLite::OPEN_READWRITE | SQLite::OPEN_NOMUTEX, patienceMs),
                       {},
                       {},
                       0});
    } catch (const SQLite::Exception& failure) {
        throw Failure("Reference database " + database + ": " + failure.what());
    }
    handle_->guarded([&] {
        // One thread uses it, so it needs no lock of its own; twelve million values would take one each.
        // No part of a block reaches the file before its end: others read it meanwhile.
        handle_->file.exec("PRAGMA cache_size = -" + std::to_string(cacheKilobytes));
        handle_->insert.emplace(handle_->file, insertInto(refdata::table(handle_->table)));
    });
}

DatalogTable::~DatalogTable() = default;

void DatalogTable::clear() {
    handle_->guarded([&] { handle_->file.exec("DELETE FROM " + handle_->table); });
}

void DatalogTable::add(std::span<const double> values) {
    handle_->guarded([&] {
        if (!handle_->block) handle_->block.emplace(handle_->file, SQLite::TransactionBehavior::IMMEDIATE);
        SQLite::Statement& insert = *handle_->insert;
        int place = 0;
        for (const double value : values) {
            const bool whole = std::fabs(value) < mostWhole &&
                               value == static_cast<double>(static_cast<std::int64_t>(value));
            ++place;
            whole ? insert.bind(place, static_cast<std::int64_t>(value)) : insert.bind(place, value);
        }
        insert.exec();
        insert.reset();
        ++handle_->rowsInBlock;
    });
    if (handle_->rowsInBlock >= blockRows) flush();
}

void DatalogTable::flush() {
    handle_->guarded([&] {
        if (handle_->block) handle_->block->commit();
        handle_->block.reset();
        handle_->rowsInBlock = 0;
    });
}

}  // namespace zentaq
