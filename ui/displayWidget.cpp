// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/displayWidget.h"

#include "engine/machineProbe.h"
#include "engine/testBase.h"

#include <QPainter>

displayWidget::displayWidget(QWidget *parent)
    : QWidget(parent),
      clockSource([] { return machineProbe::instance().getCoreClocks(); })
{
}

void displayWidget::setTest(testBase *newTest)
{
    test = newTest;
    if (test) {
        frame = QImage(reinterpret_cast<uchar *>(test->getBuffer()), test->getWidth(),
                       test->getHeight(), QImage::Format_ARGB32);
    }
}

void displayWidget::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    if (!test) {
        painter.fillRect(0, 0, width(), height(), QBrush(Qt::black, Qt::SolidPattern));
        return;
    }
    painter.drawImage(QRect(0, 0, width(), height()), frame,
                      QRect(0, 0, test->getWidth(), test->getHeight()), Qt::NoFormatConversion);

    painter.setPen(QColor(255, 255, 0, 255));
    painter.setBackgroundMode(Qt::OpaqueMode);
    painter.setBackground(QBrush(Qt::SolidPattern));
    const int lineHeight = painter.fontMetrics().height();
    painter.drawText(QRect(0, 0, width(), lineHeight), 0, statusLine());
    if (showClocks)
        drawClocks(painter, lineHeight);
}

QString displayWidget::statusLine() const
{
    QString progress;
    if (showProgress) {
        progress = QStringLiteral(" (%1 of %2)")
                       .arg(QString::number(index + 1), QString::number(testCount));
    }
    const QString mode = test->isMulticore() ? QString() : QStringLiteral("(singlecore)");
    return QStringLiteral(" Test%1: %2 %3").arg(progress, test->getName(), mode);
}

QString displayWidget::clockLine(int core, float kilohertz)
{
    const QString clock =
        kilohertz == 0.0F
            ? QStringLiteral("suspended")
            : QStringLiteral("Clock %1 MHz").arg(static_cast<double>(kilohertz * 0.001F));
    return QStringLiteral(" CPU %1 %2").arg(QString::number(core), clock);
}

void displayWidget::drawClocks(QPainter &painter, int lineHeight) const
{
    int y = lineHeight + 2;
    int core = 1;
    const QVector<float> clocks = clockSource();
    for (const float kilohertz : clocks) {
        painter.drawText(QRect(0, y, width(), lineHeight), 0, clockLine(core, kilohertz));
        y += lineHeight;
        ++core;
    }
}
