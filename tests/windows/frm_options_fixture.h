// The options window over a started program on fakes, driven by keys alone.
#pragma once

#include <QCheckBox>
#include <QComboBox>
#include <QPushButton>
#include <QRadioButton>
#include <QSlider>

#include "windows/frm_options.h"
#include "windows/key_press.h"
#include "windows/window_fixture.h"

namespace zentaq {

class OptionsWindowTest : public WindowTest {
 protected:
    std::unique_ptr<FrmOptions> form;
    int closings = 0;

    void open() {
        form = std::make_unique<FrmOptions>(fake.session, commands, &windows.main());
        form->onClosed([this] { ++closings; });
        form->show();
        activate(*form);
    }
    template <typename Object>
    Object* the(const char* name) {
        auto* object = form->findChild<Object*>(QLatin1String(name));
        EXPECT_NE(object, nullptr) << name;
        return object;
    }
    std::string stored(const char* key) { return fake.settings.get("System", key); }
    std::string text(const char* name) { return the<QLineEdit>(name)->text().toStdString(); }
    std::string label(const char* name) { return the<QLabel>(name)->text().toStdString(); }
    int page() { return the<QTabWidget>("SSTab1")->currentIndex(); }
    /// Walks there with the tab key, as a user without a mouse does.
    void tabTo(const char* name) {
        for (int i = 0; i < 60 && focusName() != name; ++i) sendKey(Qt::Key_Tab);
        ASSERT_EQ(focusName(), name);
    }
    void toPage(OptionPage page) { form->showPage(static_cast<int>(page)); }
    void enter(const char* name, const QString& text) {
        tabTo(name);
        typeInstead(text);
    }
    void press(const char* button) {
        tabTo(button);
        sendKey(Qt::Key_Space, Qt::NoModifier, " ");
    }
    void apply() { press("cmdApply"); }
    std::string lastLog(std::size_t back = 0) {
        const auto& lines = fake.session.console.lines();
        return lines.at(lines.size() - 1 - back);
    }
};

}  // namespace zentaq
