// SPDX-License-Identifier: GPL-3.0-or-later
#include "server/versions.h"

#include <QDateTime>
#include <QtTest>

Q_DECLARE_METATYPE(qint64)

class tst_versions : public QObject
{
    Q_OBJECT

private slots:
    void next_data();
    void next();
    void afterARestoredBackup();
};

void tst_versions::next_data()
{
    QTest::addColumn<int>("newest");
    QTest::addColumn<int>("above");
    QTest::addColumn<qint64>("now");
    QTest::addColumn<int>("version"); // -1 for none
    const qint64 start = QDateTime({2026, 1, 1}, QTime(0, 0), Qt::UTC).toMSecsSinceEpoch();
    const qint64 hour = 3'600'000;
    QTest::newRow("before all") << 1010 << 0 << qint64(0) << 1011;
    QTest::newRow("a clock before 2026") << 1'500 << 0 << start - hour << 1'501;
    QTest::newRow("the first second") << 1010 << 0 << start << 1011;
    QTest::newRow("by the clock") << 1010 << 0 << start + hour << 3'600;
    QTest::newRow("twice in a second") << 3'600 << 0 << start + hour << 3'601;
    QTest::newRow("ahead of the clock") << 5'000 << 0 << start + hour << 5'001;
    QTest::newRow("above another") << 1010 << 9'000 << start + hour << 9'001;
    QTest::newRow("above a lower one") << 1010 << 8 << start + hour << 3'600;
    QTest::newRow("no list, and none inside") << 0 << 0 << qint64(0) << 1011;
    QTest::newRow("the last one") << 1'999'999'999 << 0 << start << 2'000'000'000;
    QTest::newRow("none left") << 2'000'000'000 << 0 << start << -1;
    QTest::newRow("beyond all") << 2'147'483'647 << 0 << start << -1;
    QTest::newRow("above all") << 1010 << 2'000'000'000 << start << -1;
    QTest::newRow("in 100 years") << 1'900'000'005 << 0 << start + 876'600 * hour << 1'900'000'006;
    QTest::newRow("at the end of time") << 1010 << 0 << std::numeric_limits<qint64>::max() << 1011;
}

void tst_versions::next()
{
    QFETCH(int, newest);
    QFETCH(int, above);
    QFETCH(qint64, now);
    const outcome<int> version = nextVersion(newest, above, now);
    QTEST(version.value_or(-1), "version");
    if (!version)
        QVERIFY(version.error().startsWith(QStringLiteral("there is no version above ")));
}

void tst_versions::afterARestoredBackup()
{
    const qint64 now = QDateTime::currentMSecsSinceEpoch();
    const int backedUp = nextVersion(builtInListVersion, 0, now).value();
    const int lost = nextVersion(backedUp, 0, now + 60'000).value();
    QVERIFY(nextVersion(backedUp, 0, now + 120'000).value() > lost);
}

QTEST_APPLESS_MAIN(tst_versions)
#include "tst_versions.moc"
