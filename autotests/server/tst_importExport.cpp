// SPDX-License-Identifier: GPL-3.0-or-later
#include "server/importExport.h"

#include "storeFixture.h"

#include <QBuffer>
#include <QtTest>

namespace
{

QByteArray exported(resultStore &store)
{
    QBuffer buffer;
    buffer.open(QIODevice::WriteOnly);
    return exportTo(store, buffer) ? buffer.data() : QByteArray();
}

outcome<importReport> import(resultStore &store, QByteArray xml)
{
    QBuffer buffer(&xml);
    buffer.open(QIODevice::ReadOnly);
    return importFrom(buffer, store, 5'000);
}

} // namespace

/// Each test runs on both products.
class tst_importExport : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase()
    {
        fixture = std::make_unique<storeFixture>();
        QVERIFY2(fixture->error().isEmpty(), qPrintable(fixture->error()));
    }
    void cleanupTestCase() { fixture.reset(); }
    void init() { fixture->begin(); }

    void exportAndImport_data() { storeFixture::addProducts(); }
    void exportAndImport();
    void importOfAList_data() { storeFixture::addProducts(); }
    void importOfAList();
    void brokenImports_data() { storeFixture::addProducts(); }
    void brokenImports();

private:
    std::unique_ptr<storeFixture> fixture;
};

void tst_importExport::exportAndImport()
{
    resultStore store(fixture->address());
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
    resultStore store(fixture->address());
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

void tst_importExport::brokenImports()
{
    resultStore store(fixture->address());
    QVERIFY(store.open());
    QVERIFY(store.add({numbered(1)}));
    const QByteArray good = exported(store);
    const QByteArray two =
        QByteArray(good).replace("</FennickExport>", "<bench machineName=\"x\" os=\"linux\" "
                                                     "cpu=\"c\" clock=\"1\" threadCount=\"1\">"
                                                     "<test name=\"mandel\" result=\"9\"/></bench>"
                                                     "</FennickExport>");
    QTemporaryDir other;
    for (const QByteArray &broken :
         {good.left(good.size() - 5), QByteArray("no XML"), QByteArray(),
          QByteArray(two).replace("result=\"9\"", "result=\"-9\""),
          QByteArray(two).replace("mandel\" result=\"9\"", "other\" result=\"9\""),
          QByteArray(good).replace("received\" reason", "lost\" reason"),
          QByteArray("<!DOCTYPE x>") + two, QByteArray(two).replace("\"9\"", "\"9,5\""),
          QByteArray(two).replace("threadCount=\"1\"", "threads=\"1\""),
          QByteArray(two).replace("</bench></FennickExport>", "<x/></bench></FennickExport>")}) {
        resultStore empty(*parseDatabaseAddress(QStringLiteral("sqlite:")
                                                + other.filePath(QStringLiteral("empty.db"))));
        QVERIFY(empty.open());
        QVERIFY2(!import(empty, broken), broken);
        QVERIFY(uploadsIn(empty).isEmpty());
    }
    QVERIFY(import(store, two));
    QCOMPARE(uploadsIn(store).size(), 2);
}

QTEST_GUILESS_MAIN(tst_importExport)
#include "tst_importExport.moc"
