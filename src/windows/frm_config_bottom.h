// Below the pages: the consoles and the link panel. They fold to one line that tells the last message and the
// state of the link: by the user's hand, and by itself where the tables need the room.
#pragma once

#include <QToolButton>
#include <QWidget>

#include "app/main_commands.h"
#include "qt/elided_label.h"
#include "qt/kept_splitter.h"
#include "windows/frm_config_console.h"
#include "windows/frm_config_link_panel.h"

namespace zentaq {

class ConfigBottom : public QWidget {
    Q_OBJECT

 public:
    ConfigBottom(Session& session, MainCommands& commands, QWidget* parent);

    LinkPanel& link() { return *fraComm_; }
    void showCommList(bool on) { lstCommInfo_->setVisible(on); }
    /// New lines of the consoles.
    void sync();
    void render(const LinkStatus& status);

    bool folded() const { return content_->isHidden(); }
    void roomShort(bool isShort);
    /// Folds or opens, as the session says.
    void apply();
    /// The height that it has at the least while it is open.
    int openHeight() const { return content_->minimumSizeHint().height(); }

 Q_SIGNALS:
    void foldChanged();

 private:
    KeptSplitter* makeContent();
    QWidget* makeLine();
    void showButton(bool fold);

    Session& session_;
    QToolButton* cmdFold_ = nullptr;
    KeptSplitter* content_ = nullptr;
    ConsoleView* lstLog_ = nullptr;
    ConsoleView* lstCommInfo_ = nullptr;
    LinkPanel* fraComm_ = nullptr;
    QWidget* line_ = nullptr;
    ElidedLabel* lblLastMessage_ = nullptr;
    ElidedLabel* lblLink_ = nullptr;
    QLabel* send_ = nullptr;
    QLabel* receive_ = nullptr;
};

}  // namespace zentaq
