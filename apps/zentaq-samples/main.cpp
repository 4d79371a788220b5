// zentaq-samples DATABASE SAMPLES_DIR OUT_DIR: makes a calibration file of every sample text, at build time.
#include <algorithm>
#include <exception>
#include <filesystem>
#include <iostream>
#include <vector>

#include "base/file_reader.h"
#include "calibration/calibration_recipe.h"

namespace fs = std::filesystem;

namespace {

void makeSample(const zentaq::Database& database, const fs::path& text, const fs::path& folder) {
    const auto recipe = zentaq::CalibrationRecipe::parse(
        zentaq::readFile(text.string(), zentaq::limits::calibrationText), text.string());
    const auto calibration = zentaq::makeCalibration(recipe, database);
    zentaq::Unit& unit = calibration->unit;
    unit.BinFile((folder / text.stem()).string() + std::string(unit.kind().extension));
    unit.ConvertData();  // a sample that cannot be programmed is no sample
    unit.SaveFile();
}

std::vector<fs::path> textsIn(const fs::path& folder) {
    std::vector<fs::path> texts;
    for (const auto& entry : fs::directory_iterator(folder)) {
        if (entry.path().extension() == ".txt") texts.push_back(entry.path());
    }
    std::ranges::sort(texts);
    return texts;
}

}  // namespace

int main(int argc, char** argv) {
    if (argc != 4) {
        std::cerr << "usage: zentaq-samples DATABASE SAMPLES_DIR OUT_DIR\n";
        return 2;
    }
    try {
        const auto database = zentaq::Database::open(argv[1]);
        fs::create_directories(argv[3]);
        for (const fs::path& text : textsIn(argv[2])) makeSample(database, text, argv[3]);
    } catch (const std::exception& failure) {
        std::cerr << failure.what() << '\n';
        return 1;
    }
    return 0;
}
