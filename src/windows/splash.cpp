#include "windows/splash.h"

#include <QEventLoop>
#include <QScreen>
#include <QTimer>
#include <QVBoxLayout>

#include "qt/look.h"

namespace zentaq {

FrmSplash::FrmSplash(const QString& version, QWidget* over)
    : QWidget(nullptr, Qt::SplashScreen | Qt::WindowStaysOnTopHint | Qt::FramelessWindowHint), over_(over) {
    setObjectName(QStringLiteral("frmSplash"));
    setAccessibleName(tr("Start of the program"));
    setAttribute(Qt::WA_ShowWithoutActivating);

    auto* name = new QLabel(QStringLiteral("Zentaq4"), this);
    name->setFont(valueFont(2.4));
    auto* maker = new QLabel(tr("Norvalia Zentaq Engine Management System") + "  " + version, this);
    lblOperation_ = new QLabel(this);
    lblOperation_->setObjectName(QStringLiteral("lblOperation"));
    lblOperation_->setAccessibleName(tr("Operation"));

    auto* layout = new QVBoxLayout(this);
    const int gap = fontMetrics().height();
    layout->setContentsMargins(gap * 2, gap, gap * 2, gap);
    layout->setSpacing(gap);
    layout->addWidget(name);
    layout->addWidget(maker);
    layout->addWidget(lblOperation_);
    lblOperation_->setMinimumWidth(fontMetrics().averageCharWidth() * 50);
}

void FrmSplash::status(std::string_view text) {
    lblOperation_->setText(QStringLiteral("    ") +
                           QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size())));
    centre();
    show();
    raise();
    QEventLoop hold;
    QTimer::singleShot(holdMs, &hold, &QEventLoop::quit);
    hold.exec();
}

void FrmSplash::centre() {
    adjustSize();
    const QPoint middle = over_ != nullptr && over_->isVisible() ? over_->frameGeometry().center()
                                                                 : screen()->availableGeometry().center();
    move(middle - rect().center());
}

}  // namespace zentaq
