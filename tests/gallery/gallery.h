// A window for developers: every control of the program in every state, by day (F7) and by night (F8). A test
// walks it and measures what is drawn; docs/look.md tells how it is started.
#pragma once

#include <QWidget>
#include <vector>

#include "qt/look.h"

class QGridLayout;

namespace zentaq {

class OwnWidgets;

enum class Pose { Normal, Hover, Focus, Pressed, Disabled };

class Gallery : public QWidget {
    Q_OBJECT

 public:
    /// One control, posed.
    struct Piece {
        QString kind;  ///< "Button", "List"
        Pose pose;
        QWidget* widget;
    };

    Gallery();

    const std::vector<Piece>& pieces() const { return pieces_; }
    /// Of all that it shows, without scrolling.
    int wholeHeight() const;

 protected:
    void keyPressEvent(QKeyEvent* event) override;

 private:
    void addControls(QGridLayout& grid);
    void addInstruments(QGridLayout& grid);
    void addBadges(QGridLayout& grid);
    void addIcons(QGridLayout& grid);
    void addColours(QGridLayout& grid);
    void addType(QGridLayout& grid);
    void addHeading(QGridLayout& grid, const QString& text);

    void showMode(DisplayMode mode);

    std::vector<Piece> pieces_;
    QStyle* posing_;
    QWidget* inside_ = nullptr;
    OwnWidgets* own_ = nullptr;
};

}  // namespace zentaq
