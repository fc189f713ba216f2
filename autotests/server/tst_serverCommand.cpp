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
    void requests_data();
    void requests();
    void listings();
    void dryRuns();
    void age();
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
    QCOMPARE(command.listen.host, QStringLiteral("127.0.0.1"));
    QCOMPARE(command.listen.port, 8426);
    QVERIFY(!command.metrics);
    QCOMPARE(command.options.database.product, databaseAddress::sqlite);
    QCOMPARE(command.options.database.name, QStringLiteral("/data/results.sqlite"));
    QCOMPARE(command.options.uploads, 30);
    QVERIFY(command.options.uploadPeriod == std::chrono::minutes(10));
    QCOMPARE(command.options.limits.connections, 1024);
    QCOMPARE(command.options.limits.connectionsOfOne, 64);
    QCOMPARE(command.options.reads, 200);
    QVERIFY(command.options.readPeriod == std::chrono::seconds(10));
    QVERIFY(command.options.trustedProxies.empty());
}

void tst_serverCommand::options()
{
    const serverCommand command = commandOf(
        QStringLiteral("serve --listen [::1]:0 --metrics [::]:65535 --database "
                       "postgresql://me@db/bench --upload-limit "
                       "5/60 --connections 64 --connections-per-address 7 --read-limit 3/4 "
                       "--trusted-proxy 127.0.0.1 --trusted-proxy 10.0.0.0/8"));
    QCOMPARE(command.wanted, serverCommand::serve);
    QCOMPARE(command.listen.host, QStringLiteral("::1"));
    QCOMPARE(command.listen.port, 0);
    QCOMPARE(command.metrics.value().host, QStringLiteral("::"));
    QCOMPARE(command.metrics.value().port, 65535);
    QCOMPARE(command.options.database.name, QStringLiteral("bench"));
    QCOMPARE(command.options.uploads, 5);
    QVERIFY(command.options.uploadPeriod == std::chrono::minutes(1));
    QCOMPARE(command.options.limits.connections, 64);
    QCOMPARE(command.options.limits.connectionsOfOne, 7);
    QCOMPARE(command.options.reads, 3);
    QVERIFY(command.options.readPeriod == std::chrono::seconds(4));
    QCOMPARE(command.options.trustedProxies.size(), std::size_t(2));
    QCOMPARE(command.options.trustedProxies.back().prefix, 8);
}

void tst_serverCommand::verbs_data()
{
    QTest::addColumn<int>("action");
    QTest::newRow("publish") << int(serverCommand::publish);
    QTest::newRow("publish --dry-run --circle --afresh --above 7") << int(serverCommand::publish);
    QTest::newRow("import --without-end a.xml") << int(serverCommand::importFile);
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
    QCOMPARE(command.isEndOptional, QByteArray(QTest::currentDataTag()).contains("--without-end"));
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
    QCOMPARE(command.request.filter.id, qint64(17));
    QCOMPARE(command.request.reason, QStringLiteral("clock was wrong"));
    QVERIFY(!command.isDryRun);
}

void tst_serverCommand::requests_data()
{
    QTest::addColumn<int>("action");
    QTest::addColumn<QString>("filter");
    const auto row = [](const char *arguments, serverCommand::action action, const char *filter) {
        QTest::newRow(arguments) << int(action) << QString::fromLatin1(filter);
    };
    row("list", serverCommand::list, "");
    row("list 7", serverCommand::list, "7");
    row("list --processor AMD* --state held --outliers --after 5 --limit 20", serverCommand::list,
        "--processor 'AMD*' --state 'held' --outliers --after 5 --limit 20");
    row("list --since 2026-11-21", serverCommand::list, "--since '2026-11-21T00:00:00Z'");
    row("list --since 2026-11-21T18:30:00", serverCommand::list, "--since '2026-11-21T18:30:00Z'");
    row("list --since 2026-11-21T18:30:00Z", serverCommand::list, "--since '2026-11-21T18:30:00Z'");
    row("list --since 2026-11-21T18:30:00+02:00", serverCommand::list,
        "--since '2026-11-21T16:30:00Z'");
    row("withdraw --processor X --why flood", serverCommand::withdraw, "--processor 'X'");
    row("withdraw --limit 3 --why flood", serverCommand::withdraw, "--limit 3");
    row("restore 7", serverCommand::restore, "7");
    row("accept 7 --why seen", serverCommand::acceptHeld, "7");
    row("accept --state held --why seen", serverCommand::acceptHeld, "--state 'held'");
    row("forget 7", serverCommand::forget, "7");
}

void tst_serverCommand::requests()
{
    const serverCommand command = commandOf(QString::fromLatin1(QTest::currentDataTag()));
    QTEST(int(command.wanted), "action");
    QTEST(command.request.filter.text(), "filter");
    QVERIFY(!command.isDryRun);
}

void tst_serverCommand::listings()
{
    const auto form = [](const char *arguments) {
        return commandOf(QString::fromLatin1(arguments)).request.form;
    };
    QVERIFY(form("list") == listingForm::lines);
    QVERIFY(form("list --values") == listingForm::values);
    QVERIFY(form("list --json") == listingForm::json);
    QVERIFY(form("list --json --values") == listingForm::json);
}

void tst_serverCommand::dryRuns()
{
    for (const char *arguments : {"withdraw 1 --why x --dry-run", "restore 1 --dry-run",
                                  "accept 1 --why x --dry-run", "forget 1 --dry-run"})
        QVERIFY2(commandOf(QString::fromLatin1(arguments)).isDryRun, arguments);
}

void tst_serverCommand::age()
{
    const qint64 before = QDateTime::currentMSecsSinceEpoch();
    const serverCommand command = commandOf(QStringLiteral("forget --older-than 30"));
    const qint64 after = QDateTime::currentMSecsSinceEpoch();
    constexpr qint64 days = 30LL * 86'400'000;
    QVERIFY(*command.request.filter.before >= before - days);
    QVERIFY(*command.request.filter.before <= after - days);
    QCOMPARE(command.request.filter.id, qint64(0));
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
    row("serve --connections-per-address 0",
        "--connections-per-address takes a number from 1 to 20000, not '0'");
    row("serve --read-limit x", "--read-limit takes NUMBER/SECONDS, not 'x'");
    row("serve --trusted-proxy localhost",
        "--trusted-proxy takes an address or a network such as 10.0.0.0/8, not 'localhost'");
    row("list --trusted-proxy ::1", "--trusted-proxy is an option of serve");
    row("serve --listen 127.0.0.1:65536", "--listen takes ADDRESS:PORT, not '127.0.0.1:65536'");
    row("list --why x", "--why is an option of withdraw, restore, accept, forget");
    row("list --dry-run", "--dry-run is an option of publish, withdraw, restore, accept, forget");
    row("list 1 2", "'list' takes 0 or 1 argument(s), not 2");
    row("list x", "'x' is not the number of an upload");
    row("list -- -1", "'-1' is not the number of an upload");
    row("list --state lost", "--state takes received, published, withdrawn or held, not 'lost'");
    row("list --since yesterday", "--since takes a time like 2026-11-21T18:30:00, not 'yesterday'");
    row("list --limit 0", "--limit takes a number from 1, not '0'");
    row("list --after x", "'x' is not the number of an upload");
    row("publish --processor x", "--processor is an option of list, withdraw, restore, accept");
    row("withdraw 1 --json --why x", "--json is an option of list");
    row("withdraw --why x", "withdraw takes the number of an upload, or options that choose some");
    row("withdraw 1 --state held --why x", "withdraw takes the number of an upload, or options");
    row("restore", "restore takes the number of an upload, or options that choose some");
    row("accept 1", "accept needs a reason: --why TEXT");
    row("forget", "forget takes the number of an upload, or --older-than DAYS");
    row("forget 1 --older-than 3", "forget takes the number of an upload, or --older-than DAYS");
    row("forget --older-than x", "--older-than takes a number of days from 0 to 100000, not 'x'");
    row("forget --state held", "--state is an option of list, withdraw, restore, accept");
    row("withdraw 1 --older-than 3 --why x", "--older-than is an option of forget");
    row("serve --circle", "--circle is an option of publish");
    row("import x --afresh", "--afresh is an option of publish");
    row("export --above 3", "--above is an option of publish");
    row("export --without-end", "--without-end is an option of import");
    row("publish --above x", "--above takes a number from 0 to 1999999999, not 'x'");
    row("publish --above 2000000000", "--above takes a number from 0 to 1999999999");
    row("withdraw 1", "withdraw needs a reason: --why TEXT");
    row("withdraw x --why y", "'x' is not the number of an upload");
    row("withdraw 0 --why y", "'0' is not the number of an upload");
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
    for (const char *word : {"serve", "publish", "import FILE.xml", "export", "withdraw [ID]",
                             "list [ID]", "restore [ID]", "accept [ID]", "forget [ID]",
                             "--processor", "--listen", "--database", "--why"})
        QVERIFY2(help.text.contains(QLatin1String(word)), word);
    const closingText version = read(QStringLiteral("--version")).error();
    QCOMPARE(version.code, exitSuccess);
    QCOMPARE(version.text,
             QStringLiteral("fennick-server %1\n").arg(QStringLiteral(FENNICK_VERSION)));
}

QTEST_GUILESS_MAIN(tst_serverCommand)
#include "tst_serverCommand.moc"
