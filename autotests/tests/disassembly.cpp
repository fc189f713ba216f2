// SPDX-License-Identifier: GPL-3.0-or-later
#include "disassembly.h"

#include <QBitArray>
#include <QHash>
#include <QProcess>
#include <QRegularExpression>

namespace
{

using edges = QVector<QVector<int>>;

/// Control flow between the instructions of one function, by their indexes.
struct flow {
    edges successors;
    edges predecessors;
};

bool endsFlow(const QString &mnemonic)
{
    return mnemonic.startsWith(QLatin1String("jmp")) || mnemonic.startsWith(QLatin1String("ret"))
           || mnemonic == QLatin1String("ud2");
}

flow flowOf(const instructions &code)
{
    QHash<quint64, int> indexes;
    for (int i = 0; i < code.size(); ++i)
        indexes.insert(code[i].address, i);
    flow result{edges(code.size()), edges(code.size())};
    const auto connect = [&](int from, int to) {
        result.successors[from].append(to);
        result.predecessors[to].append(from);
    };
    for (int i = 0; i < code.size(); ++i) {
        if (!endsFlow(code[i].mnemonic) && i + 1 < code.size())
            connect(i, i + 1);
        if (!code[i].mnemonic.startsWith(QLatin1Char('j')))
            continue;
        bool isAddress = false;
        const quint64 target =
            code[i].operands.section(QLatin1Char(' '), 0, 0).toULongLong(&isAddress, 16);
        if (isAddress && indexes.contains(target))
            connect(i, indexes.value(target));
    }
    return result;
}

/// What the entry of the function leads to. The rest is padding between blocks.
QBitArray reachable(const flow &graph)
{
    QBitArray reached(graph.successors.size());
    QVector<int> open{0};
    while (!open.isEmpty()) {
        const int i = open.takeLast();
        if (reached.testBit(i))
            continue;
        reached.setBit(i);
        open += graph.successors[i];
    }
    return reached;
}

/// For each instruction, those that every way from the function's entry to it passes through.
QVector<QBitArray> dominatorsOf(const flow &graph)
{
    const int size = graph.successors.size();
    QVector<QBitArray> dominators(size, QBitArray(size, true));
    dominators[0] = QBitArray(size);
    dominators[0].setBit(0);
    for (bool isChanged = true; isChanged;) {
        isChanged = false;
        for (int i = 1; i < size; ++i) {
            QBitArray common(size, true);
            for (const int from : graph.predecessors[i])
                common &= dominators[from];
            common.setBit(i);
            if (common != dominators[i]) {
                dominators[i] = common;
                isChanged = true;
            }
        }
    }
    return dominators;
}

/// Adds to @p body all instructions from which @p last is reached without passing the header, which
/// is in the body already.
void collectBody(const flow &graph, int last, QBitArray &body)
{
    QVector<int> open{last};
    while (!open.isEmpty()) {
        const int i = open.takeLast();
        if (body.testBit(i))
            continue;
        body.setBit(i);
        open += graph.predecessors[i];
    }
}

/// The bodies of all natural loops by their headers.
QHash<int, QBitArray> loopsOf(const flow &graph)
{
    const int size = graph.successors.size();
    const QVector<QBitArray> dominators = dominatorsOf(graph);
    const QBitArray reached = reachable(graph);
    QHash<int, QBitArray> loops;
    for (int last = 0; last < size; ++last) {
        for (const int header : graph.successors[last]) {
            // Unreachable code seems to be dominated by everything.
            if (!reached.testBit(last) || !dominators[last].testBit(header))
                continue;
            QBitArray &body = loops[header];
            if (body.isEmpty()) {
                body.resize(size);
                body.setBit(header);
            }
            collectBody(graph, last, body);
        }
    }
    return loops;
}

void addRelocation(machineFunction &function, const QString &line)
{
    static const QRegularExpression relocation(QStringLiteral("R_X86_64_\\S+\\s+(.+)$"));
    const QRegularExpressionMatch match = relocation.match(line);
    if (match.hasMatch() && !function.code.isEmpty())
        function.code.last().operands += QLatin1Char(' ') + match.captured(1);
}

} // namespace

QVector<machineFunction> disassemble(const QString &objectFile)
{
    static const QRegularExpression header(QStringLiteral("^[0-9a-f]+ <(.+)>:$"));
    static const QRegularExpression line(
        QStringLiteral("^\\s*([0-9a-f]+):\\t(?:(?:lock|rep|repz|bnd|notrack|data16|cs) )*"
                       "(\\S+)\\s*(.*)$"));
    QProcess objdump;
    objdump.start(QStringLiteral("objdump"),
                  {QStringLiteral("-d"), QStringLiteral("-r"), QStringLiteral("-C"),
                   QStringLiteral("--no-show-raw-insn"), objectFile});
    if (!objdump.waitForFinished(60'000) || objdump.exitCode() != 0)
        return {};
    QVector<machineFunction> functions;
    const QString text = QString::fromUtf8(objdump.readAllStandardOutput());
    for (const QString &row : text.split(QLatin1Char('\n'))) {
        const QRegularExpressionMatch start = header.match(row);
        if (start.hasMatch()) {
            functions.append({start.captured(1), {}});
        } else if (row.contains(QLatin1String("R_X86_64_")) && !functions.isEmpty()) {
            addRelocation(functions.last(), row);
        } else if (const auto match = line.match(row); match.hasMatch() && !functions.isEmpty()) {
            functions.last().code.append(
                {match.captured(1).toULongLong(nullptr, 16), match.captured(2), match.captured(3)});
        }
    }
    return functions;
}

QVector<instructions> innermostLoops(const machineFunction &function)
{
    if (function.code.isEmpty())
        return {};
    const QHash<int, QBitArray> loops = loopsOf(flowOf(function.code));
    QVector<instructions> innermost;
    for (auto loop = loops.begin(); loop != loops.end(); ++loop) {
        bool hasInner = false;
        for (auto other = loops.begin(); other != loops.end(); ++other)
            hasInner = hasInner || (other.key() != loop.key() && loop->testBit(other.key()));
        if (hasInner)
            continue;
        instructions code;
        for (int i = 0; i < function.code.size(); ++i) {
            if (loop->testBit(i))
                code.append(function.code[i]);
        }
        innermost.append(code);
    }
    return innermost;
}

int countMnemonics(const instructions &code, const QString &expression)
{
    const QRegularExpression whole(QRegularExpression::anchoredPattern(expression));
    int count = 0;
    for (const instruction &one : code)
        count += whole.match(one.mnemonic).hasMatch() ? 1 : 0;
    return count;
}
