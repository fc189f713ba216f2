// SPDX-License-Identifier: GPL-3.0-or-later
#include "tools/reference/referenceList.h"

#include "data/benchXml.h"
#include "data/estimate.h"
#include "tools/reference/referenceModel.h"

#include <QXmlStreamWriter>

namespace reference
{

namespace
{

const char warning[] =
    " Modelled estimates, not measured results: nobody has run these tests on these machines. They "
    "are computed from public facts (docs/reference-model.md) and are to be replaced by measured "
    "uploads. ";

/// Exact: clocks in the table are whole megahertz.
quint64 hertzOf(const machine &m)
{
    return static_cast<quint64>(m.nominalMhz) * 1000000U;
}

QByteArray numberText(double value, int decimals)
{
    return QByteArray::number(value, 'f', decimals);
}

} // namespace

benchResults modelledMachine(const machine &m, const tables &facts, const QVector<double> &factors)
{
    benchResults result(m.name + estimateSuffix(), m.os, m.cpu, static_cast<float>(hertzOf(m)),
                        m.threads);
    const QVector<modelledTest> &tests = modelledTests();
    for (int i = 0; i < tests.size(); ++i) {
        const double value = estimate(tests.at(i), m, facts, factors.at(i));
        result.setTest(tests.at(i).name, benchResults::test(static_cast<float>(value)));
    }
    return result;
}

outcome<QByteArray> machineList(const tables &facts)
{
    const auto factors = calibrationFactors(facts);
    if (!factors)
        return failure(factors.error());
    QByteArray text;
    QXmlStreamWriter xml(&text);
    xml.setAutoFormatting(true);
    xml.setAutoFormattingIndent(8);
    xml.writeComment(QString::fromLatin1(warning));
    xml.writeStartElement(QStringLiteral("Fennick"));
    for (const machine &m : facts.machines)
        writeMachine(xml, modelledMachine(m, facts, *factors), hertzOf(m));
    xml.writeEndElement();
    text = text.trimmed() + '\n';
    return text.replace('\n', "\r\n");
}

outcome<QByteArray> factorTable(const tables &facts)
{
    const auto factors = calibrationFactors(facts);
    if (!factors)
        return failure(factors.error());
    QByteArray text = "| test | measured | modelled | factor |\n|---|---|---|---|\n";
    for (int i = 0; i < factors->size(); ++i) {
        const modelledTest &test = modelledTests().at(i);
        text += "| " + test.name.toUtf8() + " | "
                + QByteArray::number(facts.calibration.at(i).result, 'g', 4) + " | "
                + QByteArray::number(modelled(test, facts.calibrationMachine, facts), 'g', 4)
                + " | " + numberText(factors->at(i), 2) + " |\n";
    }
    return text;
}

} // namespace reference
