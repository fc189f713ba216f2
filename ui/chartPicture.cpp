// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/chartPicture.h"

#include "ui/chartFonts.h"
#include "ui/chartMaker.h"

#include <QBuffer>
#include <QChartView>
#include <QCoreApplication>
#include <QFontMetricsF>
#include <QGraphicsLayout>
#include <QLegend>
#include <QPainter>
#include <QSvgGenerator>

#include <algorithm>
#include <cmath>

namespace
{

constexpr int margin = 8;
/// Beyond it, programs refuse pictures; the legend of a longer list is cut.
constexpr int highest = 16'000;

/// A chart that nobody sees, and the remarks below it.
class sheet
{
public:
    sheet(const chartContent &content, const QSize &smallest, int fontSize)
        // A chart that is set later leaves the one before to whoever sets it.
        : view(chartMaker::chartOf(content, fontSize).release()),
          font(chartFonts::legend(fontSize)),
          remarks(content.remarks())
    {
        view.setFrameShape(QFrame::NoFrame);
        view.setRenderHint(QPainter::Antialiasing);
        view.resize(smallest);
        settle();
        view.resize(smallest.width(), std::clamp(heightOfLegend(), smallest.height(), highest));
        settle();
        const QRectF room(0, 0, view.width() - 2 * margin, highest);
        remarksHeight = static_cast<int>(
            std::ceil(QFontMetricsF(font).boundingRect(room, Qt::TextWordWrap, remarks).height()));
    }

    QSize size() const
    {
        return {view.width(), view.height() + (remarks.isEmpty() ? 0 : remarksHeight + 2 * margin)};
    }
    void paint(QPainter &painter) const
    {
        painter.fillRect(QRect(QPoint(), size()), Qt::white);
        painter.setRenderHint(QPainter::Antialiasing);
        const QRectF chartArea(QPointF(), QSizeF(view.size()));
        view.scene()->render(&painter, chartArea, chartArea);
        painter.setFont(font);
        painter.setPen(Qt::black);
        painter.drawText(QRectF(margin, view.height() + margin, view.width() - 2 * margin,
                                remarksHeight + margin),
                         Qt::TextWordWrap, remarks);
    }

private:
    /// Lays it out, and again: the labels of the axis get another font by then.
    void settle()
    {
        for (int i = 0; i < 2; ++i) {
            view.grab();
            QCoreApplication::sendPostedEvents(view.chart(), QEvent::LayoutRequest);
            view.chart()->layout()->invalidate();
            view.chart()->layout()->activate();
        }
    }

    /// The height of a view that has room for all of the legend.
    int heightOfLegend() const
    {
        QRectF names;
        for (const QRectF &name : chartMaker::legendNames(*view.chart()))
            names |= name;
        const qreal above = view.chart()->legend()->sceneBoundingRect().top();
        return static_cast<int>(std::ceil(above + names.height() + 4.0 * margin));
    }

    QtCharts::QChartView view;
    QFont font;
    QString remarks;
    int remarksHeight = 0;
};

} // namespace

chartPicture::chartPicture(chartContent content, const QSize &smallest, int fontSize)
    : shown(std::move(content)),
      smallestSize(smallest),
      points(fontSize)
{
}

QImage chartPicture::image(qreal scale) const
{
    const sheet page(shown, smallestSize, points);
    QImage image((QSizeF(page.size()) * scale).toSize(), QImage::Format_RGB32);
    if (image.isNull())
        return image;
    image.setDevicePixelRatio(scale);
    QPainter painter(&image);
    page.paint(painter);
    return image;
}

QByteArray chartPicture::png(qreal scale) const
{
    QByteArray bytes;
    QBuffer buffer(&bytes);
    if (!buffer.open(QIODevice::WriteOnly) || !image(scale).save(&buffer, "PNG"))
        return {};
    return bytes;
}

QByteArray chartPicture::svg() const
{
    const sheet page(shown, smallestSize, points);
    QByteArray bytes;
    QBuffer buffer(&bytes);
    QSvgGenerator generator;
    generator.setOutputDevice(&buffer);
    generator.setSize(page.size());
    generator.setViewBox(QRect(QPoint(), page.size()));
    generator.setTitle(shown.title);
    generator.setDescription(shown.remarks());
    QPainter painter(&generator);
    page.paint(painter);
    painter.end();
    return bytes;
}
