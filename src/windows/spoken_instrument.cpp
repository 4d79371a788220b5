#include "windows/spoken_instrument.h"

#include <QAccessibleWidget>
#include <chrono>
#include <mutex>
#include <utility>

namespace zentaq {
namespace {

constexpr std::chrono::seconds pauseBetweenValues{1};

class SpokenWidget : public QAccessibleWidget, public QAccessibleValueInterface {
 public:
    SpokenWidget(QWidget* widget, const SpokenInstrument& instrument)
        : QAccessibleWidget(widget, instrument.spokenRole()), instrument_(instrument) {}

    void* interface_cast(QAccessible::InterfaceType type) override {
        return type == QAccessible::ValueInterface ? static_cast<QAccessibleValueInterface*>(this)
                                                   : QAccessibleWidget::interface_cast(type);
    }
    QString text(QAccessible::Text which) const override {
        const bool asked = which == QAccessible::Value || which == QAccessible::Description;
        return asked ? instrument_.spokenValue() : QAccessibleWidget::text(which);
    }
    QAccessible::State state() const override {
        QAccessible::State all = QAccessibleWidget::state();
        all.readOnly = true;
        return all;
    }
    QVariant currentValue() const override { return instrument_.spokenNumber(); }
    void setCurrentValue(const QVariant&) override {}
    QVariant maximumValue() const override { return {}; }
    QVariant minimumValue() const override { return {}; }
    QVariant minimumStepSize() const override { return {}; }

 private:
    const SpokenInstrument& instrument_;
};

QAccessibleInterface* spoken(const QString& /*type*/, QObject* object) {
    const auto* instrument = dynamic_cast<SpokenInstrument*>(object);
    return instrument == nullptr ? nullptr : new SpokenWidget(static_cast<QWidget*>(object), *instrument);
}

}  // namespace

SpokenInstrument::SpokenInstrument(QWidget* widget, QAccessible::Role role) : widget_(*widget), role_(role) {
    static std::once_flag once;
    std::call_once(once, [] { QAccessible::installFactory(spoken); });
    pause_.setSingleShot(true);
    QObject::connect(&pause_, &QTimer::timeout, &pause_, [this] {
        if (std::exchange(waits_, false)) valueChanged();
    });
}

QString SpokenInstrument::spokenValue() const {
    const QString value = plainValue();
    if (value.isEmpty()) return QStringLiteral("no value");
    return value + (inAlarm() ? QStringLiteral(", in alarm") : QString()) +
           (live_ ? QString() : QStringLiteral(", not live"));
}

QVariant SpokenInstrument::spokenNumber() const {
    const QString first = plainValue().section(u' ', 0, 0);
    bool isNumber = false;
    const double number = first.toDouble(&isNumber);
    return isNumber          ? QVariant(number)
           : first.isEmpty() ? QVariant()
                             : QVariant(first == QLatin1String("on"));
}

void SpokenInstrument::valueChanged() {
    if (!isHeard()) return;
    if (pause_.isActive()) {
        waits_ = true;
        return;
    }
    tell(QAccessible::ValueChanged);
    pause_.start(pauseBetweenValues);
}

void SpokenInstrument::alarmChanged() {
    if (!isHeard()) return;
    waits_ = false;
    tell(QAccessible::ValueChanged);
    if (inAlarm()) tell(QAccessible::Alert);
}

void SpokenInstrument::tell(QAccessible::Event event) {
    if (event == QAccessible::ValueChanged) {
        QAccessibleValueChangeEvent changed(&widget_, spokenValue());
        QAccessible::updateAccessibility(&changed);
        return;
    }
    QAccessibleEvent told(&widget_, event);
    QAccessible::updateAccessibility(&told);
}

}  // namespace zentaq
