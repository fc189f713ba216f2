// SPDX-License-Identifier: GPL-3.0-or-later
#include "tools/reference/referenceList.h"
#include "tools/reference/referenceModel.h"
#include "tools/reference/referencePlot.h"

#include <QGuiApplication>
#include <QSaveFile>

#include <cstdio>

namespace
{

bool say(const QString &error)
{
    std::fprintf(stderr, "%s\n", qUtf8Printable(error));
    return false;
}

bool writeFile(const QString &path, const QByteArray &content)
{
    QSaveFile file(path);
    const bool written =
        file.open(QSaveFile::WriteOnly) && file.write(content) == content.size() && file.commit();
    return written || say(QStringLiteral("Cannot write %1").arg(path));
}

bool writeList(const reference::tables &facts, const QString &path)
{
    QString error;
    const QByteArray list = reference::machineList(facts, error);
    return list.isEmpty() ? say(error) : writeFile(path, list);
}

bool writePlot(const reference::tables &facts, const QString &path)
{
    QString error;
    const QVector<double> factors = reference::calibrationFactors(facts, error);
    if (factors.isEmpty())
        return say(error);
    return reference::generationPlot(facts, factors).save(path, "PNG")
           || say(QStringLiteral("Cannot write %1").arg(path));
}

bool printFactors(const reference::tables &facts)
{
    QString error;
    const QByteArray table = reference::factorTable(facts, error);
    if (table.isEmpty())
        return say(error);
    std::fputs(table.constData(), stdout);
    return true;
}

} // namespace

/// Computes the list of machines that is embedded in the programs, and what its document shows.
int main(int argc, char **argv)
{
    // The picture's letters need the platform's fonts, and no display.
    qputenv("QT_QPA_PLATFORM", "offscreen");
    const QGuiApplication application(argc, argv);
    const QStringList arguments = QGuiApplication::arguments();
    const QString mode = arguments.value(2);
    const bool hasFile = arguments.size() == 4;
    const bool isList = mode == QLatin1String("--list") && hasFile;
    const bool isPlot = mode == QLatin1String("--plot") && hasFile;
    const bool isFactors = mode == QLatin1String("--factors") && arguments.size() == 3;
    if (!isList && !isPlot && !isFactors) {
        std::fprintf(stderr, "Usage: %s <tables> --list FILE | --plot FILE | --factors\n", argv[0]);
        return 2;
    }
    reference::tables facts;
    QString error;
    if (!reference::readTables(arguments.at(1), facts, error)) {
        say(error);
        return 1;
    }
    const bool succeeded = isList   ? writeList(facts, arguments.at(3))
                           : isPlot ? writePlot(facts, arguments.at(3))
                                    : printFactors(facts);
    return succeeded ? 0 : 1;
}
