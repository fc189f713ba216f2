// SPDX-License-Identifier: GPL-3.0-or-later
#include "server/rules/groupRules.h"

#include "support/wholeRuns.h"

#include <QtTest>

#include <algorithm>
#include <random>

Q_DECLARE_METATYPE(QVector<countedUpload>)

namespace
{

const QString cpu = QStringLiteral("Some CPU");
const QString mandel = QStringLiteral("mandel");
constexpr qint64 day = 86'400'000;

/// An upload of a source on a day, so many times as fast as another.
countedUpload from(const QByteArray &source, qint64 onDay, float speed = 1,
                   const QString &processor = cpu)
{
    return {onDay * day + 1, source, wholeRun(processor, speed)};
}

/// The speed of a machine made of such uploads.
float speedOf(const std::optional<benchResults> &machine)
{
    return machine ? machine->getTests().value(mandel).value
                         / wholeRun(cpu).getTests().value(mandel).value
                   : 0;
}

bool isNear(float one, float other)
{
    return std::abs(one - other) < 1e-4F * other;
}

/// All of a verdict, for comparing.
QString text(const groupVerdict &verdict)
{
    QString result = QStringLiteral("%1 %2").arg(verdict.sources).arg(verdict.first);
    for (const auto &machine : {verdict.normal, verdict.beta}) {
        result += QLatin1Char('\n');
        if (!machine)
            continue;
        result += machine->getName() + machine->getCpu() + machine->getOs();
        result += QString::number(static_cast<double>(machine->getFrequency()), 'g', 9);
        for (const benchResults::test &test : machine->getTests())
            result += QLatin1Char(' ') + QString::number(static_cast<double>(test.value), 'g', 9);
    }
    return result;
}

QVector<countedUpload> threeSources()
{
    return {from("a", 1), from("b", 1), from("c", 2)};
}

} // namespace

class tst_groupRules : public QObject
{
    Q_OBJECT

private slots:
    void keys();
    void sources_data();
    void sources();
    void wholeRunsOnly();
    void medians();
    void oneSourceCountsOnceADay();
    void outliers_data();
    void outliers();
    void outliersAreNoSources();
    void outliersAreNamed();
    void names_data();
    void names();
    void computerNamesAreDropped();
    void orderDoesNotMatter();
};

void tst_groupRules::keys()
{
    const QString linux = QStringLiteral("linux");
    const QString key = groupKey(wholeRun(QStringLiteral("Some(R) CPU @ 3 GHz"), 1, linux, 4));
    QCOMPARE(key, QStringLiteral("some|linux|4"));
    QCOMPARE(groupKey(wholeRun(QStringLiteral(" some ") + cpu, 1, linux, 4)),
             QStringLiteral("some some|linux|4"));
    QVERIFY(groupKey(wholeRun(QStringLiteral("some"), 1, linux, 5)) != key);
    QVERIFY(groupKey(wholeRun(QStringLiteral("some"), 1, QStringLiteral("android"), 4)) != key);
    // Another name never makes the same key.
    QVERIFY(groupKey(wholeRun(QStringLiteral("some|linux"), 1, linux, 4)) != key);
    for (const char *name : {"unknown", "A (est.)", "a<b", "\u0456ntel", ""})
        QCOMPARE(groupKey(wholeRun(QString::fromUtf8(name))), QString());
}

void tst_groupRules::sources_data()
{
    QTest::addColumn<QVector<countedUpload>>("uploads");
    QTest::addColumn<int>("sources");
    QTest::addColumn<bool>("isNormal");
    using uploads = QVector<countedUpload>;
    QTest::newRow("none") << uploads() << 0 << false;
    QTest::newRow("one") << uploads{from("a", 1)} << 1 << false;
    QTest::newRow("two on two days") << uploads{from("a", 1), from("b", 2)} << 2 << false;
    QTest::newRow("three on one day")
        << uploads{from("a", 1), from("b", 1), from("c", 1)} << 3 << false;
    QTest::newRow("three on two days") << threeSources() << 3 << true;
    QTest::newRow("one of them twice")
        << uploads{from("a", 1), from("b", 1), from("b", 1)} << 2 << false;
    QTest::newRow("two, one of them on both days")
        << uploads{from("a", 1), from("b", 1), from("b", 2)} << 2 << false;
    QTest::newRow("many of one source")
        << uploads(100, from("a", 1)) + uploads{from("b", 2)} << 2 << false;
    QTest::newRow("unknown, one day") << uploads(5, from("", 1)) << 1 << false;
    QTest::newRow("unknown, three days")
        << uploads{from("", 1), from("", 2), from("", 3)} << 3 << true;
}

void tst_groupRules::sources()
{
    QFETCH(QVector<countedUpload>, uploads);
    const groupVerdict open = judge(uploads, ruleSet::open);
    const groupVerdict circle = judge(uploads, ruleSet::circle);
    QTEST(open.sources, "sources");
    QTEST(open.normal.has_value(), "isNormal");
    QCOMPARE(open.beta.has_value(), !uploads.isEmpty());
    QCOMPARE(circle.normal.has_value(), !uploads.isEmpty());
    QCOMPARE(circle.beta.has_value(), !uploads.isEmpty());
    QCOMPARE(open.first, uploads.isEmpty() ? 0 : day + 1);
}

void tst_groupRules::wholeRunsOnly()
{
    benchResults zero = wholeRun(cpu);
    zero.setTest(mandel, benchResults::test(0));
    benchResults partial = wholeRun(cpu);
    partial.getTests().remove(mandel);
    const countedUpload none = {1, "x", zero};
    const countedUpload missing = {1, "y", partial};
    for (const ruleSet rules : {ruleSet::open, ruleSet::circle}) {
        const groupVerdict verdict = judge({none, missing}, rules);
        QVERIFY(!verdict.normal && !verdict.beta);
        QCOMPARE(verdict.sources, 0);
    }
    QVERIFY(!judge({from("a", 1), from("b", 2), none, missing}, ruleSet::open).normal);
    const groupVerdict with =
        judge(threeSources() + QVector<countedUpload>{none, missing}, ruleSet::open);
    QCOMPARE(text(with), text(judge(threeSources(), ruleSet::open)));
}

void tst_groupRules::medians()
{
    const auto speed = [](const QVector<float> &speeds) {
        QVector<countedUpload> uploads;
        for (int i = 0; i < speeds.size(); ++i)
            uploads.append(from(QByteArray::number(i), i, speeds.at(i)));
        return speedOf(judge(uploads, ruleSet::open).beta);
    };
    QVERIFY(isNear(speed({1.5F}), 1.5F));
    QVERIFY(isNear(speed({1, 1.5F}), 1.25F));
    QVERIFY(isNear(speed({1.3F, 1, 1.1F}), 1.1F));
    QVERIFY(isNear(speed({1.3F, 1, 1.1F, 1.2F}), 1.15F));
    countedUpload fast = from("x", 1);
    fast.machine = benchResults(QString(), QStringLiteral("linux"), cpu, 4.4e9F, 4);
    fast.machine.getTests() = wholeRun(cpu).getTests();
    const groupVerdict verdict = judge({fast, from("b", 1), from("c", 2)}, ruleSet::open);
    QCOMPARE(verdict.normal->getFrequency(), 2.4e9F);
    QCOMPARE(verdict.normal->getThreads(), 4);
    QCOMPARE(verdict.normal->getOs(), QStringLiteral("linux"));
}

void tst_groupRules::oneSourceCountsOnceADay()
{
    const groupVerdict verdict = judge({from("a", 1, 1.5F), from("a", 1, 1.45F), from("a", 1, 1.4F),
                                        from("a", 1, 1.45F), from("b", 1, 1), from("c", 2, 1.1F)},
                                       ruleSet::open);
    QVERIFY(isNear(speedOf(verdict.normal), 1.1F));
    // On another day it counts again.
    QVERIFY(isNear(speedOf(judge({from("a", 1, 1.4F), from("a", 1, 1.4F), from("b", 1, 1),
                                  from("a", 2, 1.4F), from("c", 2, 1.1F)},
                                 ruleSet::open)
                               .normal),
                   1.25F));
}

void tst_groupRules::outliers_data()
{
    QTest::addColumn<QVector<float>>("speeds");
    QTest::addColumn<int>("sources");
    QTest::addColumn<float>("speed");
    const auto row = [](const char *title, const QVector<float> &speeds, int sources, float speed) {
        QTest::newRow(title) << speeds << sources << speed;
    };
    row("equal ones and a small difference", {1, 1, 1, 1, 1.02F}, 5, 1);
    row("as runs of one machine differ", {1, 1, 1, 0.73F, 1.37F}, 5, 1);
    row("equal ones and half as much again", {1, 1, 1, 1, 1.49F}, 5, 1);
    row("equal ones and more than that", {1, 1, 1, 1, 1.51F}, 4, 1);
    row("too slow", {1, 1, 1, 1, 0.49F}, 4, 1);
    row("three, one too fast", {1, 1.01F, 3}, 2, 1.005F);
    row("two that disagree", {1, 3}, 2, 2);
    row("two camps", {1, 1, 3, 3}, 4, 2);
    // Here the distances are 0, 0.1, 0.1, 0.2, 0.2 and that of the last: ten times 1.4826 x 0.15.
    row("spread, inside", {0.8F, 0.9F, 1, 1.1F, 1.2F, 2.7F}, 6, 1.05F);
    row("spread, outside", {0.8F, 0.9F, 1, 1.1F, 1.2F, 3.5F}, 5, 1);
}

void tst_groupRules::outliers()
{
    QFETCH(QVector<float>, speeds);
    QFETCH(float, speed);
    QVector<countedUpload> uploads;
    for (int i = 0; i < speeds.size(); ++i)
        uploads.append(from(QByteArray::number(i), i % 2, speeds.at(i)));
    const groupVerdict verdict = judge(uploads, ruleSet::open);
    QTEST(verdict.sources, "sources");
    QVERIFY2(isNear(speedOf(verdict.beta), speed),
             qPrintable(QString::number(static_cast<double>(speedOf(verdict.beta)))));
    // One test suffices.
    for (countedUpload &upload : uploads) {
        const benchResults::test own = upload.machine.getTests().value(mandel);
        upload.machine = wholeRun(cpu);
        upload.machine.setTest(mandel, own);
    }
    const groupVerdict oneTest = judge(uploads, ruleSet::open);
    QCOMPARE(oneTest.sources, verdict.sources);
    QCOMPARE(speedOf(oneTest.beta), speedOf(verdict.beta));
}

void tst_groupRules::outliersAreNoSources()
{
    const groupVerdict verdict =
        judge({from("a", 1), from("b", 1, 1.01F), from("c", 2, 9)}, ruleSet::open);
    QCOMPARE(verdict.sources, 2);
    QVERIFY(!verdict.normal);
    QVERIFY(verdict.beta);
}

void tst_groupRules::outliersAreNamed()
{
    QVector<countedUpload> uploads = {from("a", 1, 9), from("a", 1), from("a", 1), from("b", 1),
                                      from("c", 2, 0.1F)};
    uploads.append(from("d", 1, 9));
    uploads.last().machine.setTest(mandel, benchResults::test(0)); // no whole run
    QCOMPARE(outliersAmong(uploads), QVector<int>({0, 4}));
    QCOMPARE(outliersAmong({}), QVector<int>());
    QCOMPARE(outliersAmong(threeSources()), QVector<int>());
}

void tst_groupRules::names_data()
{
    QTest::addColumn<QString>("spellings"); // with bars between them
    QTest::addColumn<QString>("wanted");
    QTest::newRow("most frequent") << "aMD X|AMD X|AMD X"
                                   << "AMD X";
    QTest::newRow("equally many") << "amd X|Amd X|AMD X"
                                  << "AMD X";
    QTest::newRow("with marks") << "AMD(R) X CPU |AMD\u00AE  X CPU|AMD X"
                                << "AMD(R) X CPU";
    QTest::newRow("normalised") << "\uFF21MD  X|\uFF21MD X |amd X"
                                << "AMD X";
}

void tst_groupRules::names()
{
    QFETCH(QString, spellings);
    QStringList names = spellings.split(QLatin1Char('|'));
    std::sort(names.begin(), names.end());
    do {
        QVector<countedUpload> uploads;
        for (int i = 0; i < names.size(); ++i)
            uploads.append(from(QByteArray::number(i), i, 1, names.at(i)));
        const groupVerdict verdict = judge(uploads, ruleSet::open);
        QTEST(verdict.normal->getName(), "wanted");
        QTEST(verdict.normal->getCpu(), "wanted");
    } while (std::next_permutation(names.begin(), names.end()));
}

void tst_groupRules::computerNamesAreDropped()
{
    const groupVerdict verdict = judge(threeSources(), ruleSet::open);
    QCOMPARE(threeSources().first().machine.getName(), QStringLiteral("LAB7"));
    QCOMPARE(verdict.normal->getName(), cpu);
    QCOMPARE(verdict.beta->getName(), cpu);
}

void tst_groupRules::orderDoesNotMatter()
{
    QVector<countedUpload> uploads;
    for (int i = 0; i < 40; ++i) {
        const QString name = i % 3 == 0 ? QStringLiteral("SOME cpu") : cpu;
        uploads.append(from(QByteArray::number(i % 7), i % 4,
                            1 + 0.01F * static_cast<float>(i * 17 % 40), name));
        uploads.last().received += i * 31 % 40;
    }
    uploads.append(from("late", 3, 9));
    const QString wanted = text(judge(uploads, ruleSet::open));
    std::mt19937 random(1);
    for (int i = 0; i < 10; ++i) {
        std::shuffle(uploads.begin(), uploads.end(), random);
        QCOMPARE(text(judge(uploads, ruleSet::open)), wanted);
    }
}

QTEST_APPLESS_MAIN(tst_groupRules)
#include "tst_groupRules.moc"
