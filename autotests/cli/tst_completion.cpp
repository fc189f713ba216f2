// SPDX-License-Identifier: GPL-3.0-or-later
#include "cli/completion.h"

#include <QProcess>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <QtTest>

namespace
{

const completionNames names = {listedTests(), {QStringLiteral("3820x2160"), QStringLiteral("1x1")}};

} // namespace

class tst_completion : public QObject
{
    Q_OBJECT

private slots:
    void candidates_data();
    void candidates();
    void everyOptionIsOffered();
    void scripts_data();
    void scripts();
    void bash_data();
    void bash();
};

void tst_completion::candidates_data()
{
    QTest::addColumn<QString>("words");
    QTest::addColumn<QString>("first"); // of what is offered; empty for nothing
    const auto row = [](const char *words, const char *first) {
        QTest::newRow(words) << QString::fromLatin1(words) << QString::fromLatin1(first);
    };
    row("", "verify");
    row("ver", "verify");
    row("--t", "--test");
    row("--quiet|--t", "--test");
    row("--test|", "rotozoom 'dithered'");
    row("-t|man", "rotozoom 'dithered'");
    row("--test|=|man", "rotozoom 'dithered'");
    row("--resolution|", "3820x2160");
    row("--json|", "");
    row("--time|", "");
    row("--quiet|", "");
    row("verify|--", "--help");
    row("compare|", "last");
    row("compare|1|--w", "--with");
    row("compare|--with|", "");
    row("show|--json|", "");
    row("completion|", "bash");
    row("no such|-", "--test");
}

void tst_completion::candidates()
{
    QFETCH(QString, words);
    QFETCH(QString, first);
    QCOMPARE(completionCandidates(words.split(QLatin1Char('|')), names).value(0), first);
    QCOMPARE(completionCandidates({}, names).value(0), QStringLiteral("verify"));
}

void tst_completion::everyOptionIsOffered()
{
    for (const commandRow &command : commandTable()) {
        const QStringList offered =
            completionCandidates({command.name, QStringLiteral("-")}, names);
        for (const optionRow &row : command.options)
            QVERIFY2(offered.contains(QStringLiteral("--") + row.name), qPrintable(row.name));
        if (!command.name.isEmpty())
            QVERIFY(completionCandidates({QString()}, names).contains(command.name));
    }
}

void tst_completion::scripts_data()
{
    QTest::addColumn<QString>("shell");
    for (const QString &shell : completionShells())
        QTest::newRow(qPrintable(shell)) << shell;
}

/// The shells themselves find nothing wrong.
void tst_completion::scripts()
{
    QFETCH(QString, shell);
    QVERIFY(!completionScript(shell).isEmpty());
    QVERIFY(completionScript(QStringLiteral("csh")).isEmpty());
    if (QStandardPaths::findExecutable(shell).isEmpty())
        QSKIP("this shell is not installed");
    QProcess process;
    process.start(shell, {QStringLiteral("-n"), QStringLiteral("/dev/stdin")});
    process.write(completionScript(shell).toUtf8());
    process.closeWriteChannel();
    QVERIFY(process.waitForFinished());
    QCOMPARE(process.readAllStandardError(), QByteArray());
    QCOMPARE(process.exitCode(), 0);
}

void tst_completion::bash_data()
{
    QTest::addColumn<QStringList>("words"); // the first is the program
    QTest::addColumn<QString>("replies");
    const auto row = [](const QStringList &words, const char *replies) {
        QTest::newRow(qPrintable(words.join(QLatin1Char(' '))))
            << (QStringList(QStringLiteral("fennick-cli")) + words) << QString::fromLatin1(replies);
    };
    row({QStringLiteral("doc")}, "doctor");
    row({QStringLiteral("--test"), QStringLiteral("zl")}, "zlib\\ uncompress");
    row({QStringLiteral("--test"), QStringLiteral("mandel\\ (")}, "mandel\\ \\(multicore\\)");
    row({QStringLiteral("--test"), QStringLiteral("rotozoom\\ \\'di")},
        "rotozoom\\ \\'dithered\\'");
    row({QStringLiteral("--test"), QStringLiteral("$(touch here)")}, "");
}

/// The program itself behind the script of a shell that everybody has.
void tst_completion::bash()
{
    QFETCH(QStringList, words);
    QFETCH(QString, replies);
    const QString bash = QStandardPaths::findExecutable(QStringLiteral("bash"));
    if (bash.isEmpty())
        QSKIP("there is no bash");
    const QTemporaryDir place;
    QProcess process;
    process.setWorkingDirectory(place.path());
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(QStringLiteral("PATH"), QFileInfo(QStringLiteral(FENNICK_CLI)).path()
                                                   + QLatin1Char(':')
                                                   + environment.value(QStringLiteral("PATH")));
    process.setProcessEnvironment(environment);
    const QString question =
        completionScript(QStringLiteral("bash"))
        + QStringLiteral("COMP_WORDS=(\"$@\"); COMP_CWORD=$(($# - 1)); _fennick_cli\n"
                         "printf '%s\\n' \"${COMPREPLY[@]}\"\n");
    process.start(bash,
                  QStringList({QStringLiteral("-c"), question, QStringLiteral("bash")}) + words);
    QVERIFY(process.waitForFinished(60'000));
    QCOMPARE(QString::fromUtf8(process.readAllStandardOutput()).trimmed(), replies);
    QCOMPARE(process.readAllStandardError(), QByteArray());
    QVERIFY(QDir(place.path()).isEmpty());
}

QTEST_GUILESS_MAIN(tst_completion)
#include "tst_completion.moc"
