// A console: lines in fixed pitch whose last one is always in view.
#pragma once

#include <QListView>

#include "qt/line_model.h"

namespace zentaq {

class ConsoleView : public QListView {
    Q_OBJECT

 public:
    ConsoleView(const QString& name, const QString& meaning, const std::deque<std::string>& lines,
                QWidget* parent);

    /// Shows what is new and selects the last line.
    void sync();

 private:
    LineModel model_;
};

}  // namespace zentaq
