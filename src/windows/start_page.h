// The start page: what is in hand, what somebody does first, the files that were in hand last, the samples.
#pragma once

#include <QLabel>
#include <QListWidget>
#include <QScrollArea>
#include <string>
#include <vector>

namespace zentaq {

class StartPage : public QScrollArea {
    Q_OBJECT

 public:
    explicit StartPage(QWidget* parent);

    /// The path of the calibration in hand; empty for none.
    void showInHand(const std::string& path, bool inHand);
    void showTip(const std::string& text);
    /// Whole paths; names stand in front, their folders as tips.
    void showFiles(const std::vector<std::string>& recent, const std::vector<std::string>& samples);
    /// The keyboard to what somebody does first.
    void takeFocus();

 Q_SIGNALS:
    /// A button stands for this entry of the menu.
    void entryAsked(const char* entry);
    void fileAsked(const std::string& path);

 private:
    QWidget* makeDoors();
    QWidget* makeFiles();
    QListWidget* makeList(const char* name, const QString& caption, QWidget* column);
    static void fill(QListWidget& list, const std::vector<std::string>& paths);
    void ask(const QListWidgetItem& item);

    QLabel* lblStart_ = nullptr;
    QLabel* lblTip_ = nullptr;
    QLabel* nothingRecent_ = nullptr;
    QListWidget* recent_ = nullptr;
    QListWidget* samples_ = nullptr;
    std::string asked_;  ///< a double click asks once
};

}  // namespace zentaq
