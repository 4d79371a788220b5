// What a screen reader hears of an instrument that is painted: its value, whether it is in alarm and whether
// it is live. A value that changes with every frame is said as often as a listener can follow.
#pragma once

#include <QAccessible>
#include <QString>
#include <QTimer>
#include <QVariant>

class QWidget;

namespace zentaq {

/// A base of such a widget beside QWidget.
class SpokenInstrument {
 public:
    SpokenInstrument(QWidget* widget, QAccessible::Role role);
    virtual ~SpokenInstrument() = default;
    SpokenInstrument(const SpokenInstrument&) = delete;
    SpokenInstrument& operator=(const SpokenInstrument&) = delete;

    /// A dial has the tip of its needle said by the read-out beside it, which tells of changes, too.
    QAccessible::Role spokenRole() const { return role_; }
    /// "4.51 V, in alarm, not live"; "no value" for none.
    QString spokenValue() const;
    /// The same as a number, without its unit: 1 and 0 for on and off, invalid for none.
    QVariant spokenNumber() const;
    bool isSpokenLive() const { return live_; }
    /// While it shows what has been and not what is.
    void setSpokenLive(bool live) { live_ = live; }

 protected:
    /// With its unit; empty for none.
    virtual QString plainValue() const = 0;
    virtual bool inAlarm() const { return false; }
    /// Tells a listener at once, or with all that comes within the next second.
    void valueChanged();
    /// Tells a listener at once.
    void alarmChanged();
    virtual bool isHeard() const { return QAccessible::isActive(); }
    virtual void tell(QAccessible::Event event);

 private:
    QWidget& widget_;
    QAccessible::Role role_;
    QTimer pause_;
    bool waits_ = false;
    bool live_ = true;
};

}  // namespace zentaq
