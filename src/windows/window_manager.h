// The windows of the program as the core sees them: made by their rows when they are asked for, told the
// core's news, and brought up to date at most sixty times a second.
#pragma once

#include <QObject>
#include <QPointer>
#include <QTimer>
#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "app/main_commands.h"
#include "app/session.h"
#include "app/start_up.h"
#include "app/window_set.h"
#include "windows/form.h"
#include "windows/mdi_main.h"
#include "windows/waiting_commands.h"
#include "windows/window_registry.h"

class QApplication;
class QPrinter;

namespace zentaq {

class FrmConfig;

class WindowManager : public QObject, public WindowSet {
    Q_OBJECT

 public:
    static constexpr int refreshMs = 16;

    WindowManager(QApplication& application, Session& session, MainCommands& commands, Kernel& kernel);
    ~WindowManager() override;

    MdiMain& main() { return *main_; }
    /// The open window of a class; nullptr for none.
    template <typename F>
    F* form() const {
        for (const Open& one : windows_) {
            if (auto* form = dynamic_cast<F*>(one.get())) return form;
        }
        return nullptr;
    }
    /// The main window has been closed; the process ends.
    bool closed() const { return closed_; }
    /// Brings the windows up to date with the change counters now.
    void refresh();

    void open(std::string_view name, const std::string& on = {}, const std::string& title = {}) override;
    bool close(std::string_view name) override;
    void focus(std::string_view name) override;
    void removeForms() override;
    void afterEdits(const std::string& caption, const std::function<void()>& command) override {
        waiting_.afterEdits(caption, command);
    }
    bool showDoubts(const std::vector<Doubt>& doubts) override;
    bool boxOpen() const override;
    bool noticesSeen() const override;
    void later(const std::function<void()>& something) override { waiting_.later(something); }
    PrintEnd printText(const std::string& title, const std::function<std::string()>& pages) override;
    PrintEnd printForm(const std::function<void()>& begins) override;

    /// The system's dialog; a test takes its place.
    std::function<bool(QPrinter& printer, QWidget* owner)> choosePrinter;

 Q_SIGNALS:
    /// The core has shut down and the main window is closed.
    void mainClosed();

 protected:
    void toEach(const std::function<void(WindowNews&)>& tell) override;

 private:
    /// A row and its window, while that is open.
    struct Open {
        const WindowRow* row;
        Form* form = nullptr;
        QPointer<QWidget> widget{};

        Form* get() const { return widget ? form : nullptr; }
    };
    Open* find(std::string_view name);
    void show(Open& place, const std::string& on, const std::string& title);
    bool make(Open& place);
    QWidget* parentFor(FormPlace place);
    QWidget* takeOut(Open& place);
    void formClosed(Open& place);
    void closeMain();
    void focusBehind(const WindowRow& closed);
    void focusChanged(QWidget* now);
    Form* whereKeysWait() const;
    bool finishEdits();
    void beginMonitoring();

    /// What it hears itself, before the windows.
    class Own : public WindowNews {
     public:
        explicit Own(WindowManager& all) : all_(all) {}
        void killTimers() override { all_.tmrRefresh_.stop(); }
        void look(bool day) override;
        void unitKindFound(int slot) override;

     private:
        WindowManager& all_;
    };

    QApplication& application_;
    Session& session_;
    MainCommands& commands_;
    Own own_{*this};
    std::vector<Open> windows_;  ///< one a row, in their order
    WaitingCommands waiting_;
    std::unique_ptr<MdiMain> main_;
    QTimer tmrRefresh_;
    bool closed_ = false;
};

}  // namespace zentaq
