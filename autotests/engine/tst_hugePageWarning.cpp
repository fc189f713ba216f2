// SPDX-License-Identifier: GPL-3.0-or-later
#include "engine/benchBase.h"
#include "engine/memoryPolicy.h"
#include "support/fakeTest.h"
#include "support/textLog.h"

#include <QtTest>

namespace
{

bool isOrdinary = true;
int applied = 0;

} // namespace

// In place of the real policy, which the linker then leaves out.

void memoryPolicy::apply()
{
    ++applied;
}

bool memoryPolicy::hasOrdinaryPages()
{
    return isOrdinary;
}

class tst_hugePageWarning : public QObject
{
    Q_OBJECT

private slots:
    void eachRunWarns_data();
    void eachRunWarns();
};

void tst_hugePageWarning::eachRunWarns_data()
{
    QTest::addColumn<bool>("ordinary");
    QTest::addColumn<int>("warnings");
    QTest::newRow("ordinary pages") << true << 0;
    QTest::newRow("huge pages") << false << 1;
}

void tst_hugePageWarning::eachRunWarns()
{
    QFETCH(bool, ordinary);
    QFETCH(int, warnings);
    isOrdinary = ordinary;
    applied = 0;
    textLog log;
    suite tests;
    const QString name = QStringLiteral("fake");
    tests.push_back(std::make_unique<fakeTest>(name, nullptr));
    benchBase runner(&log, nullptr, nullptr, std::move(tests));
    QCOMPARE(applied, 1);
    runner.setTestTime(1);
    const QString warning =
        QStringLiteral("):\nWarning: memory comes in huge pages here; results cannot be compared "
                       "with those of other machines\nTest ");
    QVERIFY(!log.text.contains(QStringLiteral("Warning")));
    runner.runBenchmark();
    QCOMPARE(log.text.count(warning), warnings);
    QCOMPARE(log.text.count(QStringLiteral("Warning")), warnings);
    log.text.clear();
    runner.runSingleTest(name, {});
    QCOMPARE(log.text.count(warning), warnings);
}

QTEST_APPLESS_MAIN(tst_hugePageWarning)
#include "tst_hugePageWarning.moc"
