// SPDX-License-Identifier: GPL-3.0-or-later
#include "server/uploadCheck.h"

#include "data/benchReader.h"
#include "server/ceilings.h"
#include "server/storedUpload.h"

#include "support/uploads.h"
#include "tests/suiteFacts.h"

#include <QtTest>

#include <limits>

class tst_uploadCheck : public QObject
{
    Q_OBJECT

private slots:
    void accepted();
    void everyTestHasACeiling();
    void refused_data();
    void refused();
    void logged_data();
    void logged();
    void hostile_data();
    void hostile();
    void documentType();
    void ceilings();
    void names_data();
    void names();
    void noNameIsCut();
    void sameContent();
    void allZero();
};

namespace
{

QByteArray with(const QByteArray &what, const QByteArray &instead)
{
    QByteArray xml = uploadXml("LAB7", "Some CPU", "12.5");
    Q_ASSERT(xml.contains(what));
    return xml.replace(what, instead);
}

/// @p xml with @p type where a document type belongs, behind the declaration.
QByteArray documentTypeIn(QByteArray xml, const QByteArray &type)
{
    const int end = xml.indexOf("?>\n") + 3;
    return xml.insert(end, type);
}

} // namespace

void tst_uploadCheck::accepted()
{
    const auto upload = checkUpload(uploadXml("LAB7", "Some CPU", "12.5"));
    QVERIFY2(upload, qPrintable(upload ? QString() : upload.error().reason));
    QCOMPARE(upload->getName(), QStringLiteral("LAB7"));
    QCOMPARE(upload->getCpu(), QStringLiteral("Some CPU"));
    QCOMPARE(upload->getFrequency(), 2e9F);
    QCOMPARE(upload->getThreads(), 4);
    QCOMPARE(upload->getTests().value(QStringLiteral("mandel")).value, 12.5F);
    QCOMPARE(checkUpload(with("threadCount=\"4\"", "threadCount=\"8.0\""))->getThreads(), 8);
    QVERIFY(checkUpload("<a><bench machineName='' os='android' cpu='c' clock='0' threadCount='1'/>"
                        "</a>"));
}

void tst_uploadCheck::everyTestHasACeiling()
{
    QStringList names;
    for (const testFacts &test : suiteFacts()) {
        const QString name = QString::fromUtf8(test.name);
        QCOMPARE(resultCeilings().contains(name), test.isInFullRuns());
        QVERIFY2(
            !test.isInFullRuns() || resultCeilings().value(name) > 0,
            qPrintable(QStringLiteral("no machine of resources/benches.xml has a result of '%1': "
                                      "add one to tools/reference/tables/calibration.csv and make "
                                      "the list again")
                           .arg(name)));
    }
    // The best of the list have 28.8019, and 2161.27 with all cores.
    QCOMPARE(resultCeilings().value(QStringLiteral("mandel")), 870.0F);
    QCOMPARE(resultCeilings().value(QStringLiteral("mandel (multicore)")), 65000.0F);
}

void tst_uploadCheck::refused_data()
{
    QTest::addColumn<QByteArray>("xml");
    QTest::addColumn<bool>("isReadable");
    QTest::addColumn<QString>("reason");
    const auto row = [](const char *name, const QByteArray &xml, const char *reason) {
        QTest::newRow(name) << xml << true << QString::fromLatin1(reason);
    };
    QTest::newRow("empty") << QByteArray() << false
                           << QStringLiteral("there are no results in this upload");
    QTest::newRow("no XML") << QByteArray("hello") << false
                            << QStringLiteral("the results are not well-formed XML");
    QTest::newRow("cut off") << uploadXml("a", "b", "1").left(150) << false
                             << QStringLiteral("the results are not well-formed XML");
    QTest::newRow("behind the end") << uploadXml("a", "b", "1") + "<x/>" << false
                                    << QStringLiteral("the results are not well-formed XML");
    QTest::newRow("not UTF-8") << with("LAB7", "\xFF\xFE") << false
                               << QStringLiteral("the results are not well-formed XML");
    row("no machine", "<F/>", "there must be exactly one machine");
    row("machine as the root", uploadXml("a", "b", "1").replace("Fennick", "bench"),
        "there must be no element 'bench' here");
    row("two machines",
        with("</Fennick>", "<bench machineName='b' os='linux' cpu='c' clock='1' "
                           "threadCount='1'/></Fennick>"),
        "there must be exactly one machine");
    row("other element", with("<test ", "<tset "), "there must be no element 'tset' here");
    row("machine in a machine", with("<test name=\"mandel\" result=\"12.5\"/>", "<bench a='1'/>"),
        "there must be no element 'bench' here");
    row("too deep", with("/>", "><test/></test>"), "there must be no element 'test' here");
    row("missing attribute", with(" cpu=\"Some CPU\"", ""), "the machine has no 'cpu'");
    row("system", with("linux", "Linux"), "the operating system must be");
    row("unknown test", with("mandel", "Mandel"), "there is no test 'Mandel'");
    row("single-only test", with("mandel", "rotozoom 'no'"), "there is no test 'rotozoom 'no''");
    row("test twice", with("<test ", "<test name='mandel' result='1'/><test "),
        "the test 'mandel' appears twice");
    for (const char *number : {"nan", "inf", "-inf", "infinity", "", " ", "1,5", "0x10", "1e99"}) {
        QTest::newRow(QByteArray("result ") + number)
            << with("12.5", number) << true
            << (QByteArray(number) == "1e99" ? QString() : QStringLiteral("'result' is not a"));
    }
    row("negative", with("12.5", "-0.1"), "the result of 'mandel' must be at least 0 and below");
    row("clock", with("2000000000", "3e10"), "the clock must be");
    row("negative clock", with("2000000000", "-1"), "the clock must be");
    row("no clock", with("2000000000", "fast"), "'clock' is not a number: 'fast'");
    row("no threads", with("threadCount=\"4\"", "threadCount=\"0\""), "the thread count must be");
    row("many threads", with("threadCount=\"4\"", "threadCount=\"5000\""),
        "the thread count must be");
    row("no processor", with("Some CPU", " "), "the processor has no name");
    row("processor not known", with("Some CPU", "unknown"),
        "\"unknown\" and \"(est.)\" are no part");
    row("disguised model", with("Some CPU", "A CPU ( EST )"), "\"unknown\" and");
    row("markup", with("Some CPU", "&lt;b&gt;"), "the name of a processor has letters");
    row("two scripts", with("Some CPU", "\xD0\x86ntel"), "the letters of a processor's name");
}

void tst_uploadCheck::refused()
{
    QFETCH(QByteArray, xml);
    QFETCH(QString, reason);
    const auto upload = checkUpload(xml);
    QVERIFY(!upload);
    QVERIFY2(upload.error().reason.startsWith(reason), qPrintable(upload.error().reason));
    QTEST(upload.error().isReadable, "isReadable");
    QVERIFY(*upload.error().kind != '\0');
}

void tst_uploadCheck::logged_data()
{
    refused_data();
}

/// What goes into the log is one of a few words, whatever was sent.
void tst_uploadCheck::logged()
{
    QFETCH(QByteArray, xml);
    const QByteArrayList kinds = {
        "empty",   "no XML", "format",       "number of machines", "operating system", "name",
        "threads", "clock",  "unknown test", "impossible result",  "processor's name"};
    QVERIFY2(kinds.contains(checkUpload(xml).error().kind), checkUpload(xml).error().kind);
}

void tst_uploadCheck::hostile_data()
{
    QTest::addColumn<QByteArray>("xml");
    QByteArray laughs = "<!DOCTYPE l [<!ENTITY a \"ha\">";
    for (char c = 'b'; c < 'm'; ++c) {
        const QByteArray last = '&' + QByteArray(1, static_cast<char>(c - 1)) + ';';
        laughs += QByteArray("<!ENTITY ") + c + " \"" + last.repeated(10) + "\">";
    }
    QTest::newRow("entities of entities") << laughs + "]><l>&l;</l>";
    QTest::newRow("a file") << QByteArray("<!DOCTYPE l [<!ENTITY a SYSTEM \"file:///etc/passwd\">]>"
                                          "<l>&a;</l>");
    QTest::newRow("document type")
        << documentTypeIn(uploadXml("a", "b", "1"), "<!DOCTYPE Fennick>");
    QTest::newRow("nesting") << QByteArray("<a>").repeated(20'000);
    QTest::newRow("NUL") << with("LAB7", QByteArray(1, '\0'));
    QTest::newRow("many attributes") << [] {
        QByteArray xml = "<F><bench ";
        for (int i = 0; i < 5'000; ++i)
            xml += 'a' + QByteArray::number(i) + "='' ";
        return xml + "/></F>";
    }();
}

void tst_uploadCheck::hostile()
{
    QFETCH(QByteArray, xml);
    const auto upload = checkUpload(xml);
    QVERIFY(!upload);
    QVERIFY(upload.error().reason.size() < 600);
}

/// It is what is refused, in what would be an upload without it.
void tst_uploadCheck::documentType()
{
    const QByteArray good = uploadXml("a", "b", "1");
    QVERIFY(checkUpload(documentTypeIn(good, "<!-- Fennick -->")));
    for (const char *type : {"<!DOCTYPE Fennick>", "<!DOCTYPE Fennick SYSTEM \"x\">",
                             "<!DOCTYPE Fennick [<!ENTITY a 'b'>]>"}) {
        const auto upload = checkUpload(documentTypeIn(good, type));
        QVERIFY(!upload);
        QVERIFY(upload.error().isReadable);
        QCOMPARE(QByteArray(upload.error().kind), QByteArray("format"));
    }
}

void tst_uploadCheck::ceilings()
{
    for (auto entry = resultCeilings().begin(); entry != resultCeilings().end(); ++entry) {
        benchResults machine = machineWith(QStringLiteral("m"), QStringLiteral("c"), 1);
        machine.setTest(entry.key(), benchResults::test(*entry * 0.9999F));
        QVERIFY(checkMachine(machine));
        // Just below, but not with the six digits of what is stored.
        machine.setTest(entry.key(), benchResults::test(std::nextafter(*entry, 0.0F)));
        QVERIFY(checkMachine(machine).error().contains(entry.key()));
        machine.setTest(entry.key(), benchResults::test(*entry));
        QVERIFY(checkMachine(machine).error().contains(entry.key()));
        machine.setTest(entry.key(), benchResults::test(std::numeric_limits<float>::quiet_NaN()));
        QVERIFY(checkMachine(machine).error().contains(entry.key()));
    }
}

void tst_uploadCheck::names_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<bool>("isAllowed");
    QTest::newRow("128 characters") << QString(128, QLatin1Char('x')) << true;
    QTest::newRow("129 characters") << QString(129, QLatin1Char('x')) << false;
    QTest::newRow("markup") << QStringLiteral("<b>%1 & \"") << true;
    QTest::newRow("other letters") << QString::fromUtf8("\xC3\x9C\xE4\xB8\xAD") << true;
    QTest::newRow("line break") << QStringLiteral("a\nb") << false;
    QTest::newRow("tab") << QStringLiteral("a\tb") << false;
    QTest::newRow("escape") << QStringLiteral("a\x1B[2J") << false;
    QTest::newRow("delete") << QStringLiteral("a\x7F") << false;
    QTest::newRow("next line") << QStringLiteral("a\u0085") << false;
    QTest::newRow("line separator") << QStringLiteral("a\u2028") << false;
}

void tst_uploadCheck::names()
{
    QFETCH(QString, name);
    QTEST(checkMachine(machineWith(name, QStringLiteral("cpu"), 1)).has_value(), "isAllowed");
    QTEST(checkMachine(machineWith(QStringLiteral("m"), name, 1)).has_value(), "isAllowed");
}

/// Lists of machines are read with names of a bounded length. What is taken here is shorter, and
/// what is longer is refused as it came.
void tst_uploadCheck::noNameIsCut()
{
    const QByteArray longest(maximumNameLength, 'x');
    const auto taken = checkUpload(uploadXml(longest, longest, "1"));
    QVERIFY(taken);
    const benchResults machine = uploadedMachine(makeUpload(*taken, 1));
    QCOMPARE(machine.getName().toLatin1(), longest);
    QCOMPARE(machine.getCpu().toLatin1(), longest);
    for (const int length : {maximumNameLength + 1, maximumTextLength, maximumTextLength + 1}) {
        const QByteArray tooLong(length, 'x');
        QVERIFY(!checkUpload(uploadXml(tooLong, "c", "1")));
        QVERIFY(!checkUpload(uploadXml("m", tooLong, "1")));
    }
}

void tst_uploadCheck::sameContent()
{
    const auto hash = [](const QByteArray &xml) {
        const auto upload = checkUpload(xml);
        return upload ? makeUpload(*upload, 1).hash : QByteArray();
    };
    const QByteArray one = hash(uploadXml("LAB7", "Some CPU", "12.5"));
    QCOMPARE(one.size(), 64);
    QCOMPARE(hash(uploadXml("LAB7", "Some CPU", "12.5").simplified()), one);
    QCOMPARE(hash(uploadXml("LAB7", "Some CPU", "1.25e1")), one);
    QVERIFY(hash(uploadXml("LAB7", "Some CPU", "12.6")) != one);
    QVERIFY(hash(uploadXml("LAB8", "Some CPU", "12.5")) != one);
}

void tst_uploadCheck::allZero()
{
    QVERIFY(isAllZero(benchResults()));
    QVERIFY(isAllZero(machineWith(QStringLiteral("m"), QStringLiteral("c"), 0)));
    QVERIFY(!isAllZero(machineWith(QStringLiteral("m"), QStringLiteral("c"), 1e-6F)));
    QVERIFY(checkUpload(uploadXml("m", "c", "0")));
}

QTEST_APPLESS_MAIN(tst_uploadCheck)
#include "tst_uploadCheck.moc"
