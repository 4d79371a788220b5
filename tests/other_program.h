// Another program that has a database file open.
#pragma once

#include <gtest/gtest.h>
#include <sqlite3.h>

#include <string>

namespace zentaq {

class OtherProgram {
 public:
    explicit OtherProgram(const std::string& path) {
        EXPECT_EQ(sqlite3_open_v2(path.c_str(), &file_, SQLITE_OPEN_READWRITE, nullptr), SQLITE_OK);
    }
    OtherProgram(const OtherProgram&) = delete;
    OtherProgram& operator=(const OtherProgram&) = delete;
    ~OtherProgram() { sqlite3_close(file_); }
    void run(const std::string& sql) { EXPECT_TRUE(takes(sql)) << sql << ": " << sqlite3_errmsg(file_); }
    bool takes(const std::string& sql) {
        return sqlite3_exec(file_, sql.c_str(), nullptr, nullptr, nullptr) == SQLITE_OK;
    }
    int count(const std::string& sql) {
        sqlite3_stmt* query = nullptr;
        EXPECT_EQ(sqlite3_prepare_v2(file_, sql.c_str(), -1, &query, nullptr), SQLITE_OK) << sql;
        EXPECT_EQ(sqlite3_step(query), SQLITE_ROW);
        const int value = sqlite3_column_int(query, 0);
        sqlite3_finalize(query);
        return value;
    }

 private:
    sqlite3* file_ = nullptr;
};

/// One that writes: nobody else reads the file as long as it lives.
struct WritingProgram : OtherProgram {
    explicit WritingProgram(const std::string& path) : OtherProgram(path) { run("BEGIN EXCLUSIVE"); }
};

}  // namespace zentaq
