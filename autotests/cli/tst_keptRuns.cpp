// SPDX-License-Identifier: GPL-3.0-or-later

// What the real program does with runs that are kept, and with what should not be there.

#include "console/exitCode.h"
#include "data/benchXml.h"
#include "data/runFixtures.h"
#include "data/runJson.h"
#include "data/runStore.h"
#include "support/consoleProgram.h"
#include "support/dataDirectory.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QRegularExpression>
#include <QtTest>
#include <QXmlStreamWriter>

namespace
{

/// A server that does not exist: these tests stay on this machine.
const QString nobody = QStringLiteral("--server=127.0.0.1:1");

QStringList words(const char *text)
{
    return QString::fromLatin1(text).split(QLatin1Char(' '));
}

/// A short run of one test, twice.
QStringList shortRun(const QStringList &more = {})
{
    return words("-t mandel -n 2 --time 1 --resolution 320x240") + QStringList(nobody) + more;
}

} // namespace

class tst_keptRuns : public QObject
{
    Q_OBJECT

private slots:
    void init() { directory = std::make_unique<dataDirectory>(); }
    void cleanup() { directory.reset(); }

    void nothingKept_data();
    void nothingKept();
    void aRunIsKeptAndShown();
    void twoRunsAreCompared();
    void wholeRunsHaveAPlace();
    void storedResults();
    void filesThatAreNoRuns_data();
    void filesThatAreNoRuns();
    void aDamagedRunAmongOthers();
    void lostOutputs_data();
    void lostOutputs();
    void whatWasThereStays();
    void runThatCannotBeKept();
    void closedStandardError();
    void readerThatGoesAway();

private:
    /// Empty if it could not be kept, else the name of its file.
    QString keep(const runRecord &run) const
    {
        return runStore(directory->path(QStringLiteral("runs"))).append(run).value_or(QString());
    }
    QString file(const QByteArray &content) const
    {
        return directory->write(QStringLiteral("file.json"), content)
                   ? directory->path(QStringLiteral("file.json"))
                   : QString();
    }

    std::unique_ptr<dataDirectory> directory;
};

void tst_keptRuns::nothingKept_data()
{
    QTest::addColumn<QString>("command");
    QTest::addColumn<QString>("sentence");
    QTest::newRow("history") << "history"
                             << "fennick-cli: no run has been kept yet\n";
    QTest::newRow("show") << "show"
                          << "fennick-cli: no run has been kept yet\n";
    QTest::newRow("show by number") << "show 1"
                                    << "fennick-cli: no run is kept\n";
    QTest::newRow("compare") << "compare"
                             << "fennick-cli: only runs that were kept can be compared, and there "
                                "are not two yet\n";
    QTest::newRow("stored") << "compare stored stored"
                            << "fennick-cli: no results are stored yet: a full run stores them\n";
    QTest::newRow("unknown machine")
        << "compare --with no-such-machine"
        << "fennick-cli: no machine of the list is called 'no-such-machine'\n";
}

void tst_keptRuns::nothingKept()
{
    QFETCH(QString, command);
    consoleProgram p(command.split(QLatin1Char(' ')));
    QCOMPARE(p.exitCode(), int(exitFailure));
    QTEST(p.err, "sentence");
    QCOMPARE(p.out, QString());
}

void tst_keptRuns::aRunIsKeptAndShown()
{
    consoleProgram run(shortRun({QStringLiteral("--json"), QStringLiteral("-")}));
    QCOMPARE(run.exitCode(), int(exitSuccess));
    const outcome<runRecord> printed = readRunRecord(run.out.toUtf8());
    QVERIFY2(printed.has_value(), qPrintable(run.out));
    QCOMPARE(printed->tests.size(), std::size_t(2));
    QCOMPARE(printed->tests.back().repetition, 1);
    QVERIFY(printed->tests.back().value().value_or(0) > 0);
    // The log has gone to where nobody reads it for a record.
    QVERIFY(run.err.contains(QStringLiteral("/s MPixel (avg ")));

    const QStringList kept = QDir(directory->path(QStringLiteral("runs"))).entryList(QDir::Files);
    QCOMPARE(kept.size(), 1);
    for (const QString &which : {QStringLiteral("last"), QStringLiteral("1"), kept.first()}) {
        consoleProgram show(
            {QStringLiteral("show"), which, QStringLiteral("--json"), QStringLiteral("-")});
        QCOMPARE(show.exitCode(), int(exitSuccess));
        QCOMPARE(show.out, run.out);
    }
    consoleProgram show(words("show"));
    QCOMPARE(show.exitCode(), int(exitSuccess));
    QVERIFY2(show.out.contains(QRegularExpression(QStringLiteral("\nmandel +[0-9.]+ +MPixel/s "))),
             qPrintable(show.out));
    consoleProgram history(words("history"));
    QCOMPARE(history.exitCode(), int(exitSuccess));
    QCOMPARE(history.out.count(QLatin1Char('\n')), 2);
}

void tst_keptRuns::twoRunsAreCompared()
{
    QVERIFY(!keep(repeatedRun(5, 1, 0.16)).isEmpty());
    QVERIFY(!keep(repeatedRun(5, 2, 0.08)).isEmpty());
    consoleProgram last(words("compare"));
    QCOMPARE(last.exitCode(), int(exitSuccess));
    const auto ratioOf = [](const QString &text) {
        static const QRegularExpression mean(
            QStringLiteral("Geometric mean of B / A over 2 tests: ([0-9.]+)\n"));
        return mean.match(text).captured(1).toDouble();
    };
    QVERIFY2(qAbs(ratioOf(last.out) - 2) < 0.02, qPrintable(last.out));
    // These runs are of two tests, which say nothing about places among machines.
    QVERIFY(!last.out.contains(QStringLiteral("Combined score")));
    consoleProgram other(words("compare 2 1"));
    QCOMPARE(other.exitCode(), int(exitSuccess));
    QVERIFY2(qAbs(ratioOf(other.out) - 0.5) < 0.01, qPrintable(other.out));
    consoleProgram same(words("compare 1 1"));
    QCOMPARE(same.exitCode(), int(exitSuccess));
    QCOMPARE(same.out.count(QStringLiteral("no clear difference")), 2);
}

void tst_keptRuns::wholeRunsHaveAPlace()
{
    consoleProgram list(words("--list --json"));
    QCOMPARE(list.exitCode(), int(exitSuccess));
    const QJsonArray tests = QJsonDocument::fromJson(list.out.toUtf8())
                                 .object()
                                 .value(QStringLiteral("tests"))
                                 .toArray();
    runRecord run;
    for (const QJsonValue &test : tests) {
        testRun one;
        one.name = test.toObject().value(QStringLiteral("name")).toString();
        one.work = 1'000'000; // better than every machine
        one.average = 1;
        one.rounds.push_back({1, std::chrono::seconds(1)});
        run.tests.push_back(one);
    }
    QVERIFY(!run.tests.empty());
    QVERIFY(!keep(run).isEmpty());
    consoleProgram p(words("compare last --with i7"));
    QVERIFY2(p.exitCode() == int(exitSuccess), qPrintable(p.err));
    static const QRegularExpression line(
        QStringLiteral("Combined score among the ([0-9]+) machines of the list: "
                       "A has [0-9]+\\.[0-9], place ([0-9]+); B has 100\\.0, place 1\n$"));
    const QRegularExpressionMatch found = line.match(p.out);
    QVERIFY2(found.hasMatch(), qPrintable(p.out));
    QVERIFY(found.captured(1).toInt() > 100);
    QVERIFY(found.captured(2).toInt() > 1);
}

/// Those of the ranking are no run, and can be compared with one all the same.
void tst_keptRuns::storedResults()
{
    benchResults machine(QStringLiteral("pc"), QStringLiteral("linux"), QStringLiteral("some"),
                         3e9F, 4);
    machine.setTest(QStringLiteral("mandel"), benchResults::test(20));
    QByteArray content;
    QXmlStreamWriter xml(&content);
    xml.writeStartElement(QStringLiteral("Fennick"));
    writeMachine(xml, machine);
    xml.writeEndDocument();
    QVERIFY(directory->write(QStringLiteral("user_data.xml"), content));
    QVERIFY(!keep(repeatedRun(5)).isEmpty());
    consoleProgram p(words("compare stored last"));
    QVERIFY2(p.exitCode() == int(exitSuccess), qPrintable(p.err));
    QVERIFY2(p.out.startsWith(QStringLiteral("A: stored results of ")), qPrintable(p.out));
    QVERIFY(p.out.contains(QStringLiteral("A has no result of: lines\n")));
}

void tst_keptRuns::filesThatAreNoRuns_data()
{
    QTest::addColumn<QByteArray>("content");
    QTest::addColumn<QString>("word");
    const QByteArray run = toJson(repeatedRun(1));
    QByteArray newer = run;
    newer.replace("\"schema\":1", "\"schema\":2");
    QVERIFY(newer != run);
    QTest::newRow("empty") << QByteArray() << "JSON";
    QTest::newRow("text") << QByteArray("mandel 28\n") << "JSON";
    QTest::newRow("another document") << QByteArray("{\"a\": 1}") << "no record";
    QTest::newRow("newer schema") << newer << "newer";
    QTest::newRow("cut") << run.left(run.size() / 2) << "JSON";
    QTest::newRow("too long") << QByteArray(int(runJson::longestFile) + 1, ' ') << "longer than";
}

void tst_keptRuns::filesThatAreNoRuns()
{
    QFETCH(QByteArray, content);
    QFETCH(QString, word);
    const QString path = file(content);
    for (const QString &command : {QStringLiteral("show"), QStringLiteral("compare")}) {
        consoleProgram p({command, path});
        QCOMPARE(p.exitCode(), int(exitFailure));
        QVERIFY2(p.err.startsWith(QStringLiteral("fennick-cli: '") + path)
                     && p.err.count(QLatin1Char('\n')) == 1,
                 qPrintable(p.err));
        QVERIFY2(p.err.contains(word), qPrintable(p.err));
        QCOMPARE(p.out, QString());
    }
    QCOMPARE(directory->read(QStringLiteral("file.json")), content);
}

void tst_keptRuns::aDamagedRunAmongOthers()
{
    QVERIFY(!keep(repeatedRun(1)).isEmpty());
    const QString damaged = QStringLiteral("runs/") + keep(repeatedRun(1));
    QVERIFY(!keep(repeatedRun(1)).isEmpty());
    QVERIFY(directory->write(damaged, "{"));
    consoleProgram p(words("history"));
    QCOMPARE(p.exitCode(), int(exitSuccess));
    QCOMPARE(p.err.count(QLatin1Char('\n')), 1);
    QVERIFY(p.err.contains(damaged));
    QCOMPARE(p.out.count(QLatin1Char('\n')), 3);
    QCOMPARE(directory->read(damaged), QByteArray("{"));
}

void tst_keptRuns::lostOutputs_data()
{
    QTest::addColumn<QString>("place");
    QTest::addColumn<bool>("isSeenBefore"); // whether the run need not be made to see it
    QTest::newRow("no folder") << "/no/such/folder/run.json" << true;
    QTest::newRow("a folder") << "/" << true;
#ifdef Q_OS_LINUX
    QTest::newRow("full disk") << "/dev/full" << false;
#endif
}

void tst_keptRuns::lostOutputs()
{
    QFETCH(QString, place);
    QFETCH(bool, isSeenBefore);
    for (const QString &option :
         {QStringLiteral("--json"), QStringLiteral("--csv"), QStringLiteral("--markdown")}) {
        consoleProgram p(words("-t mandel --time 1 --resolution 320x240")
                         + QStringList({nobody, option, place}));
        QCOMPARE(p.exitCode(), int(exitLostOutput));
        QVERIFY2(p.err.contains(QStringLiteral("fennick-cli: '%1' cannot be written: ").arg(place)),
                 qPrintable(p.err));
        QCOMPARE(p.out.isEmpty(), isSeenBefore);
    }
}

/// A file is replaced by a whole one, or not at all.
void tst_keptRuns::whatWasThereStays()
{
    const QString path = file("precious");
    QVERIFY(!keep(repeatedRun(1)).isEmpty());
    consoleProgram failing(
        {QStringLiteral("show"), QStringLiteral("9"), QStringLiteral("--json"), path});
    QCOMPARE(failing.exitCode(), int(exitFailure));
    QCOMPARE(directory->read(QStringLiteral("file.json")), QByteArray("precious"));
    consoleProgram p({QStringLiteral("show"), QStringLiteral("1"), QStringLiteral("--json"), path});
    QCOMPARE(p.exitCode(), int(exitSuccess));
    QCOMPARE(directory->read(QStringLiteral("file.json")), toJson(repeatedRun(1)));
}

void tst_keptRuns::runThatCannotBeKept()
{
    QVERIFY(directory->write(QStringLiteral("runs"), "a file where the folder should be"));
    consoleProgram p(shortRun());
    QCOMPARE(p.exitCode(), int(exitLostOutput));
    QVERIFY2(p.err.contains(QStringLiteral("fennick-cli: the run is not kept: ")),
             qPrintable(p.err));
    QVERIFY(p.out.contains(QStringLiteral("/s MPixel (avg "))); // it was made and printed
}

void tst_keptRuns::closedStandardError()
{
#ifdef Q_OS_UNIX
    consoleProgram p(QStringLiteral("exec \"$@\" 2>&-"),
                     shortRun({QStringLiteral("--csv"), QStringLiteral("-")}));
    QCOMPARE(p.exitCode(), int(exitSuccess));
    QVERIFY2(p.out.count(QLatin1Char('\n')) == 3, qPrintable(p.out)); // a heading and two rows
#else
    QSKIP("needs a shell");
#endif
}

/// Nobody reads what is printed any more: the run ends, and is kept.
void tst_keptRuns::readerThatGoesAway()
{
#ifdef Q_OS_UNIX
    consoleProgram p(QStringLiteral("{ \"$@\"; echo $? >&2; } | :"), shortRun());
    QCOMPARE(p.exitCode(), 0);
    QVERIFY2(p.err.endsWith(QStringLiteral("\n%1\n").arg(exitLostOutput)), qPrintable(p.err));
    QCOMPARE(QDir(directory->path(QStringLiteral("runs"))).entryList(QDir::Files).size(), 1);
#else
    QSKIP("needs a shell");
#endif
}

QTEST_GUILESS_MAIN(tst_keptRuns)
#include "tst_keptRuns.moc"
