// The search box of the options: a line to type in and the options found below it.
// Up and Down move over them, Enter goes to one, Escape empties the box.
#pragma once

#include <QLineEdit>
#include <QListWidget>
#include <QWidget>
#include <vector>

#include "app/options.h"

namespace zentaq {

class OptionFinder : public QWidget {
    Q_OBJECT

 public:
    /// `window` holds the list of hits over its other contents.
    explicit OptionFinder(QWidget* window);

    QLineEdit& line() { return *txtFind_; }
    QListWidget& hits() { return *lstFound_; }

 Q_SIGNALS:
    /// The name of the control, and what was typed.
    void chosen(const QString& control, const QString& query);

 protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

 private:
    bool keyPressed(int key);
    void find();
    void placeList();
    void step(int by);
    void choose(int row);

    QLineEdit* txtFind_;
    QListWidget* lstFound_;
    std::vector<const OptionRow*> found_;
};

/// A page's title without its access key.
QString pageTitle(OptionPage page);

}  // namespace zentaq
