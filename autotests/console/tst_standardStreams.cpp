// SPDX-License-Identifier: GPL-3.0-or-later
#include "console/standardStreams.h"

#include <QtTest>

#include <cstdio>
#include <functional>

#ifdef Q_OS_UNIX
#include <fcntl.h>
#include <sys/wait.h>
#include <unistd.h>
#endif

/// Each step happens in a process of its own, whose handles can be closed.
class tst_standardStreams : public QObject
{
    Q_OBJECT

private slots:
    void occupied_data();
    void occupied();
    void openHandlesStay();
    void exitCodes_data();
    void exitCodes();
};

namespace
{

#ifdef Q_OS_UNIX
/// The exit code of a child that does @p work, or -1.
int inChild(const std::function<int()> &work)
{
    std::fflush(stdout);
    const pid_t child = ::fork();
    if (child == 0)
        ::_exit(work());
    int status = 0;
    if (child < 0 || ::waitpid(child, &status, 0) != child || !WIFEXITED(status))
        return -1;
    return WEXITSTATUS(status);
}
#endif

} // namespace

void tst_standardStreams::occupied_data()
{
    QTest::addColumn<QVector<int>>("closed");
    QTest::newRow("none") << QVector<int>();
    QTest::newRow("input") << QVector<int>{0};
    QTest::newRow("output") << QVector<int>{1};
    QTest::newRow("errors") << QVector<int>{2};
    QTest::newRow("output and errors") << QVector<int>{1, 2};
    QTest::newRow("all") << QVector<int>{0, 1, 2};
}

void tst_standardStreams::occupied()
{
#ifdef Q_OS_UNIX
    QFETCH(QVector<int>, closed);
    QCOMPARE(inChild([&closed] {
                 for (const int handle : qAsConst(closed))
                     ::close(handle);
                 occupyStandardHandles();
                 const int file = ::open("/dev/null", O_RDWR);
                 if (file <= 2)
                     return 1;
                 char byte = 0;
                 for (const int handle : qAsConst(closed)) {
                     const bool isDone = handle == 0 ? ::read(handle, &byte, 1) >= 0
                                                     : ::write(handle, &byte, 1) >= 0;
                     if (isDone)
                         return 2 + handle;
                 }
                 return 0;
             }),
             0);
#else
    QSKIP("needs the handles of a system like Unix");
#endif
}

void tst_standardStreams::openHandlesStay()
{
#ifdef Q_OS_UNIX
    QCOMPARE(inChild([] {
                 int ends[2] = {-1, -1};
                 if (::pipe(ends) != 0 || ::dup2(ends[1], 1) != 1)
                     return 1;
                 ::close(2);
                 occupyStandardHandles();
                 char byte = 'x';
                 if (::write(1, &byte, 1) != 1 || ::read(ends[0], &byte, 1) != 1)
                     return 2;
                 return 0;
             }),
             0);
#else
    QSKIP("needs the handles of a system like Unix");
#endif
}

void tst_standardStreams::exitCodes_data()
{
    QTest::addColumn<QByteArray>("file");
    QTest::addColumn<bool>("isFlushed");
    QTest::addColumn<int>("code");
    QTest::addColumn<int>("expected");
    for (const bool isFlushed : {false, true}) {
        const char *when = isFlushed ? "flushed" : "buffered";
        QTest::addRow("success, %s", when) << QByteArray("/dev/null") << isFlushed << 0 << 0;
        QTest::addRow("failure, %s", when) << QByteArray("/dev/null") << isFlushed << 2 << 2;
        QTest::addRow("full, %s", when) << QByteArray("/dev/full") << isFlushed << 0 << 1;
        QTest::addRow("full and interrupted, %s", when)
            << QByteArray("/dev/full") << isFlushed << int(exitInterrupted) << int(exitInterrupted);
        QTest::addRow("closed, %s", when) << QByteArray() << isFlushed << 0 << 1;
    }
}

void tst_standardStreams::exitCodes()
{
#ifdef Q_OS_LINUX
    QFETCH(QByteArray, file);
    QFETCH(bool, isFlushed);
    QFETCH(int, code);
    QFETCH(int, expected);
    int errors[2] = {-1, -1};
    QCOMPARE(::pipe(errors), 0);
    QCOMPARE(inChild([&] {
                 ::dup2(errors[1], 2);
                 ::close(1);
                 if (file.isEmpty())
                     occupyStandardHandles();
                 else if (::open(file.constData(), O_WRONLY) != 1)
                     return 99;
                 std::fputs("a line\n", stdout);
                 if (isFlushed) {
                     std::fflush(stdout);
                     // What was lost stays lost when there is room again.
                     ::dup2(::open("/dev/null", O_WRONLY), 1);
                     std::fputs("another one\n", stdout);
                 }
                 return int(exitCodeAfterOutput(exitCode(code), QStringLiteral("program")));
             }),
             expected);
    ::close(errors[1]);
    QFile said;
    QVERIFY(said.open(errors[0], QIODevice::ReadOnly, QFileDevice::AutoCloseHandle));
    const QByteArray sentence =
        "program: the output is not complete: standard output cannot be written\n";
    QCOMPARE(said.readAll(), file == "/dev/null" ? QByteArray() : sentence);
#else
    QSKIP("needs a file that is always full");
#endif
}

QTEST_APPLESS_MAIN(tst_standardStreams)
#include "tst_standardStreams.moc"
