// SPDX-License-Identifier: GPL-3.0-or-later
#include "server/serverMetrics.h"

#include "metricsText.h"

#include <QtTest>

#include <thread>
#include <vector>

using namespace std::chrono_literals;

class tst_serverMetrics : public QObject
{
    Q_OBJECT

private slots:
    void nothingYet();
    void requests();
    void durations();
    void loads();
    void uploads();
    void fromManyThreads();

private:
    metricsText read(serverMetrics &metrics, const storeThreads::backlog &waiting = {},
                     int workers = 0)
    {
        return metricsText(
            QByteArray::fromStdString(metrics.text({waiting, workers, connections})));
    }

    connectionTable connections{10, 10};
};

void tst_serverMetrics::nothingYet()
{
    serverMetrics metrics;
    const metricsText text = read(metrics);
    QCOMPARE(text.error, QString());
    QVERIFY(text.has("fennick_database_errors_total{work=\"reading\"}"));
    QVERIFY(text.has("fennick_database_errors_total{work=\"writing\"}"));
    QCOMPARE(text.nonZero(""), QStringList());
    // Nobody knows of the uploads.
    QVERIFY(!text.types.contains(QStringLiteral("fennick_uploads")));
}

void tst_serverMetrics::requests()
{
    serverMetrics metrics;
    metrics.answered({"upload", 200, 1ms});
    metrics.answered({"upload", 200, 1ms});
    metrics.answered({"upload", 422, 1ms});
    metrics.answered({nullptr, 400, 1ms});
    metrics.refused("no XML");
    metrics.refused("processor's name");
    metrics.databaseFailed(storeThreads::work::reading);
    metrics.databaseFailed(storeThreads::work::reading);
    metrics.databaseFailed(storeThreads::work::writing);
    const metricsText text = read(metrics);
    QCOMPARE(text.error, QString());
    QCOMPARE(text.nonZero("fennick_requests_total"),
             QStringList({
                 QStringLiteral("fennick_requests_total{action=\"none\",status=\"400\"} 1"),
                 QStringLiteral("fennick_requests_total{action=\"upload\",status=\"200\"} 2"),
                 QStringLiteral("fennick_requests_total{action=\"upload\",status=\"422\"} 1"),
             }));
    QCOMPARE(text.nonZero("fennick_upload_refusals_total"),
             QStringList({
                 QStringLiteral("fennick_upload_refusals_total{reason=\"no XML\"} 1"),
                 QStringLiteral("fennick_upload_refusals_total{reason=\"processor's name\"} 1"),
             }));
    QCOMPARE(text["fennick_database_errors_total{work=\"reading\"}"], 2.0);
    QCOMPARE(text["fennick_database_errors_total{work=\"writing\"}"], 1.0);
}

void tst_serverMetrics::durations()
{
    serverMetrics metrics;
    for (const auto taken : {1ms, 3ms, 400ms, 60'000ms})
        metrics.answered({"list", 200, taken});
    const metricsText text = read(metrics);
    QCOMPARE(text.error, QString());
    const auto upTo = [&text](const char *bound) {
        return text.samples.value(
            QStringLiteral("fennick_request_duration_seconds_bucket{action=\"list\",le=\"%1\"}")
                .arg(QLatin1String(bound)),
            -1);
    };
    QCOMPARE(upTo("0.0005"), 0.0);
    QCOMPARE(upTo("0.001"), 1.0);
    QCOMPARE(upTo("0.005"), 2.0);
    QCOMPARE(upTo("0.5"), 3.0);
    QCOMPARE(upTo("10"), 3.0);
    QCOMPARE(upTo("+Inf"), 4.0);
    QCOMPARE(text["fennick_request_duration_seconds_count{action=\"list\"}"], 4.0);
    QCOMPARE(text["fennick_request_duration_seconds_sum{action=\"list\"}"], 60.404);
}

void tst_serverMetrics::loads()
{
    struct silent : guest {
        using guest::guest;
        void giveWay() override {}
        bool hasUnreadBytes() const override { return false; }
    };
    silent one{ipAddress()};
    silent other{ipAddress()};
    connections.enter(one);
    connections.enter(other);
    connections.begin(other, activity::writing);
    serverMetrics metrics;
    const metricsText text = read(metrics, {1, 2, 3}, 4);
    connections.leave(one);
    connections.leave(other);
    QCOMPARE(text.error, QString());
    QCOMPARE(text.nonZero(""), QStringList({
                                   QStringLiteral("fennick_connections{state=\"idle\"} 1"),
                                   QStringLiteral("fennick_connections{state=\"writing\"} 1"),
                                   QStringLiteral("fennick_queue_length{queue=\"checks\"} 3"),
                                   QStringLiteral("fennick_queue_length{queue=\"forms\"} 4"),
                                   QStringLiteral("fennick_queue_length{queue=\"reads\"} 1"),
                                   QStringLiteral("fennick_queue_length{queue=\"writes\"} 2"),
                               }));
    QVERIFY(text.has("fennick_connections{state=\"reading\"}"));
    QCOMPARE(read(metrics).nonZero(""), QStringList());
}

void tst_serverMetrics::uploads()
{
    serverMetrics metrics;
    metrics.setUploads(uploadCounts{{QStringLiteral("received"), 3},
                                    {QStringLiteral("held"), 1},
                                    {QStringLiteral("a state of tomorrow"), 5}});
    const metricsText text = read(metrics);
    QCOMPARE(text.error, QString());
    QCOMPARE(text.nonZero("fennick_uploads"),
             QStringList({QStringLiteral("fennick_uploads{state=\"held\"} 1"),
                          QStringLiteral("fennick_uploads{state=\"received\"} 3")}));
    QVERIFY(text.has("fennick_uploads{state=\"published\"}"));
    QVERIFY(text.has("fennick_uploads{state=\"withdrawn\"}"));
    // A number that nobody knows any more is not said.
    metrics.setUploads(std::nullopt);
    QVERIFY(!read(metrics).types.contains(QStringLiteral("fennick_uploads")));
    metrics.setUploads(uploadCounts{});
    QCOMPARE(read(metrics).types.value(QStringLiteral("fennick_uploads")), QStringLiteral("gauge"));
}

void tst_serverMetrics::fromManyThreads()
{
    serverMetrics metrics;
    constexpr int writers = 4;
    constexpr int times = 2'000;
    std::vector<std::thread> threads;
    threads.reserve(writers);
    for (int writer = 0; writer < writers; ++writer) {
        threads.emplace_back([&metrics] {
            for (int i = 0; i < times; ++i) {
                metrics.answered({i % 2 == 0 ? "upload" : "version", 200 + i % 3, 1ms});
                metrics.refused("format");
                metrics.databaseFailed(storeThreads::work::writing);
            }
        });
    }
    for (int i = 0; i < 50; ++i)
        QCOMPARE(read(metrics).error, QString());
    for (std::thread &thread : threads)
        thread.join();
    const metricsText text = read(metrics);
    QCOMPARE(text["fennick_request_duration_seconds_count{action=\"upload\"}"], 4'000.0);
    QCOMPARE(text["fennick_request_duration_seconds_count{action=\"version\"}"], 4'000.0);
    QCOMPARE(text["fennick_upload_refusals_total{reason=\"format\"}"], 8'000.0);
    QCOMPARE(text["fennick_database_errors_total{work=\"writing\"}"], 8'000.0);
}

QTEST_GUILESS_MAIN(tst_serverMetrics)
#include "tst_serverMetrics.moc"
