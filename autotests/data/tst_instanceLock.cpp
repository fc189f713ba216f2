// SPDX-License-Identifier: GPL-3.0-or-later
#include "data/instanceLock.h"
#include "support/dataDirectory.h"

#include <QtTest>

#include <csignal>
#include <sys/wait.h>
#include <unistd.h>

namespace
{

/// A process of its own that holds the lock in a directory until it is killed.
class otherInstance
{
public:
    explicit otherInstance(const QString &directory)
    {
        int ends[2] = {};
        if (::pipe(ends) != 0)
            return;
        process = ::fork();
        if (process == 0) {
            instanceLock lock(directory);
            const char answer = lock.hold() ? 'y' : 'n';
            if (::write(ends[1], &answer, 1) == 1)
                ::pause();
            ::_exit(0);
        }
        char answer = 'n';
        holds = ::read(ends[0], &answer, 1) == 1 && answer == 'y';
        ::close(ends[0]);
        ::close(ends[1]);
    }
    otherInstance(const otherInstance &) = delete;
    otherInstance &operator=(const otherInstance &) = delete;
    ~otherInstance() { kill(); }

    bool isHolding() const { return holds; }
    /// Without a chance to release anything.
    void kill()
    {
        if (process <= 0)
            return;
        ::kill(process, SIGKILL);
        ::waitpid(process, nullptr, 0);
        process = -1;
    }

private:
    pid_t process = -1;
    bool holds = false;
};

QStringList filesIn(const QString &directory)
{
    return QDir(directory).entryList(QDir::Files | QDir::Hidden);
}

} // namespace

class tst_instanceLock : public QObject
{
    Q_OBJECT

private slots:
    void alone();
    void another();
    void deadOnesDoNotCount();
    void odd_data();
    void odd();
    void noDirectory();
    void deadOneInAReadOnlyHome();
    void usersDirectory();
};

void tst_instanceLock::alone()
{
    const QTemporaryDir home;
    {
        instanceLock lock(home.path());
        QVERIFY(!lock.isOtherRunning());
        QCOMPARE(filesIn(home.path()), QStringList());
        QVERIFY(lock.hold());
        QVERIFY(lock.hold());
        QVERIFY(!lock.isOtherRunning());
        QCOMPARE(filesIn(home.path()).size(), 1);
        lock.release();
        QCOMPARE(filesIn(home.path()), QStringList());
        lock.release();
        QVERIFY(lock.hold());
    }
    QCOMPARE(filesIn(home.path()), QStringList());
}

void tst_instanceLock::another()
{
    const QTemporaryDir home;
    const otherInstance other(home.path());
    QVERIFY(other.isHolding());
    instanceLock lock(home.path());
    QVERIFY(lock.isOtherRunning());
    QVERIFY(!lock.hold());
    QVERIFY(lock.isOtherRunning());
    lock.release();
    QVERIFY(instanceLock(home.path()).isOtherRunning());
}

void tst_instanceLock::deadOnesDoNotCount()
{
    const QTemporaryDir home;
    otherInstance other(home.path());
    QVERIFY(other.isHolding());
    other.kill();
    QCOMPARE(filesIn(home.path()).size(), 1);
    instanceLock lock(home.path());
    QVERIFY(!lock.isOtherRunning());
    otherInstance next(home.path());
    QVERIFY(next.isHolding());
    next.kill();
    QVERIFY(lock.hold());
}

void tst_instanceLock::odd_data()
{
    QTest::addColumn<QByteArray>("content");
    QTest::newRow("empty") << QByteArray();
    QTest::newRow("half a number") << QByteArray("12");
    QTest::newRow("binary") << QByteArray("\0\xff\n\0\n\0\n", 7);
    QTest::newRow("no number") << QByteArray("many\nfennick\nhost\n");
    QTest::newRow("negative") << QByteArray("-1\nfennick\n\n");
    QTest::newRow("huge") << QByteArray(1 << 20, 'x');
}

/// Something else under the name of the lock.
void tst_instanceLock::odd()
{
    QFETCH(QByteArray, content);
    const QTemporaryDir home;
    QString name;
    {
        instanceLock lock(home.path());
        QVERIFY(lock.hold());
        name = QDir(home.path()).filePath(filesIn(home.path()).value(0));
    }
    QFile file(name);
    QVERIFY(file.open(QIODevice::WriteOnly));
    QCOMPARE(file.write(content), content.size());
    file.close();
    instanceLock lock(home.path());
    QVERIFY(!lock.isOtherRunning());
    QVERIFY(lock.hold());
    QVERIFY(instanceLock(home.path()).isOtherRunning());
}

void tst_instanceLock::noDirectory()
{
    const QTemporaryDir home;
    const QString missing = home.filePath(QStringLiteral("not/yet"));
    instanceLock first(missing);
    QVERIFY(!first.isOtherRunning());
    QVERIFY(!QFile::exists(missing));
    QVERIFY(first.hold());

    QFile file(home.filePath(QStringLiteral("file")));
    QVERIFY(file.open(QIODevice::WriteOnly));
    instanceLock lock(home.filePath(QStringLiteral("file/below")));
    QVERIFY(!lock.isOtherRunning());
    QVERIFY(!lock.hold());
    lock.release();
}

void tst_instanceLock::deadOneInAReadOnlyHome()
{
    if (::geteuid() == 0)
        QSKIP("nothing is read-only for root");
    const QTemporaryDir home;
    otherInstance other(home.path());
    QVERIFY(other.isHolding());
    QVERIFY(QFile::setPermissions(home.path(), QFile::ReadOwner | QFile::ExeOwner));
    instanceLock lock(home.path());
    QVERIFY(lock.isOtherRunning());
    other.kill();
    QVERIFY(!lock.isOtherRunning());
    QVERIFY(!lock.hold());
    QVERIFY(
        QFile::setPermissions(home.path(), QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner));
}

void tst_instanceLock::usersDirectory()
{
    const dataDirectory data;
    instanceLock lock;
    QVERIFY(lock.hold());
    const QStringList files = filesIn(data.path());
    QCOMPARE(files.size(), 1);
    QVERIFY(files.first().startsWith(QStringLiteral("measuring-")));
}

QTEST_GUILESS_MAIN(tst_instanceLock)
#include "tst_instanceLock.moc"
