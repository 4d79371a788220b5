// frmGeneralConfig on a real session with the project's reference database, driven as the keyboard drives it.
#pragma once

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QApplication>
#include <QCheckBox>
#include <QComboBox>
#include <QLabel>
#include <QRadioButton>
#include <QTimer>
#include <QToolBar>
#include <QWindow>
#include <filesystem>
#include <memory>
#include <string>

#include "app/fake_platform.h"
#include "qt/qt_dialogs.h"
#include "windows/frm_general_config.h"
#include "windows/key_press.h"

// A key as the window system delivers it, with shortcuts and mnemonics; exported by QtGui for such tests.
Q_GUI_EXPORT void qt_handleKeyEvent(QWindow* window, QEvent::Type type, int key,
                                    Qt::KeyboardModifiers modifiers, const QString& text = QString(),
                                    bool repeated = false, ushort count = 1);

namespace zentaq {

/// Answers as ScriptedDialogs does; `onScreen` opens a real box first, which Enter closes.
class BoxesOnScreen : public ScriptedDialogs {
 public:
    Answer show(const Box& box) override {
        if (onScreen) {
            QTimer::singleShot(0, [] {
                QWidget* modal = QApplication::activeModalWidget();
                if (modal == nullptr) return;
                for (const auto type : {QEvent::KeyPress, QEvent::KeyRelease})
                    qt_handleKeyEvent(modal->windowHandle(), type, Qt::Key_Return, Qt::NoModifier, "\r");
            });
            QtDialogs real;
            real.setParent(parent);
            real.show(box);
        }
        return ScriptedDialogs::show(box);
    }
    bool onScreen = false;
    QWidget* parent = nullptr;
};

/// Wired as the window manager does it.
class GeneralWindows : public RecordingWindows {
 public:
    void showUnit() override {
        if (form != nullptr) form->reset();
    }
    void onFlyChanged(bool on) override {
        if (form != nullptr) form->onFlyChanged(on);
    }
    void focus(std::string_view) override {
        if (focusAfterWarning != nullptr) focusAfterWarning->setFocus();
    }
    FrmGeneralConfig* form = nullptr;
    QWidget* focusAfterWarning = nullptr;
};

class GeneralWindow : public testing::Test {
 protected:
    static constexpr auto fourCylinders = "4 Cylinder Coil per Plug, Sequential Injection";
    static constexpr auto oneBar = "1 BAR (10-105 kPa)";
    static constexpr auto noUnitText =
        "Error 1004:\nNo ORB Unit has been associated to this Bin File.\nPlease choose the ORB Unit from the "
        "List on the General Config Screen before continuing!";

    FakeSession fake;
    BoxesOnScreen dialogs;
    Session session{Platform{fake.port, fake.ticker, fake.clock, fake.settings, dialogs, fake.yield,
                             fake.folder.path(), fake.folder.path()}};
    GeneralWindows windows;
    std::unique_ptr<FrmGeneralConfig> form;
    int savedTold = 0;
    int closedTold = 0;

    GeneralWindow() {
        session.makeUnits();
        const std::string path = fake.folder.path("reference.pak");
        std::filesystem::copy_file(builtReference(), path);
        session.database = Database::open(path);
        session.attach(windows);
    }
    ~GeneralWindow() override {
        close();
        session.attach(fake.windows);
    }

    // ---- The window
    void open() {
        close();
        form = std::make_unique<FrmGeneralConfig>(session);
        windows.form = form.get();
        dialogs.parent = form.get();
        QObject::connect(form.get(), &FrmGeneralConfig::saved, [this] { ++savedTold; });
        form->onClosed([this] { ++closedTold; });
        form->show();
        form->activateWindow();
        QApplication::processEvents();
    }
    void close() {
        dialogs.parent = nullptr;
        windows.form = nullptr;
        form.reset();
    }
    /// As after mnuNew.
    void openNew() {
        close();
        session.header().fileState = "NEW";
        open();
    }
    /// A new calibration with all that it needs, by keyboard.
    void openPrepared(const char* model = "ORB A Standard", const char* engine = fourCylinders) {
        openNew();
        pick("cmbORB_UNIT", model);
        pick("cmbEngine", engine);
        pick("cmbMAP", oneBar);
        dialogs.boxes.clear();
    }
    /// A calibration on the disk and in hand, with the form open on it.
    void openInHand() {
        openPrepared();
        saveAs("tune.ZQ4OA");
        dialogs.boxes.clear();
        savedTold = closedTold = 0;
        open();
    }
    void saveAs(const char* name) {
        dialogs.files.push_back(fake.folder.path(name));
        key(Qt::Key_S, Qt::ControlModifier);
    }

    // ---- Keys
    static void key(int code, Qt::KeyboardModifiers modifiers = Qt::NoModifier, const QString& text = {}) {
        const QWidget* focus = QApplication::focusWidget();
        ASSERT_NE(focus, nullptr);
        QWindow* window = focus->window()->windowHandle();
        for (const auto type : {QEvent::KeyPress, QEvent::KeyRelease})
            qt_handleKeyEvent(window, type, code, modifiers, text);
        QApplication::processEvents();
    }
    static void tab() { key(Qt::Key_Tab, Qt::NoModifier, "\t"); }
    static void enter() { key(Qt::Key_Return, Qt::NoModifier, "\r"); }
    static void escape() { key(Qt::Key_Escape, Qt::NoModifier, "\x1b"); }
    static void type(const QString& text) {
        for (const QChar letter : text) key(letter.toUpper().unicode(), Qt::NoModifier, letter);
    }
    /// By the Tab key.
    static void go(const std::string& control) {
        constexpr int onceAround = 40;
        for (int i = 0; i < onceAround && focusName() != control; ++i) tab();
        ASSERT_EQ(focusName(), control);
    }
    /// Types over the text of a box; it is not handed over yet.
    static void typeOver(const std::string& control, const QString& text) {
        go(control);
        key(Qt::Key_A, Qt::ControlModifier);
        key(Qt::Key_Delete);
        type(text);
    }
    static void put(const std::string& control, const QString& text) {
        typeOver(control, text);
        enter();
    }
    /// Chooses an entry of a list with the arrow keys.
    void pick(const std::string& control, const QString& entry) {
        go(control);
        const auto* list = find<QComboBox>(control);
        const int wanted = list->findText(entry);
        ASSERT_GE(wanted, 0) << control << " has no " << entry.toStdString();
        while (list->currentIndex() < wanted) key(Qt::Key_Down);
        while (list->currentIndex() > wanted) key(Qt::Key_Up);
        ASSERT_EQ(list->currentText(), entry);
    }

    // ---- What is seen
    template <typename Widget = QWidget>
    Widget* find(const std::string& name) {
        return form->findChild<Widget*>(QString::fromStdString(name));
    }
    std::string shown(const std::string& box) { return find<QLineEdit>(box)->text().toStdString(); }
    std::string label(const std::string& name) { return find<QLabel>(name)->text().toStdString(); }
    std::string chosen(const std::string& list) { return find<QComboBox>(list)->currentText().toStdString(); }
    bool usable(const std::string& control) { return find(control)->isEnabled(); }
    std::size_t boxes() const { return dialogs.boxes.size(); }
    std::string boxText() const { return dialogs.boxes.empty() ? std::string() : dialogs.boxes.back().text; }
    Unit& unit() { return session.currentUnitObject(); }
};

}  // namespace zentaq
