// SPDX-License-Identifier: GPL-3.0-or-later

// Looks at the machine code of the workloads as it was built: the work that the sources ask for
// must still be there after the optimiser, and nothing may have been vectorised. A compiler that
// defeats this makes results incomparable, and this test red.

#include "support/disassembly.h"

#include <QtTest>

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

QVector<instructions> innermostLoopsOf(const QString &name)
{
    QVector<instructions> loops;
    for (const machineFunction &function : functionsOf(name))
        loops += innermostLoops(function);
    return loops;
}

QString textOf(const instructions &code)
{
    QString text;
    for (const instruction &one : code)
        text += one.mnemonic + QLatin1Char(' ') + one.operands + QLatin1Char('\n');
    return text;
}

} // namespace

class tst_machineCode : public QObject
{
    Q_OBJECT

private slots:
    void nothingIsPacked_data();
    void nothingIsPacked();
    void mandelDividesInItsInnermostLoop();
};

void tst_machineCode::nothingIsPacked_data()
{
    QTest::addColumn<QString>("workload");
    for (const char *workload : {"mandel"})
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

void tst_machineCode::mandelDividesInItsInnermostLoop()
{
    int kernels = 0;
    for (const instructions &loop : innermostLoopsOf(QStringLiteral("mandel"))) {
        // Three squares and products of z, twice the product, two scaled parts of c.
        if (countMnemonics(loop, QStringLiteral("v?mulss")) < 4)
            continue;
        ++kernels;
        QVERIFY2(countMnemonics(loop, QStringLiteral("v?divss")) == 1, qPrintable(textOf(loop)));
        QVERIFY2(countMnemonics(loop, QStringLiteral("v?u?comiss")) == 1, qPrintable(textOf(loop)));
    }
    QVERIFY2(kernels >= 1, "the loop over the iterations was not found");
}

QTEST_GUILESS_MAIN(tst_machineCode)
#include "tst_machineCode.moc"
