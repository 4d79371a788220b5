#include "windows/window_manager.h"

#include <gtest/gtest.h>

#include <QAbstractScrollArea>
#include <QComboBox>
#include <QHeaderView>
#include <QProgressBar>

#include "windows/window_fixture.h"

namespace zentaq {
namespace {

class Manager : public WindowTest {
 protected:
    bool logged(const std::string& text) const {
        for (const std::string& line : fake.session.console.lines()) {
            if (line.find(text) != std::string::npos) return true;
        }
        return false;
    }
};

TEST_F(Manager, RemovingTheFormsEndsTheTableAtOnceSoThatItsLogLineStandsBeforeTheCommandsOwn) {
    openCalibration();
    commands.openTable("VE", "Volumetric Efficiency Table");
    ASSERT_NE(windows.table(), nullptr);
    windows.removeForms();
    EXPECT_EQ(windows.table(), nullptr);
    EXPECT_TRUE(logged("TABLE App. Terminated."));
}

TEST_F(Manager, WhatTheLinkTellsIsShownFromTheEventLoopAndNotFromInsideItsHandler) {
    const std::size_t boxes = fake.dialogs.boxes.size();
    fake.session.displayMessage(1002);
    EXPECT_EQ(fake.dialogs.boxes.size(), boxes);
    QCoreApplication::processEvents();
    ASSERT_EQ(fake.dialogs.boxes.size(), boxes + 1);
    EXPECT_EQ(fake.dialogs.boxes.back().title, "Complete!");
}

TEST_F(Manager, ATransfersProgressTakesThePlaceOfThePort) {
    auto* progress = find<QProgressBar>("ProgressBar1");
    auto* port = find<QComboBox>("cmbCOMM");
    ASSERT_TRUE(progress && port);
    EXPECT_TRUE(port->isVisible());
    LinkStatus& status = fake.session.link.editStatus();
    status.progressVisible = true;
    status.progressPercent = 40;
    windows.refresh();
    EXPECT_TRUE(progress->isVisible());
    EXPECT_EQ(progress->value(), 40);
    EXPECT_FALSE(port->isVisible());
    fake.session.link.editStatus().progressVisible = false;
    windows.refresh();
    EXPECT_TRUE(port->isVisible());
}

TEST_F(Manager, TheInsideOfListsAndTablesFollowsDayAndNight) {
    openCalibration();
    commands.openTable("VE", "Volumetric Efficiency Table");
    std::vector<std::string> names;
    const auto insides = [&] {
        std::vector<QColor> colors;
        names.clear();
        for (auto* area : windows.main().findChildren<QAbstractScrollArea*>()) {
            if (qobject_cast<QHeaderView*>(area) != nullptr) continue;  // drawn as buttons
            names.push_back(area->objectName().toStdString());
            colors.push_back(area->viewport()->palette().color(QPalette::Base));
        }
        return colors;
    };
    windows.nightMode();
    const auto night = insides();
    windows.dayMode();
    const auto day = insides();
    windows.nightMode();
    ASSERT_GT(night.size(), 3u);
    ASSERT_EQ(night.size(), day.size());
    for (std::size_t i = 0; i < night.size(); ++i)
        EXPECT_GT(day[i].lightness(), night[i].lightness() + 100) << names[i];
    EXPECT_EQ(insides(), night);
}

}  // namespace
}  // namespace zentaq
