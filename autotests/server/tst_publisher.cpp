// SPDX-License-Identifier: GPL-3.0-or-later
#include "server/publisher.h"

#include "data/benchXml.h"

#include "support/uploads.h"

#include <QtTest>

#include <algorithm>

namespace
{

const QString cpu = QStringLiteral("Some CPU");
const QString mandel = QStringLiteral("mandel");

QByteArray xmlOf(const publisher &lists, bool isBeta)
{
    return qUncompress(lists.list(isBeta));
}

QVector<benchResults> machinesOf(const publisher &lists, bool isBeta)
{
    return readMachines(xmlOf(lists, isBeta));
}

QString namesOf(const publisher &lists, bool isBeta)
{
    QStringList names;
    for (const benchResults &machine : machinesOf(lists, isBeta))
        names.append(machine.getName());
    return names.join(QLatin1Char('|'));
}

publisher withUploads(const QVector<storedUpload> &uploads,
                      const QVector<benchResults> &builtIn = {})
{
    publisher lists(builtIn);
    for (const storedUpload &upload : uploads)
        lists.add(upload);
    return lists;
}

/// @p count uploads of one machine with the results 1, 2, ...
QVector<storedUpload> several(int count, const QString &processor = cpu)
{
    QVector<storedUpload> uploads;
    for (int i = 1; i <= count; ++i) {
        uploads.append(stored(
            machineWith(QStringLiteral("private %1").arg(i), processor, static_cast<float>(i))));
    }
    return uploads;
}

} // namespace

class tst_publisher : public QObject
{
    Q_OBJECT

private slots:
    void numberOfUploads();
    void medians();
    void zerosAreNotMeasured();
    void groups();
    void computerNamesAreDropped();
    void withdrawnAndEmptyAndUnknown();
    void estimatesGiveWay();
    void orderDoesNotMatter();
};

void tst_publisher::numberOfUploads()
{
    QCOMPARE(namesOf(withUploads({}), true), QString());
    QCOMPARE(namesOf(withUploads(several(1)), true), cpu);
    QCOMPARE(namesOf(withUploads(several(2)), false), QString());
    QCOMPARE(namesOf(withUploads(several(3)), false), cpu);
}

void tst_publisher::medians()
{
    const auto median = [](const QVector<float> &values) {
        QVector<storedUpload> uploads;
        for (const float value : values)
            uploads.append(stored(machineWith(QString(), cpu, value)));
        return machinesOf(withUploads(uploads), true).first().getTests().value(mandel).value;
    };
    QCOMPARE(median({5}), 5.0F);
    QCOMPARE(median({5, 1}), 3.0F);
    QCOMPARE(median({100, 1, 3}), 3.0F);
    QCOMPARE(median({4, 1, 100, 3}), 3.5F);
    benchResults fast(QString(), QStringLiteral("linux"), cpu, 4e9F, 4);
    fast.setTest(mandel, benchResults::test(1));
    const publisher lists = withUploads(several(2) + QVector<storedUpload>{stored(fast)});
    QCOMPARE(machinesOf(lists, true).first().getFrequency(), 2e9F);
}

void tst_publisher::zerosAreNotMeasured()
{
    QVector<storedUpload> uploads;
    for (const float lines : {0.0F, 8.0F}) {
        benchResults machine = machineWith(QString(), cpu, lines + 1);
        machine.setTest(QStringLiteral("lines"), benchResults::test(lines));
        machine.setTest(QStringLiteral("vertex"), benchResults::test(0));
        uploads.append(stored(machine));
    }
    const benchResults machine = machinesOf(withUploads(uploads), true).first();
    QCOMPARE(machine.getTests().keys(), QStringList({QStringLiteral("lines"), mandel}));
    QCOMPARE(machine.getTests().value(QStringLiteral("lines")).value, 8.0F);
    QCOMPARE(machine.getTests().value(mandel).value, 5.0F);
}

void tst_publisher::groups()
{
    const QString windows = QStringLiteral("windows");
    const publisher lists = withUploads({
        stored(machineWith(QString(), QStringLiteral("B"), 1)),
        stored(machineWith(QString(), QStringLiteral(" B  "), 3)), // blanks do not count
        stored(machineWith(QString(), QStringLiteral("B"), 7, windows)),
        stored(machineWith(QString(), QStringLiteral("B"), 9, windows, 16)),
        stored(machineWith(QString(), QStringLiteral("A"), 5)),
    });
    QStringList found;
    for (const benchResults &machine : machinesOf(lists, true)) {
        found.append(
            QStringLiteral("%1 %2 %3 %4 %5")
                .arg(machine.getName(), machine.getCpu(), machine.getOs(),
                     QString::number(machine.getThreads()),
                     QString::number(static_cast<double>(machine.getTests().value(mandel).value))));
    }
    QCOMPARE(found.join(QLatin1Char('|')),
             QStringLiteral("A A linux 4 5|B B linux 4 2|B B windows 4 7|B B windows 16 9"));
}

void tst_publisher::computerNamesAreDropped()
{
    const publisher lists = withUploads(several(3));
    for (const bool isBeta : {false, true})
        QVERIFY(!xmlOf(lists, isBeta).contains("private"));
}

void tst_publisher::withdrawnAndEmptyAndUnknown()
{
    QVector<storedUpload> uploads = several(3);
    uploads[1].state = QStringLiteral("withdrawn");
    uploads.append(stored(machineWith(QString(), QStringLiteral("Zero"), 0)));
    uploads.append(stored(machineWith(QString(), QStringLiteral("unknown"), 1)));
    uploads.append(stored(machineWith(QString(), QStringLiteral("A (est.)"), 1)));
    const publisher lists = withUploads(uploads);
    QCOMPARE(namesOf(lists, false), QString());
    QCOMPARE(namesOf(lists, true), cpu);
    QCOMPARE(machinesOf(lists, true).first().getTests().value(mandel).value, 2.0F);
}

void tst_publisher::estimatesGiveWay()
{
    const QVector<benchResults> builtIn = {
        machineWith(QStringLiteral("Model 1 (est.)"), cpu, 1),
        machineWith(QStringLiteral("Model 2 (est.)"), QStringLiteral("Other CPU"), 1),
        machineWith(QStringLiteral("Measured"), cpu, 1),
        machineWith(QStringLiteral("Model 3 (est.)"), QStringLiteral("Some  CPU "), 1,
                    QStringLiteral("windows"), 99),
    };
    const publisher two = withUploads(several(2), builtIn);
    QCOMPARE(namesOf(two, false),
             QStringLiteral("Model 1 (est.)|Model 2 (est.)|Measured|Model 3 (est.)"));
    QCOMPARE(namesOf(two, true), QStringLiteral("Model 2 (est.)|Measured|Some CPU"));
    const publisher three = withUploads(several(3), builtIn);
    QCOMPARE(namesOf(three, false), QStringLiteral("Model 2 (est.)|Measured|Some CPU"));
}

void tst_publisher::orderDoesNotMatter()
{
    QVector<storedUpload> uploads = several(4) + several(3, QStringLiteral("Another CPU"));
    const publisher first = withUploads(uploads);
    std::reverse(uploads.begin(), uploads.end());
    std::swap(uploads[1], uploads[5]);
    const publisher second = withUploads(uploads);
    for (const bool isBeta : {false, true}) {
        QVERIFY(!first.list(isBeta).isEmpty());
        QCOMPARE(second.list(isBeta), first.list(isBeta));
    }
}

QTEST_APPLESS_MAIN(tst_publisher)
#include "tst_publisher.moc"
