// SPDX-License-Identifier: GPL-3.0-or-later
#include "tools/reference/generations.h"
#include "tools/reference/referenceList.h"

#include <QCoreApplication>
#include <QFile>
#include <QSaveFile>

#include <cstdio>

namespace
{

using reference::tables;

int fail(const QString &error)
{
    std::fprintf(stderr, "%s\n", qUtf8Printable(error));
    return 1;
}

int writeFile(const QString &path, const QByteArray &content)
{
    QSaveFile file(path);
    const bool isWritten =
        file.open(QSaveFile::WriteOnly) && file.write(content) == content.size() && file.commit();
    return isWritten ? 0 : fail(QStringLiteral("Cannot write %1").arg(path));
}

int print(const QByteArray &content)
{
    QFile file;
    const bool isWritten = file.open(stdout, QFile::WriteOnly)
                           && file.write(content) == content.size() && file.flush();
    return isWritten ? 0 : fail(QStringLiteral("Cannot write to standard output"));
}

} // namespace

/// Computes the list of machines embedded in the programs, and the numbers that its document shows.
int main(int argc, char **argv)
{
    const QCoreApplication application(argc, argv);
    const QStringList arguments = QCoreApplication::arguments();
    const QString mode = arguments.value(2);
    const bool isList = mode == QLatin1String("--list") && arguments.size() == 4;
    const bool isFactors = mode == QLatin1String("--factors") && arguments.size() == 3;
    const bool isGenerations = mode == QLatin1String("--generations") && arguments.size() == 3;
    if (!isList && !isFactors && !isGenerations) {
        std::fprintf(stderr, "Usage: %s TABLES --list FILE | --factors | --generations\n", argv[0]);
        return 2;
    }
    const auto output = reference::readTables(arguments.at(1)).and_then([&](const tables &facts) {
        return isList      ? reference::machineList(facts)
               : isFactors ? reference::factorTable(facts)
                           : reference::generationTable(facts);
    });
    if (!output)
        return fail(output.error());
    return isList ? writeFile(arguments.at(3), *output) : print(*output);
}
