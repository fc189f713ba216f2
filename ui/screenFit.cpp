// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/screenFit.h"

#include <QCoreApplication>
#include <QEvent>
#include <QLayout>
#include <QMainWindow>
#include <QScreen>
#include <QStyle>

#include <algorithm>

namespace
{

const QString narrowMargins = QStringLiteral("QPushButton { padding: 3px; }"
                                             "QComboBox { padding: 2px; }"
                                             "QTabBar::tab { padding: 6px; }");

/// What is left of @p area inside a window manager's frame. Its size is not known before the window
/// is shown; that of the toolkit's own frames is a good guess.
QSize roomIn(const QRect &area, const QWidget &window)
{
    constexpr int border = 4;
    const int title = std::max(window.style()->pixelMetric(QStyle::PM_TitleBarHeight), 24) + border;
    return area.size() - QSize(2 * border, title + border);
}

bool isInside(const QSize &size, const QSize &room)
{
    return size.width() <= room.width() && size.height() <= room.height();
}

} // namespace

void screenFit::fit(QMainWindow &window, const QRect &area)
{
    const QSize room = roomIn(area, window);
    window.ensurePolished();
    if (isInside(window.size(), room))
        return;
    QWidget *content = window.centralWidget();
    if (content && !isInside(window.minimumSizeHint(), room)) {
        content->setStyleSheet(content->styleSheet() + narrowMargins);
        // Otherwise the layouts remember how much they needed before.
        QCoreApplication::sendPostedEvents(nullptr, QEvent::LayoutRequest);
        window.layout()->activate();
    }
    window.resize(window.size().boundedTo(room));
    window.move(area.topLeft());
}

void screenFit::fit(QMainWindow &window)
{
    fit(window, window.screen()->availableGeometry());
}
