#include "qt/application.h"

#include <QTimer>

#include "base/errors.h"

namespace zentaq {

bool Application::notify(QObject* receiver, QEvent* event) {
    try {
        return QApplication::notify(receiver, event);
    } catch (const std::exception& failure) {
        tell(textOfFailure(failure));
    } catch (...) {
        tell("Unknown failure");
    }
    return true;
}

// The box waits for the event loop: the failing handler may be a paint or a timer event in which no box can
// stand. While one is told others are dropped, or a failing timer would bury the user in boxes.
void Application::tell(const std::string& text) {
    if (telling_ || !report_) return;
    telling_ = true;
    QTimer::singleShot(0, this, [this, text] {
        try {
            report_(text);
        } catch (...) {  // A report that fails has nobody left to tell.
        }
        telling_ = false;
    });
}

}  // namespace zentaq
