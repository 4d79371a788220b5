// One QApplication for all window tests of this program, made before the first and gone after the last.
#include <gtest/gtest.h>

#include <QSettings>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <memory>

#include "qt/application.h"
#include "qt/look.h"

namespace {

class QtApplication : public testing::Environment {
 public:
    void SetUp() override {
        if (qApp != nullptr) return;
        // No test looks at the files of the person who runs it.
        QStandardPaths::setTestModeEnabled(true);
        // Nor does one process of tests see what the toolkit keeps for another, such as how a file dialog was
        // left.
        for (const auto format : {QSettings::NativeFormat, QSettings::IniFormat})
            QSettings::setPath(format, QSettings::UserScope, settings_.path());
        application_ = std::make_unique<zentaq::Application>(argc_, argv_);
        QApplication::setQuitOnLastWindowClosed(false);
        zentaq::applyLook(*application_, zentaq::DisplayMode::Night);
    }
    void TearDown() override { application_.reset(); }

 private:
    QTemporaryDir settings_;
    char name_[12] = "test_window";
    char* argv_[2] = {name_, nullptr};
    int argc_ = 1;
    std::unique_ptr<zentaq::Application> application_;
};

[[maybe_unused]] const auto* const environment = testing::AddGlobalTestEnvironment(new QtApplication);

}  // namespace
