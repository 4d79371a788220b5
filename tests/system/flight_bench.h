// What the tests of the whole program share: the application, a folder with a calibration in it, and
// patience.
#pragma once

#include <gtest/gtest.h>

#include "system/flight_rig.h"

namespace zentaq {

class FlightBench : public testing::Test {
 protected:
    FlightBench() {
        std::filesystem::create_directory(folder.path("app"));
        std::filesystem::copy_file(anySample(), calibration);
    }

    static bool comes(const std::function<bool()>& condition) { return Program::waitFor(condition, 40'000); }
    /// A simulated unit in a process of its own.
    void startUnit(const QStringList& options = {}) {
        unit = std::make_unique<UnitProcess>(link, memoryFile, options);
        ASSERT_TRUE(unit->ready());
    }
    void startProgram() {
        program = std::make_unique<Program>(application, folder.path("app"), link);
        program->kernel.load();
    }
    bool found() {
        return comes([&] { return program->identified(); });
    }
    bool lost() {
        return comes([&] { return !program->identified(); });
    }
    bool framesCome(unsigned count) {
        const auto before = program->session.live.frames;
        return comes([&] { return program->session.live.frames >= before + count; });
    }
    bool told(const std::string& text) {
        return comes([&] { return program->boxShown(text); });
    }

 private:
    int argc_ = 1;
    std::string name_ = "flight";
    char* argv_[2] = {name_.data(), nullptr};

 protected:
    QApplication application{argc_, argv_};
    TemporaryFolder folder;
    std::string link = folder.path("unit");
    std::string memoryFile = folder.path("memory.bin");
    std::string calibration = folder.path("flight.ZQ4OA");
    std::unique_ptr<UnitProcess> unit;
    std::unique_ptr<Program> program;
};

}  // namespace zentaq
