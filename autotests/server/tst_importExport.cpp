// SPDX-License-Identifier: GPL-3.0-or-later
#include "server/importExport.h"

#include "storeFixture.h"

#include <QBuffer>
#include <QtTest>

namespace
{

const QByteArray loadableList =
    "<Fennick><bench machineName=\"A\" os=\"linux\" cpu=\"A\" clock=\"1\" threadCount=\"1\">"
    "<test name=\"mandel\" result=\"1\"/></bench></Fennick>";

QByteArray exported(resultStore &store)
{
    QBuffer buffer;
    buffer.open(QIODevice::WriteOnly);
    return exportTo(store, buffer) ? buffer.data() : QByteArray();
}

outcome<importReport> import(resultStore &store, QByteArray xml, bool isEndOptional = false)
{
    QBuffer buffer(&xml);
    buffer.open(QIODevice::ReadOnly);
    return importFrom(buffer, store, {5'000, isEndOptional});
}

} // namespace

/// Each test runs on both products.
class tst_importExport : public QObject
{
    Q_OBJECT

private slots:
    void init() { QVERIFY2(fixture.begin(), qPrintable(fixture.error())); }

    void exportAndImport_data() { storeFixture::addProducts(); }
    void exportAndImport();
    void importOfAList_data() { storeFixture::addProducts(); }
    void importOfAList();
    void brokenImports_data() { storeFixture::addProducts(); }
    void brokenImports();
    void changedExports_data();
    void changedExports();
    void changedLists_data();
    void changedLists();
    void oldExport_data() { storeFixture::addProducts(); }
    void oldExport();
    void incompleteExport();
    void damagedUpload_data() { storeFixture::addProducts(); }
    void damagedUpload();

private:
    /// Whether nothing has come of importing @p xml into an empty store; else a sentence.
    QString importedInVain(const QByteArray &xml);

    storeFixture fixture;
};

void tst_importExport::exportAndImport()
{
    resultStore store(fixture.address(), databaseUse::operating);
    QVERIFY(store.open());
    QVERIFY(
        store.add({numbered(0), numbered(1), numbered(2),
                   stored(machineWith(QStringLiteral("<%1> & \"x\""), QStringLiteral("c"), 3))}));
    QVERIFY(addLists(store, 1011));
    QVERIFY(store.withdraw(uploadsIn(store).at(2).id, QStringLiteral("a <reason>")).value());
    const QByteArray xml = exported(store);
    QVERIFY(xml.contains("a &lt;reason&gt;"));

    QTemporaryDir other;
    resultStore empty(*parseDatabaseAddress(QStringLiteral("sqlite:")
                                            + other.filePath(QStringLiteral("copy.db"))));
    QVERIFY(empty.open());
    const auto report = import(empty, xml);
    QCOMPARE(why(report), QString());
    QCOMPARE(report->uploads, 4);
    QCOMPARE(report->lists, 2);
    QCOMPARE(exported(empty), xml);
    QCOMPARE(empty.newestVersion().value_or(-1), 1011);
    QVERIFY(uploadsIn(empty).first().isEmpty);
    // Again, and into the one it came from: nothing twice.
    QVERIFY(import(empty, xml));
    QVERIFY(import(store, xml));
    QCOMPARE(exported(empty), xml);
    QCOMPARE(exported(store), xml);
}

void tst_importExport::importOfAList()
{
    resultStore store(fixture.address(), databaseUse::operating);
    QVERIFY(store.open());
    const QByteArray list = "<Fennick>\r\n"
                            "<bench machineName=\"A (est.)\" os=\"linux\" cpu=\"a\" clock=\"1\" "
                            "threadCount=\"1\"><test name=\"mandel\" result=\"1\"/></bench>\r\n"
                            "<bench machineName=\"B\" os=\"linux\" cpu=\"b\" clock=\"3e9\" "
                            "threadCount=\"8.0\"><test name=\"mandel\" result=\"2\"/></bench>\r\n"
                            "</Fennick>";
    const auto report = import(store, list);
    QCOMPARE(why(report), QString());
    QCOMPARE(report->uploads, 1);
    QCOMPARE(report->estimates, 1);
    const QVector<storedUpload> all = uploadsIn(store);
    QCOMPARE(all.size(), 1);
    QVERIFY(all.first().content.contains("cpu=\"b\""));
    QVERIFY(all.first().content.contains("threadCount=\"8\""));
    QCOMPARE(all.first().received, qint64(5'000));
    QCOMPARE(all.first().state, QStringLiteral("received"));
}

QString tst_importExport::importedInVain(const QByteArray &xml)
{
    fixture.begin();
    resultStore empty(fixture.address());
    if (const auto isOpen = empty.open(); !isOpen)
        return isOpen.error();
    const auto report = import(empty, xml);
    if (!uploadsIn(empty).isEmpty() || empty.newestVersion().value_or(-1) != 1010)
        return QStringLiteral("something was stored");
    return report ? QStringLiteral("imported") : report.error();
}

void tst_importExport::brokenImports()
{
    const QByteArray good = "<Fennick><bench machineName=\"x\" os=\"linux\" cpu=\"A CPU\" "
                            "clock=\"1\" threadCount=\"1\"><test name=\"mandel\" "
                            "result=\"9\"/></bench></Fennick>";
    resultStore store(fixture.address(), databaseUse::operating);
    QVERIFY(store.open());
    QVERIFY(import(store, good));
    QCOMPARE(uploadsIn(store).size(), 1);
    const auto changed = [&good](const char *before, const char *after) {
        QByteArray xml = good;
        return xml.replace(before, after);
    };
    for (const QByteArray &broken :
         {good.left(good.size() - 5), QByteArray("no XML"), QByteArray(),
          changed("\"9\"", "\"-9\""), changed("mandel", "other"), "<!DOCTYPE x>" + good,
          changed("\"9\"", "\"9,5\""), changed("threadCount", "threads"),
          changed("</bench>", "<x/></bench>"), changed("Fennick>", "Other>"),
          changed("Fennick>", "bench>")}) {
        const QString error = importedInVain(broken);
        QVERIFY2(error.startsWith(QStringLiteral("line ")), broken + qPrintable(error));
    }
}

void tst_importExport::changedExports_data()
{
    QTest::addColumn<QByteArray>("before");
    QTest::addColumn<QByteArray>("after");
    QTest::addColumn<QString>("error");
    const auto row = [](const char *name, const char *before, const char *after,
                        const char *error) {
        QTest::newRow(name) << QByteArray(before) << QByteArray(after)
                            << QString::fromLatin1(error);
    };
    row("result", "result=\"2\"", "result=\"3\"", "this upload does not fit its hash");
    row("no hash", " hash=\"", " mash=\"", "this upload does not fit its hash");
    row("state", "state=\"received\"", "state=\"lost\"", "there is no state 'lost'");
    row("no time", "received=\"1970", "received=\"nineteen70", "is no time");
    row("future", "received=\"1970", "received=\"2970", "is in the future");
    row("source", "source=\"0a1b\"", "source=\"Bob\"", "'Bob' is no source");
    row("end lost", "<end uploads", "<upload uploads", "there is no state ''");
    row("no end", "<end uploads=\"2\" lists=\"2\"/>", "", "this export says nothing about its end");
    row("upload lost", "uploads=\"2\"", "uploads=\"3\"",
        "this export has lost some of its uploads or lists");
    row("list lost", "lists=\"2\"", "lists=\"1\"",
        "this export has lost some of its uploads or lists");
    row("behind the end", "</FennickExport>", "<upload/></FennickExport>",
        "something stands behind the end of this export");
    row("other element", "<end ", "<extra/><end ", "there is no <extra> in an export");
    row("empty upload", "<end ",
        "<upload received=\"1970-01-01T00:00:01.000Z\" state=\"received\"/><end ",
        "there is no machine in this upload");
    row("machine outside", "<end ", "<bench/><end ", "there is no <bench> in an export");
    row("newer", "format=\"2\"", "format=\"3\"", "there is no export of the format '3'");
    row("other root", "FennickExport", "FennickExpert",
        "this is neither an export nor a list of machines");
}

void tst_importExport::changedExports()
{
    fixture.begin();
    QTemporaryDir directory;
    resultStore store(*parseDatabaseAddress(QStringLiteral("sqlite:")
                                            + directory.filePath(QStringLiteral("a.db"))));
    QVERIFY(store.open());
    storedUpload first = numbered(1);
    first.source = "0a1b";
    QVERIFY(store.restore({first, numbered(2)}, {}));
    QVERIFY(store.restore(
        {}, {{1012, false, 1, qCompress(loadableList)}, {1012, true, 1, qCompress(loadableList)}}));
    QByteArray xml = exported(store);
    QFETCH(QByteArray, before);
    QFETCH(QByteArray, after);
    QVERIFY(xml.contains(before));
    {
        resultStore copy(*parseDatabaseAddress(QStringLiteral("sqlite:")
                                               + directory.filePath(QStringLiteral("b.db"))));
        QVERIFY(copy.open());
        QCOMPARE(why(import(copy, xml)), QString());
        QCOMPARE(exported(copy), xml);
    }
    QFETCH(QString, error);
    const QString found = importedInVain(xml.replace(before, after));
    QVERIFY2(found.contains(error), qPrintable(found));
}

void tst_importExport::changedLists_data()
{
    QTest::addColumn<QByteArray>("version");
    QTest::addColumn<QByteArray>("kind");
    QTest::addColumn<QByteArray>("content");
    QTest::addColumn<QString>("error");
    const QByteArray good = qCompress(loadableList).toBase64();
    const QString badVersion =
        QStringLiteral("the version of a list must be from 1011 to 2000000000");
    const QString notLoadable = QStringLiteral("no program could load this list");
    QTest::newRow("good") << QByteArray("1011") << QByteArray("normal") << good << QString();
    QTest::newRow("BETA") << QByteArray("2000000000") << QByteArray("BETA") << good << QString();
    QTest::newRow("no version") << QByteArray() << QByteArray("normal") << good << badVersion;
    QTest::newRow("low") << QByteArray("1010") << QByteArray("normal") << good << badVersion;
    QTest::newRow("high") << QByteArray("2000000001") << QByteArray("BETA") << good << badVersion;
    QTest::newRow("too high") << QByteArray("99999999999") << QByteArray("BETA") << good
                              << badVersion;
    QTest::newRow("no kind") << QByteArray("1011") << QByteArray() << good
                             << QStringLiteral("a list is normal or BETA, not ''");
    QTest::newRow("no content") << QByteArray("1011") << QByteArray("normal") << QByteArray()
                                << notLoadable;
    QTest::newRow("not packed") << QByteArray("1011") << QByteArray("normal")
                                << QByteArray("<Fennick/>").toBase64() << notLoadable;
    QTest::newRow("no machines") << QByteArray("1011") << QByteArray("normal")
                                 << qCompress("<Fennick/>").toBase64() << notLoadable;
    QTest::newRow("cut") << QByteArray("1011") << QByteArray("normal")
                         << qCompress(loadableList.chopped(9)).toBase64() << notLoadable;
    QTest::newRow("too long") << QByteArray("1011") << QByteArray("normal")
                              << qCompress(loadableList + QByteArray(17 << 20, ' ')).toBase64()
                              << notLoadable;
}

void tst_importExport::changedLists()
{
    QFETCH(QByteArray, version);
    QFETCH(QByteArray, kind);
    QFETCH(QByteArray, content);
    const QByteArray xml = "<FennickExport format=\"2\"><list version=\"" + version + "\" kind=\""
                           + kind + "\" made=\"1970-01-01T00:00:01.000Z\">" + content
                           + "</list><end uploads=\"0\" lists=\"1\"/></FennickExport>";
    QTemporaryDir directory;
    resultStore empty(*parseDatabaseAddress(QStringLiteral("sqlite:")
                                            + directory.filePath(QStringLiteral("a.db"))));
    QVERIFY(empty.open());
    QString error = why(import(empty, xml));
    QTEST(error.remove(QStringLiteral("line 1: ")), "error");
    QCOMPARE(empty.newestVersion().value_or(-1), error.isEmpty() ? version.toInt() : 1010);
}

void tst_importExport::oldExport()
{
    QFile file(QStringLiteral(FENNICK_SCHEMA_1) + QStringLiteral("/results.xml"));
    QVERIFY(file.open(QIODevice::ReadOnly));
    resultStore store(fixture.address(), databaseUse::operating);
    QVERIFY(store.open());
    const qint64 now = QDateTime::currentMSecsSinceEpoch();
    const auto refused = importFrom(file, store, {now});
    QVERIFY2(why(refused).contains(QStringLiteral("this export says nothing about its end")),
             qPrintable(why(refused)));
    QVERIFY(uploadsIn(store).isEmpty());
    QVERIFY(file.seek(0));
    const auto report = importFrom(file, store, {now, true});
    QCOMPARE(why(report), QString());
    QCOMPARE(report->uploads, 9);
    QCOMPARE(report->lists, 2);

    // The same as from the database that it is an export of.
    QVERIFY2(fixture.beginWithSchema1(QStringLiteral(FENNICK_SCHEMA_1)),
             qPrintable(fixture.error()));
    resultStore migrated(fixture.address());
    QCOMPARE(why(migrated.open()), QString());
    const QVector<storedUpload> expected = uploadsIn(migrated);
    const QVector<storedUpload> imported = uploadsIn(store);
    QCOMPARE(imported.size(), expected.size());
    for (int i = 0; i < expected.size(); ++i) {
        QCOMPARE(imported.at(i).hash, expected.at(i).hash);
        QCOMPARE(imported.at(i).state, expected.at(i).state);
        QCOMPARE(imported.at(i).reason, expected.at(i).reason);
        QCOMPARE(imported.at(i).group, expected.at(i).group);
    }
}

void tst_importExport::incompleteExport()
{
    // Wherever it ends, it is not taken for whole.
    fixture.begin();
    QTemporaryDir directory;
    resultStore store(*parseDatabaseAddress(QStringLiteral("sqlite:")
                                            + directory.filePath(QStringLiteral("a.db"))));
    QVERIFY(store.open());
    QVERIFY(store.restore({numbered(1), numbered(2)}, {}));
    const QByteArray xml = exported(store);
    for (int size = 0; size < xml.size() - 2; size += 7) {
        QBuffer buffer;
        buffer.setData(xml.left(size));
        buffer.open(QIODevice::ReadOnly);
        for (const bool isEndOptional : {false, true}) {
            importReader reader(buffer, {5'000, isEndOptional});
            QVERIFY(!reader.read());
            QVERIFY(buffer.seek(0));
        }
    }
}

void tst_importExport::damagedUpload()
{
    resultStore store(fixture.address(), databaseUse::operating);
    QVERIFY(store.open());
    QVERIFY(store.restore({numbered(1), numbered(2)}, {}));
    QVERIFY(store.connection().change(QStringLiteral(
        "UPDATE uploads SET content = replace(content, 'result=\"2\"', 'result=\"1\"')")));
    QBuffer buffer;
    buffer.open(QIODevice::WriteOnly);
    QCOMPARE(why(exportTo(store, buffer)), QStringLiteral("upload 2 is damaged"));
    QVERIFY(!buffer.data().contains("<end "));
    QVERIFY(importedInVain(buffer.data()).startsWith(QStringLiteral("line ")));
}

QTEST_GUILESS_MAIN(tst_importExport)
#include "tst_importExport.moc"
