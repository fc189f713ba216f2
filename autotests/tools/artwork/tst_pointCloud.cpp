// SPDX-License-Identifier: GPL-3.0-or-later
#include "tools/artwork/pointCloud.h"

#include <QFile>
#include <QRegularExpression>
#include <QSet>
#include <QTextStream>
#include <QtTest>

#include <algorithm>
#include <cmath>
#include <vector>

namespace
{

struct place {
    double x;
    double y;
    double z;
};

QByteArray embeddedText()
{
    QFile file(QStringLiteral(":/data/wPoints.txt"));
    return file.open(QFile::ReadOnly) ? file.readAll() : QByteArray();
}

std::vector<place> embeddedPlaces()
{
    std::vector<place> places;
    for (const QByteArray &line : embeddedText().trimmed().split('\n')) {
        const QList<QByteArray> fields = line.trimmed().split(' ');
        if (fields.size() == 3)
            places.push_back({fields[0].toDouble(), fields[1].toDouble(), fields[2].toDouble()});
    }
    return places;
}

double distance(const place &a, const place &b)
{
    return std::hypot(a.x - b.x, a.y - b.y, a.z - b.z);
}

const place centre = {0, 0, 150};

} // namespace

class tst_pointCloud : public QObject
{
    Q_OBJECT

private slots:
    void madeAgain();
    void lines();
    void readAsNumbersAndSeparators();
    void radii();
    void standsOnTheGround();
    void pointsAreSpreadEvenly();
    void reliefIsGentle();
};

void tst_pointCloud::madeAgain()
{
    QVERIFY(!embeddedText().isEmpty());
    QVERIFY(embeddedText() == artwork::pointCloudText());
}

void tst_pointCloud::lines()
{
    const QByteArray text = embeddedText();
    QVERIFY(text.endsWith("\r\n"));
    QCOMPARE(text.count('\r'), 10242);
    QCOMPARE(text.count('\n'), 10242);
    const QString number = QStringLiteral("(?!-0\\.0000)-?(0|[1-9][0-9]*)\\.[0-9]{4}");
    const QRegularExpression form(QStringLiteral("^%1 %1 %1\\r$").arg(number));
    const QStringList rows = QString::fromLatin1(text).chopped(1).split(QLatin1Char('\n'));
    QCOMPARE(rows.size(), 10242);
    for (const QString &row : rows)
        QVERIFY2(form.match(row).hasMatch(), qPrintable(row));
    QCOMPARE(QSet<QString>(rows.begin(), rows.end()).size(), 10242);
}

/// Read the simplest way: a number, one character, a number, one character, until the end.
void tst_pointCloud::readAsNumbersAndSeparators()
{
    QFile file(QStringLiteral(":/data/wPoints.txt"));
    QVERIFY(file.open(QFile::ReadOnly | QFile::Text));
    QTextStream stream(&file);
    int count = 0;
    while (!stream.atEnd()) {
        float value = 0;
        QChar separator;
        stream >> value >> separator;
        QCOMPARE(stream.status(), QTextStream::Ok);
        ++count;
    }
    QCOMPARE(count, 3 * 10242);
}

void tst_pointCloud::radii()
{
    double sum = 0;
    double least = 1000;
    double greatest = 0;
    const std::vector<place> places = embeddedPlaces();
    QCOMPARE(places.size(), std::size_t(10242));
    for (const place &p : places) {
        const double radius = distance(p, centre);
        sum += radius / 10242;
        least = std::min(least, radius);
        greatest = std::max(greatest, radius);
    }
    QVERIFY2(std::abs(sum - 150) < 1, qPrintable(QString::number(sum)));
    QVERIFY2(least > 150 * 0.95 && least < 150 * 0.98, qPrintable(QString::number(least)));
    QVERIFY2(greatest > 150 * 1.02 && greatest < 150 * 1.05, qPrintable(QString::number(greatest)));
}

void tst_pointCloud::standsOnTheGround()
{
    const std::vector<place> places = embeddedPlaces();
    const auto lowest = std::min_element(places.begin(), places.end(),
                                         [](const place &a, const place &b) { return a.z < b.z; });
    QVERIFY2(std::abs(lowest->z) < 0.1, qPrintable(QString::number(lowest->z)));
}

/// Every point of a subdivided icosahedron has five or six neighbours at about the same distance.
void tst_pointCloud::pointsAreSpreadEvenly()
{
    const std::vector<place> places = embeddedPlaces();
    for (std::size_t i = 0; i < places.size(); i += 97) {
        std::vector<double> distances;
        distances.reserve(places.size());
        for (const place &p : places)
            distances.push_back(distance(p, places[i]));
        std::partial_sort(distances.begin(), distances.begin() + 6, distances.end());
        QCOMPARE(distances[0], 0.0);
        QVERIFY2(distances[1] > 3.5, qPrintable(QString::number(distances[1])));
        QVERIFY2(distances[5] < 7.5, qPrintable(QString::number(distances[5])));
    }
}

/// Neighbours differ little in radius: no spikes, no steps.
void tst_pointCloud::reliefIsGentle()
{
    const std::vector<place> places = embeddedPlaces();
    for (std::size_t i = 0; i < places.size(); i += 7) {
        for (const place &p : places) {
            const double apart = distance(p, places[i]);
            if (apart < 7.5) {
                const double step = std::abs(distance(p, centre) - distance(places[i], centre));
                QVERIFY2(step <= 0.2 * apart, qPrintable(QString::number(step / apart)));
            }
        }
    }
}

QTEST_APPLESS_MAIN(tst_pointCloud)
#include "tst_pointCloud.moc"
