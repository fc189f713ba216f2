// SPDX-License-Identifier: GPL-3.0-or-later

// Looks at the machine code of the workloads as it was built: the work that the sources ask for
// must still be there after the optimiser, and nothing may have been vectorised. A compiler that
// defeats this makes results incomparable, and this test red.

#include "disassembly.h"
#include "tests/suiteFacts.h"

#include <QFileInfo>
#include <QtTest>

#include <algorithm>

namespace
{

const QString packedArithmetic =
    QStringLiteral("v?(add|sub|mul|div|sqrt|rcp|rsqrt|min|max|hadd|hsub|addsub)p[sd]"
                   "|v?p(add|sub|mul|madd)[a-z]*|v?fn?m(add|sub)[0-9a-z]*");

/// All that is compiled as measured work.
QStringList workloadObjects()
{
    return QString::fromUtf8(FENNICK_WORKLOAD_OBJECTS).split(QLatin1Char('|'));
}

/// The functions of the workload source @p name, such as "mandel".
QVector<machineFunction> functionsOf(const QString &name)
{
    for (const QString &object : workloadObjects()) {
        if (object.contains(QLatin1Char('/') + name + QLatin1String(".cpp.")))
            return disassemble(object);
    }
    return {};
}

/// The innermost loops of those functions of a workload whose name contains @p function.
QVector<instructions> innermostLoopsOf(const QString &workload, const QString &function)
{
    QVector<instructions> loops;
    for (const machineFunction &one : functionsOf(workload)) {
        if (one.name.contains(function))
            loops += innermostLoops(one);
    }
    return loops;
}

/// How many calls of @p callee, those in place of a return included, the functions have whose name
/// contains @p function.
int countCalls(const QString &workload, const QString &function, const QString &callee)
{
    const QRegularExpression target(QStringLiteral("[ <]%1[-+@>]").arg(callee));
    int count = 0;
    for (const machineFunction &one : functionsOf(workload)) {
        if (!one.name.contains(function))
            continue;
        for (const instruction &i : one.code) {
            const bool isCall = i.mnemonic.startsWith(QLatin1String("call"))
                                || i.mnemonic.startsWith(QLatin1String("jmp"));
            if (isCall && i.operands.contains(target))
                ++count;
        }
    }
    return count;
}

QString textOf(const instructions &code)
{
    QString text;
    for (const instruction &one : code)
        text += one.mnemonic + QLatin1Char(' ') + one.operands + QLatin1Char('\n');
    return text;
}

/// What each source of a workload must hold, every one once.
std::vector<const machineCode *> expectedCode()
{
    std::vector<const machineCode *> all;
    for (const testFacts &test : suiteFacts()) {
        const machineCode *code = &test.workload.code;
        if (std::find(all.begin(), all.end(), code) == all.end())
            all.push_back(code);
    }
    return all;
}

/// The operands of @p one with addresses as "@".
QString withoutAddresses(const instruction &one)
{
    static const QRegularExpression address(QStringLiteral("\\([^)]*\\)"));
    static const QRegularExpression noAccess(QStringLiteral("^(lea|nop|prefetch|j|call)"));
    if (one.mnemonic.contains(noAccess))
        return {};
    return QString(one.operands).replace(address, QStringLiteral("@"));
}

bool isComparison(const instruction &one)
{
    static const QRegularExpression comparison(QStringLiteral("^(cmp[bwlq]?|test[bwlq]?)$"));
    return one.mnemonic.contains(comparison);
}

/// A comparison reads both of its operands, anything else all but the last.
bool isLoad(const instruction &one)
{
    const QString operands = withoutAddresses(one);
    return operands.section(QLatin1Char(','), 0, -2).contains(QLatin1Char('@'))
           || (isComparison(one) && operands.contains(QLatin1Char('@')));
}

bool isStore(const instruction &one)
{
    return !isComparison(one)
           && withoutAddresses(one).section(QLatin1Char(','), -1).contains(QLatin1Char('@'));
}

/// Whether it puts something aside. Where registers are few, a constant may be read from there.
bool isPutAside(const instruction &one)
{
    return isStore(one) && one.operands.contains(QLatin1String("(%rsp"));
}

bool has(const instructions &loop, const instructionCount &wanted)
{
    const int count = countMnemonics(loop, QString::fromLatin1(wanted.mnemonics));
    return count >= wanted.least && (wanted.most < 0 || count <= wanted.most);
}

} // namespace

Q_DECLARE_METATYPE(const machineLoop *)
Q_DECLARE_METATYPE(const machineReads *)

class tst_machineCode : public QObject
{
    Q_OBJECT

private slots:
    void nothingIsPacked_data();
    void nothingIsPacked();
    void everyWorkloadIsExpectedToHoldSomething();
    void workIsKept_data();
    void workIsKept();
    void nothingElseIsRead_data();
    void nothingElseIsRead();
    void linesDrawRandomNumbersInTheRun();
    void crc32HasNoTable();
    void zlibCopiesByteByByte();
    void callsOfTheRun_data();
    void callsOfTheRun();
};

void tst_machineCode::nothingIsPacked_data()
{
    QTest::addColumn<QString>("object");
    for (const QString &object : workloadObjects())
        QTest::newRow(qPrintable(QFileInfo(object).fileName())) << object;
}

void tst_machineCode::nothingIsPacked()
{
    QFETCH(QString, object);
    int count = 0;
    for (const machineFunction &function : disassemble(object)) {
        count += function.code.size();
        QVERIFY2(countMnemonics(function.code, packedArithmetic) == 0,
                 qPrintable(function.name + QLatin1Char('\n') + textOf(function.code)));
        for (const instruction &one : function.code) {
            QVERIFY2(!one.operands.contains(QLatin1String("%ymm"))
                         && !one.operands.contains(QLatin1String("%zmm")),
                     qPrintable(textOf(function.code)));
        }
    }
    QVERIFY2(count > 50, "no machine code found");
}

void tst_machineCode::everyWorkloadIsExpectedToHoldSomething()
{
    for (const machineCode *code : expectedCode())
        QVERIFY2(!code->loops.empty(), code->source);
}

void tst_machineCode::workIsKept_data()
{
    QTest::addColumn<QString>("source");
    QTest::addColumn<const machineLoop *>("wanted");
    for (const machineCode *code : expectedCode()) {
        for (const machineLoop &loop : code->loops)
            QTest::addRow("%s %s", code->source, loop.function)
                << QString::fromLatin1(code->source) << &loop;
    }
}

void tst_machineCode::workIsKept()
{
    QFETCH(QString, source);
    QFETCH(const machineLoop *, wanted);
    int found = 0;
    for (const instructions &loop :
         innermostLoopsOf(source, QString::fromLatin1(wanted->function))) {
        if (!has(loop, wanted->counts.front()))
            continue;
        ++found;
        for (const instructionCount &one : wanted->counts) {
            QVERIFY2(
                !one.mnemonics || has(loop, one),
                qPrintable(QString::fromLatin1(one.mnemonics) + QLatin1Char('\n') + textOf(loop)));
        }
    }
    QVERIFY2(found > 0, "the loop was not found");
}

void tst_machineCode::nothingElseIsRead_data()
{
    QTest::addColumn<QString>("source");
    QTest::addColumn<const machineReads *>("wanted");
    for (const machineCode *code : expectedCode()) {
        for (const machineReads &reads : code->reads)
            QTest::addRow("%s %s", code->source, reads.function)
                << QString::fromLatin1(code->source) << &reads;
    }
}

void tst_machineCode::nothingElseIsRead()
{
    QFETCH(QString, source);
    QFETCH(const machineReads *, wanted);
    instructions largest;
    for (const instructions &loop :
         innermostLoopsOf(source, QString::fromLatin1(wanted->function))) {
        if (loop.size() > largest.size())
            largest = loop;
    }
    QVERIFY2(!largest.isEmpty(), "the loop was not found");
    const auto loads = std::count_if(largest.begin(), largest.end(), isLoad);
    const auto stores = std::count_if(largest.begin(), largest.end(), isStore);
    QVERIFY2(stores > 0 && loads <= wanted->mostLoadsPerStore * stores,
             qPrintable(QStringLiteral("%1 loads, %2 stores\n").arg(loads).arg(stores)
                        + textOf(largest)));
    QVERIFY2(std::none_of(largest.begin(), largest.end(), isPutAside), qPrintable(textOf(largest)));
}

void tst_machineCode::linesDrawRandomNumbersInTheRun()
{
    const QString workload = QStringLiteral("lines");
    const QString rand = QStringLiteral("rand");
    // Two for the colour, and two for a point, in a function of their own or not.
    const int direct = countCalls(workload, QStringLiteral("lines::run"), rand);
    const int inPoints = countCalls(workload, QStringLiteral("lines::randomPoint"), rand);
    const int points = countCalls(workload, QStringLiteral("lines::run"),
                                  QStringLiteral("lines::randomPoint\\(\\) const"));
    QVERIFY2(direct == 6 || (direct == 2 && inPoints == 2 && points == 2),
             qPrintable(QStringLiteral("%1 %2 %3").arg(direct).arg(inPoints).arg(points)));
    QCOMPARE(countCalls(workload, QStringLiteral("lines::setup"), rand), 0);
}

void tst_machineCode::crc32HasNoTable()
{
    for (const instructions &loop :
         innermostLoopsOf(QStringLiteral("crc32"), QStringLiteral("omp"))) {
        for (const instruction &one : loop)
            QVERIFY2(!one.operands.contains(QLatin1String(",4)")), qPrintable(textOf(loop)));
    }
}

void tst_machineCode::zlibCopiesByteByByte()
{
    for (const char *callee : {"memcpy", "memmove", "__memcpy_chk"}) {
        QCOMPARE(countCalls(QStringLiteral("zlib"), QStringLiteral("zlib::unpack"),
                            QString::fromLatin1(callee)),
                 0);
    }
}

void tst_machineCode::callsOfTheRun_data()
{
    QTest::addColumn<QString>("workload");
    QTest::addColumn<QString>("function");
    QTest::addColumn<QString>("callee");
    QTest::addColumn<bool>("isCalled");
    const auto row = [](const char *workload, const char *function, const char *callee,
                        bool isCalled) {
        QTest::addRow("%s %s %s", workload, function, callee)
            << QString::fromLatin1(workload) << QString::fromLatin1(function)
            << QString::fromLatin1(callee) << isCalled;
    };
    // What belongs to the untimed steps is called there, and not in the run as well, where it would
    // change no frame.
    const char *const copies = "(memcpy|memmove)";
    row("shellsort", "shellsort::preRun", copies, true);
    row("shellsort", "shellsort::run", copies, false);
    row("shellsort", "shellsort::sort", copies, false);
    row("vertex", "vertex::preRun", "rotation[XYZ]\\(float\\)", true);
    row("vertex", "vertex::run", "rotation[XYZ]\\(float\\)", false);
    row("vertex", "vertex::run", "(testBase::fillBlack\\(\\)|memset)", false);
    row("mandel", "mandel::run", copies, false);
    row("zlib", "zlib::preRun", "qCompress\\(.*\\)", true);
    row("zlib", "zlib::run", "qCompress\\(.*\\)", false);
    row("zlib", "zlib::unpack", "qCompress\\(.*\\)", false);
    row("motionBlur", "motionBlur::preRun", "stampDot\\(.*\\)", true);
    row("motionBlur", "motionBlur::run", "stampDot\\(.*\\)", false);
}

void tst_machineCode::callsOfTheRun()
{
    QFETCH(QString, workload);
    QFETCH(QString, function);
    QFETCH(QString, callee);
    QFETCH(bool, isCalled);
    QVERIFY(!functionsOf(workload).isEmpty());
    QCOMPARE(countCalls(workload, function, callee) > 0, isCalled);
}

QTEST_GUILESS_MAIN(tst_machineCode)
#include "tst_machineCode.moc"
