// SPDX-License-Identifier: GPL-3.0-or-later
#include "cli/listCommand.h"

#include "cli/commandTable.h"
#include "cli/outputs.h"
#include "console/standardStreams.h"
#include "tests/suiteFacts.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

namespace
{

QString indented(const QStringList &names)
{
    return QStringLiteral("  ") + names.join(QStringLiteral("\n  "));
}

} // namespace

QString listText(const QStringList &testNames, const QStringList &resolutionNames)
{
    return QStringLiteral("Tests:\n%1\nResolutions:\n%2\n")
        .arg(indented(testNames), indented(resolutionNames));
}

QByteArray listJson(const QStringList &resolutionNames)
{
    QJsonArray tests;
    for (const testFacts &facts : suiteFacts()) {
        tests.append(QJsonObject{
            {QStringLiteral("name"), QLatin1String(facts.name)},
            {QStringLiteral("unit"), QLatin1String(facts.workload.unit)},
            {QStringLiteral("multicore"), facts.isMulticore()},
            {QStringLiteral("inFullRuns"), facts.isInFullRuns()},
            {QStringLiteral("description"), QLatin1String(facts.workload.description)},
        });
    }
    const QJsonObject lists = {
        {QStringLiteral("kind"), QStringLiteral("fennick-list")},
        {QStringLiteral("schema"), 1},
        {QStringLiteral("version"), QStringLiteral(FENNICK_VERSION)},
        {QStringLiteral("tests"), tests},
        {QStringLiteral("resolutions"), QJsonArray::fromStringList(resolutionNames)},
    };
    return QJsonDocument(lists).toJson();
}

exitCode listCommand(const listRequest &wanted, const QStringList &resolutionNames)
{
    if (!wanted.json.isEmpty())
        return writeOutput(wanted.json, listJson(resolutionNames));
    QStringList names;
    for (const testFacts &facts : suiteFacts())
        names.append(QLatin1String(facts.name));
    writeText(listText(names, resolutionNames), stdout);
    return exitSuccess;
}
