// The boxes and dialogs of the program on Qt. They are Qt's own, so they look and answer the same everywhere
// and keyboard and screen reader reach all of them; a file is opened by the desktop's dialog where there is
// one.
#pragma once

#include <QObject>
#include <QPointer>
#include <QString>
#include <QStringList>
#include <QWidget>

#include "platform/dialogs.h"
#include "qt/focus_keeper.h"

namespace zentaq {

class QtDialogs : public Dialogs {
 public:
    QtDialogs();

    /// A box stands over the window that the user works in, and gives the keyboard back to the field in hand.
    /// This one takes the boxes that come while there is none; before it is set they stand alone.
    void setParent(QWidget* parent) { parent_ = parent; }

    Answer show(const Box& box) override;
    std::string openFile(const FileRequest& request) override;
    /// Asks nothing about an existing file and creates none.
    std::string saveFile(const FileRequest& request) override;
    std::optional<std::string> input(const std::string& title, const std::string& prompt,
                                     const std::string& initial) override;

 private:
    QWidget* asker() const;
    template <typename Dialog>
    int ask(Dialog& dialog);
    std::string choose(const FileRequest& request, bool save);

    QPointer<QWidget> parent_;
    QPointer<QWidget> last_;  ///< the window that had the keyboard last: another program may be in front
    FocusKeeper keeper_;
    QObject context_;
};

/// A box, or the list of a field, stands over a window and waits for the user.
bool boxStands();

/// A box stands that goes when what it is about has gone (`Box::stands`).
bool boxEndsByItself();

/// "text|pattern|text|pattern" as name filters, one an entry: "text (pattern pattern)".
/// Patterns of one entry are separated by ';'. A last text without a pattern is left out.
QStringList nameFilters(const std::string& filter);

/// "ZQ4OA" from "ZQ4OA", ".ZQ4OA", "*.ZQ4OA" or a whole "text|*.ZQ4OA".
QString bareExtension(const std::string& extension);

}  // namespace zentaq
