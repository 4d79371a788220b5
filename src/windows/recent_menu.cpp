#include "windows/recent_menu.h"

#include <filesystem>

#include "base/text.h"
#include "qt/qt_text.h"

namespace zentaq {

namespace {

/// A folder takes no more room than this many letters.
constexpr int widestFolder = 40;

QString entryText(std::size_t number, const std::string& path, const QFontMetrics& metrics) {
    const QString folder = shownString(std::filesystem::path(path).parent_path().string());
    const QString told =
        metrics.elidedText(folder, Qt::ElideMiddle, widestFolder * metrics.averageCharWidth());
    // A name with an ampersand takes no letter.
    QString text = shownString(fileNameOf(path)) + "  (" + told + ")";
    return QStringLiteral("&%1  ").arg(number) + text.replace(u'&', "&&");
}

}  // namespace

void fillRecentMenu(QMenu& menu, const std::vector<std::string>& paths,
                    const std::function<void(const std::string& path)>& open) {
    menu.clear();
    for (std::size_t i = 0; i < paths.size(); ++i) {
        QAction* entry = menu.addAction(entryText(i + 1, paths[i], menu.fontMetrics()));
        entry->setObjectName(QStringLiteral("mnuRecent_%1").arg(i + 1));
        entry->setToolTip(plainTip(shownString(paths[i])));
        QObject::connect(entry, &QAction::triggered, &menu, [open, path = paths[i]] { open(path); });
    }
    menu.setToolTipsVisible(true);
}

}  // namespace zentaq
