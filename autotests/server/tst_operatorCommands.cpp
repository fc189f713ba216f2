// SPDX-License-Identifier: GPL-3.0-or-later

// The operators' commands in a process of their own, on databases that are damaged, missing, locked
// or not to be written.

#include "server/resultStore.h"

#include "storeFixture.h"
#include "support/serverProcess.h"
#include "support/wholeRuns.h"

#include <QtTest>

class tst_operatorCommands : public QObject
{
    Q_OBJECT

private slots:
    void mistypedFile_data();
    void mistypedFile();
    void damagedFile_data();
    void damagedFile();
    void wholeExportHasAnEnd();
    void publishWithTheLockHeld();
    void previewWithTheLockHeld();
    void olderDatabase_data();
    void olderDatabase();
    void filesAreForTheOwner();

private:
    QString path(const QString &name) const { return directory.filePath(name); }
    static serverProcess::result run(const QStringList &arguments, const QString &file)
    {
        return serverProcess::run(
            arguments
            + QStringList{QStringLiteral("--database"), QStringLiteral("sqlite:") + file});
    }
    /// A database with some hundred uploads.
    QString filled(const QString &name) const;

    QTemporaryDir directory;
};

QString tst_operatorCommands::filled(const QString &name) const
{
    resultStore store(*parseDatabaseAddress(QStringLiteral("sqlite:") + path(name)));
    QVector<storedUpload> all;
    for (int i = 1; i <= 300; ++i) {
        const benchResults run = wholeRun(QStringLiteral("Processor %1").arg(i % 7),
                                          1.0F + static_cast<float>(i) / 1e4F);
        all.append(stored(run, 1'000 + i));
    }
    return store.open() && store.add(all) ? path(name) : QString();
}

void tst_operatorCommands::mistypedFile_data()
{
    QTest::addColumn<QStringList>("command");
    QTest::newRow("list") << QStringList(QStringLiteral("list"));
    QTest::newRow("export") << QStringList(QStringLiteral("export"));
    QTest::newRow("publish --dry-run")
        << QStringList({QStringLiteral("publish"), QStringLiteral("--dry-run")});
}

void tst_operatorCommands::mistypedFile()
{
    QFETCH(QStringList, command);
    for (const char *name : {"mistyped.db", "mistyped/folder/x.db"}) {
        const auto result = run(command, path(QLatin1String(name)));
        QCOMPARE(result.code, 1);
        QCOMPARE(result.out, QString());
        QCOMPARE(result.err, QStringLiteral("fennick-server: the database cannot be opened: there "
                                            "is no file '%1'\n")
                                 .arg(path(QLatin1String(name))));
        QVERIFY(QDir(directory.path()).entryList({QStringLiteral("mistyped*")}).isEmpty());
    }
    // What is there, but is no database, stays as it is too.
    QFile empty(path(QStringLiteral("empty")));
    QVERIFY(empty.open(QIODevice::WriteOnly));
    empty.close();
    QCOMPARE(run(command, empty.fileName()).code, 1);
    QCOMPARE(QFileInfo(empty.fileName()).size(), qint64(0));
}

void tst_operatorCommands::damagedFile_data()
{
    QTest::addColumn<QString>("command");
    for (const char *command : {"list", "export", "publish"})
        QTest::newRow(command) << QString::fromLatin1(command);
}

void tst_operatorCommands::damagedFile()
{
    QFETCH(QString, command);
    const QString file = filled(command + QStringLiteral(".db"));
    QVERIFY(!file.isEmpty());
    QFile damaged(file);
    const qint64 size = QFileInfo(file).size();
    QVERIFY(damaged.open(QIODevice::ReadWrite) && damaged.seek(size / 3));
    damaged.write(QByteArray(static_cast<int>(size / 3), '\xFF'));
    damaged.close();
    const auto result = run({command}, file);
    QCOMPARE(result.code, 1);
    QVERIFY2(result.err.startsWith(QStringLiteral("fennick-server: "))
                 && result.err.contains(QStringLiteral("malformed")),
             qPrintable(result.err));
    QVERIFY(!result.out.contains(QStringLiteral("</FennickExport>")));
    QVERIFY(!result.out.contains(QStringLiteral("Published")));
}

void tst_operatorCommands::wholeExportHasAnEnd()
{
    const QString file = filled(QStringLiteral("whole.db"));
    const auto result = run({QStringLiteral("export")}, file);
    QCOMPARE(result.code, 0);
    QVERIFY2(result.out.endsWith(QStringLiteral("    <end uploads=\"300\" lists=\"0\"/>\n"
                                                "</FennickExport>\n")),
             qPrintable(result.out.right(200)));
}

void tst_operatorCommands::publishWithTheLockHeld()
{
    // Publishing waits half a minute for the lock; this one is held for as long as it takes.
    postgresServer postgres;
    QVERIFY2(postgres.lastOutput.isEmpty(), qPrintable(postgres.lastOutput));
    const QString place = postgres.newDatabase() + QStringLiteral("&lock_timeout=200");
    resultStore store(*parseDatabaseAddress(place));
    QVERIFY(store.open());
    const auto held = store.connection().write([&]() -> outcome<QString> {
        const auto result =
            serverProcess::run({QStringLiteral("publish"), QStringLiteral("--database"), place});
        return QString::number(result.code) + QLatin1Char(' ') + result.err;
    });
    QVERIFY2(held.value().startsWith(QStringLiteral("1 fennick-server: publishing has failed: ")),
             qPrintable(held.value()));
    QVERIFY2(held->contains(QStringLiteral("lock timeout")), qPrintable(held.value()));
}

void tst_operatorCommands::previewWithTheLockHeld()
{
    const QString file = filled(QStringLiteral("locked.db"));
    resultStore store(*parseDatabaseAddress(QStringLiteral("sqlite:") + file));
    QVERIFY(store.open());
    const auto held = store.connection().write([&]() -> outcome<int> {
        for (const QStringList &command :
             {QStringList{QStringLiteral("publish"), QStringLiteral("--dry-run")},
              QStringList{QStringLiteral("list")}, QStringList{QStringLiteral("export")}}) {
            if (const auto result = run(command, file); result.code != 0)
                return failure(result.err);
        }
        return 0;
    });
    QCOMPARE(why(held), QString());
}

void tst_operatorCommands::olderDatabase_data()
{
    QTest::addColumn<QString>("command");
    QTest::addColumn<int>("code");
    QTest::newRow("list") << QStringLiteral("list") << 1;
    QTest::newRow("export") << QStringLiteral("export") << 1;
    QTest::newRow("publish") << QStringLiteral("publish") << 0;
}

void tst_operatorCommands::olderDatabase()
{
    QFETCH(QString, command);
    const QString file = path(QStringLiteral("older %1.db").arg(command));
    QVERIFY(
        QFile::copy(QStringLiteral(FENNICK_SCHEMA_1) + QStringLiteral("/results.sqlite"), file));
    QFile::setPermissions(file, QFile::ReadOwner | QFile::WriteOwner);
    const auto result = run({command}, file);
    QTEST(result.code, "code");
    QFETCH(int, code);
    QCOMPARE(result.err.contains(QStringLiteral("schema 1")), code == 1);
    QCOMPARE(run({QStringLiteral("list")}, file).code, code);
}

void tst_operatorCommands::filesAreForTheOwner()
{
    QProcess process;
    const QString file = path(QStringLiteral("new/folder/x.db"));
    process.start(QStringLiteral("sh"),
                  {QStringLiteral("-c"),
                   QStringLiteral("umask 000; exec \"$0\" publish --database \"sqlite:$1\""),
                   QStringLiteral(FENNICK_SERVER), file});
    QVERIFY(process.waitForFinished(60'000));
    QCOMPARE(process.exitCode(), 0);
    const QFile::Permissions others = QFile::ReadGroup | QFile::WriteGroup | QFile::ExeGroup
                                      | QFile::ReadOther | QFile::WriteOther | QFile::ExeOther;
    for (const char *name : {"new", "new/folder", "new/folder/x.db"}) {
        const QFile::Permissions rights = QFile::permissions(path(QLatin1String(name)));
        QVERIFY2((rights & QFile::ReadOwner) && !(rights & others), name);
    }
}

QTEST_GUILESS_MAIN(tst_operatorCommands)
#include "tst_operatorCommands.moc"
