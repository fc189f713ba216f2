// SPDX-License-Identifier: GPL-3.0-or-later
#include "server/serverCommand.h"

#include <QtTest>

class tst_serverCommand : public QObject
{
    Q_OBJECT

private slots:
    void defaults();
    void options();
    void verbs_data();
    void verbs();
    void withdrawal();
    void errors_data();
    void errors();
    void texts();
};

namespace
{

parsed<serverCommand> read(const QString &arguments)
{
    QStringList list(QStringLiteral("fennick-server"));
    if (!arguments.isEmpty())
        list += arguments.split(QLatin1Char(' '));
    return parseServerCommand(list, QStringLiteral("/data/results.sqlite"));
}

serverCommand commandOf(const QString &arguments)
{
    return read(arguments).value();
}

} // namespace

void tst_serverCommand::defaults()
{
    const serverCommand command = commandOf(QStringLiteral("serve"));
    QCOMPARE(command.wanted, serverCommand::serve);
    QCOMPARE(command.address, QStringLiteral("127.0.0.1"));
    QCOMPARE(command.port, 8426);
    QCOMPARE(command.options.database.product, databaseAddress::sqlite);
    QCOMPARE(command.options.database.name, QStringLiteral("/data/results.sqlite"));
    QCOMPARE(command.options.uploads, 30);
    QVERIFY(command.options.period == std::chrono::minutes(10));
    QCOMPARE(command.options.connections, 1024);
    QVERIFY(!command.options.isBehindProxy);
}

void tst_serverCommand::options()
{
    const serverCommand command = commandOf(
        QStringLiteral("serve --listen [::1]:0 --database postgresql://me@db/bench --upload-limit "
                       "5/60 --connections 64 --behind-proxy"));
    QCOMPARE(command.wanted, serverCommand::serve);
    QCOMPARE(command.address, QStringLiteral("::1"));
    QCOMPARE(command.port, 0);
    QCOMPARE(command.options.database.name, QStringLiteral("bench"));
    QCOMPARE(command.options.uploads, 5);
    QVERIFY(command.options.period == std::chrono::minutes(1));
    QCOMPARE(command.options.connections, 64);
    QVERIFY(command.options.isBehindProxy);
}

void tst_serverCommand::verbs_data()
{
    QTest::addColumn<int>("action");
    QTest::newRow("publish") << int(serverCommand::publish);
    QTest::newRow("publish --dry-run --circle --afresh --above 7") << int(serverCommand::publish);
    QTest::newRow("import a.xml") << int(serverCommand::importFile);
    QTest::newRow("export") << int(serverCommand::exportAll);
    QTest::newRow("list --database sqlite:x") << int(serverCommand::list);
}

void tst_serverCommand::verbs()
{
    const serverCommand command = commandOf(QString::fromLatin1(QTest::currentDataTag()));
    QTEST(int(command.wanted), "action");
    const bool hasOptions = QByteArray(QTest::currentDataTag()).contains("--circle");
    QCOMPARE(command.isDryRun, hasOptions);
    QCOMPARE(command.publishing.isAfresh, hasOptions);
    QCOMPARE(command.publishing.rules, hasOptions ? ruleSet::circle : ruleSet::open);
    QCOMPARE(command.publishing.above, hasOptions ? 7 : 0);
    if (command.wanted == serverCommand::importFile)
        QCOMPARE(command.file, QStringLiteral("a.xml"));
}

void tst_serverCommand::withdrawal()
{
    const serverCommand command =
        parseServerCommand({QStringLiteral("s"), QStringLiteral("withdraw"), QStringLiteral("17"),
                            QStringLiteral("--why"), QStringLiteral(" clock was wrong ")},
                           QStringLiteral("x"))
            .value();
    QCOMPARE(command.wanted, serverCommand::withdraw);
    QCOMPARE(command.id, qint64(17));
    QCOMPARE(command.reason, QStringLiteral("clock was wrong"));
}

void tst_serverCommand::errors_data()
{
    QTest::addColumn<QString>("message");
    const auto row = [](const char *arguments, const char *message) {
        QTest::newRow(arguments) << QString::fromLatin1(message);
    };
    row("", "a command is missing. See --help");
    row("frobnicate", "there is no command 'frobnicate'");
    row("serve now", "'serve' takes 0 argument(s), not 1");
    row("import", "'import' takes 1 argument(s), not 0");
    row("import a b", "'import' takes 1 argument(s), not 2");
    row("serve --listen 8426", "--listen takes ADDRESS:PORT, not '8426'");
    row("serve --listen :8426", "--listen takes ADDRESS:PORT, not ':8426'");
    row("serve --listen localhost:70000", "--listen takes ADDRESS:PORT");
    row("serve --listen localhost:x", "--listen takes ADDRESS:PORT");
    row("serve --database results.db", "--database takes sqlite:FILE or");
    row("serve --upload-limit 5", "--upload-limit takes NUMBER/SECONDS, not '5'");
    row("serve --upload-limit 5/0", "--upload-limit takes NUMBER/SECONDS");
    row("serve --connections 1", "--connections takes a number from 2 to 20000");
    row("publish --listen localhost:1", "--listen is an option of serve");
    row("list --behind-proxy", "--behind-proxy is an option of serve");
    row("list --why x", "--why is an option of withdraw");
    row("list --dry-run", "--dry-run is an option of publish");
    row("serve --circle", "--circle is an option of publish");
    row("import x --afresh", "--afresh is an option of publish");
    row("export --above 3", "--above is an option of publish");
    row("publish --above x", "--above takes a number from 0 to 1999999999, not 'x'");
    row("publish --above 2000000000", "--above takes a number from 0 to 1999999999");
    row("withdraw 1", "withdraw needs a reason: --why TEXT");
    row("withdraw x --why y", "withdraw takes the number of an upload, not 'x'");
    row("withdraw 0 --why y", "withdraw takes the number of an upload, not '0'");
    row("serve --verbose", "Unknown option 'verbose'");
}

void tst_serverCommand::errors()
{
    const auto command = read(QString::fromLatin1(QTest::currentDataTag()));
    QVERIFY(!command);
    QCOMPARE(command.error().code, exitUsage);
    const QString text = command.error().text;
    QFETCH(QString, message);
    QVERIFY2(text.startsWith(QStringLiteral("fennick-server: ") + message), qPrintable(text));
    QVERIFY(text.endsWith(QLatin1Char('\n')));
}

void tst_serverCommand::texts()
{
    const closingText help = read(QStringLiteral("--help")).error();
    QCOMPARE(help.code, exitSuccess);
    for (const char *word : {"serve", "publish", "import FILE.xml", "export", "withdraw ID", "list",
                             "--listen", "--database", "--why"})
        QVERIFY2(help.text.contains(QLatin1String(word)), word);
    const closingText version = read(QStringLiteral("--version")).error();
    QCOMPARE(version.code, exitSuccess);
    QCOMPARE(version.text,
             QStringLiteral("fennick-server %1\n").arg(QStringLiteral(FENNICK_VERSION)));
}

QTEST_GUILESS_MAIN(tst_serverCommand)
#include "tst_serverCommand.moc"
