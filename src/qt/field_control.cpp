#include "qt/field_control.h"

#include <QApplication>
#include <QCheckBox>
#include <QComboBox>
#include <QLineEdit>
#include <QPointer>
#include <QPushButton>
#include <QRadioButton>
#include <QSignalBlocker>
#include <QSlider>
#include <algorithm>

#include "base/number_text.h"
#include "qt/colour_swatch.h"
#include "qt/entry_box.h"
#include "qt/help_key.h"
#include "qt/look.h"
#include "qt/plain_label.h"
#include "qt/qt_text.h"

namespace zentaq {

namespace {

/// Widths of boxes, in digits.
constexpr int numberDigits = 7;
constexpr int textDigits = 12;
constexpr int sliderDigits = 3;
/// A list is never narrower than this many letters; its entries open to their full length.
constexpr int listLetters = 16;
constexpr int sliderPage = 10;

}  // namespace

QLabel* mutedLabel(QWidget* parent) {
    QLabel* label = plainLabel({}, {}, parent);
    label->setForegroundRole(QPalette::PlaceholderText);
    return label;
}

void showUsable(QLabel& remark, bool usable) {
    remark.setEnabled(usable);
    remark.setForegroundRole(usable ? QPalette::PlaceholderText : QPalette::WindowText);
}

FieldControl::FieldControl(const Field& field, Entered entered, QWidget* parent)
    : QObject(parent), shown_(field), entered_(std::move(entered)), parent_(parent) {
    make();
    widget_->setObjectName(qString(field.control));
    show(field);
}

FieldControl::FieldControl(const Field& field, QWidget* made, QObject* parent)
    : QObject(parent), shown_(field), parent_(made->parentWidget()), widget_(made) {
    widget_->setObjectName(qString(field.control));
    show(field);
}

// ---- Making

void FieldControl::make() {
    switch (shown_.kind) {
        case FieldKind::Check:
        case FieldKind::Option: {
            const bool check = shown_.kind == FieldKind::Check;
            QAbstractButton* button =
                check ? static_cast<QAbstractButton*>(new QCheckBox(parent_)) : new QRadioButton(parent_);
            connect(button, &QAbstractButton::clicked, this, [this](bool on) { entered_(on ? "1" : "0"); });
            widget_ = button;
            return;
        }
        case FieldKind::Choice: {
            auto* list = new QComboBox(parent_);
            list->setSizeAdjustPolicy(QComboBox::AdjustToMinimumContentsLengthWithIcon);
            list->setMinimumContentsLength(listLetters);
            connect(list, &QComboBox::activated, this, &FieldControl::choose);
            widget_ = list;
            return;
        }
        case FieldKind::Action: {
            auto* button = new QPushButton(qString(shown_.caption), parent_);
            button->setAutoDefault(false);
            button->setMinimumWidth(button->sizeHint().width() + 2 * button->fontMetrics().height());
            connect(button, &QPushButton::clicked, this, &FieldControl::pressed);
            widget_ = button;
            return;
        }
        case FieldKind::Slider:
            return makeSlider();
        case FieldKind::Colour:
            return makeColour();
        case FieldKind::Alarm:
            makeText();
            unit_ = addBeside(qString(shown_.beside));
            unit_->setAccessibleDescription("Unit of the alarm");
            return;
        case FieldKind::Text:
            return makeText();
        default: {
            // A box that goes with its form is left once more.
            const auto hand = [self = QPointer(this)](const QString& text) {
                return self == nullptr || self->entered_(text.toStdString());
            };
            auto* box = new EntryBox(hand, parent_);
            box->setFixedWidth(digitsWidth(box->fontMetrics(), numberDigits) + box->fontMetrics().height());
            widget_ = box;
        }
    }
}

void FieldControl::makeText() {
    auto* box = new QLineEdit(parent_);
    box->setFixedWidth(digitsWidth(box->fontMetrics(), textDigits));
    connect(box, &QLineEdit::textEdited, this, [this](const QString& text) { entered_(text.toStdString()); });
    widget_ = box;
}

void FieldControl::makeColour() {
    makeText();
    auto* swatch = named(new ColourSwatch(parent_), QStringLiteral("sw") + qString(shown_.control),
                         qString(plainCaption(shown_.caption)));
    auto* choose = named(new QPushButton("Choose", parent_), qString(shown_.beside),
                         "Choose: " + swatch->accessibleName());
    choose->setToolTip("Opens the color dialog");
    choose->setAutoDefault(false);
    connect(choose, &QPushButton::clicked, this, &FieldControl::pressed);
    beside_ = {swatch, choose};
}

void FieldControl::makeSlider() {
    auto* slider = new QSlider(Qt::Horizontal, parent_);
    slider->setRange(shown_.least, shown_.most);
    slider->setPageStep(sliderPage);
    connect(slider, &QSlider::valueChanged, this, [this](int value) { entered_(numberText(value)); });
    widget_ = slider;
    number_ = addBeside(qString(shown_.beside));
    QString name = qString(shown_.unit);
    if (!name.isEmpty()) name[0] = name[0].toUpper();
    number_->setAccessibleDescription(name);
    number_->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
    number_->setMinimumWidth(digitsWidth(number_->fontMetrics(), sliderDigits));
    unit_ = addBeside({});
}

QLabel* FieldControl::addBeside(const QString& name) {
    QLabel* label = plainLabel(name, {}, parent_);
    beside_.push_back(label);
    return label;
}

QLabel* FieldControl::addCaption() {
    caption_ = named(new QLabel(qString(shown_.caption), parent_),
                     QStringLiteral("lblCaption_") + qString(shown_.control));
    caption_->setBuddy(widget_);
    return caption_;
}

QLabel* FieldControl::addLimits() {
    limits_ = mutedLabel(parent_);
    limits_->setObjectName(QStringLiteral("lblLimits_") + qString(shown_.control));
    return limits_;
}

QLabel* FieldControl::addOwnLabel(const char* name, const QString& text) {
    ownLabel_ = named(new QLabel(text, parent_), name);
    ownLabel_->setBuddy(widget_);
    return ownLabel_;
}

void FieldControl::join(QButtonGroup& group) {
    group_ = &group;
    group.addButton(qobject_cast<QAbstractButton*>(widget_));
}

// ---- Showing

void FieldControl::show(const Field& field) {
    shown_ = field;
    showValue();
    showBeside();
    widget_->setEnabled(field.enabled);
    QString name = qString(plainCaption(field.caption));
    if (ownLabel_ != nullptr) {
        ownLabel_->setEnabled(field.enabled);
        name = ownLabel_->text() + QStringLiteral(", ") + name;
    }
    widget_->setAccessibleName(name);
    widget_->setAccessibleDescription(qString(field.tip.empty() ? field.limits : field.tip));
    if (!field.tip.empty()) widget_->setToolTip(qString(field.tip));
    widget_->setProperty(helpKeyProperty, qString(field.help));
}

void FieldControl::showValue() {
    const QSignalBlocker quiet(widget_);
    const QString text = qString(shown_.text);
    if (auto* entry = qobject_cast<EntryBox*>(widget_)) {
        entry->showText(text);
    } else if (auto* box = qobject_cast<QLineEdit*>(widget_)) {
        if (box->text() != text) box->setText(text);
    } else if (auto* slider = qobject_cast<QSlider*>(widget_)) {
        slider->setValue(static_cast<int>(numberOf(shown_.text)));
    } else if (qobject_cast<QComboBox*>(widget_) != nullptr) {
        if (shown_.kind == FieldKind::Choice) showChoice();
    } else if (auto* button = qobject_cast<QAbstractButton*>(widget_)) {
        button->setText(qString(shown_.caption));
        if (!button->isCheckable()) return;
        // A group whose options are all off is only possible while it is not exclusive.
        if (group_ != nullptr) group_->setExclusive(false);
        button->setChecked(shown_.on);
        if (group_ != nullptr) group_->setExclusive(true);
    }
}

void FieldControl::showChoice() {
    auto& list = *static_cast<QComboBox*>(widget_);
    QStringList choices;
    for (const std::string& choice : shown_.choices) choices.append(shownString(choice));
    QStringList present;
    for (int i = 0; i < list.count(); ++i) present.append(list.itemText(i));
    if (choices != present) {
        list.clear();
        list.addItems(choices);
    }
    const QString text = shownString(shown_.text);
    const auto chosen = std::ranges::find(shown_.choices, shown_.text);
    const int index = chosen == shown_.choices.end() ? -1 : static_cast<int>(chosen - shown_.choices.begin());
    // A text that is none of the entries is shown all the same.
    const QString invitation = shown_.enabled ? "Choose..." : QString();
    list.setPlaceholderText(index < 0 && !text.isEmpty() ? text : invitation);
    list.setCurrentIndex(index);
    list.setToolTip(plainTip(text));
}

void FieldControl::showBeside() {
    if (caption_ != nullptr) {
        caption_->setText(qString(shown_.caption));
        // A colour is in force while it cannot be chosen.
        caption_->setEnabled(shown_.enabled || shown_.kind == FieldKind::Colour);
    }
    if (limits_ != nullptr) {
        limits_->setText(qString(shown_.limits));
        showUsable(*limits_, shown_.enabled);
    }
    if (number_ != nullptr) number_->setText(qString(shown_.text));
    if (unit_ != nullptr) unit_->setText(qString(shown_.unit));
    if (shown_.kind != FieldKind::Colour) return;
    static_cast<ColourSwatch*>(beside_[0])->setColour(storedColor(shown_.text));
    beside_[1]->setEnabled(shown_.enabled);
}

void FieldControl::mark(bool onTheFly) {
    QPalette palette;
    const LookColors& colors = lookColors(appliedLook(*qApp));
    if (onTheFly && shown_.onTheFly && shown_.enabled) {
        // A form that takes nothing now disables its fields by itself, and none may go on saying that it
        // acts.
        for (const auto group : {QPalette::Active, QPalette::Inactive}) {
            for (const auto role : {QPalette::Base, QPalette::Button})
                palette.setColor(group, role, colors.highlight);
            for (const auto role : {QPalette::Text, QPalette::ButtonText, QPalette::WindowText})
                palette.setColor(group, role, colors.highlightText);
        }
    }
    if (widget_->palette() != palette) widget_->setPalette(palette);
}

// ---- Entries

void FieldControl::choose() {
    // By its place: a name may be shown otherwise than it is.
    const int index = static_cast<QComboBox*>(widget_)->currentIndex();
    if (index < 0 || index >= std::ssize(shown_.choices)) return;
    const std::string text = shown_.choices[static_cast<std::size_t>(index)];
    if (text != shown_.text) entered_(text);
}

bool FieldControl::commit() {
    auto* box = qobject_cast<EntryBox*>(widget_);
    return box == nullptr || box->commit();
}

void FieldControl::bringBack() {
    if (auto* box = qobject_cast<EntryBox*>(widget_)) box->bringBack();
}

}  // namespace zentaq
