// SPDX-License-Identifier: GPL-3.0-or-later
#include "server/uploadListing.h"

#include "support/uploads.h"
#include "support/wholeRuns.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QtTest>

namespace
{

storedUpload held()
{
    benchResults machine(QStringLiteral("ALICE"), QStringLiteral("linux"),
                         QStringLiteral("A \"<X>"), 2.4e9F, 4);
    machine.setTest(QStringLiteral("mandel"), benchResults::test(12.5F));
    machine.setTest(QStringLiteral("lines"), benchResults::test(0.1F));
    storedUpload upload = stored(machine, 1'000);
    upload.id = 7;
    upload.state = QStringLiteral("held");
    upload.reason = QStringLiteral("too fast");
    upload.source = "0123456789abcdef";
    upload.group = QStringLiteral("a|linux|4");
    return upload;
}

storedUpload whole()
{
    storedUpload upload = stored(wholeRun(QStringLiteral("B")), 86'400'000);
    upload.id = 8;
    return upload;
}

QString listing(listingForm form, const QVector<storedUpload> &uploads)
{
    QString text = listingStart(form);
    for (int i = 0; i < uploads.size(); ++i)
        text += listingOf(uploads.at(i), form, i == 0);
    return text + listingEnd(form);
}

} // namespace

class tst_uploadListing : public QObject
{
    Q_OBJECT

private slots:
    void lines();
    void values();
    void json_data();
    void json();
    void brokenOffJson();
    void noComputerNames();
};

void tst_uploadListing::lines()
{
    storedUpload zero = stored(machineWith(QStringLiteral("m"), QStringLiteral("C"), 0), 1'000);
    zero.id = 9;
    QCOMPARE(listing(listingForm::lines, {held(), whole(), zero}),
             QStringLiteral(
                 "      ID  RECEIVED (UTC)        STATE      SOURCE    PROCESSOR, SYSTEM, "
                 "THREADS, RESULTS\n"
                 "       7  1970-01-01T00:00:01Z  held       01234567  A \"<X>, linux, 4, 2, no "
                 "whole run (too fast)\n"
                 "       8  1970-01-02T00:00:00Z  received             B, linux, 4, 18\n"
                 "       9  1970-01-01T00:00:01Z  received             C, linux, 4, 1, all "
                 "zero\n"));
}

void tst_uploadListing::values()
{
    QCOMPARE(listing(listingForm::values, {held()}).section(QLatin1Char('\n'), 2),
             QStringLiteral("          2.4 GHz\n"
                            "          lines                            0.1\n"
                            "          mandel                           12.5\n"));
}

void tst_uploadListing::json_data()
{
    QTest::addColumn<int>("count");
    for (const int count : {0, 1, 2})
        QTest::addRow("%d", count) << count;
}

void tst_uploadListing::json()
{
    QFETCH(int, count);
    const QVector<storedUpload> uploads = QVector<storedUpload>{held(), whole()}.mid(0, count);
    QJsonParseError error;
    const QJsonArray array =
        QJsonDocument::fromJson(listing(listingForm::json, uploads).toUtf8(), &error).array();
    QCOMPARE(error.error, QJsonParseError::NoError);
    QCOMPARE(array.size(), count);
    if (count == 0)
        return;
    const QJsonObject wanted{
        {QStringLiteral("id"), 7},
        {QStringLiteral("received"), QStringLiteral("1970-01-01T00:00:01Z")},
        {QStringLiteral("state"), QStringLiteral("held")},
        {QStringLiteral("reason"), QStringLiteral("too fast")},
        {QStringLiteral("source"), QStringLiteral("0123456789abcdef")},
        {QStringLiteral("group"), QStringLiteral("a|linux|4")},
        {QStringLiteral("processor"), QStringLiteral("A \"<X>")},
        {QStringLiteral("os"), QStringLiteral("linux")},
        {QStringLiteral("threads"), 4},
        {QStringLiteral("clock"), 2.4e9},
        {QStringLiteral("isWholeRun"), false},
        {QStringLiteral("results"),
         QJsonObject{{QStringLiteral("mandel"), 12.5}, {QStringLiteral("lines"), 0.1}}}};
    QCOMPARE(array.first().toObject(), wanted);
    if (count == 2)
        QCOMPARE(array.at(1).toObject().value(QStringLiteral("isWholeRun")).toBool(), true);
}

/// Nobody may take the first part for all.
void tst_uploadListing::brokenOffJson()
{
    const QString cut =
        listingStart(listingForm::json) + listingOf(held(), listingForm::json, true);
    QVERIFY(QJsonDocument::fromJson(cut.toUtf8()).isNull());
}

void tst_uploadListing::noComputerNames()
{
    for (const listingForm form : {listingForm::lines, listingForm::values, listingForm::json})
        QVERIFY(!listing(form, {held()}).contains(QStringLiteral("ALICE")));
}

QTEST_APPLESS_MAIN(tst_uploadListing)
#include "tst_uploadListing.moc"
