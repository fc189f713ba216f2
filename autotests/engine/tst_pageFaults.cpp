// SPDX-License-Identifier: GPL-3.0-or-later
#include "engine/benchBase.h"
#include "support/textLog.h"

#include <QProcess>
#include <QtTest>

#include <cstdio>

#ifdef Q_OS_LINUX
#include <sys/resource.h>
#endif

// The first touch of each page is part of the timed run of rle and zlib, so it must cost the same
// whatever the process has done before. Each case is counted in a process of its own: this program,
// called with the name of the case and of the test.

namespace
{

#ifdef Q_OS_LINUX
long faultsSoFar()
{
    rusage usage{};
    getrusage(RUSAGE_SELF, &usage);
    return usage.ru_minflt;
}
#else
long faultsSoFar()
{
    return 0;
}
#endif

/// The page faults inside the timed run of each round.
QVector<long> faultsOf(testBase &test, int rounds)
{
    QVector<long> faults;
    for (int i = 0; i < rounds; ++i) {
        test.preRun();
        const long before = faultsSoFar();
        test.run();
        faults.append(faultsSoFar() - before);
        test.postRun();
    }
    return faults;
}

/// Runs what the case wants before, then three rounds of the test, and prints their faults.
int count(const QString &situation, const QString &testName)
{
    textLog log;
    benchBase runner(&log, nullptr, nullptr);
    runner.setTestTime(1);
    testBase *wanted = nullptr;
    for (testBase *test : runner.getTests()) {
        if (test->getName() == testName) {
            wanted = test;
            break;
        }
        if (situation == QLatin1String("in the suite"))
            runner.runSingleTest(test->getName(), {});
    }
    if (situation == QLatin1String("the second time"))
        runner.runSingleTest(testName, {});
    if (!wanted || !wanted->setup(3820, 2160))
        return 1;
    for (const long faults : faultsOf(*wanted, 3))
        std::printf("%ld ", faults);
    return 0;
}

} // namespace

class tst_pageFaults : public QObject
{
    Q_OBJECT

private slots:
    void areTheSame_data();
    void areTheSame();
};

void tst_pageFaults::areTheSame_data()
{
    QTest::addColumn<QString>("test");
    QTest::addColumn<long>("bytesPerRound");
    // rle writes the picture once, after its packed form has been filled; zlib copies its input of
    // half the picture, unpacks the picture and copies it.
    QTest::newRow("rle") << "rle compress/uncompress" << 4L * 3072 * 3072;
    QTest::newRow("zlib") << "zlib uncompress" << 4L * 2048 * 2048 / 2 * 5;
}

void tst_pageFaults::areTheSame()
{
#if defined(Q_OS_LINUX) && !defined(FENNICK_TEST_SANITIZED)
    QFETCH(QString, test);
    QFETCH(long, bytesPerRound);
    const double expected = double(bytesPerRound) / 4096;
    for (const char *tunables : {"", "glibc.malloc.hugetlb=1"}) {
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        environment.insert(QStringLiteral("GLIBC_TUNABLES"), QLatin1String(tunables));
        for (const char *situation : {"alone", "the second time", "in the suite"}) {
            QProcess process;
            process.setProcessEnvironment(environment);
            process.start(QCoreApplication::applicationFilePath(),
                          {QStringLiteral("--count"), QLatin1String(situation), test});
            QVERIFY(process.waitForFinished(120'000));
            QCOMPARE(process.exitCode(), 0);
            const QString out = QString::fromLatin1(process.readAllStandardOutput()).trimmed();
            const QStringList rounds = out.split(QLatin1Char(' '));
            QCOMPARE(rounds.size(), 3);
            qInfo("%s %s: %s", situation, tunables, qPrintable(out));
            for (const QString &faults : rounds)
                QVERIFY2(qAbs(faults.toDouble() / expected - 1) < 0.01, qPrintable(out));
        }
    }
#else
    QSKIP("counts what only Linux has, without a sanitizer's own memory");
#endif
}

int main(int argc, char *argv[])
{
    QCoreApplication application(argc, argv);
    const QStringList arguments = QCoreApplication::arguments();
    if (arguments.size() == 4 && arguments[1] == QLatin1String("--count"))
        return count(arguments[2], arguments[3]);
    tst_pageFaults test;
    return QTest::qExec(&test, argc, argv);
}

#include "tst_pageFaults.moc"
