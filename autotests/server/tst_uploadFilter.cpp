// SPDX-License-Identifier: GPL-3.0-or-later
#include "server/uploadFilter.h"

#include "storeFixture.h"
#include "support/wholeRuns.h"

#include <QtTest>

Q_DECLARE_METATYPE(uploadFilter)

namespace
{

const QString linux = QStringLiteral("linux");

uploadFilter all()
{
    return {};
}

template <typename Value> uploadFilter with(Value uploadFilter::*field, const Value &value)
{
    uploadFilter filter;
    filter.*field = value;
    return filter;
}

uploadFilter ofProcessor(const char *name)
{
    return with(&uploadFilter::processor, QString::fromUtf8(name));
}

} // namespace

class tst_uploadFilter : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void filters_data();
    void filters();
    void texts();

private:
    storeFixture fixture;
    QMap<bool, std::shared_ptr<resultStore>> stores; ///< whether it is SQLite
};

void tst_uploadFilter::initTestCase()
{
    const auto upload = [](int number, const char *cpu, float speed) {
        storedUpload one =
            stored(wholeRun(QString::fromUtf8(cpu), speed, linux, 4, QString::number(number)),
                   number * 1'000);
        one.source = QByteArray::number(number);
        return one;
    };
    QVector<storedUpload> uploads;
    int number = 0;
    for (const char *cpu : {"AMD X", "amd(R) x CPU", "AMD X3D", "100% _\\ |", "Intel[1]"})
        uploads.append(upload(++number, cpu, 1));     // 1 to 5
    uploads.append(upload(++number, "AMD X", 1.01F)); // 6
    uploads.append(upload(++number, "AMD X", 3));     // 7, an outlier
    uploads.append(upload(++number, "AMD X", 500));   // 8, held
    uploads.append(upload(++number, "unknown", 1));   // 9, held
    uploads.append(upload(++number, "AMD X", 4));     // 10, withdrawn, else an outlier
    uploads.last().state = QStringLiteral("withdrawn");
    for (const bool isSqlite : {true, false}) {
        QVERIFY2(fixture.begin(isSqlite), qPrintable(fixture.error()));
        auto store = std::make_shared<resultStore>(fixture.address());
        QVERIFY(store->open());
        QVERIFY(store->add(uploads));
        stores.insert(isSqlite, store);
    }
}

void tst_uploadFilter::filters_data()
{
    QTest::addColumn<uploadFilter>("filter");
    QTest::addColumn<QString>("ids");
    const auto row = [](const char *name, const uploadFilter &filter, const char *ids) {
        QTest::newRow(name) << filter << QString::fromLatin1(ids);
    };
    row("all", all(), "1 2 3 4 5 6 7 8 9 10");
    row("one", with(&uploadFilter::id, qint64(4)), "4");
    row("none", with(&uploadFilter::id, qint64(40)), "");
    row("processor", ofProcessor("AMD X"), "1 2 6 7 8 10");
    row("another spelling", ofProcessor("amd  x cpu @ 3 GHz"), "1 2 6 7 8 10");
    row("start of a name", ofProcessor("AMD X*"), "1 2 3 6 7 8 10");
    row("end of a name", ofProcessor("*X"), "1 2 6 7 8 10");
    row("middle of a name", ofProcessor("*m*3*"), "3");
    row("any name", ofProcessor("*"), "1 2 3 4 5 6 7 8 9 10");
    row("special characters", ofProcessor("100% _\\ |"), "4");
    row("no wildcard of the database's", ofProcessor("AMD_X"), "");
    row("percent sign", ofProcessor("AMD%"), "");
    row("no pattern of another kind", ofProcessor("Intel[1]"), "5");
    row("no class of characters", ofProcessor("AMD [A-Z]"), "");
    row("start of a group", ofProcessor("100% _\\ "), "");
    row("not published", ofProcessor("unknown"), "9");
    row("received", with(&uploadFilter::state, QStringLiteral("received")), "1 2 3 4 5 6 7");
    row("held", with(&uploadFilter::state, QStringLiteral("held")), "8 9");
    row("withdrawn", with(&uploadFilter::state, QStringLiteral("withdrawn")), "10");
    row("since", with(&uploadFilter::since, std::optional<qint64>(8'000)), "8 9 10");
    row("before", with(&uploadFilter::before, std::optional<qint64>(3'000)), "1 2");
    row("outliers", with(&uploadFilter::isOutlier, true), "7");
    row("after", with(&uploadFilter::after, qint64(8)), "9 10");
    row("limit", with(&uploadFilter::limit, 3), "1 2 3");
    uploadFilter page = with(&uploadFilter::limit, 3);
    page.after = 3;
    row("page", page, "4 5 6");
    uploadFilter several = ofProcessor("AMD*");
    several.state = QStringLiteral("received");
    several.since = 2'000;
    several.before = 7'000;
    several.limit = 2;
    row("all together", several, "2 3");
    uploadFilter outliers = ofProcessor("AMD X");
    outliers.isOutlier = true;
    row("outliers of a processor", outliers, "7");
    outliers.processor = QStringLiteral("AMD X3D");
    row("outliers of another", outliers, "");
}

void tst_uploadFilter::filters()
{
    QFETCH(uploadFilter, filter);
    QFETCH(QString, ids);
    for (const auto &store : qAsConst(stores)) {
        QStringList found;
        const outcome<void> done = forEachUpload(*store, filter, [&](const storedUpload &upload) {
            found.append(QString::number(upload.id));
        });
        QVERIFY2(done, qPrintable(why(done)));
        QCOMPARE(found.join(QLatin1Char(' ')), ids);
    }
}

void tst_uploadFilter::texts()
{
    QCOMPARE(all().text(), QString());
    QCOMPARE(with(&uploadFilter::id, qint64(4)).text(), QStringLiteral("4"));
    uploadFilter filter = ofProcessor("AMD X*");
    filter.state = QStringLiteral("held");
    filter.since = 0;
    filter.before = 86'400'000;
    filter.isOutlier = true;
    filter.after = 7;
    filter.limit = 9;
    QCOMPARE(filter.text(),
             QStringLiteral("--processor 'AMD X*' --state 'held' --since '1970-01-01T00:00:00Z'"
                            " --before '1970-01-02T00:00:00Z' --outliers --after 7 --limit 9"));
}

QTEST_APPLESS_MAIN(tst_uploadFilter)
#include "tst_uploadFilter.moc"
