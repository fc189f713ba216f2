// SPDX-License-Identifier: GPL-3.0-or-later
#include "cli/helpText.h"

#include <QFile>
#include <QProcess>
#include <QSet>
#include <QStandardPaths>
#include <QtTest>

class tst_helpText : public QObject
{
    Q_OBJECT

private slots:
    void commands_data();
    void commands();
    void everythingIsThere();
    void exitCodesAreDistinct();
    void documentHasTheExitCodes();
    void manualIsFormatted_data();
    void manualIsFormatted();
};

void tst_helpText::commands_data()
{
    QTest::addColumn<QString>("name");
    for (const commandRow &row : commandTable())
        QTest::newRow(qPrintable(QStringLiteral("'%1'").arg(row.name))) << row.name;
}

void tst_helpText::commands()
{
    QFETCH(QString, name);
    const commandRow *row = findCommand(name);
    QVERIFY(row);
    const QString text = helpText(*row);
    QVERIFY(text.startsWith(QStringLiteral("Usage: fennick-cli ") + name));
    QVERIFY(text.endsWith(QLatin1Char('\n')));
    for (const QString &line : text.split(QLatin1Char('\n'))) {
        QVERIFY2(line.size() < 80, qPrintable(line));
        QVERIFY2(!line.endsWith(QLatin1Char(' ')), qPrintable(line));
    }
    for (const optionRow &option : row->options) {
        QVERIFY(text.contains(QStringLiteral("--") + option.name));
        QVERIFY(text.simplified().contains(option.description));
    }
}

void tst_helpText::everythingIsThere()
{
    const QString help = helpText(commandTable().front()).simplified();
    QString manual = manualPage();
    manual.replace(QStringLiteral("\\-"), QStringLiteral("-"));
    for (const commandRow &row : commandTable()) {
        if (!row.name.isEmpty()) {
            QVERIFY(help.contains(QLatin1Char(' ') + row.name + QLatin1Char(' ')));
            QVERIFY(help.contains(row.summary));
            QVERIFY(manual.contains(QStringLiteral(".SS ") + row.name));
        }
        for (const optionRow &option : row.options)
            QVERIFY(manual.contains(QStringLiteral("--") + option.name));
    }
    QVERIFY(help.contains(QStringLiteral("-t, --test <NAME>")));
    QVERIFY(!findCommand(QStringLiteral("nothing")));
}

void tst_helpText::exitCodesAreDistinct()
{
    QSet<int> codes;
    for (const exitCodeRow &row : exitCodeTable()) {
        codes.insert(row.code);
        QVERIFY(helpText(commandTable().front())
                    .simplified()
                    .contains(QStringLiteral("%1 %2").arg(int(row.code)).arg(row.meaning)));
    }
    QCOMPARE(codes, QSet<int>({0, 1, 2, 3, 4, 5, 6, 129, 130, 143}));
}

/// The page for people has the codes in the same words.
void tst_helpText::documentHasTheExitCodes()
{
    QFile document(QStringLiteral(FENNICK_SOURCE_DIR "/docs/console.md"));
    QVERIFY(document.open(QIODevice::ReadOnly));
    QString text = QString::fromUtf8(document.readAll());
    text.remove(QLatin1Char('`'));
    for (const exitCodeRow &row : exitCodeTable()) {
        const QString found =
            row.code < exitHungUp
                ? QStringLiteral("| %1 | %2 |").arg(int(row.code)).arg(row.meaning)
                : QString::number(row.code);
        QVERIFY2(text.contains(found), qPrintable(found));
    }
}

void tst_helpText::manualIsFormatted_data()
{
    QTest::addColumn<QStringList>("command");
    QTest::newRow("mandoc") << QStringList{QStringLiteral("mandoc"), QStringLiteral("-T"),
                                           QStringLiteral("lint"), QStringLiteral("-W"),
                                           QStringLiteral("warning")};
    QTest::newRow("man") << QStringList{QStringLiteral("man"), QStringLiteral("--warnings"),
                                        QStringLiteral("-l"), QStringLiteral("-")};
}

/// The programs that show manual pages have nothing to complain about.
void tst_helpText::manualIsFormatted()
{
    QFETCH(QStringList, command);
    const QString program = QStandardPaths::findExecutable(command.takeFirst());
    if (program.isEmpty())
        QSKIP("this program is not installed");
    QProcess process;
    process.start(program, command);
    process.write(manualPage().toUtf8());
    process.closeWriteChannel();
    QVERIFY(process.waitForFinished());
    const QByteArray page = process.readAllStandardOutput();
    QCOMPARE(process.readAllStandardError(), QByteArray());
    QVERIFY2(process.exitCode() == 0, page);
}

QTEST_GUILESS_MAIN(tst_helpText)
#include "tst_helpText.moc"
