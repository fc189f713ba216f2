// SPDX-License-Identifier: GPL-3.0-or-later
#include "data/benchReader.h"
#include "data/benchXml.h"

#include "machineListXml.h"
#include "support/peakMemory.h"

#include <QtTest>

Q_DECLARE_METATYPE(listEnd::kind)

namespace
{

/// A machine whose texts are all @p text, and its one test's name too.
QByteArray benchNamed(const QByteArray &text)
{
    return "<bench machineName='" + text + "' os='" + text + "' cpu='" + text + "'><test name='"
           + text + "' result='1'/></bench>";
}

/// Letters to number elements and attributes with.
QByteArray numbered(const char *prefix, int number)
{
    return prefix + QByteArray::number(number, 36);
}

/// Endless text: a prefix, then a piece again and again, up to a size; it counts what is read.
class endlessDevice : public QIODevice
{
public:
    endlessDevice(QByteArray firstPart, QByteArray repeatedPart, qint64 totalSize)
        : prefix(std::move(firstPart)),
          piece(std::move(repeatedPart)),
          size(totalSize)
    {
        open(QIODevice::ReadOnly);
    }
    bool isSequential() const override { return true; }
    qint64 handedOut = 0;

protected:
    qint64 readData(char *data, qint64 maxSize) override
    {
        qint64 count = 0;
        for (; count < maxSize && handedOut < size; ++count, ++handedOut) {
            data[count] =
                handedOut < prefix.size()
                    ? prefix.at(static_cast<int>(handedOut))
                    : piece.at(static_cast<int>((handedOut - prefix.size()) % piece.size()));
        }
        return count;
    }
    qint64 writeData(const char *, qint64) override { return -1; }

private:
    QByteArray prefix;
    QByteArray piece;
    qint64 size;
};

} // namespace

class tst_benchXmlLimits : public QObject
{
    Q_OBJECT

private slots:
    void ends_data();
    void ends();
    void endsOfHugeFiles();
    void longTexts_data();
    void longTexts();
    void declarations_data();
    void declarations();
    void hostileFiles_data();
    void hostileFiles();
    void hugeFiles_data();
    void hugeFiles();
    void deepNesting();
};

void tst_benchXmlLimits::ends_data()
{
    QTest::addColumn<QByteArray>("xml");
    QTest::addColumn<listEnd::kind>("how");
    QTest::addColumn<int>("line");
    const auto row = [](const char *name, const QByteArray &xml, listEnd::kind how, int line) {
        QTest::newRow(name) << xml << how << line;
    };
    // Long enough for several pieces of reading.
    const QByteArray many = QByteArray("<bench machineName='A'/>\r\n").repeated(10'000);
    row("complete", twoMachines, listEnd::complete, 10);
    row("without an end of line", twoMachines.trimmed(), listEnd::complete, 9);
    row("empty root", "<Fennick/>", listEnd::complete, 1);
    row("document type", "<!DOCTYPE Fennick>" + twoMachines, listEnd::complete, 10);
    row("several pieces", "<F>\r\n" + many + "</F>\r\n\r\n", listEnd::complete, 10'004);
    row("white space behind it", twoMachines + QByteArray(200'000, ' '), listEnd::complete, 10);
    row("nothing", "", listEnd::fault, 1);
    row("white space", " ", listEnd::fault, 1);
    row("no XML", "\n\nhello", listEnd::fault, 3);
    row("without its end", "<F>\r\n" + many, listEnd::fault, 10'002);
    row("cut in a tag", twoMachines.trimmed().chopped(4), listEnd::fault, 9);
    row("wrong end tag", "<F>\r\n" + many + "</B>\r\n" + many + "</F>", listEnd::fault, 10'002);
    row("no UTF-8", "<F>\r\n" + many + "<bench machineName='\xff'/>\r\n" + many + "</F>",
        listEnd::fault, 10'002);
    row("attribute twice", "<F>\n<bench os='a'\nos='b'/>\n</F>", listEnd::fault, 3);
    row("behind its end", "<F>\n</F>\n\n<x/>", listEnd::fault, 4);
    row("behind its end, far", "<F>\n</F>" + QByteArray(100'000, '\n') + "<x/>", listEnd::fault,
        100'002);
    const auto attributes = [](int count) {
        QByteArray tag("<F>\n<bench");
        for (int i = 0; i < count; ++i)
            tag += numbered(" a", i) + "=''";
        return tag + "/>\n</F>";
    };
    row("many attributes", attributes(64), listEnd::complete, 3);
    row("too many attributes", attributes(65), listEnd::fault, 2);
    const auto comment = [](int size) { return "<F>\n<!--" + QByteArray(size, 'x') + "--></F>"; };
    row("long comment", comment(100 * 1024), listEnd::complete, 2);
    row("too long a comment", comment(300 * 1024), listEnd::fault, 2);
    row("open comment behind its end", "<F>\n</F>\n<!-- ", listEnd::fault, 3);
}

void tst_benchXmlLimits::ends()
{
    QFETCH(QByteArray, xml);
    QVector<benchResults> machines;
    const listEnd end = endOf(xml, machines);
    QTEST(end.how, "how");
    QTEST(static_cast<int>(end.line), "line");
}

void tst_benchXmlLimits::endsOfHugeFiles()
{
    // As long as a list may be, and one byte longer.
    const QByteArray list = "<F>\n<bench machineName='A'/>\n</F>";
    const QByteArray longest = list + QByteArray(int(maximumXmlSize) - list.size(), ' ');
    QVector<benchResults> machines;
    QCOMPARE(endOf(longest, machines).how, listEnd::complete);
    const listEnd tooLong = endOf(longest + ' ', machines);
    QCOMPARE(tooLong.how, listEnd::cut);
    QCOMPARE(tooLong.line, qint64(3));
    endlessDevice endless("<F>", "<bench machineName='A'/>\n", 2 * maximumXmlSize);
    QCOMPARE(readMachines(endless, machines).how, listEnd::cut);
    endlessDevice exact(longest, " ", maximumXmlSize);
    QCOMPARE(readMachines(exact, machines).how, listEnd::complete);

    const auto listOf = [](int count, const QByteArray &piece) {
        return "<F><bench machineName='A'>\n" + piece.repeated(count) + "</bench></F>";
    };
    machines.clear();
    QCOMPARE(endOf(listOf(maximumMachines - 1, "<bench os='o'/>"), machines).how,
             listEnd::complete);
    QCOMPARE(machines.size(), maximumMachines);
    // Those that were there before do not count.
    QCOMPARE(endOf(listOf(maximumMachines + 5, "<bench os='o'/>"), machines).how, listEnd::cut);
    QCOMPARE(machines.size(), 2 * maximumMachines);

    QByteArray results;
    for (int i = 0; i < maximumResults; ++i)
        results += "<test name='" + QByteArray::number(i) + "' result='1'/>";
    machines.clear();
    QCOMPARE(endOf(listOf(2, results), machines).how, listEnd::complete);
    QCOMPARE(machines.last().getTests().size(), maximumResults);
    QCOMPARE(endOf(listOf(1, results + "<test name='one more'/>"), machines).how, listEnd::cut);
    QCOMPARE(machines.last().getTests().size(), maximumResults);
}

void tst_benchXmlLimits::longTexts_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<int>("length");
    const QString fox = QString::fromUtf8("\xF0\x9F\xA6\x8A");
    const auto letters = [](int count) { return QString(count, QChar(0xE4)); };
    QTest::newRow("longest") << letters(256) << 256;
    QTest::newRow("one more") << letters(257) << 256;
    QTest::newRow("40,000") << QString(40'000, QLatin1Char('x')) << 256;
    QTest::newRow("pair at the end") << letters(254) + fox + letters(1) << 256;
    QTest::newRow("pair across the end") << letters(255) + fox << 255;
    QTest::newRow("pairs only") << fox.repeated(200) << 256;
}

void tst_benchXmlLimits::longTexts()
{
    QFETCH(QString, text);
    QFETCH(int, length);
    const QVector<benchResults> machines =
        machinesOf("<r>" + benchNamed(text.toUtf8()) + "<bench os='o'/></r>");
    QCOMPARE(machines.size(), 2);
    const QString expected = text.left(length);
    QCOMPARE(machines[0].getName(), expected);
    QCOMPARE(machines[0].getOs(), expected);
    QCOMPARE(machines[0].getCpu(), expected);
    QCOMPARE(machines[0].getTests().keys(), QStringList(expected));
}

void tst_benchXmlLimits::declarations_data()
{
    QTest::addColumn<QByteArray>("subset");
    QByteArray laughs("<!ENTITY a 'aaaaaaaaaaaaaaaaaaaa'>");
    for (char c = 'b'; c <= 'z'; ++c) {
        const QByteArray before = '&' + QByteArray(1, static_cast<char>(c - 1)) + ';';
        laughs += QByteArray("<!ENTITY ") + c + " '" + before.repeated(5) + "'>";
    }
    QTest::newRow("entities of entities") << laughs;
    QTest::newRow("one entity") << QByteArray("<!ENTITY a 'A'>");
    QTest::newRow("a file") << QByteArray("<!ENTITY a SYSTEM 'file:///etc/passwd'>");
    QTest::newRow("default of an attribute") << QByteArray("<!ATTLIST bench os CDATA 'x'>");
    QTest::newRow("nothing") << QByteArray();
}

/// With declarations of its own, a small file could ask for much memory and time.
void tst_benchXmlLimits::declarations()
{
    QFETCH(QByteArray, subset);
    QVector<benchResults> machines;
    const listEnd end =
        endOf("<!DOCTYPE r [" + subset + "]>\n<r><bench machineName='A'/></r>", machines);
    QCOMPARE(end.how, listEnd::fault);
    QVERIFY(machines.isEmpty());
}

void tst_benchXmlLimits::hostileFiles_data()
{
    QTest::addColumn<QByteArray>("prefix");
    QTest::addColumn<QByteArray>("piece");
    QByteArray attributes;
    QByteArray longTag("<bench");
    for (int i = 0; i < 300'000; ++i) {
        attributes += numbered(" a", i) + "=''";
        if (longTag.size() < 60 * 1024)
            longTag += numbered(" a", i) + "=''";
    }
    QByteArray someAttributes("<bench");
    for (int i = 0; i < 100; ++i)
        someAttributes += numbered(" a", i) + "=''";
    QByteArray results;
    for (int i = 0; i < 1000; ++i)
        results += "<test name='" + numbered("", i) + "'/>";
    const QByteArray name(3000, 'x');
    const QByteArray entity = "<!DOCTYPE r [<!ENTITY a '" + name + "'>]><r><bench os='";
    QTest::newRow("machines") << QByteArray("<r>") << QByteArray("<bench os=''/>");
    QTest::newRow("results") << QByteArray("<r><bench os=''>") << results;
    QTest::newRow("machines with results")
        << QByteArray("<r>") << "<bench os=''>" + results + "</bench>";
    QTest::newRow("long names") << QByteArray("<r>") << benchNamed(name);
    QTest::newRow("attributes of one element") << QByteArray("<r><bench") << attributes;
    QTest::newRow("attributes of long elements") << QByteArray("<r>") << longTag + "/>";
    QTest::newRow("attributes") << QByteArray("<r>") << someAttributes + "/>";
    QTest::newRow("entities") << entity << QByteArray("&a;");
    QTest::newRow("one name") << QByteArray("<r><bench os='") << QByteArray("x");
    QTest::newRow("comment") << QByteArray("<r><!--") << QByteArray("x");
    QTest::newRow("white space") << QByteArray("<r>") << QByteArray(" ");
    QTest::newRow("lines") << QByteArray("<r>\xff") << QByteArray("\n");
    QTest::newRow("tags") << QByteArray("<r>") << QByteArray("<a/>");
}

/// No file of 16 MiB asks for more than a few times its length. (Time is not measured: some of
/// these once took from minutes to hours.)
void tst_benchXmlLimits::hostileFiles()
{
    QFETCH(QByteArray, prefix);
    QFETCH(QByteArray, piece);
    peakMemory memory;
    if (!memory.isAvailable())
        QSKIP("needs to know the peak of memory");
    endlessDevice device(prefix, piece, maximumXmlSize);
    QVector<benchResults> machines;
    readMachines(device, machines);
    QVERIFY(machines.size() <= maximumMachines);
    constexpr qint64 most = 32 * maximumXmlSize;
    QVERIFY2(memory.growth() < most, qPrintable(QString::number(memory.growth())));
}

void tst_benchXmlLimits::hugeFiles_data()
{
    QTest::addColumn<QByteArray>("prefix");
    QTest::addColumn<QByteArray>("piece");
    QTest::newRow("machines") << QByteArray("<r>") << QByteArray("<bench machineName='A'/>");
    QTest::newRow("results") << QByteArray("<r><bench machineName='A'>")
                             << QByteArray("<test name='t' result='1'/>");
    QTest::newRow("one name") << QByteArray("<r><bench machineName='A'/><bench machineName='")
                              << QByteArray("x");
    QTest::newRow("white space") << QByteArray("<r><bench machineName='A'/>") << QByteArray(" ");
}

void tst_benchXmlLimits::hugeFiles()
{
    QFETCH(QByteArray, prefix);
    QFETCH(QByteArray, piece);
    endlessDevice device(prefix, piece, 100 * 1024 * 1024);
    QVector<benchResults> machines;
    readMachines(device, machines);
    QVERIFY(!machines.isEmpty());
    QCOMPARE(machines[0].getName(), QStringLiteral("A"));
    QVERIFY(device.handedOut <= maximumXmlSize + 1024 * 1024);
}

void tst_benchXmlLimits::deepNesting()
{
    // The XML reader would remember each of millions of open elements.
    const QByteArray levels = QByteArray("<d>").repeated(150);
    QVector<benchResults> machines;
    const listEnd end =
        endOf("<r>\n<bench machineName='A'/>" + levels + "<bench machineName='B'/>", machines);
    QCOMPARE(end.how, listEnd::fault);
    QCOMPARE(end.line, qint64(2));
    QCOMPARE(machines.size(), 1);
    QCOMPARE(machines[0].getName(), QStringLiteral("A"));
}

QTEST_APPLESS_MAIN(tst_benchXmlLimits)
#include "tst_benchXmlLimits.moc"
