// SPDX-License-Identifier: GPL-3.0-or-later

// The same uploads give the same lists, byte for byte, in whatever order they come, and on
// whichever database.

#include "server/moderation.h"
#include "server/publication.h"

#include "data/builtInList.h"
#include "storeFixture.h"
#include "support/wholeRuns.h"

#include <QtTest>

#include <algorithm>
#include <random>

namespace
{

constexpr int orders = 10;
constexpr qint64 day = 86'400'000;

/// Uploads of many machines, with all that decides about them: sources, days, spellings, outliers,
/// partial runs, held and withdrawn ones, names that come before and after each other in different
/// alphabets, and processors of the built-in list.
QVector<storedUpload> allUploads()
{
    const QVector<benchResults> builtIn = builtInMachines();
    QStringList processors;
    for (const char *name : {"Beta", "beta", "BETA CPU", "Be-ta", "Be ta", "\u00C4ther", "Zeta",
                             "\u042D\u043B", "alpha_1", "Alpha 10", "alpha 2"})
        processors.append(QString::fromUtf8(name));
    for (int i = 0; i < 8; ++i)
        processors.append(builtIn.at(i * 20).getCpu());
    std::mt19937 random(7);
    QVector<storedUpload> uploads;
    for (int i = 0; i < 400; ++i) {
        const auto pick = [&random](int count) {
            return static_cast<int>(random() % static_cast<unsigned>(count));
        };
        const QString &cpu = processors.at(pick(processors.size()));
        const float speed = pick(20) == 0 ? 4.0F : 1 + 0.001F * static_cast<float>(pick(300));
        benchResults machine =
            wholeRun(cpu, speed, QStringLiteral("linux"), pick(4) == 0 ? 8 : 4, QString::number(i));
        if (pick(15) == 0)
            machine.getTests().remove(QStringLiteral("mandel"));
        storedUpload upload = stored(machine, pick(4) * day + pick(1'000));
        upload.source =
            QByteArray::number(upload.received / day) + '-' + QByteArray::number(pick(6));
        if (pick(15) == 0)
            upload.state = QStringLiteral("withdrawn");
        uploads.append(upload);
    }
    return uploads;
}

} // namespace

class tst_sameLists : public QObject
{
    Q_OBJECT

private slots:
    void anyOrder();

private:
    /// Publishes after each of @p batches of uploads, and returns the last lists.
    static QByteArrayList publishedIn(resultStore &store, const QVector<storedUpload> &uploads,
                                      int batches)
    {
        const QVector<benchResults> builtIn = builtInMachines();
        const int size = (uploads.size() + batches - 1) / batches;
        for (int first = 0; first < uploads.size(); first += size) {
            publishOptions options;
            options.now = day;
            if (!store.add(uploads.mid(first, size)) || !publication(store, builtIn, options).run())
                return {};
        }
        return {qUncompress(store.newestList(false)->content),
                qUncompress(store.newestList(true)->content), store.newestList(false)->content,
                store.newestList(true)->content};
    }
};

void tst_sameLists::anyOrder()
{
    storeFixture fixture;
    QVector<storedUpload> uploads = allUploads();
    QByteArrayList wanted;
    std::mt19937 random(1);
    for (int order = 0; order < orders; ++order) {
        for (const bool isSqlite : {true, false}) {
            QVERIFY2(fixture.begin(isSqlite), qPrintable(fixture.error()));
            resultStore store(fixture.address(), databaseUse::operating);
            QVERIFY(store.open());
            // In the first order all at once, later also with publications in between.
            const QByteArrayList lists = publishedIn(store, uploads, 1 + order % 3);
            if (wanted.isEmpty())
                wanted = lists;
            QCOMPARE(lists.size(), 4);
            QCOMPARE(lists, wanted);
        }
        std::shuffle(uploads.begin(), uploads.end(), random);
    }
    // The normal list has some machines of them, the BETA list more.
    QVERIFY(wanted.at(0).contains("\"Zeta\""));
    QVERIFY(wanted.at(0) != wanted.at(1));
    QVERIFY(wanted.at(0).size() > 200'000);
}

QTEST_APPLESS_MAIN(tst_sameLists)
#include "tst_sameLists.moc"
