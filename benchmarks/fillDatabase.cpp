// SPDX-License-Identifier: GPL-3.0-or-later

// Fills a result database with whole runs, past the server, and says how long it took:
//   fill-database ADDRESS UPLOADS [FROM [PROCESSORS]]
// The uploads have the numbers from FROM on, 0 if absent, and come from as many networks, on 500
// days. PROCESSORS, 1000 if absent, share them unevenly: a tenth of them has about half.

#include "autotests/support/wholeRuns.h"
#include "server/resultStore.h"

#include <QElapsedTimer>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstdlib>

namespace
{

constexpr qint64 day = 86'400'000;
constexpr qint64 firstDay = 20'000 * day;

storedUpload uploadWith(int number, int processors)
{
    const double evenly = std::fmod(number * 0.6180339887498949, 1.0);
    const int processor = static_cast<int>(processors * evenly * evenly * evenly);
    const float speed = 1.0F + static_cast<float>(processor % 40 + number % 17) / 100.0F;
    const benchResults machine =
        wholeRun(QStringLiteral("Processor %1").arg(processor), speed, QStringLiteral("linux"), 8,
                 QStringLiteral("machine %1").arg(number));
    return makeUpload(machine, firstDay + number % 500 * day,
                      QByteArray::number(number, 16).rightJustified(64, '0'));
}

outcome<void> fill(const databaseAddress &place, int uploads, int from, int processors)
{
    constexpr int batchSize = 2'000;
    resultStore store(place, databaseUse::operating);
    outcome<void> done = store.open();
    for (int number = from; done && number < from + uploads; number += batchSize) {
        QVector<storedUpload> batch;
        for (int i = number; i < std::min(number + batchSize, from + uploads); ++i)
            batch.append(uploadWith(i, processors));
        done = store.restore(batch, {});
    }
    return done;
}

} // namespace

int main(int argc, char **argv)
{
    const auto number = [&](int index, int otherwise) {
        return argc > index ? std::atoi(argv[index]) : otherwise;
    };
    const auto place =
        argc > 2 ? parseDatabaseAddress(QString::fromLocal8Bit(argv[1])) : std::nullopt;
    if (!place || number(2, 0) < 1) {
        std::fputs("usage: fill-database ADDRESS UPLOADS [FROM [PROCESSORS]]\n", stderr);
        return 2;
    }
    QElapsedTimer clock;
    clock.start();
    const auto done = fill(*place, number(2, 0), number(3, 0), std::max(number(4, 1'000), 1));
    if (!done) {
        std::fprintf(stderr, "fill-database: %s\n", qPrintable(done.error()));
        return 1;
    }
    std::printf("%d uploads in %.1f s\n", number(2, 0), static_cast<double>(clock.elapsed()) / 1e3);
    return 0;
}
