// SPDX-License-Identifier: GPL-3.0-or-later
#include "tests/knownFrames.h"

#include "rounds.h"
#include "tests/suite.h"

#include <QSet>
#include <QtTest>

#include <cstdlib>
#include <omp.h>

namespace
{

std::unique_ptr<testBase> testOf(const QString &name)
{
    for (auto &test : makeSuite(nullptr)) {
        if (test->getName() == name)
            return std::move(test);
    }
    return nullptr;
}

/// The rows of the table as the test draws now.
QString rowsOf(testBase &test)
{
    const knownFrame sizes[] = {
        {"", 321, 241, 4, ""}, {"", 640, 480, 6, ""}, {"", 3820, 2160, 2, ""}};
    QString rows;
    for (const knownFrame &size : sizes) {
        std::srand(knownFrameSeed);
        if (!test.setup(size.width, size.height))
            return QStringLiteral("it cannot be set up");
        runRounds(test, size.rounds);
        rows += QStringLiteral("        {\"%1\", %2, %3, %4, \"%5\"},\n")
                    .arg(test.getName(), QString::number(size.width), QString::number(size.height),
                         QString::number(size.rounds), QString::fromLatin1(digestOf(test)));
    }
    return rows;
}

[[maybe_unused]] bool drawsRandomNumbers(const QString &name)
{
    return name == QLatin1String("lines") || name == QLatin1String("motion blur");
}

} // namespace

class tst_knownFrames : public QObject
{
    Q_OBJECT

private slots:
    void everyTestIsKnown();
    void frames_data();
    void frames();
    void digestOfKnownWords();
};

void tst_knownFrames::everyTestIsKnown()
{
    for (const auto &test : makeSuite(nullptr)) {
        QSet<QString> sizes;
        bool isStandard = false;
        for (const knownFrame &known : knownFrames()) {
            if (test->getName() != QLatin1String(known.test))
                continue;
            sizes.insert(QStringLiteral("%1x%2").arg(known.width).arg(known.height));
            isStandard = isStandard || (known.width == 3820 && known.height == 2160);
        }
        QVERIFY2(
            isStandard && sizes.size() >= 3,
            qPrintable(QStringLiteral("tests/knownFrames.cpp lacks frames of '%1'. If they are "
                                      "right, its rows are:\n%2")
                           .arg(test->getName(), rowsOf(*test))));
    }
}

void tst_knownFrames::frames_data()
{
    QTest::addColumn<int>("index");
    QTest::addColumn<int>("threads");
    int index = 0;
    for (const knownFrame &known : knownFrames()) {
        for (const int threads : {1, 2}) {
            if (known.threads == 0 || known.threads == threads) {
                QTest::addRow("%s, %dx%d, %d thread(s)", known.test, known.width, known.height,
                              threads)
                    << index << threads;
            }
        }
        ++index;
    }
}

void tst_knownFrames::frames()
{
    QFETCH(int, index);
    QFETCH(int, threads);
    const knownFrame &known = knownFrames().at(static_cast<std::size_t>(index));
    const auto test = testOf(QString::fromLatin1(known.test));
    QVERIFY(test);
#ifndef __GLIBC__
    if (drawsRandomNumbers(test->getName()))
        QSKIP("another C library draws other random numbers");
#endif
    const int before = omp_get_max_threads();
    omp_set_num_threads(threads);
    std::srand(knownFrameSeed);
    const bool isSetup = test->setup(known.width, known.height);
    if (isSetup)
        runRounds(*test, known.rounds);
    omp_set_num_threads(before);
    QVERIFY(isSetup);
    QCOMPARE(digestOf(*test), QByteArray(known.digest));
}

void tst_knownFrames::digestOfKnownWords()
{
    // sha1sum of the bytes 01 02 03 ff 04 05 06 ff.
    const quint32 words[] = {0xFF030201U, 0xFF060504U};
    QCOMPARE(digestOf(words, 2), QByteArray("ce1afcdbf9c94a3bb5aa03779d5db64df04f3548"));
}

QTEST_APPLESS_MAIN(tst_knownFrames)
#include "tst_knownFrames.moc"
