// SPDX-License-Identifier: GPL-3.0-or-later
#include "cli/verifyCommand.h"

#include "support/fakeTest.h"
#include "support/textLog.h"

#include <QtTest>

namespace
{

class stopAfter : public stopHook
{
public:
    explicit stopAfter(int questions) : left(questions) {}
    bool isStopRequested() override { return left-- <= 0; }

private:
    int left;
};

constexpr int never = 1000;

} // namespace

class tst_verifyCommand : public QObject
{
    Q_OBJECT

private slots:
    void allAreRight();
    void oneIsWrong();
    void stopped();
    void codes_data();
    void codes();
};

void tst_verifyCommand::allAreRight()
{
    textLog log;
    stopAfter stop(never);
    const suite tests = makeSuite(nullptr);
    const auto verdicts = verifyTests(tests, log, stop);
    QCOMPARE(std::size_t(verdicts.size()), tests.size());
    QCOMPARE(verifyCode(verdicts), exitSuccess);
    QCOMPARE(log.text.count(QStringLiteral(" ok\n")), int(tests.size()));
    QVERIFY(log.text.startsWith(QStringLiteral("                 rotozoom 'dithered' ok\n")));
}

/// A fake under the name of a known test draws nothing like it.
void tst_verifyCommand::oneIsWrong()
{
    textLog log;
    stopAfter stop(never);
    suite tests;
    for (const char *name : {"mandel", "unheard of"}) {
        auto fake = std::make_unique<fakeTest>(QLatin1String(name), nullptr);
        fake->onRun = [raw = fake.get()] {
            std::fill_n(raw->getBuffer(), raw->getWidth() * raw->getHeight(), 1U);
        };
        tests.push_back(std::move(fake));
    }
    const auto verdicts = verifyTests(tests, log, stop);
    QCOMPARE(verdicts.value(QStringLiteral("mandel")), digestVerdict::wrong);
    QCOMPARE(verdicts.value(QStringLiteral("unheard of")), digestVerdict::cannotTell);
    QVERIFY(log.text.contains(QStringLiteral(" mandel WRONG\n")));
    QVERIFY(log.text.endsWith(QStringLiteral(" unheard of cannot tell\n")));
}

void tst_verifyCommand::stopped()
{
    textLog log;
    stopAfter stop(2);
    QCOMPARE(verifyTests(makeSuite(nullptr), log, stop).size(), 2);
}

void tst_verifyCommand::codes_data()
{
    QTest::addColumn<QVector<int>>("verdicts");
    QTest::addColumn<int>("code");
    const int right = int(digestVerdict::right);
    const int wrong = int(digestVerdict::wrong);
    const int unknown = int(digestVerdict::cannotTell);
    QTest::newRow("right") << QVector<int>{right, right} << 0;
    QTest::newRow("wrong") << QVector<int>{right, wrong} << 1;
    QTest::newRow("cannot tell") << QVector<int>{unknown, right} << 3;
    QTest::newRow("both") << QVector<int>{unknown, wrong, right} << 1;
}

void tst_verifyCommand::codes()
{
    QFETCH(QVector<int>, verdicts);
    QFETCH(int, code);
    QMap<QString, digestVerdict> map;
    for (const int verdict : verdicts)
        map.insert(QString::number(map.size()), digestVerdict(verdict));
    QCOMPARE(int(verifyCode(map)), code);
}

QTEST_APPLESS_MAIN(tst_verifyCommand)
#include "tst_verifyCommand.moc"
