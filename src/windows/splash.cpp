#include "windows/splash.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QEventLoop>
#include <QScreen>
#include <QTimer>
#include <QVBoxLayout>
#include <algorithm>
#include <utility>

#include "app/start_up.h"
#include "qt/look.h"
#include "qt/plain_label.h"
#include "qt/qt_text.h"
#include "windows/window_registry.h"

namespace zentaq {

// Past the window manager: one that is slow to show it misses that it has been hidden again, and leaves a
// black field on the screen.
FrmSplash::FrmSplash(const QString& version, QWidget* over, std::function<bool()> goes)
    : QWidget(nullptr, Qt::SplashScreen | Qt::WindowStaysOnTopHint | Qt::FramelessWindowHint |
                           Qt::BypassWindowManagerHint),
      Form(this),
      over_(over),
      goes_(std::move(goes)) {
    named(this, qString(window::splash), "Start of the program");
    setAttribute(Qt::WA_ShowWithoutActivating);

    auto* name = new QLabel(QStringLiteral("Zentaq4"), this);
    name->setFont(typeFont(Type::Display));
    auto* maker =
        named(new QLabel("Norvalia Zentaq Engine Management System  " + version, this), "lblProduct");
    lblOperation_ = plainLabel("lblOperation", "Operation", this);

    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(margins(fontMetrics(), Space::Section, Space::Wide));
    layout->setSpacing(space(fontMetrics(), Space::Wide));
    layout->addWidget(name);
    layout->addWidget(maker);
    layout->addWidget(lblOperation_);
    lblOperation_->setMinimumWidth(fontMetrics().averageCharWidth() * 50);
}

void FrmSplash::openOn(const std::string& text, const std::string& /*title*/) {
    status(text);
    if (goes_ && goes_()) hide();
}

void FrmSplash::status(std::string_view text) {
    lblOperation_->setText(QStringLiteral("    ") + shownString(text));
    centre();
    show();
    raise();
    hold();
}

// What the user starts meanwhile counts as well: a start that took long already is not held up further.
void FrmSplash::hold() {
    const int wait = std::min(holdMs, budgetMs - spentMs_);
    if (wait <= 0) {
        QCoreApplication::processEvents();
        return;
    }
    QElapsedTimer time;
    time.start();
    QEventLoop events;
    QTimer::singleShot(wait, &events, &QEventLoop::quit);
    events.exec();
    spentMs_ += static_cast<int>(std::min<qint64>(time.elapsed(), budgetMs));
}

void FrmSplash::centre() {
    adjustSize();
    const QPoint middle = over_ != nullptr && over_->isVisible() ? over_->frameGeometry().center()
                                                                 : screen()->availableGeometry().center();
    move(middle - rect().center());
}

template <>
Form* makeForm<FrmSplash>(const FormNeeds& needs) {
    return new FrmSplash(QString::fromStdString(versionText()), needs.parent,
                         [&session = needs.session] { return session.StartingUp == 1; });
}

}  // namespace zentaq
