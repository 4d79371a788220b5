#include "windows/frm_config_console.h"

#include "qt/look.h"

namespace zentaq {

ConsoleView::ConsoleView(const QString& name, const QString& meaning, const std::deque<std::string>& lines,
                         QWidget* parent)
    : QListView(parent), model_(lines) {
    setObjectName(name);
    setAccessibleName(meaning);
    setToolTip(meaning);
    setFont(consoleFont());
    setUniformItemSizes(true);
    setEditTriggers(NoEditTriggers);
    setVerticalScrollMode(ScrollPerItem);
    setTabKeyNavigation(false);
    setTextElideMode(Qt::ElideNone);
    // Lines are padded with blanks to their full width; a bar to reach them would only cost a line of height.
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setModel(&model_);
}

void ConsoleView::sync() {
    if (!model_.sync() || model_.rowCount() == 0) return;
    setCurrentIndex(model_.index(model_.rowCount() - 1));
    scrollToBottom();
}

}  // namespace zentaq
