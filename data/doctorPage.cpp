// SPDX-License-Identifier: GPL-3.0-or-later
#include "data/doctorPage.h"

#include "data/visibleText.h"

#include <QStringList>

namespace
{

constexpr int pageColumns = 80;
constexpr int labelColumns = 17;
constexpr int digestDigits = 16; // enough to tell two builds apart
const QString indent = QStringLiteral("  ");
const QString unknown = QStringLiteral("unknown");

/// Appends @p word to the last of @p lines, or to new ones; a word longer than a line is cut.
void append(QStringList &lines, const QString &word, int columns)
{
    if (!lines.last().isEmpty() && columnsOf(lines.last()) + 1 + columnsOf(word) <= columns) {
        lines.last() += QLatin1Char(' ') + word;
        return;
    }
    if (!lines.last().isEmpty())
        lines.append(QString());
    for (const QChar c : word) {
        if (columnsOf(lines.last()) + columnsOf(c) > columns)
            lines.append(QString());
        lines.last() += c;
    }
}

/// @p text behind @p first, in as many lines as it takes, all as far to the right.
QString block(const QString &first, const QString &text)
{
    QStringList lines = {QString()};
    for (const QString &word : visibleText(text).split(QLatin1Char(' '), Qt::SkipEmptyParts))
        append(lines, word, pageColumns - static_cast<int>(first.size()));
    const QString between = QLatin1Char('\n') + QString(first.size(), QLatin1Char(' '));
    return first + lines.join(between) + QLatin1Char('\n');
}

QString row(const char *label, const QString &value)
{
    const QString first = indent + QString::fromLatin1(label).leftJustified(labelColumns);
    return block(first, value.trimmed().isEmpty() ? unknown : value);
}

QString clockText(double hertz)
{
    return hertz > 0 ? QStringLiteral("%1 MHz").arg(QString::number(hertz / 1e6, 'f', 0))
                     : QString();
}

QString governorText(const machineContext &context)
{
    const QString governor = context.governor.value_or(unknown);
    return context.frequencyDriver
               ? QStringLiteral("%1 (driver %2)").arg(governor, *context.frequencyDriver)
               : governor;
}

QString boostText(const machineContext &context)
{
    if (!context.boost)
        return {};
    return *context.boost ? QStringLiteral("on") : QStringLiteral("off");
}

QString powerText(const machineContext &context)
{
    if (!context.power)
        return {};
    return *context.power == machineContext::battery ? QStringLiteral("battery")
                                                     : QStringLiteral("mains");
}

QString virtualMachineText(const machineContext &context)
{
    if (!context.virtualMachine)
        return QStringLiteral("no sign of one");
    return *context.virtualMachine == unknown ? QStringLiteral("yes, of unknown kind")
                                              : *context.virtualMachine;
}

QString decimalText(const std::optional<double> &number, int digits, const char *unit)
{
    return number ? QString::number(*number, 'f', digits) + QLatin1String(unit) : QString();
}

QString environmentText(const QMap<QString, QString> &environment)
{
    if (environment.isEmpty())
        return row("environment", QStringLiteral("no settings that move results"));
    QString text;
    for (auto one = environment.cbegin(); one != environment.cend(); ++one)
        text +=
            row(text.isEmpty() ? "environment" : "", one.key() + QLatin1Char('=') + one.value());
    return text;
}

QString machineText(const doctorSubject &subject)
{
    const machineContext &context = subject.context;
    const int threads = subject.machine.threads;
    const qint64 pageSize = context.pageSize.value_or(0);
    return QStringLiteral("This machine\n") + row("name", subject.machine.name)
           + row("system", subject.machine.os) + row("processor", subject.machine.processor)
           + row("threads", threads > 0 ? QString::number(threads) : QString())
           + row("nominal clock", clockText(subject.machine.clock))
           + row("governor", governorText(context)) + row("boost", boostText(context))
           + row("power", powerText(context)) + row("virtual machine", virtualMachineText(context))
           + row("temperature", decimalText(subject.moment.temperature, 0, " degrees Celsius"))
           + row("load average", decimalText(subject.moment.loadAverage, 2, ""))
           + row("kernel", context.kernel.value_or(QString()))
           + row("page size", pageSize > 0 ? QStringLiteral("%1 bytes").arg(pageSize) : QString())
           + row("huge pages", context.hugePages.value_or(QString()))
           + environmentText(context.environment);
}

QString buildText(const buildFacts &build)
{
    return QStringLiteral("\nThis build of Fennick\n") + row("version", build.version)
           + row("compiler", build.compiler + QLatin1Char(' ') + build.compilerVersion)
           + row("build type", build.buildType) + row("workloads' flags", build.measuredFlags)
           + row("workloads' code", build.workloadDigest.left(digestDigits));
}

/// A sentence of an outcome's form in the middle of a page.
QString asProse(const QString &sentence)
{
    return sentence.left(1).toUpper() + sentence.mid(1) + QLatin1Char('.');
}

/// Those of one weight under a @p heading, or @p otherwise.
QString disturbancesText(const std::vector<disturbance> &all, disturbance::weight weight,
                         const char *heading, const char *otherwise)
{
    QString text;
    for (const disturbance &one : all) {
        if (one.how != weight)
            continue;
        text += block(indent + QStringLiteral("- "), asProse(one.sentence));
        text += block(indent + indent, asProse(one.remedy));
    }
    if (text.isEmpty())
        text = QLatin1String(otherwise);
    return text.isEmpty() ? text : QLatin1Char('\n') + QLatin1String(heading) + text;
}

} // namespace

QString doctorPage(const doctorSubject &subject)
{
    return machineText(subject) + buildText(subject.build)
           + disturbancesText(subject.disturbances, disturbance::warning,
                              "What disturbs a measurement here, and what to do\n",
                              "  Nothing that Fennick can see.\n")
           + disturbancesText(subject.disturbances, disturbance::note,
                              "Good to know when results are compared\n", "");
}
