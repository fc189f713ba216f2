// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/waitSplash.h"

#include <QApplication>
#include <QFontMetrics>
#include <QIcon>
#include <QPainter>
#include <QSplashScreen>

namespace
{

constexpr int margin = 16;
constexpr int iconSide = 48;

/// The program's picture on the windows' grey, with room for a line of text below.
QPixmap background()
{
    const QFontMetrics metrics(QApplication::font());
    const QSize size(45 * metrics.averageCharWidth() + 2 * margin,
                     iconSide + 2 * metrics.height() + 3 * margin);
    QPixmap picture(size * qApp->devicePixelRatio());
    picture.setDevicePixelRatio(qApp->devicePixelRatio());
    picture.fill(QColor(Qt::lightGray));
    QPainter painter(&picture);
    QIcon(QStringLiteral(":/icons/fennick.png"))
        .paint(&painter, margin, margin, iconSide, iconSide);
    painter.setPen(Qt::black);
    painter.drawText(QRect(2 * margin + iconSide, margin, size.width(), iconSide), Qt::AlignVCenter,
                     QStringLiteral("Fennick"));
    return picture;
}

} // namespace

waitSplash::waitSplash()
{
    constexpr int unnoticed = 400; // milliseconds
    patience.setSingleShot(true);
    patience.setInterval(unnoticed);
    connect(&patience, &QTimer::timeout, this, &waitSplash::show);
}

waitSplash::~waitSplash() = default;

void waitSplash::start(const QString &text)
{
    waitedFor = text;
    if (splash)
        show();
    else
        patience.start();
}

void waitSplash::end()
{
    patience.stop();
    splash.reset();
}

void waitSplash::show()
{
    if (!splash) {
        splash = std::make_unique<QSplashScreen>(background());
        splash->setWindowTitle(QStringLiteral("Fennick"));
        // Its end is not the end of the program.
        splash->setAttribute(Qt::WA_QuitOnClose, false);
        splash->show();
    }
    splash->setAccessibleName(waitedFor);
    splash->showMessage(waitedFor, Qt::AlignHCenter | Qt::AlignBottom, Qt::black);
}
