// SPDX-License-Identifier: GPL-3.0-or-later
#include "cli/helpText.h"

namespace
{

/// The day on which what the page says has changed last.
const QString changed = QStringLiteral("2026-11-22");

/// @p text for the macros of man: a backslash, a dash and a dot at the start mean themselves.
QString escaped(QString text)
{
    text.replace(QLatin1Char('\\'), QStringLiteral("\\e"));
    text.replace(QLatin1Char('-'), QStringLiteral("\\-"));
    if (text.startsWith(QLatin1Char('.')) || text.startsWith(QLatin1Char('\'')))
        text.prepend(QStringLiteral("\\&"));
    return text;
}

QString section(const char *name)
{
    return QStringLiteral(".SH %1\n").arg(QLatin1String(name));
}

QString paragraph(const QString &term, const QString &text)
{
    return QStringLiteral(".TP\n%1\n%2\n").arg(term, escaped(text));
}

QString bold(const QString &text)
{
    return QStringLiteral("\\fB%1\\fR").arg(escaped(text));
}

QString optionsPage(const commandRow &command)
{
    QString page;
    for (const optionRow &row : command.options) {
        QString term = bold(QStringLiteral("--") + row.name);
        if (row.letter != '\0')
            term = bold(QStringLiteral("-%1").arg(QLatin1Char(row.letter))) + QStringLiteral(", ")
                   + term;
        if (!row.argument.isEmpty())
            term += QStringLiteral(" \\fI%1\\fR").arg(escaped(row.argument));
        page += paragraph(term, row.description);
    }
    return page;
}

QString commandsPage()
{
    QString page;
    for (const commandRow &row : commandTable()) {
        if (row.name.isEmpty())
            continue;
        page += QStringLiteral(".SS %1\n%2\n")
                    .arg(escaped((row.name + QLatin1Char(' ') + row.arguments).trimmed()),
                         escaped(row.summary));
        if (!row.description.isEmpty())
            page += QStringLiteral(".PP\n%1\n").arg(escaped(row.description));
        page += optionsPage(row);
    }
    return page;
}

} // namespace

QString manualPage()
{
    const commandRow &run = commandTable().front();
    const QString program = consoleRunnerName();
    QString page = QStringLiteral(".\\\" Made by %1 manual.\n.TH %2 1 %3 \"Fennick %4\" \"User "
                                  "Commands\"\n")
                       .arg(program, program.toUpper(), changed, QStringLiteral(FENNICK_VERSION));
    page += section("NAME")
            + QStringLiteral("%1 \\- CPU benchmark for the terminal\n").arg(escaped(program));
    page += section("SYNOPSIS")
            + QStringLiteral(".B %1\n[\\fIOPTIONS\\fR]\n.br\n.B %1\n\\fICOMMAND\\fR "
                             "[\\fIOPTIONS\\fR]\n")
                  .arg(escaped(program));
    page += section("DESCRIPTION")
            + escaped(QStringLiteral(
                "Without a command it runs the tests of Fennick, each for the same time, and "
                "prints their throughput. A full run stores its results, which are ranked against "
                "those of other machines. Full runs and repeated ones are kept, with every round "
                "of every test."))
            + QLatin1Char('\n');
    page += section("OPTIONS") + optionsPage(run)
            + paragraph(bold(QStringLiteral("-h")) + QStringLiteral(", ")
                            + bold(QStringLiteral("--help")),
                        QStringLiteral("Shows help, behind a command its own."))
            + paragraph(bold(QStringLiteral("-v")) + QStringLiteral(", ")
                            + bold(QStringLiteral("--version")),
                        QStringLiteral("Shows the version."));
    page += section("COMMANDS") + commandsPage();
    page += section("EXIT STATUS");
    for (const exitCodeRow &row : exitCodeTable())
        page += paragraph(bold(QString::number(row.code)), row.meaning);
    page += section("FILES")
            + paragraph(QStringLiteral("\\fI$XDG_DATA_HOME/fennick\\fR"),
                        QStringLiteral("The list of machines and the stored results; "
                                       "~/.local/share/fennick if the variable is absent."))
            + paragraph(QStringLiteral("\\fI$XDG_DATA_HOME/fennick/runs\\fR"),
                        QStringLiteral("The runs that are kept, 500 at most, one file each."));
    return page;
}
