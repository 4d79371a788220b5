// One page of the guide on the screen: the colours of the program instead of a browser's, marks on the words
// that were searched for, and no way out of the guide's folder.
#pragma once

#include <QTextBrowser>
#include <string>
#include <vector>

namespace zentaq {

class GuidePage : public QTextBrowser {
    Q_OBJECT

 public:
    GuidePage(const std::string& folder, QWidget* parent);

    /// Shows "chapter" or "chapter#anchor".
    void showTopic(const std::string& topic);
    /// What is shown: "chapter" or "chapter#anchor".
    std::string topic() const;
    /// A text in the place of a page.
    void showText(const QString& headline, const QString& text);

    /// Marks the beginnings of words, given in capitals; none wipes the marks. They last over page changes.
    void mark(const std::vector<std::string>& words);
    int markedPlaces() const { return static_cast<int>(extraSelections().size()); }
    /// Selects the next or former place of a text, around the end if need be. False: it is not in the page.
    bool findText(const QString& text, bool backward);

    QVariant loadResource(int type, const QUrl& name) override;

 Q_SIGNALS:
    /// A link that leads out of the guide was left alone.
    void outsideRefused(const QString& address);

 protected:
    void changeEvent(QEvent* event) override;

 private:
    void follow(const QUrl& link);
    void showMarks();
    void takeStyle();

    QString folder_;
    std::vector<std::string> words_;
};

}  // namespace zentaq
