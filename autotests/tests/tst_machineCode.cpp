// SPDX-License-Identifier: GPL-3.0-or-later

// Looks at the machine code of the workloads as it was built: the work that the sources ask for
// must still be there after the optimiser, and nothing may have been vectorised. A compiler that
// defeats this makes results incomparable, and this test red.

#include "tests/disassembly.h"

#include <QtTest>

#include <algorithm>

namespace
{

const QString packedArithmetic =
    QStringLiteral("v?(add|sub|mul|div|sqrt|rcp|rsqrt|min|max|hadd|hsub|addsub)p[sd]"
                   "|v?p(add|sub|mul|madd)[a-z]*|v?fn?m(add|sub)[0-9a-z]*");

/// The functions of the workload source @p name, such as "mandel".
QVector<machineFunction> functionsOf(const QString &name)
{
    const QStringList objects = QString::fromUtf8(FENNICK_WORKLOAD_OBJECTS).split(QLatin1Char('|'));
    for (const QString &object : objects) {
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

/// How often a kind of instruction stands in a loop; -1 stands for any number of times.
struct amount {
    const char *mnemonics;
    int least;
    int most;
};

/// The innermost loop of a workload, known by having the first amount, must have the others too.
struct kernel {
    const char *workload;
    const char *function;
    QVector<amount> amounts;
};

const char *const conversions = "v?cvt.*";
const char *const singles = "v?(add|sub|mul|div|sqrt)ss";
const char *const doubles = "v?(add|sub|mul|div|sqrt)sd";

const QVector<kernel> kernels = {
    // Four products of z and two of c; the division of each iteration.
    {"mandel", "", {{"v?mulss", 4, -1}, {"v?divss", 1, 1}, {"v?u?comiss", 1, 1}, {doubles, 0, 0}}},
    // Per glow: both differences and their squares, a root, the scale, the light. With the vertical
    // parts taken out of the loop there would be half as many.
    {"colors",
     "omp",
     {{"v?sqrtss", 4, 4},
      {"v?subss", 12, 12},
      {"v?mulss", 12, 12},
      {"call.*", 0, 0},
      {doubles, 0, 0}}},
    // Eight steps per byte, and the byte itself; no carry-less multiplication.
    {"crc32",
     "omp",
     {{"shr", 8, 8}, {"xor", 9, 9}, {"and", 8, 16}, {"neg", 8, 8}, {"pclmul.*|crc32.*", 0, 0}}},
    // Both keys of a comparison: three bytes each, two additions each.
    {"shellsort", "shellsort::sort", {{"movzbl", 6, 6}, {"add", 4, 4}}},
    // One comparison to end the loop, and none for an assertion.
    {"zlib",
     "zlib::unpack",
     {{"movzb.*|movb", 1, 1}, {"mov", 1, -1}, {"cmp", 1, 1}, {"call.*", 0, 0}}},
    // 16 products each for the rotation and the projection, four for the scale.
    {"vertex", "omp", {{"v?mulss", 36, 36}, {"v?addss", 28, 28}, {doubles, 0, 0}}},
    {"lines", "drawLine", {{"cmp", 4, 4}, {singles, 0, 0}, {doubles, 0, 0}}},
    // Two innermost loops of the coder hold one pass over the words each; calls would be of memset
    // and the like.
    {"rle", "rle::encode", {{"cmp", 1, -1}, {"call.*|rep.*", 0, 0}}},
    {"rle", "rle::decode", {{"cmp", 1, -1}, {"call.*|rep.*", 0, 0}}},
    {"motionBlur",
     "smear<unsigned int>",
     {{"imul", 6, 6}, {conversions, 0, 0}, {singles, 0, 0}, {doubles, 0, 0}}},
    {"motionBlur", "smear<float>", {{"v?mulss", 18, 18}, {"v?addss", 12, 12}, {doubles, 0, 0}}},
    {"motionBlur", "smear<double>", {{"v?mulsd", 18, 18}, {"v?addsd", 12, 12}, {singles, 0, 0}}},
    {"rotozoom", "renderRow<nearestTexel>", {{"imul", 1, -1}, {conversions, 0, 0}}},
    {"rotozoom", "renderRowWide", {{"imul", 1, -1}, {conversions, 0, 0}}},
    {"rotozoom", "renderRowDithered", {{"imul", 1, -1}, {conversions, 0, 0}}},
    {"rotozoom",
     "renderRow<linearTexel<unsigned int>",
     {{"imul", 16, 20}, {conversions, 0, 0}, {singles, 0, 0}, {doubles, 0, 0}}},
    {"rotozoom",
     "renderRow<linearTexel<float>",
     {{"v?mulss", 19, 19}, {"v?addss", 9, 9}, {doubles, 0, 0}}},
    {"rotozoom",
     "renderRow<linearTexel<double>",
     {{"v?mulsd", 19, 19}, {"v?addsd", 9, 9}, {singles, 0, 0}}},
    {"rotozoom",
     "renderRow<lastPixelTexel<unsigned int>",
     {{"imul", 1, -1}, {conversions, 0, 0}, {singles, 0, 0}, {doubles, 0, 0}}},
    {"rotozoom",
     "renderRow<lastPixelTexel<float>",
     {{"v?mulss", 6, 6}, {"v?addss", 3, 3}, {doubles, 0, 0}}},
    {"rotozoom",
     "renderRow<lastPixelTexel<double>",
     {{"v?mulsd", 6, 6}, {"v?addsd", 3, 3}, {singles, 0, 0}}},
};

/// What the largest innermost loop reads for each word or pixel that it writes: nothing that was
/// put aside in memory, but what the work is about.
struct reading {
    const char *workload;
    const char *function;
    int mostLoadsPerStore;
};

const QVector<reading> readings = {
    // The word to compare with; the moved one stays in a register.
    {"shellsort", "shellsort::sort", 1},
    {"rotozoom", "renderRow<nearestTexel>", 1},
    {"rotozoom", "renderRowDithered", 1},
    // The texel and the pixel before.
    {"rotozoom", "renderRow<lastPixelTexel<unsigned int>", 2},
    // Ten values that do not change and the row: one of them may not find a register.
    {"colors", "omp", 1},
};

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

bool has(const instructions &loop, const amount &wanted)
{
    const int count = countMnemonics(loop, QString::fromLatin1(wanted.mnemonics));
    return count >= wanted.least && (wanted.most < 0 || count <= wanted.most);
}

} // namespace

class tst_machineCode : public QObject
{
    Q_OBJECT

private slots:
    void nothingIsPacked_data();
    void nothingIsPacked();
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
    QTest::addColumn<QString>("workload");
    for (const char *workload : {"mandel", "motionBlur", "lines", "rotozoom", "colors", "shellsort",
                                 "rle", "vertex", "matrix", "zlib", "crc32", "codecTest"})
        QTest::newRow(workload) << QString::fromLatin1(workload);
}

void tst_machineCode::nothingIsPacked()
{
    QFETCH(QString, workload);
    int count = 0;
    for (const machineFunction &function : functionsOf(workload)) {
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

void tst_machineCode::workIsKept_data()
{
    QTest::addColumn<int>("index");
    for (int i = 0; i < kernels.size(); ++i)
        QTest::addRow("%s %s", kernels[i].workload, kernels[i].function) << i;
}

void tst_machineCode::workIsKept()
{
    QFETCH(int, index);
    const kernel &wanted = kernels[index];
    int found = 0;
    for (const instructions &loop : innermostLoopsOf(QString::fromLatin1(wanted.workload),
                                                     QString::fromLatin1(wanted.function))) {
        if (!has(loop, wanted.amounts.first()))
            continue;
        ++found;
        for (const amount &one : wanted.amounts) {
            QVERIFY2(has(loop, one), qPrintable(QString::fromLatin1(one.mnemonics)
                                                + QLatin1Char('\n') + textOf(loop)));
        }
    }
    QVERIFY2(found > 0, "the loop was not found");
}

void tst_machineCode::nothingElseIsRead_data()
{
    QTest::addColumn<int>("index");
    for (int i = 0; i < readings.size(); ++i)
        QTest::addRow("%s %s", readings[i].workload, readings[i].function) << i;
}

void tst_machineCode::nothingElseIsRead()
{
    QFETCH(int, index);
    const reading &wanted = readings[index];
    instructions largest;
    for (const instructions &loop : innermostLoopsOf(QString::fromLatin1(wanted.workload),
                                                     QString::fromLatin1(wanted.function))) {
        if (loop.size() > largest.size())
            largest = loop;
    }
    QVERIFY2(!largest.isEmpty(), "the loop was not found");
    const auto loads = std::count_if(largest.begin(), largest.end(), isLoad);
    const auto stores = std::count_if(largest.begin(), largest.end(), isStore);
    QVERIFY2(stores > 0 && loads <= wanted.mostLoadsPerStore * stores,
             qPrintable(QStringLiteral("%1 loads, %2 stores\n").arg(loads).arg(stores)
                        + textOf(largest)));
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
    for (const char *callee : {"memcpy", "memmove", "__memcpy_chk"})
        QCOMPARE(countCalls(QStringLiteral("zlib"), QStringLiteral("zlib::unpack"),
                            QString::fromLatin1(callee)),
                 0);
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
