// SPDX-License-Identifier: GPL-3.0-or-later
#include "server/uploadCheck.h"

#include "data/benchXml.h"
#include "server/ceilings.h"

#include <QXmlStreamReader>
#include <QXmlStreamWriter>

#include <algorithm>
#include <cmath>

namespace
{

constexpr int maximumThreads = 4096;
constexpr float maximumClock = 2e10F; // Hz

/// What a reader has found so far.
struct reading {
    int machines = 0;
    benchResults machine;
    QString fault;
};

bool isDecimal(const QString &text)
{
    const auto isAllowed = [](QChar c) {
        return (c >= QLatin1Char('0') && c <= QLatin1Char('9'))
               || QStringLiteral("+-.eE").contains(c);
    };
    return !text.isEmpty() && std::all_of(text.begin(), text.end(), isAllowed);
}

/// The attribute as a number, or a fault.
float number(const QXmlStreamAttributes &attributes, const char *name, reading &state)
{
    const QString text = attributes.value(QLatin1String(name)).toString();
    bool isNumber = false;
    const float value = text.toFloat(&isNumber);
    if (!isNumber || !isDecimal(text)) {
        state.fault = QStringLiteral("'%1' is not a number: '%2'")
                          .arg(QLatin1String(name), text.left(maximumNameLength));
    }
    return value;
}

void readMachine(const QXmlStreamAttributes &attributes, reading &state)
{
    for (const char *name : {"machineName", "os", "cpu", "clock", "threadCount"}) {
        if (!attributes.hasAttribute(QLatin1String(name)))
            state.fault = QStringLiteral("the machine has no '%1'").arg(QLatin1String(name));
    }
    if (!state.fault.isEmpty())
        return;
    const float clock = number(attributes, "clock", state);
    const float threads = number(attributes, "threadCount", state);
    if (!(threads >= 1 && threads <= maximumThreads)) {
        state.fault = QStringLiteral("the thread count must be from 1 to %1").arg(maximumThreads);
        return;
    }
    state.machine = {attributes.value(QLatin1String("machineName")).toString(),
                     attributes.value(QLatin1String("os")).toString(),
                     attributes.value(QLatin1String("cpu")).toString(), clock,
                     static_cast<int>(threads)};
}

void readResult(const QXmlStreamAttributes &attributes, reading &state)
{
    const QString name = attributes.value(QLatin1String("name")).toString();
    if (state.machine.findTest(name)) {
        state.fault = QStringLiteral("the test '%1' stands twice").arg(name);
        return;
    }
    state.machine.setTest(name, benchResults::test(number(attributes, "result", state)));
}

void readElement(const QXmlStreamReader &xml, int depth, reading &state)
{
    if (depth == 1)
        return; // the root, whatever its name
    if (depth == 2 && xml.name() == QLatin1String("bench")) {
        if (++state.machines == 1)
            readMachine(xml.attributes(), state);
    } else if (depth == 3 && xml.name() == QLatin1String("test")) {
        if (state.machines == 1)
            readResult(xml.attributes(), state);
    } else {
        state.fault = QStringLiteral("there must be no element '%1' here")
                          .arg(xml.name().toString().left(maximumNameLength));
    }
}

/// Reads up to the end or the first fault. False if this is no XML.
bool read(QXmlStreamReader &xml, reading &state)
{
    int depth = 0;
    while (!xml.atEnd() && state.fault.isEmpty()) {
        switch (xml.readNext()) {
        case QXmlStreamReader::StartElement:
            readElement(xml, ++depth, state);
            break;
        case QXmlStreamReader::EndElement:
            --depth;
            break;
        case QXmlStreamReader::DTD:
        case QXmlStreamReader::EntityReference:
            state.fault = QStringLiteral("a document type is not allowed");
            break;
        default:
            break;
        }
    }
    return !xml.hasError();
}

bool isPlainName(const QString &name)
{
    return name.size() <= maximumNameLength && std::all_of(name.begin(), name.end(), [](QChar c) {
               return c.category() != QChar::Other_Control && c.category() != QChar::Separator_Line
                      && c.category() != QChar::Separator_Paragraph;
           });
}

} // namespace

QString faultOf(const benchResults &machine)
{
    const QString os = machine.getOs();
    if (os != QLatin1String("windows") && os != QLatin1String("linux")
        && os != QLatin1String("android"))
        return QStringLiteral("the operating system must be windows, linux or android");
    if (!isPlainName(machine.getName()) || !isPlainName(machine.getCpu())) {
        return QStringLiteral("names must be of at most %1 characters without control characters")
            .arg(maximumNameLength);
    }
    if (machine.getCpu().trimmed().isEmpty())
        return QStringLiteral("the processor has no name");
    if (machine.getThreads() < 1 || machine.getThreads() > maximumThreads)
        return QStringLiteral("the thread count must be from 1 to %1").arg(maximumThreads);
    if (!(machine.getFrequency() >= 0 && machine.getFrequency() <= maximumClock))
        return QStringLiteral("the clock must be from 0 to 20 GHz");
    const QMap<QString, benchResults::test> &tests = machine.getTests();
    for (auto test = tests.begin(); test != tests.end(); ++test) {
        const auto ceiling = resultCeilings().constFind(test.key());
        if (ceiling == resultCeilings().constEnd()) {
            return QStringLiteral("there is no test '%1'").arg(test.key().left(maximumNameLength));
        }
        // As it is stored, with six digits: an upload that was taken must be one for ever.
        const float value = QString::number(static_cast<double>(test->value)).toFloat();
        if (!(value >= 0 && value < *ceiling)) {
            return QStringLiteral("the result of '%1' must be at least 0 and below %2")
                .arg(test.key(), QString::number(static_cast<double>(*ceiling)));
        }
    }
    return {};
}

checkedUpload checkUpload(const QByteArray &xml)
{
    checkedUpload result;
    if (xml.trimmed().isEmpty()) {
        result.reason = QStringLiteral("there are no results in this upload");
        return result;
    }
    QXmlStreamReader reader(xml);
    reading state;
    if (!read(reader, state)) {
        result.reason = QStringLiteral("the results are not well-formed XML: line %1: %2")
                            .arg(QString::number(reader.lineNumber()), reader.errorString());
        return result;
    }
    result.isReadable = true;
    if (!state.fault.isEmpty())
        result.reason = state.fault;
    else if (state.machines != 1)
        result.reason = QStringLiteral("there must be exactly one machine in an upload");
    else
        result.reason = faultOf(state.machine);
    result.machine = state.machine;
    return result;
}

QByteArray canonicalXml(const benchResults &machine)
{
    QByteArray content;
    QXmlStreamWriter xml(&content);
    writeMachine(xml, machine);
    return content;
}

bool isAllZero(const benchResults &machine)
{
    const QMap<QString, benchResults::test> &tests = machine.getTests();
    return std::none_of(tests.begin(), tests.end(),
                        [](const benchResults::test &test) { return test.value > 0; });
}
