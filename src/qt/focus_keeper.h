// The keyboard behind a dialog that has closed: it belongs to the window that asked.
#pragma once

#include <QObject>
#include <QPointer>
#include <QTimer>
#include <QWidget>

class QWindow;

namespace zentaq {

/// Some window managers choose the next window themselves when a dialog goes, and later than the program asks
/// for its own: the main window then gets the keys that are meant for the form in front of it. For a moment
/// this asks again, until the user presses a key or a button.
class FocusKeeper : public QObject {
    Q_OBJECT

 public:
    explicit FocusKeeper(QObject* parent = nullptr);

    /// A dialog over this window has closed.
    void keep(QWidget& window);
    /// The window that gets the keyboard; nullptr when the moment is over.
    QWidget* window() const;

 protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

 private:
    void end();
    void focusMoved(const QWindow* now);
    void giveBack();

    QPointer<QWidget> window_;
    QTimer moment_;
};

}  // namespace zentaq
