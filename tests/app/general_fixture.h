// frmGeneralConfig without its window, on a session of fakes with the project's reference database.
#pragma once

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <numeric>
#include <string>
#include <vector>

#include "app/fake_platform.h"
#include "app/general_config.h"
#include "refdata/refdata_fixture.h"

namespace zentaq {

class GeneralConfigForm : public ::testing::Test {
 protected:
    static constexpr const char* fourCylinders = "4 Cylinder Coil per Plug, Sequential Injection";
    static constexpr const char* oneBar = "1 BAR (10-105 kPa)";

    GeneralConfigForm() {
        session.makeUnits();
        for (const int slot : {3, 4, 5, 6, 7, 8}) {
            session.FW_ReleaseTable[static_cast<std::size_t>(slot)] = unitKindOfSlot(slot)->defaultRelease;
            session.FW_BuildTable[static_cast<std::size_t>(slot)] = unitKindOfSlot(slot)->defaultBuild;
        }
        std::filesystem::copy_file(referenceDatabase(), database);
        session.database = Database::open(database);
    }

    /// Built once for all tests; each works on its own copy.
    static const std::string& referenceDatabase() {
        static const TemporaryFolder folder;
        static const std::string path = [] {
            const std::string built = folder.path("reference.pak");
            refdata::buildDatabase(refdata::projectSeeds, built);
            return built;
        }();
        return path;
    }
    void startNew() {
        session.header().fileState = "NEW";
        form.load();
    }
    /// A new calibration with all that it needs.
    void prepare(const char* model = "ORB A Standard", const char* engine = fourCylinders,
                 const char* sensor = oneBar) {
        startNew();
        EXPECT_TRUE(form.enter("cmbORB_UNIT", model));
        EXPECT_TRUE(form.enter("cmbEngine", engine));
        EXPECT_TRUE(form.enter("cmbMAP", sensor));
    }
    bool saveTo(const std::string& path) {
        fake.dialogs.files.push_back(path);
        return form.save();
    }
    /// A calibration in hand, with the form open on it.
    void haveInHand(const char* name = "tune.ZQ4OA") {
        prepare();
        EXPECT_TRUE(saveTo(fake.folder.path(name)));
        fake.dialogs.boxes.clear();
        fake.windows.calls.clear();
    }
    Unit& unit() { return session.currentUnitObject(); }
    std::string text(std::string_view control) { return form.field(control).text; }
    std::string lastBox() const {
        return fake.dialogs.boxes.empty() ? std::string() : fake.dialogs.boxes.back().text;
    }
    std::string lastTitle() const {
        return fake.dialogs.boxes.empty() ? std::string() : fake.dialogs.boxes.back().title;
    }
    bool logged(const std::string& part) const {
        const auto& lines = session.console.lines();
        return std::ranges::any_of(
            lines, [&](const std::string& line) { return line.find(part) != std::string::npos; });
    }
    int boxesShown() const { return static_cast<int>(fake.dialogs.boxes.size()); }

    // ---- A unit on the link
    void answer(std::vector<std::uint8_t> reply) {
        reply.push_back(static_cast<std::uint8_t>(std::accumulate(reply.begin() + 2, reply.end(), 0)));
        fake.port.deliver(std::move(reply));
        session.link.tick();
        session.link.tick();
    }
    void connect(std::uint32_t serial, const std::string& firmware) {
        const auto byte = [&](int shift) { return static_cast<std::uint8_t>(serial >> shift); };
        session.link.load();
        session.link.Send_ORB_Command("E");
        session.link.tick();
        answer({0xFA, 0xA5, 0x55, byte(24), byte(16), byte(8), byte(0)});
        std::vector<std::uint8_t> reply{0xFA, 0xA5, 0x55};
        reply.insert(reply.end(), 24, ' ');
        reply.insert(reply.end(), firmware.begin(), firmware.end());
        reply.push_back(0);
        answer(reply);
    }

    FakeSession fake;
    std::string database = fake.folder.path("reference.pak");
    Session& session = fake.session;
    GeneralConfig form{session};
};

}  // namespace zentaq
