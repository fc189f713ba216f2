// SPDX-License-Identifier: GPL-3.0-or-later

// Several real servers that share one PostgreSQL database.

#include "server/rules/sourceToken.h"

#include "storeFixture.h"
#include "support/serverProcess.h"
#include "support/wholeRuns.h"

#include <QtTest>

class tst_severalServers : public QObject
{
    Q_OBJECT

private slots:
    void init()
    {
        QVERIFY2(fixture.begin(false), qPrintable(fixture.error()));
        servers.clear();
        // All of them find an empty database, and make its tables at the same time.
        std::vector<std::unique_ptr<QProcess>> others;
        for (int i = 0; i < 2; ++i) {
            others.push_back(std::make_unique<QProcess>());
            others.back()->start(
                QStringLiteral(FENNICK_SERVER),
                {QStringLiteral("publish"), QStringLiteral("--database"), fixture.text()});
        }
        for (int i = 0; i < 2; ++i) {
            servers.push_back(std::make_unique<serverProcess>(
                fixture.text(),
                QStringList{QStringLiteral("--upload-limit"), QStringLiteral("2/600")}));
            QVERIFY2(servers.back()->isListening(),
                     servers.back()->process.readAllStandardError().constData());
        }
        for (const auto &other : others)
            QVERIFY(other->waitForFinished() || other->state() == QProcess::NotRunning);
    }
    void cleanup() { servers.clear(); }

    void oneStore();
    void limitsOfTheirOwn();
    void newListsAreServedByAll();
    void publishingOnce();
    void oneIsKilled();

private:
    /// The status of an upload of @p machine to server number @p server.
    int upload(int server, const benchResults &machine)
    {
        const QByteArray xml = "<F>" + stored(machine).content + "</F>";
        return statusOf(
            rawClient(servers.at(static_cast<std::size_t>(server))->port).post(uploadForm(xml)));
    }
    QByteArray version(int server)
    {
        return bodyOf(
            rawClient(servers.at(static_cast<std::size_t>(server))->port).post(askVersion));
    }
    static benchResults machine(float speed) { return wholeRun(QStringLiteral("New CPU"), speed); }

    storeFixture fixture;
    std::vector<std::unique_ptr<serverProcess>> servers;
};

/// An upload is one upload whoever takes it, and of one source all have the same token.
void tst_severalServers::oneStore()
{
    QCOMPARE(upload(0, machine(1)), 200);
    QCOMPARE(upload(1, machine(1)), 200);
    QCOMPARE(upload(1, machine(1.1F)), 200);
    resultStore store(fixture.address());
    QVERIFY(store.open());
    const QVector<storedUpload> all = uploadsIn(store);
    QCOMPARE(all.size(), 2);
    QVERIFY(!all.at(0).source.isEmpty());
    if (dayOf(all.at(0).received) == dayOf(all.at(1).received))
        QCOMPARE(all.at(1).source, all.at(0).source);
}

/// As the manual says: each process counts for itself.
void tst_severalServers::limitsOfTheirOwn()
{
    for (int server = 0; server < 2; ++server) {
        QCOMPARE(upload(server, machine(1)), 200);
        QCOMPARE(upload(server, machine(1.1F)), 200);
        QCOMPARE(upload(server, machine(1.2F)), 429);
    }
}

void tst_severalServers::newListsAreServedByAll()
{
    QCOMPARE(version(0), QByteArray("1010"));
    QCOMPARE(version(1), QByteArray("1010"));
    QCOMPARE(upload(0, machine(1)), 200);
    const auto published =
        serverProcess::run({QStringLiteral("publish"), QStringLiteral("--circle"),
                            QStringLiteral("--database"), fixture.text()});
    QCOMPARE(published.code, 0);
    QVERIFY(version(0).toInt() > 1010);
    QCOMPARE(version(1), version(0));
}

/// Timers on several machines may publish at the same time: one version is made of the same
/// uploads.
void tst_severalServers::publishingOnce()
{
    QCOMPARE(upload(0, machine(1)), 200);
    QCOMPARE(upload(1, machine(1.1F)), 200);
    std::vector<std::unique_ptr<QProcess>> publishers;
    for (int i = 0; i < 4; ++i) {
        publishers.push_back(std::make_unique<QProcess>());
        publishers.back()->start(QStringLiteral(FENNICK_SERVER),
                                 {QStringLiteral("publish"), QStringLiteral("--circle"),
                                  QStringLiteral("--database"), fixture.text()});
    }
    int succeeded = 0;
    for (const auto &publisher : publishers) {
        QVERIFY(publisher->waitForFinished(60'000) || publisher->state() == QProcess::NotRunning);
        succeeded += publisher->exitCode() == 0 ? 1 : 0;
    }
    QVERIFY(succeeded >= 1);
    resultStore store(fixture.address());
    QVERIFY(store.open());
    QCOMPARE(store.connection()
                 .number(QStringLiteral("SELECT count(DISTINCT version) FROM lists"))
                 .value_or(-1),
             qint64(1));
}

void tst_severalServers::oneIsKilled()
{
    QCOMPARE(upload(0, machine(1)), 200);
    servers.front()->process.kill();
    QVERIFY(servers.front()->process.waitForFinished());
    QCOMPARE(upload(1, machine(1.1F)), 200);
    QCOMPARE(version(1), QByteArray("1010"));
    QCOMPARE(listed(fixture.text()), 2);
}

QTEST_GUILESS_MAIN(tst_severalServers)
#include "tst_severalServers.moc"
