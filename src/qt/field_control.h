// The control of a field on the screen, with its caption, limits and what else stands beside it: made by the
// field's kind, named for the screen reader, with its tip and its help key. It shows a field and hands over
// what is entered.
#pragma once

#include <QButtonGroup>
#include <QLabel>
#include <QObject>
#include <functional>
#include <string>
#include <vector>

#include "base/field.h"

namespace zentaq {

class FieldControl : public QObject {
    Q_OBJECT

 public:
    /// An entry: the text of a box or an entry of a list, "1" or "0" of a box to check or an option, a
    /// number. False: refused; the user has been told, and the field has been shown anew by then.
    using Entered = std::function<bool(const std::string& text)>;

    FieldControl(const Field& field, Entered entered, QWidget* parent);
    /// Around a control that is like no other one.
    FieldControl(const Field& field, QWidget* made, QObject* parent);

    const Field& shown() const { return shown_; }
    QWidget* widget() const { return widget_; }
    /// What stands behind the control, in this order: a swatch and its button, a number, a unit.
    const std::vector<QWidget*>& beside() const { return beside_; }

    /// The caption as a label, where the control does not bear it itself.
    QLabel* addCaption();
    /// The limits as a label.
    QLabel* addLimits();
    /// What the box is, where its caption alone does not tell.
    QLabel* addOwnLabel(const char* name, const QString& text);
    /// Its option is one of several.
    void join(QButtonGroup& group);

    void show(const Field& field);
    /// The colours of a form whose fields act on the running engine: of this one while it does.
    void mark(bool onTheFly);
    /// Hands over what has been typed. False when it was refused.
    bool commit();
    /// Forgets what has been typed and not handed over.
    void bringBack();

 Q_SIGNALS:
    /// The button of the field, or the one beside it.
    void pressed();

 private:
    void make();
    void makeText();
    void makeColour();
    void makeSlider();
    QLabel* addBeside(const QString& name);
    void showValue();
    void showChoice();
    void showBeside();
    void choose();

    Field shown_;
    Entered entered_;
    QWidget* parent_;
    QWidget* widget_ = nullptr;
    QLabel* caption_ = nullptr;
    QLabel* limits_ = nullptr;
    QLabel* ownLabel_ = nullptr;
    QLabel* number_ = nullptr;
    QLabel* unit_ = nullptr;
    QButtonGroup* group_ = nullptr;
    std::vector<QWidget*> beside_;
};

/// Reads as a remark, by day and by night.
QLabel* mutedLabel(QWidget* parent);
/// Muted while the field can be used, and as pale as the field while it cannot.
void showUsable(QLabel& remark, bool usable);

}  // namespace zentaq
