// SPDX-License-Identifier: GPL-3.0-or-later
#include "tools/reference/referencePlot.h"

#include "tools/reference/referenceModel.h"

#include <QPainter>

#include <algorithm>
#include <iterator>

namespace reference
{

namespace
{

constexpr int pictureWidth = 1500;
constexpr int panelHeight = 640;
constexpr int headHeight = 90;
constexpr int firstYear = 2002;
constexpr int lastYear = 2026;

struct plottedTest {
    const char *name;
    const char *unit;
};

constexpr plottedTest plottedTests[] = {
    {"rotozoom 'linear'", "MPixel"}, {"mandel", "MPixel"}, {"zlib uncompress", "MWords"}};

QVector<QString> names(const char *commaSeparated)
{
    return QString::fromLatin1(commaSeparated).split(QLatin1Char(',')).toVector();
}

QColor colourOf(int family)
{
    static const QRgb colours[] = {0xFF1565C0, 0xFF3F51B5, 0xFF4FA3D1, 0xFFB71C1C, 0xFFE57373,
                                   0xFF8D5524, 0xFFD9730D, 0xFF1B5E20, 0xFF43A047, 0xFF7B1FA2,
                                   0xFF00897B, 0xFF616161, 0xFFAD1457};
    return QColor::fromRgb(colours[static_cast<std::size_t>(family) % std::size(colours)]);
}

/// Throughput of one core at 1 GHz, memory left aside.
double perGigahertz(const modelledTest &test, const core &on, double factor)
{
    return factor * 1e9 / (cyclesPerUnit(test.work->demand, on) * unitsPerResult(*test.work));
}

/// Where a value and a year stand in one panel.
struct axes {
    QRectF area;
    double highest = 0;

    QPointF at(double year, double value) const
    {
        const double across = (year - firstYear) / (lastYear - firstYear);
        return {area.left() + across * area.width(),
                area.bottom() - value / highest * area.height()};
    }
};

/// A step between grid lines that gives some five of them.
double gridStep(double highest)
{
    double step = 0.01;
    const double factors[] = {2.0, 2.5, 2.0};
    for (int i = 0; highest / step > 7.0; ++i)
        step *= factors[i % 3];
    return step;
}

void paintGrid(QPainter &painter, const axes &in)
{
    painter.setPen(QColor(0xDD, 0xDD, 0xDD));
    for (int year = firstYear; year <= lastYear; year += 2)
        painter.drawLine(in.at(year, 0), in.at(year, in.highest));
    const double step = gridStep(in.highest);
    for (int i = 0; i * step <= in.highest; ++i)
        painter.drawLine(in.at(firstYear, i * step), in.at(lastYear, i * step));
    painter.setPen(Qt::black);
    for (int year = firstYear; year <= lastYear; year += 2) {
        const QPointF foot = in.at(year, 0);
        painter.drawText(QRectF(foot.x() - 30, foot.y() + 4, 60, 20), Qt::AlignHCenter,
                         QString::number(year));
    }
    for (int i = 0; i * step <= in.highest; ++i) {
        const QPointF foot = in.at(firstYear, i * step);
        painter.drawText(QRectF(foot.x() - 68, foot.y() - 10, 60, 20),
                         Qt::AlignRight | Qt::AlignVCenter, QString::number(i * step));
    }
}

/// Writes a core's name near its point, where no other name stands yet.
void paintName(QPainter &painter, const QPointF &point, const QString &name, QVector<QRectF> &taken)
{
    const QSizeF size = painter.fontMetrics().boundingRect(name).size() + QSize(6, 0);
    const double side = size.width() / 2 + 8;
    for (int distance = 0; distance < 8; ++distance) {
        const double up = 6.0 + distance * 13.0 + size.height() / 2;
        const QPointF offsets[] = {{0, -up},         {0, up},        {side, -up + 8},
                                   {-side, -up + 8}, {side, up - 8}, {-side, up - 8}};
        for (const QPointF &offset : offsets) {
            const QPointF centre = point + offset;
            const QRectF place(centre.x() - size.width() / 2, centre.y() - size.height() / 2,
                               size.width(), size.height());
            const bool isFree = std::none_of(taken.begin(), taken.end(), [&place](const QRectF &r) {
                return r.intersects(place);
            });
            if (!isFree)
                continue;
            taken.append(place);
            if (distance > 0)
                painter.drawLine(point, centre);
            painter.fillRect(place, QColor(255, 255, 255, 200));
            painter.drawText(place, Qt::AlignCenter, name);
            return;
        }
    }
}

/// Draws the lines of the families and their points, and returns the points.
QVector<QVector<QPointF>> paintFamilies(QPainter &painter, const axes &in, const modelledTest &test,
                                        double factor, const tables &facts)
{
    QVector<QVector<QPointF>> points;
    for (int family = 0; family < coreFamilies().size(); ++family) {
        points.append(QVector<QPointF>());
        for (const QString &name : coreFamilies().at(family).cores) {
            const core c = facts.cores.value(name);
            points.last().append(in.at(c.year, perGigahertz(test, c, factor)));
        }
        painter.setPen(QPen(colourOf(family), 2));
        painter.setBrush(colourOf(family));
        painter.drawPolyline(points.last().constData(), points.last().size());
        for (const QPointF &point : points.last())
            painter.drawEllipse(point, 3.5, 3.5);
    }
    return points;
}

void paintPanel(QPainter &painter, const QRectF &panel, const modelledTest &test, const char *unit,
                double factor, const tables &facts)
{
    axes in = {panel.adjusted(80, 40, -30, -40), 0};
    for (const core &c : facts.cores)
        in.highest = std::max(in.highest, perGigahertz(test, c, factor) * 1.18);
    paintGrid(painter, in);
    painter.drawText(
        QRectF(panel.left() + 80, panel.top() + 8, panel.width(), 24), Qt::AlignLeft,
        QStringLiteral("%1: %2/s of one core at 1 GHz").arg(test.name, QString::fromLatin1(unit)));
    const QVector<QVector<QPointF>> points = paintFamilies(painter, in, test, factor, facts);
    QVector<QRectF> taken;
    for (const QVector<QPointF> &family : points) {
        for (const QPointF &point : family)
            taken.append(QRectF(point.x() - 4, point.y() - 4, 8, 8));
    }
    for (int family = 0; family < points.size(); ++family) {
        const QVector<QString> &cores = coreFamilies().at(family).cores;
        painter.setPen(colourOf(family));
        for (int i = 0; i < cores.size(); ++i)
            paintName(painter, points.at(family).at(i), cores.at(i), taken);
    }
}

void paintHead(QPainter &painter)
{
    painter.setPen(Qt::black);
    painter.drawText(QRectF(80, 8, pictureWidth, 24), Qt::AlignLeft,
                     QStringLiteral("Modelled, not measured: throughput per clock by the year of "
                                    "the core (see docs/reference-model.md)"));
    double x = 80;
    double y = 34;
    for (int family = 0; family < coreFamilies().size(); ++family) {
        const QString name = QString::fromLatin1(coreFamilies().at(family).name);
        const double width = 34 + painter.fontMetrics().horizontalAdvance(name);
        if (x + width > pictureWidth - 30) {
            x = 80;
            y += 22;
        }
        painter.fillRect(QRectF(x, y + 4, 12, 12), colourOf(family));
        painter.drawText(QPointF(x + 17, y + 15), name);
        x += width;
    }
}

} // namespace

const QVector<coreFamily> &coreFamilies()
{
    static const QVector<coreFamily> families = {
        {"Intel Core", names("Merom,Penryn,Nehalem,Westmere,Sandy Bridge,Ivy Bridge,Haswell,"
                             "Broadwell,Skylake,Kaby Lake,Coffee Lake,Comet Lake,Ice Lake,"
                             "Tiger Lake,Golden Cove,Raptor Cove,Redwood Cove")},
        {"Intel Rocket Lake", names("Ice Lake,Rocket Lake")},
        {"Intel Atom", names("Bonnell,Silvermont,Airmont,Goldmont,Goldmont Plus,Tremont,"
                             "Gracemont")},
        {"AMD Zen", names("Zen,Zen+,Zen 2,Zen 3,Zen 3+,Zen 4,Zen 5")},
        {"AMD K8, K10", names("K8,K10")},
        {"AMD Bulldozer line", names("Bulldozer,Piledriver,Steamroller,Excavator")},
        {"AMD Bobcat line", names("Bobcat,Jaguar")},
        {"ARM Cortex-A, big", names("Cortex-A9,Cortex-A15,Cortex-A57,Cortex-A72,Cortex-A73,"
                                    "Cortex-A75,Cortex-A76,Cortex-A77,Cortex-A78,Cortex-A710")},
        {"ARM Cortex-A, small", names("Cortex-A7,Cortex-A53,Cortex-A55")},
        {"ARM Cortex-X", names("Cortex-X1,Cortex-X2,Cortex-X3,Cortex-X4")},
        {"ARM Neoverse", names("Neoverse N1,Neoverse V1")},
        {"Qualcomm Krait, Kryo", names("Krait,Kryo")},
        {"Samsung Exynos M", names("Exynos M1,Exynos M3")},
    };
    return families;
}

QImage generationPlot(const tables &facts, const QVector<double> &factors)
{
    QImage picture(pictureWidth,
                   headHeight + static_cast<int>(std::size(plottedTests)) * panelHeight,
                   QImage::Format_RGB32);
    picture.fill(Qt::white);
    QPainter painter(&picture);
    painter.setRenderHint(QPainter::Antialiasing);
    QFont font = painter.font();
    font.setPixelSize(14);
    painter.setFont(font);
    paintHead(painter);
    font.setPixelSize(12);
    painter.setFont(font);
    double top = headHeight;
    for (const plottedTest &plotted : plottedTests) {
        for (int i = 0; i < modelledTests().size(); ++i) {
            const modelledTest &test = modelledTests().at(i);
            if (test.name != QLatin1String(plotted.name))
                continue;
            paintPanel(painter, QRectF(0, top, pictureWidth, panelHeight), test, plotted.unit,
                       factors.at(i), facts);
        }
        top += panelHeight;
    }
    return picture;
}

} // namespace reference
