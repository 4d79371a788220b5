// A search box: a line to type in, and what is found below it, over the other contents of its window. Up and
// Down move over the hits, Enter goes to one, Escape empties the box.
#pragma once

#include <QLineEdit>
#include <QListWidget>
#include <QWidget>
#include <functional>
#include <vector>

namespace zentaq {

class FindBox : public QWidget {
    Q_OBJECT

 public:
    struct Hit {
        QString shown;
        QString key;  ///< what `chosen` tells
    };
    struct Words {
        const char* box;      ///< name of the line
        const char* list;     ///< name of the hits
        QString caption;      ///< with "&" before a letter
        QString meaning;      ///< for a screen reader
        QString placeholder;  ///< of the empty line
        QString hits;         ///< "Options found"
        QString nothing;      ///< "No option found"
    };
    using Find = std::function<std::vector<Hit>(const QString& query)>;

    /// `frame` holds the list of hits over its other contents.
    FindBox(const Words& words, Find find, QWidget* frame);

    QLineEdit& line() { return *txtFind_; }
    QListWidget& hits() { return *lstFound_; }

 Q_SIGNALS:
    void chosen(const QString& key, const QString& query);

 protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

 private:
    bool keyPressed(int key);
    void search();
    void placeList();
    void step(int by);
    void choose(int row);

    Find find_;
    QString nothing_;
    QLineEdit* txtFind_;
    QListWidget* lstFound_;
    std::vector<Hit> found_;
};

}  // namespace zentaq
