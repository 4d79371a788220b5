// A fresh temporary folder with a reference database made from the seed tables of the project.
#pragma once

#include <gtest/gtest.h>
#include <stdlib.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <stdexcept>
#include <string>

#include "refdata/database.h"
#include "refdata/seed_builder.h"
#include "temporary_folder.h"

namespace zentaq::refdata {

using zentaq::TemporaryFolder;

inline const std::string projectSeeds = ZENTAQ_SOURCE_DIR "/data/seeds";

inline std::string contentOf(const std::string& path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

inline void writeFile(const std::string& path, const std::string& content) {
    std::ofstream(path, std::ios::binary | std::ios::trunc) << content;
}

/// The text of the failure that a piece of work throws; "" when it throws none.
template <typename Error, typename Work>
std::string failureOf(Work&& work) {
    try {
        work();
    } catch (const Error& failure) {
        return failure.what();
    }
    return "";
}

class ReferenceDatabase : public ::testing::Test {
 protected:
    ReferenceDatabase() { buildDatabase(projectSeeds, path); }

    Database open() const { return Database::open(path); }

    TemporaryFolder folder;
    std::string path = folder.file("zentaq410-02.pak");
};

}  // namespace zentaq::refdata
