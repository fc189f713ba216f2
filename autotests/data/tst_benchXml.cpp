// SPDX-License-Identifier: GPL-3.0-or-later
#include "data/benchXml.h"

#include "data/benchReader.h"
#include "machineListXml.h"

#include <QTextCodec>
#include <QtTest>
#include <QXmlStreamWriter>

#include <cmath>

namespace
{

float resultOf(benchResults machine, const char *name)
{
    const benchResults::test *test = machine.findTest(QLatin1String(name));
    return test ? test->value : -1.0F;
}

} // namespace

class tst_benchXml : public QObject
{
    Q_OBJECT

private slots:
    void builtInForm();
    void writtenForm();
    void appends();
    void attributes_data();
    void attributes();
    void numbers_data();
    void numbers();
    void faults_data();
    void faults();
    void testBeforeAnyBench();
    void otherElements();
    void encodings_data();
    void encodings();
    void writtenCharacters_data();
    void writtenCharacters();
    void acrossBlocks();
};

void tst_benchXml::builtInForm()
{
    const QVector<benchResults> machines = machinesOf(twoMachines);
    QCOMPARE(machines.size(), 2);
    QCOMPARE(machines[0].getName(), QStringLiteral("Lab & Co"));
    QCOMPARE(machines[0].getOs(), QStringLiteral("linux"));
    QCOMPARE(machines[0].getCpu(), QStringLiteral("Some CPU"));
    QCOMPARE(machines[0].getFrequency(), 3.5e9F);
    QCOMPARE(machines[0].getThreads(), 8);
    QVERIFY(!machines[0].isMeasured());
    QCOMPARE(machines[0].getTests().size(), 2);
    QCOMPARE(resultOf(machines[0], "shellsort"), 12.5F);
    QCOMPARE(resultOf(machines[0], "rotozoom 'linear (multicore)'"), 1500.0F);
    QCOMPARE(machines[1].getName(), QStringLiteral("B"));
    QCOMPARE(resultOf(machines[1], "colors "), 7.0F);
    QCOMPARE(resultOf(machines[1], "shellsort"), -1.0F);
}

void tst_benchXml::writtenForm()
{
    const QVector<benchResults> machines =
        machinesOf("<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<Fennick>\n    "
                   "<bench machineName=\"\xc3\xa4\" os=\"windows\" cpu=\"c\" clock=\"1\" "
                   "threadCount=\"2\">\n        <test name=\"lines\" result=\"3\"/>\n"
                   "    </bench>\n</Fennick>\n");
    QCOMPARE(machines.size(), 1);
    QCOMPARE(machines[0].getName(), QString(QChar(0xE4)));
    QCOMPARE(resultOf(machines[0], "lines"), 3.0F);
}

void tst_benchXml::appends()
{
    QByteArray xml = twoMachines;
    QBuffer buffer(&xml);
    buffer.open(QIODevice::ReadOnly);
    QVector<benchResults> machines(3);
    readMachines(buffer, machines);
    QCOMPARE(machines.size(), 5);
    QCOMPARE(machines.last().getName(), QStringLiteral("B"));
}

void tst_benchXml::attributes_data()
{
    QTest::addColumn<QByteArray>("xml");
    QTest::addColumn<int>("machines");
    QTest::newRow("other order and more of them")
        << QByteArray("<r><bench x='1' clock='5' machineName='A'/></r>") << 1;
    QTest::newRow("only one") << QByteArray("<r><bench machineName='A'/></r>") << 1;
    QTest::newRow("none") << QByteArray("<r><bench/><bench></bench></r>") << 0;
    QTest::newRow("the root itself") << QByteArray("<bench machineName='A'/>") << 1;
}

void tst_benchXml::attributes()
{
    QFETCH(QByteArray, xml);
    const QVector<benchResults> machines = machinesOf(xml);
    QTEST(machines.size(), "machines");
    if (!machines.isEmpty()) {
        QCOMPARE(machines[0].getName(), QStringLiteral("A"));
        QVERIFY(machines[0].getOs().isEmpty());
        QCOMPARE(machines[0].getThreads(), 0);
    }
}

void tst_benchXml::numbers_data()
{
    QTest::addColumn<QByteArray>("threads");
    QTest::addColumn<int>("count");
    QTest::newRow("whole") << QByteArray("16") << 16;
    QTest::newRow("truncated") << QByteArray("7.9") << 7;
    QTest::newRow("negative") << QByteArray("-3.9") << -3;
    QTest::newRow("not a number") << QByteArray("many") << 0;
    QTest::newRow("nan") << QByteArray("nan") << 0;
    QTest::newRow("inf") << QByteArray("inf") << 0;
    QTest::newRow("absurd") << QByteArray("1e30") << 0;
    QTest::newRow("absurd below") << QByteArray("-1e30") << 0;
}

void tst_benchXml::numbers()
{
    QFETCH(QByteArray, threads);
    const QVector<benchResults> machines =
        machinesOf("<r><bench machineName='A' clock='" + threads + "' threadCount='" + threads
                   + "'><test name='t' result='" + threads + "'/></bench></r>");
    QCOMPARE(machines.size(), 1);
    QTEST(machines[0].getThreads(), "count");
    QCOMPARE(machines[0].getTests().size(), 1);
}

void tst_benchXml::faults_data()
{
    QTest::addColumn<QByteArray>("xml");
    QTest::addColumn<int>("machines");
    const int afterFirst = twoMachines.indexOf("</bench>") + 8;
    QTest::newRow("nothing") << QByteArray() << 0;
    QTest::newRow("no XML") << QByteArray("MZ\x90\0\3\0\0") << 0;
    QTest::newRow("plain text") << QByteArray("hello") << 0;
    QTest::newRow("cut off in the second machine") << twoMachines.left(afterFirst + 40) << 1;
    QTest::newRow("cut off in a result") << twoMachines.left(afterFirst - 20) << 1;
    QTest::newRow("wrong end tag") << twoMachines.left(afterFirst) + "</Other><bench a='1'/>" << 1;
    QTest::newRow("attribute twice")
        << twoMachines.left(afterFirst) + "<bench os='a' os='b'/>" << 1;
    QTest::newRow("unknown encoding")
        << QByteArray("<?xml version='1.0' encoding='no-such'?>") + twoMachines << 0;
    QTest::newRow("bytes that are no UTF-8")
        << twoMachines.left(afterFirst) + "\r\n<bench machineName='\xff\xfe\xff'/></Fennick>" << 1;
    QTest::newRow("unknown entity") << twoMachines.left(afterFirst) + "&boom;<bench a='1'/>" << 1;
}

void tst_benchXml::faults()
{
    QFETCH(QByteArray, xml);
    const QVector<benchResults> machines = machinesOf(xml);
    QTEST(machines.size(), "machines");
    if (!machines.isEmpty())
        QCOMPARE(resultOf(machines[0], "shellsort"), 12.5F);
}

void tst_benchXml::testBeforeAnyBench()
{
    QByteArray xml("<r><test name='t' result='5'/><bench machineName='A'/></r>");
    QBuffer buffer(&xml);
    buffer.open(QIODevice::ReadOnly);
    // Such a test must not reach into machines of another file either.
    QVector<benchResults> machines(1);
    readMachines(buffer, machines);
    QCOMPARE(machines.size(), 2);
    QVERIFY(machines[0].getTests().isEmpty());
    QVERIFY(machines[1].getTests().isEmpty());
}

void tst_benchXml::otherElements()
{
    const QVector<benchResults> machines =
        machinesOf("<r><!-- c --><other a='1'/><bench machineName='A'><deep><test name='t' "
                   "result='5'>text</test></deep></bench></r>");
    QCOMPARE(machines.size(), 1);
    QCOMPARE(resultOf(machines[0], "t"), 5.0F);
}

void tst_benchXml::encodings_data()
{
    QTest::addColumn<QByteArray>("codec");
    QTest::newRow("UTF-8") << QByteArray("UTF-8");
    QTest::newRow("UTF-16 with a byte order mark") << QByteArray("UTF-16");
    QTest::newRow("ISO-8859-1") << QByteArray("ISO-8859-1");
}

void tst_benchXml::encodings()
{
    QFETCH(QByteArray, codec);
    const QString xml = QStringLiteral("<?xml version=\"1.0\" encoding=\"%1\"?><r><bench "
                                       "machineName='%2'/></r>")
                            .arg(QString::fromLatin1(codec), QString(QChar(0xFC)));
    const QVector<benchResults> machines =
        machinesOf(QTextCodec::codecForName(codec)->fromUnicode(xml));
    QCOMPARE(machines.size(), 1);
    QCOMPARE(machines[0].getName(), QString(QChar(0xFC)));
}

void tst_benchXml::writtenCharacters_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("read");
    const QString replaced = QChar(QChar::ReplacementCharacter);
    const auto row = [](const char *name, const QString &text, const QString &read) {
        QTest::newRow(name) << text << read;
    };
    row("white space", QStringLiteral("\t\n\r "), QStringLiteral("\t\n\r "));
    row("markup", QStringLiteral("<&>\"']]>"), QStringLiteral("<&>\"']]>"));
    row("NUL", QString(QChar(0)), replaced);
    row("escape", QString(QChar(0x1B)), replaced);
    row("delete", QString(QChar(0x7F)), QString(QChar(0x7F)));
    row("last private one", QString(QChar(0xF8FF)), QString(QChar(0xF8FF)));
    row("FFFD", replaced, replaced);
    row("FFFE", QString(QChar(0xFFFE)), replaced);
    row("FFFF", QString(QChar(0xFFFF)), replaced);
    row("pair", QString::fromUtf8("\xF0\x9F\xA6\x8A"), QString::fromUtf8("\xF0\x9F\xA6\x8A"));
    row("high half", QString(QChar(0xD83E)), replaced);
    row("low half", QString(QChar(0xDD8A)), replaced);
    row("halves in the wrong order", QString(QChar(0xDD8A)) + QChar(0xD83E), replaced.repeated(2));
    row("low half after a letter", QStringLiteral("a") + QChar(0xDD8A),
        QStringLiteral("a") + replaced);
}

void tst_benchXml::writtenCharacters()
{
    QFETCH(QString, text);
    QFETCH(QString, read);
    QByteArray content;
    QXmlStreamWriter xml(&content);
    xml.writeStartElement(QStringLiteral("F"));
    for (const QString &name : {text, QStringLiteral("next")})
        writeMachine(xml, {name, QStringLiteral("linux"), name, 1, 1});
    xml.writeEndElement();
    const QVector<benchResults> machines = machinesOf(content);
    QCOMPARE(machines.size(), 2);
    QCOMPARE(machines[0].getName(), read);
    QCOMPARE(machines[0].getCpu(), read);
}

void tst_benchXml::acrossBlocks()
{
    // Far more than one block of reading; every machine must arrive whole.
    QByteArray xml("<Fennick>");
    constexpr int count = 3000;
    for (int i = 0; i < count; ++i) {
        const QByteArray number = QByteArray::number(i);
        xml += "<bench machineName='m" + number + "' threadCount='" + number
               + "'><test name='t' result='" + number + "'/></bench>";
    }
    xml += "</Fennick>";
    const QVector<benchResults> machines = machinesOf(xml);
    QCOMPARE(machines.size(), count);
    for (int i = 0; i < count; ++i) {
        QCOMPARE(machines[i].getName(), QStringLiteral("m%1").arg(i));
        QCOMPARE(machines[i].getThreads(), i);
        QCOMPARE(resultOf(machines[i], "t"), static_cast<float>(i));
    }
}

QTEST_APPLESS_MAIN(tst_benchXml)
#include "tst_benchXml.moc"
