// SPDX-License-Identifier: GPL-3.0-or-later
#include "data/benchReader.h"

#include <QtTest>
#include <QXmlStreamReader>

Q_DECLARE_METATYPE(benchFault::kind)

namespace
{

/// What is found in a whole list, faults or not.
struct reading {
    QVector<benchResults> machines;
    QVector<benchFault> faults;
};

reading read(const QByteArray &xml)
{
    reading found;
    QXmlStreamReader stream(xml);
    benchReader reader(found.machines);
    while (!stream.atEnd()) {
        stream.readNext();
        if (const auto fault = reader.take(stream))
            found.faults.append(*fault);
    }
    return found;
}

const QByteArray good =
    "<F><bench machineName='LAB7' os='linux' cpu='Some CPU' clock='2000000000' threadCount='8'>"
    "<test name='mandel' result='12.5'/><test name='lines' result='3'/></bench></F>";

QByteArray with(const QByteArray &what, const QByteArray &instead)
{
    Q_ASSERT(good.contains(what));
    return QByteArray(good).replace(what, instead);
}

} // namespace

class tst_benchReader : public QObject
{
    Q_OBJECT

private slots:
    void nothingWrong();
    void faults_data();
    void faults();
    void readInSpiteOfFaults();
    void firstFaultOfAnElement();
    void numbers_data();
    void numbers();
    void ownElements();
    void limits();
    void quotations();
};

void tst_benchReader::nothingWrong()
{
    const reading found = read(good);
    QVERIFY(found.faults.isEmpty());
    QCOMPARE(found.machines.size(), 1);
    const benchResults &machine = found.machines.first();
    QCOMPARE(machine.getName(), QStringLiteral("LAB7"));
    QCOMPARE(machine.getOs(), QStringLiteral("linux"));
    QCOMPARE(machine.getCpu(), QStringLiteral("Some CPU"));
    QCOMPARE(machine.getFrequency(), 2e9F);
    QCOMPARE(machine.getThreads(), 8);
    QCOMPARE(machine.getTests().size(), 2);
    QCOMPARE(machine.getTests().value(QStringLiteral("mandel")).value, 12.5F);
}

void tst_benchReader::faults_data()
{
    QTest::addColumn<QByteArray>("xml");
    QTest::addColumn<benchFault::kind>("what");
    QTest::addColumn<QString>("sentence");
    const auto row = [](const char *name, const QByteArray &xml, benchFault::kind what,
                        const char *sentence) {
        QTest::newRow(name) << xml << what << QString::fromLatin1(sentence);
    };
    row("document type", "<!DOCTYPE F>" + good, benchFault::documentType,
        "a document type is not allowed");
    row("declarations", "<!DOCTYPE F [<!ENTITY a 'b'>]>" + good, benchFault::declarations,
        "a document type is not allowed");
    row("other element", with("</bench>", "</bench><other/>"), benchFault::otherElement,
        "there must be no element 'other' here");
    row("machine in a machine", with("<test name='lines' result='3'/>", "<bench/>"),
        benchFault::otherElement, "there must be no element 'bench' here");
    row("machine as the root", "<bench/>", benchFault::otherElement,
        "there must be no element 'bench' here");
    row("machine too deep", "<F><x><bench/></x></F>", benchFault::otherElement,
        "there must be no element 'x' here");
    row("result of nobody", "<F><test name='lines' result='3'/></F>", benchFault::otherElement,
        "there must be no element 'test' here");
    row("result behind its machine", with("</bench>", "</bench><test name='a' result='1'/>"),
        benchFault::otherElement, "there must be no element 'test' here");
    row("result in a result", with("'12.5'/>", "'12.5'><test name='a' result='1'/></test>"),
        benchFault::otherElement, "there must be no element 'test' here");
    for (const char *name : {"machineName", "os", "cpu", "clock", "threadCount"}) {
        QTest::addRow("no %s", name)
            << QByteArray(good).replace(QByteArray(" ") + name + '=', " x=")
            << benchFault::missingAttribute
            << QStringLiteral("the machine has no '%1'").arg(QLatin1String(name));
    }
    row("no attribute at all", with("<F>", "<F><bench/>"), benchFault::missingAttribute,
        "the machine has no 'machineName'");
    row("result without a name", with("name='lines' ", ""), benchFault::missingAttribute,
        "the result has no 'name'");
    row("result without a value", with(" result='3'", ""), benchFault::missingAttribute,
        "the result has no 'result'");
    row("clock", with("2000000000", "fast"), benchFault::invalidNumber,
        "'clock' is not a number: 'fast'");
    row("thread count", with("'8'", "''"), benchFault::invalidNumber,
        "'threadCount' is not a number: ''");
    row("result", with("12.5", "nan"), benchFault::invalidNumber,
        "'result' is not a number: 'nan'");
    row("result twice", with("'lines'", "'mandel'"), benchFault::repeatedResult,
        "the test 'mandel' appears twice");
}

void tst_benchReader::faults()
{
    QFETCH(QByteArray, xml);
    const reading found = read(xml);
    QVERIFY(!found.faults.isEmpty());
    QTEST(found.faults.first().what, "what");
    QTEST(found.faults.first().sentence(), "sentence");
}

/// Whoever passes over the faults gets all that makes sense.
void tst_benchReader::readInSpiteOfFaults()
{
    const reading found =
        read("<F><test name='a' result='1'/><bench machineName='A' clock='x' threadCount='nan'>"
             "<deep><test name='t' result='1'/></deep><test name='t' result='2'/></bench>"
             "<bench/><test result='3'/><x><bench os='B'/></x></F>");
    QCOMPARE(found.machines.size(), 2);
    const benchResults &machine = found.machines.first();
    QCOMPARE(machine.getName(), QStringLiteral("A"));
    QCOMPARE(machine.getFrequency(), 0.0F);
    QCOMPARE(machine.getThreads(), 0);
    QCOMPARE(machine.getTests().keys(), QStringList({QString(), QStringLiteral("t")}));
    QCOMPARE(machine.getTests().value(QStringLiteral("t")).value, 2.0F);
    QCOMPARE(machine.getTests().value(QString()).value, 3.0F);
    QCOMPARE(found.machines.last().getOs(), QStringLiteral("B"));
    QCOMPARE(found.faults.size(), 9);
}

void tst_benchReader::firstFaultOfAnElement()
{
    const reading found = read("<F><bench machineName='A' os='' cpu='' clock='x'/></F>");
    QCOMPARE(found.faults.size(), 1);
    QCOMPARE(found.faults.first().sentence(), QStringLiteral("the machine has no 'threadCount'"));
}

void tst_benchReader::numbers_data()
{
    QTest::addColumn<QByteArray>("text");
    QTest::addColumn<int>("threads");
    QTest::addColumn<bool>("isNumber");
    QTest::newRow("whole") << QByteArray("8") << 8 << true;
    QTest::newRow("written as a fraction") << QByteArray("8.0") << 8 << true;
    QTest::newRow("truncated") << QByteArray("8.9") << 8 << true;
    QTest::newRow("exponent") << QByteArray("+1.6e1") << 16 << true;
    QTest::newRow("negative") << QByteArray("-3.9") << -3 << true;
    QTest::newRow("blank around it") << QByteArray(" 8 ") << 8 << false;
    QTest::newRow("hexadecimal") << QByteArray("0x10") << 0 << false;
    QTest::newRow("decimal comma") << QByteArray("8,5") << 0 << false;
    QTest::newRow("inf") << QByteArray("inf") << 0 << false;
    QTest::newRow("nan") << QByteArray("nan") << 0 << false;
    QTest::newRow("nothing") << QByteArray() << 0 << false;
}

/// One way to read a number, for whoever reads it.
void tst_benchReader::numbers()
{
    QFETCH(QByteArray, text);
    const reading found = read(with("'8'", '\'' + text + '\''));
    QTEST(found.machines.first().getThreads(), "threads");
    QTEST(found.faults.isEmpty(), "isNumber");
}

/// Elements around the machines, which the caller keeps to itself.
void tst_benchReader::ownElements()
{
    const QByteArray machine = QByteArray(good).replace("<F>", "").replace("</F>", "");
    QXmlStreamReader stream("<export><upload>" + machine + "</upload><upload>" + machine
                            + "</upload></export>");
    QVector<benchResults> machines;
    benchReader reader(machines);
    int uploads = 0;
    while (!stream.atEnd()) {
        stream.readNext();
        const bool isTag = stream.isStartElement() || stream.isEndElement();
        if (isTag && stream.name() == QLatin1String("upload")) {
            QVERIFY(!reader.isInMachine());
            ++uploads;
            continue;
        }
        QVERIFY(!reader.take(stream).has_value());
        if (stream.name() == QLatin1String("test"))
            QVERIFY(reader.isInMachine());
    }
    QCOMPARE(uploads, 4);
    QCOMPARE(machines.size(), 2);
}

void tst_benchReader::limits()
{
    const auto last = [](const QByteArray &xml) { return read(xml).faults.last().what; };
    QByteArray attributes;
    for (int i = 0; i < 65; ++i)
        attributes += " a" + QByteArray::number(i) + "=''";
    QCOMPARE(last("<F><x" + attributes + "/></F>"), benchFault::tooManyAttributes);
    QCOMPARE(last("<F>" + QByteArray("<x>").repeated(64)), benchFault::tooDeep);
    QCOMPARE(last("<F>" + QByteArray("<x>").repeated(63)), benchFault::otherElement);

    QVector<benchResults> machines(maximumMachines + 1);
    benchReader reader(machines);
    QXmlStreamReader stream("<F>" + QByteArray("<bench os=''/>").repeated(maximumMachines + 1));
    int left = 0;
    while (!stream.atEnd()) {
        stream.readNext();
        const auto fault = reader.take(stream);
        left += fault && fault->what == benchFault::tooManyMachines ? 1 : 0;
    }
    QCOMPARE(left, 1);
    QCOMPARE(machines.size(), 2 * maximumMachines + 1);

    QByteArray results("<F><bench os=''>");
    for (int i = 0; i <= maximumResults; ++i)
        results += "<test name='" + QByteArray::number(i) + "' result='1'/>";
    const reading found = read(results + "<test name='7' result='2'/>");
    QCOMPARE(found.machines.first().getTests().size(), maximumResults);
    QCOMPARE(found.machines.first().getTests().value(QStringLiteral("7")).value, 2.0F);
    QCOMPARE(found.faults.at(1).what, benchFault::tooManyResults);
    QCOMPARE(found.faults.last().what, benchFault::repeatedResult);
}

/// A sentence repeats no more than a line of what it complains about.
void tst_benchReader::quotations()
{
    const QByteArray text(4'000, 'x');
    for (const QByteArray &xml :
         {"<F><" + text + "/></F>", with("12.5", text), with("'lines'", '\'' + text + '\''),
          with("<test name='mandel'",
               "<test name='" + text + "' result='1'/><test name='" + text + '\'')}) {
        for (const benchFault &fault : read(xml).faults)
            QVERIFY(fault.sentence().size() < 200);
    }
    QCOMPARE(read("<F><" + text + "/></F>").faults.size(), 1);
    QCOMPARE(read(with("12.5", text)).faults.size(), 1);
}

QTEST_APPLESS_MAIN(tst_benchReader)
#include "tst_benchReader.moc"
