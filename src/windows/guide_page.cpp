#include "windows/guide_page.h"

#include <QApplication>
#include <QEvent>
#include <QFileInfo>
#include <QScrollBar>
#include <QTextBlock>

#include "base/errors.h"
#include "base/file_reader.h"
#include "qt/look.h"
#include "qt/named.h"

namespace zentaq {

namespace {

constexpr auto styleName = "guide.css";
constexpr auto pageExtension = ".html";
/// Room around the text, in line heights.
constexpr qreal margin = 1.3;

/// Words of a page as the search counts them.
bool isWordCharacter(QChar letter) {
    return letter.isLetterOrNumber() || letter == u'_';
}

}  // namespace

GuidePage::GuidePage(const std::string& folder, QWidget* parent)
    : QTextBrowser(parent), folder_(QFileInfo(QString::fromStdString(folder)).absoluteFilePath()) {
    named(this, "txtPage", "Page of the guide");
    setOpenLinks(false);
    setOpenExternalLinks(false);
    document()->setDocumentMargin(fontMetrics().height() * margin);
    connect(this, &QTextBrowser::anchorClicked, this, &GuidePage::follow);
    // Not sourceChanged: it comes before source() tells the new page.
    connect(this, &QTextBrowser::historyChanged, this, &GuidePage::showMarks);
    takeStyle();
}

void GuidePage::showTopic(const std::string& topic) {
    const QString whole = QString::fromStdString(topic);
    QUrl url = QUrl::fromLocalFile(folder_ + u'/' + whole.section(u'#', 0, 0) + QLatin1String(pageExtension));
    const QString anchor = whole.section(u'#', 1);
    if (!anchor.isEmpty()) url.setFragment(anchor);
    setSource(url);
}

std::string GuidePage::topic() const {
    const QString chapter = QFileInfo(source().path()).completeBaseName();
    const QString anchor = source().fragment();
    return (anchor.isEmpty() ? chapter : chapter + u'#' + anchor).toStdString();
}

void GuidePage::showText(const QString& headline, const QString& text) {
    setHtml(QStringLiteral("<h1>%1</h1><p>%2</p>").arg(headline.toHtmlEscaped(), text.toHtmlEscaped()));
}

void GuidePage::mark(const std::vector<std::string>& words) {
    words_ = words;
    showMarks();
}

void GuidePage::showMarks() {
    const LookColors look = lookColors(appliedLook(*qApp));
    QList<QTextEdit::ExtraSelection> marks;
    for (const std::string& word : words_) {
        const QString wanted = QString::fromStdString(word);
        for (QTextCursor place = document()->find(wanted); !place.isNull();
             place = document()->find(wanted, place)) {
            const int before = place.selectionStart() - 1;
            if (before >= 0 && isWordCharacter(document()->characterAt(before))) continue;
            QTextEdit::ExtraSelection shown;
            shown.cursor = place;
            shown.format.setBackground(look.checked);
            shown.format.setForeground(look.text);
            shown.format.setFontUnderline(true);  // seen without colours as well
            marks.append(shown);
        }
    }
    setExtraSelections(marks);
}

bool GuidePage::findText(const QString& text, bool backward) {
    const auto direction = backward ? QTextDocument::FindBackward : QTextDocument::FindFlags();
    if (find(text, direction)) return true;
    const QTextCursor former = textCursor();
    moveCursor(backward ? QTextCursor::End : QTextCursor::Start);
    if (find(text, direction)) return true;
    setTextCursor(former);
    return false;
}

/// The pages name a style sheet for web browsers; here the colours are the program's.
QVariant GuidePage::loadResource(int type, const QUrl& name) {
    if (name.fileName() == QLatin1String(styleName)) return QByteArray();
    const QString file = source().resolved(name).toLocalFile();
    const bool inside = (name.isLocalFile() || name.isRelative()) &&
                        skipFailing([&] { checkFile(file.toStdString(), limits::guidePage); });
    return inside ? QTextBrowser::loadResource(type, name) : QVariant();
}

void GuidePage::follow(const QUrl& link) {
    const QUrl target = source().resolved(link);
    const bool inside = target.isLocalFile() && QFileInfo(target.toLocalFile()).absolutePath() == folder_;
    if (!inside) {
        Q_EMIT outsideRefused(link.toString());
        return;
    }
    setSource(target);
}

void GuidePage::takeStyle() {
    const LookColors& look = lookColors(appliedLook(*qApp));
    const QFontMetrics metrics = fontMetrics();
    document()->setDefaultStyleSheet(
        QStringLiteral(
            "body { color: %1; background-color: %2; }"
            "h1 { font-size: xx-large; color: %3; margin-bottom: %9px; }"
            "h2 { font-size: x-large; color: %3; margin-top: %10px; margin-bottom: %8px; }"
            "h3 { font-size: large; }"
            "p, li { line-height: 135%; }"
            "p { margin-top: %8px; margin-bottom: %8px; }"
            "li { margin-bottom: %7px; }"
            "a { color: %3; }"
            "table { border-collapse: collapse; border-color: %4; margin-top: %8px; margin-bottom: %9px; }"
            "th { background-color: %5; text-align: left; }"
            "th, td { border: 1px solid %4; padding: %7px %8px; }"
            "code, pre { font-family: monospace; background-color: %5; }"
            "pre { margin: %8px %9px; padding: %8px; }"
            // A background of its own would cover the underscores of the line above.
            "pre code { background-color: transparent; }"
            "blockquote { margin-left: %10px; color: %6; font-weight: bold; }")
            .arg(look.text.name(), look.surface.name(), look.accent.name(), look.border.name(),
                 look.button.name(), look.text.name())
            .arg(space(metrics, Space::Tight))
            .arg(space(metrics, Space::Normal))
            .arg(space(metrics, Space::Wide))
            .arg(space(metrics, Space::Section)));
}

// Day or night: the page is read again, as its colours stand in it.
void GuidePage::changeEvent(QEvent* event) {
    QTextBrowser::changeEvent(event);
    if (event->type() != QEvent::PaletteChange) return;
    takeStyle();
    if (source().isEmpty()) return;
    const int place = verticalScrollBar()->value();
    reload();
    verticalScrollBar()->setValue(place);
    showMarks();
}

}  // namespace zentaq
