// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QImage>
#include <QPaintDevice>
#include <QPaintEngine>
#include <QPainter>
#include <QRectF>
#include <QString>
#include <QVector>

/// A device to render a widget on that draws nothing and writes down what it was asked to draw:
/// which memory an image came from, and which text stands where.
class paintRecord : public QPaintDevice
{
public:
    struct image {
        const uchar *pixels;
        QRectF target;
        QRectF source;
        Qt::ImageConversionFlags flags;
    };
    struct text {
        QString content;
        QPointF baseline; ///< the left end of the line that the letters stand on
        QColor colour;
        Qt::BGMode backgroundMode;
        QColor background;
    };

    explicit paintRecord(const QSize &ownSize) : size(ownSize) {}

    const QVector<image> &images() const { return engine.images; }
    const QVector<text> &texts() const { return engine.texts; }

    QPaintEngine *paintEngine() const override { return &engine; }

protected:
    int metric(PaintDeviceMetric wanted) const override
    {
        switch (wanted) {
        case PdmWidth:
            return size.width();
        case PdmHeight:
            return size.height();
        case PdmDpiX:
        case PdmDpiY:
        case PdmPhysicalDpiX:
        case PdmPhysicalDpiY:
            return 96;
        case PdmDepth:
            return 32;
        default:
            return QPaintDevice::metric(wanted);
        }
    }

private:
    class recorder : public QPaintEngine
    {
    public:
        recorder() : QPaintEngine(AllFeatures) {}
        bool begin(QPaintDevice *) override { return true; }
        bool end() override { return true; }
        void updateState(const QPaintEngineState &) override {}
        void drawPixmap(const QRectF &, const QPixmap &, const QRectF &) override {}
        void drawPath(const QPainterPath &) override {}
        void drawPolygon(const QPointF *, int, PolygonDrawMode) override {}
        void drawImage(const QRectF &target, const QImage &drawn, const QRectF &source,
                       Qt::ImageConversionFlags flags) override
        {
            images.append({drawn.constBits(), target, source, flags});
        }
        void drawTextItem(const QPointF &baseline, const QTextItem &item) override
        {
            texts.append({item.text(), baseline, painter()->pen().color(),
                          painter()->backgroundMode(), painter()->background().color()});
        }
        Type type() const override { return User; }

        QVector<image> images;
        QVector<text> texts;
    };

    QSize size;
    mutable recorder engine;
};
