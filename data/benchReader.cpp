// SPDX-License-Identifier: GPL-3.0-or-later
#include "data/benchReader.h"

#include <QXmlStreamReader>

#include <algorithm>
#include <limits>

namespace
{

// More than that the XML reader would have to remember, or would take longer for than it is long.
constexpr int deepest = 64;
constexpr int mostAttributes = 64;

/// As much as a sentence repeats of what it complains about.
constexpr int longestQuotation = 128;

/// A thread count from a number that may be anything, "nan" and "1e30" included.
int truncatedToInt(float number)
{
    constexpr auto limit = static_cast<float>(std::numeric_limits<int>::max());
    if (!(number > -limit && number < limit))
        return 0;
    return static_cast<int>(number);
}

/// The text of an attribute, as long as a name may be.
QString textOf(const QXmlStreamAttributes &attributes, const char *name)
{
    const QStringRef text = attributes.value(QLatin1String(name));
    if (text.size() <= maximumTextLength)
        return text.toString();
    const bool isTorn = text.at(maximumTextLength - 1).isHighSurrogate()
                        && text.at(maximumTextLength).isLowSurrogate();
    return text.left(isTorn ? maximumTextLength - 1 : maximumTextLength).toString();
}

/// Whether @p text is made of what decimal numbers are made of; the toolkit takes "inf" too.
bool isDecimal(const QStringRef &text)
{
    const auto isAllowed = [](QChar c) {
        return (c >= QLatin1Char('0') && c <= QLatin1Char('9'))
               || QLatin1String("+-.eE").contains(c);
    };
    return !text.isEmpty() && std::all_of(text.begin(), text.end(), isAllowed);
}

/// An attribute as a number. An invalid one becomes @p fault, unless there is one already.
float numberOf(const QXmlStreamAttributes &attributes, const char *name,
               std::optional<benchFault> &fault)
{
    const QStringRef text = attributes.value(QLatin1String(name));
    bool isNumber = false;
    const float value = text.toFloat(&isNumber);
    if (!fault && !(isNumber && isDecimal(text))) {
        fault = benchFault{benchFault::invalidNumber, QLatin1String(name),
                           text.left(longestQuotation).toString()};
    }
    return value;
}

/// The first of @p names that @p owner lacks, as a fault.
std::optional<benchFault> missingOf(const QXmlStreamAttributes &attributes, const char *owner,
                                    std::initializer_list<const char *> names)
{
    for (const char *name : names) {
        if (!attributes.hasAttribute(QLatin1String(name)))
            return benchFault{benchFault::missingAttribute, QLatin1String(name),
                              QLatin1String(owner)};
    }
    return std::nullopt;
}

} // namespace

QString benchFault::sentence() const
{
    const QString quotation = name.left(longestQuotation);
    switch (what) {
    case documentType:
    case declarations:
        return QStringLiteral("a document type is not allowed");
    case otherElement:
        return QStringLiteral("there must be no element '%1' here").arg(quotation);
    case missingAttribute:
        return QStringLiteral("the %1 has no '%2'").arg(value, quotation);
    case invalidNumber:
        return QStringLiteral("'%1' is not a number: '%2'").arg(quotation, value);
    case repeatedResult:
        return QStringLiteral("the test '%1' appears twice").arg(quotation);
    case tooDeep:
        return QStringLiteral("elements are nested more than %1 levels deep").arg(deepest);
    case tooManyAttributes:
        return QStringLiteral("an element has more than %1 attributes").arg(mostAttributes);
    case tooManyMachines:
        return QStringLiteral("there are more than %1 machines").arg(maximumMachines);
    case tooManyResults:
        return QStringLiteral("a machine has more than %1 results").arg(maximumResults);
    }
    return {};
}

std::optional<benchFault> benchReader::take(const QXmlStreamReader &xml)
{
    switch (xml.tokenType()) {
    case QXmlStreamReader::StartElement: {
        ++depth;
        const std::optional<benchFault> fault = readElement(xml.name(), xml.attributes());
        return depth > deepest ? benchFault{benchFault::tooDeep, {}, {}} : fault;
    }
    case QXmlStreamReader::EndElement:
        if (depth == machineDepth)
            machineDepth = 0;
        --depth;
        return std::nullopt;
    case QXmlStreamReader::DTD:
        // Its declarations could make much of little, again and again.
        return benchFault{xml.text().contains(QLatin1Char('[')) ? benchFault::declarations
                                                                : benchFault::documentType,
                          {},
                          {}};
    case QXmlStreamReader::EntityReference:
        return benchFault{benchFault::documentType, {}, {}};
    default:
        return std::nullopt;
    }
}

std::optional<benchFault> benchReader::readElement(const QStringRef &name,
                                                   const QXmlStreamAttributes &attributes)
{
    if (attributes.size() > mostAttributes)
        return benchFault{benchFault::tooManyAttributes, {}, {}};
    const bool isMachine = name == QLatin1String("bench");
    const bool isResult = name == QLatin1String("test");
    const bool isInPlace = isMachine  ? depth == 2
                           : isResult ? isInMachine() && depth == machineDepth + 1
                                      : depth == 1;
    if (isMachine && !isInMachine())
        machineDepth = depth;
    std::optional<benchFault> fault;
    if (isMachine)
        fault = readMachine(attributes);
    else if (isResult)
        fault = readResult(attributes);
    return isInPlace || (fault && fault->what >= benchFault::declarations)
               ? fault
               : benchFault{benchFault::otherElement, name.toString(), {}};
}

std::optional<benchFault> benchReader::readMachine(const QXmlStreamAttributes &attributes)
{
    std::optional<benchFault> fault =
        missingOf(attributes, "machine", {"machineName", "os", "cpu", "clock", "threadCount"});
    if (attributes.isEmpty())
        return fault;
    if (machines.size() - firstMachine >= maximumMachines)
        return benchFault{benchFault::tooManyMachines, {}, {}};
    const float clock = numberOf(attributes, "clock", fault);
    const float threads = numberOf(attributes, "threadCount", fault);
    machines.append({textOf(attributes, "machineName"), textOf(attributes, "os"),
                     textOf(attributes, "cpu"), clock, truncatedToInt(threads)});
    return fault;
}

std::optional<benchFault> benchReader::readResult(const QXmlStreamAttributes &attributes)
{
    std::optional<benchFault> fault = missingOf(attributes, "result", {"name", "result"});
    // One before the first machine is nobody's.
    if (attributes.isEmpty() || machines.size() == firstMachine)
        return fault;
    benchResults &machine = machines.last();
    const QString name = textOf(attributes, "name");
    const bool isRepeated = machine.findTest(name) != nullptr;
    if (!isRepeated && machine.getTests().size() >= maximumResults)
        return benchFault{benchFault::tooManyResults, {}, {}};
    if (!fault && isRepeated)
        fault = benchFault{benchFault::repeatedResult, name, {}};
    machine.setTest(name, benchResults::test(numberOf(attributes, "result", fault)));
    return fault;
}
