// The program's QApplication: a failure that no command caught is told to the user and the program goes on.
#pragma once

#include <QApplication>
#include <functional>
#include <string>

namespace zentaq {

class Application : public QApplication {
    Q_OBJECT

 public:
    Application(int& argc, char** argv) : QApplication(argc, argv) {}

    /// Called from the event loop, one failure at a time, with the failure's text.
    void onFailure(std::function<void(const std::string&)> report) { report_ = std::move(report); }

    bool notify(QObject* receiver, QEvent* event) override;

 private:
    void tell(const std::string& text);

    std::function<void(const std::string&)> report_;
    bool telling_ = false;
};

}  // namespace zentaq
