// SPDX-License-Identifier: GPL-3.0-or-later
#include "tools/reference/coreFamilies.h"
#include "tools/reference/generations.h"
#include "tools/reference/referenceList.h"
#include "tools/reference/referenceModel.h"

#include <QProcess>
#include <QTemporaryDir>
#include <QtTest>

using namespace reference;

namespace
{

const QString tablesDirectory = QStringLiteral(FENNICK_SOURCE_DIR "/tools/reference/tables");

QByteArray contentOf(const QString &path)
{
    QFile file(path);
    return file.open(QFile::ReadOnly) ? file.readAll() : QByteArray();
}

} // namespace

/// The program that writes the embedded list, and what it prints for the document and its picture.
class tst_makeReference : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void init();

    void list();
    void factors();
    void generations();
    void wrongUse_data();
    void wrongUse();
    void missingTables();
    void lostOutput_data();
    void lostOutput();

    void generationRows();
    void generationValues();
    void pictureShowsAllFamilies();

private:
    /// Runs the program with @p arguments, and puts what it prints into output and messages.
    int run(const QStringList &arguments);

    tables facts;
    QByteArray output;
    QByteArray messages;
    /// Where the program's standard output goes if it is not read.
    QString outputFile;
};

void tst_makeReference::initTestCase()
{
    const auto read = readTables(tablesDirectory);
    QVERIFY2(read, qPrintable(read ? QString() : read.error()));
    facts = *read;
}

void tst_makeReference::init()
{
    outputFile.clear();
}

int tst_makeReference::run(const QStringList &arguments)
{
    QProcess program;
    if (!outputFile.isEmpty())
        program.setStandardOutputFile(outputFile);
    program.start(QStringLiteral(FENNICK_MAKE_REFERENCE), arguments);
    if (!program.waitForFinished() || program.exitStatus() != QProcess::NormalExit)
        return -1;
    output = program.readAllStandardOutput();
    messages = program.readAllStandardError();
    return program.exitCode();
}

void tst_makeReference::list()
{
    const QTemporaryDir directory;
    const QString path = directory.filePath(QStringLiteral("benches.xml"));
    QCOMPARE(run({tablesDirectory, QStringLiteral("--list"), path}), 0);
    QVERIFY(contentOf(path).size() > 100000);
    QCOMPARE(contentOf(path), machineList(facts).value());
    QCOMPARE(output + messages, QByteArray());
}

void tst_makeReference::factors()
{
    QCOMPARE(run({tablesDirectory, QStringLiteral("--factors")}), 0);
    QCOMPARE(output, factorTable(facts).value());
    QCOMPARE(output.count('\n'), 20);
}

void tst_makeReference::generations()
{
    QCOMPARE(run({tablesDirectory, QStringLiteral("--generations")}), 0);
    QCOMPARE(output, generationTable(facts).value());
}

void tst_makeReference::wrongUse_data()
{
    QTest::addColumn<QStringList>("arguments");
    const QString list = QStringLiteral("--list");
    QTest::newRow("nothing") << QStringList();
    QTest::newRow("no mode") << QStringList{tablesDirectory};
    QTest::newRow("unknown mode") << QStringList{tablesDirectory, QStringLiteral("--lists")};
    QTest::newRow("list without a file") << QStringList{tablesDirectory, list};
    QTest::newRow("two files") << QStringList{tablesDirectory, list, QString(), QString()};
    QTest::newRow("factors with a file")
        << QStringList{tablesDirectory, QStringLiteral("--factors"), QString()};
    QTest::newRow("generations with a file")
        << QStringList{tablesDirectory, QStringLiteral("--generations"), QString()};
}

void tst_makeReference::wrongUse()
{
    QFETCH(QStringList, arguments);
    QCOMPARE(run(arguments), 2);
    QVERIFY2(messages.startsWith("Usage: "), messages.constData());
    QCOMPARE(output, QByteArray());
}

void tst_makeReference::missingTables()
{
    QCOMPARE(run({QStringLiteral("/nowhere"), QStringLiteral("--factors")}), 1);
    QCOMPARE(messages, QByteArray("microarchitectures.csv is empty or missing\n"));
    QCOMPARE(output, QByteArray());
}

void tst_makeReference::lostOutput_data()
{
    QTest::addColumn<QStringList>("mode");
    QTest::addColumn<QByteArray>("message");
    QTest::newRow("list") << QStringList{QStringLiteral("--list"), QStringLiteral("/nowhere/a.xml")}
                          << QByteArray("Cannot write /nowhere/a.xml\n");
    if (QFile::exists(QStringLiteral("/dev/full"))) {
        QTest::newRow("factors") << QStringList{QStringLiteral("--factors")}
                                 << QByteArray("Cannot write to standard output\n");
    }
}

void tst_makeReference::lostOutput()
{
    QFETCH(QStringList, mode);
    outputFile = QStringLiteral("/dev/full");
    QCOMPARE(run(QStringList{tablesDirectory} + mode), 1);
    QTEST(messages, "message");
}

/// A row for each single-core test and each core of a family, in this order.
void tst_makeReference::generationRows()
{
    QStringList expected = {QStringLiteral("test\tfamily\tcore\tyear")};
    for (const modelledTest &test : modelledTests()) {
        for (const coreFamily &family : coreFamilies()) {
            for (const QString &core : family.cores) {
                if (!test.multicore) {
                    expected << QStringLiteral("%1\t%2\t%3\t%4")
                                    .arg(test.name, QString::fromLatin1(family.name), core,
                                         QString::number(facts.cores.value(core).year));
                }
            }
        }
    }
    QStringList rows = QString::fromUtf8(generationTable(facts).value()).split(QLatin1Char('\n'));
    QCOMPARE(rows.takeLast(), QString());
    for (QString &row : rows)
        row = row.section(QLatin1Char('\t'), 0, 3);
    QCOMPARE(rows, expected);
}

/// The cores of the calibration machine reach at 1 GHz what was measured, scaled by the clock. All
/// tests but lines are far from the limit of its memory.
void tst_makeReference::generationValues()
{
    const QByteArray table = generationTable(facts).value();
    QCOMPARE(facts.calibrationMachine.boostMhz, 3210.0);
    for (const measuredResult &measured : facts.calibration) {
        if (measured.test.contains(QLatin1String("multicore"))
            || measured.test == QLatin1String("lines"))
            continue;
        const QByteArray row = '\n' + measured.test.toUtf8() + "\tAMD Zen\tZen 3\t2020\t"
                               + QByteArray::number(measured.result / 3.21) + '\n';
        QVERIFY2(table.contains(row), row.constData());
    }
}

/// A family that the picture's script does not name would be left out of the picture.
void tst_makeReference::pictureShowsAllFamilies()
{
    const QByteArray script =
        contentOf(QStringLiteral(FENNICK_SOURCE_DIR "/tools/reference/generations.gnuplot"));
    for (const coreFamily &family : coreFamilies())
        QVERIFY2(script.contains('"' + QByteArray(family.name) + '"'), family.name);
    for (const char *test : {"rotozoom 'linear'", "mandel", "zlib uncompress"}) {
        QVERIFY(script.contains('"' + QByteArray(test) + '"'));
        QVERIFY(generationTable(facts).value().contains('\n' + QByteArray(test) + '\t'));
    }
    QVERIFY(script.contains("Modelled, not measured"));
}

QTEST_GUILESS_MAIN(tst_makeReference)
#include "tst_makeReference.moc"
