// Tells of the next key or button that is pressed anywhere in the program: somebody is there.
#pragma once

#include <QApplication>
#include <QEvent>
#include <QObject>
#include <functional>
#include <utility>

namespace zentaq {

class FirstPress : public QObject {
 public:
    explicit FirstPress(std::function<void()> tell) : tell_(std::move(tell)) {}

    /// From now on; costs nothing before that, and nothing behind the press.
    void listen() {
        if (!std::exchange(listens_, true)) qApp->installEventFilter(this);
    }

    bool eventFilter(QObject* watched, QEvent* event) override {
        if (event->type() == QEvent::KeyPress || event->type() == QEvent::MouseButtonPress) {
            qApp->removeEventFilter(this);
            listens_ = false;
            tell_();
        }
        return QObject::eventFilter(watched, event);
    }

 private:
    std::function<void()> tell_;
    bool listens_ = false;
};

}  // namespace zentaq
