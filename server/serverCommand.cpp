// SPDX-License-Identifier: GPL-3.0-or-later
#include "server/serverCommand.h"

#include "server/versions.h"

#include <QCommandLineParser>
#include <QDateTime>

#include <algorithm>
#include <iterator>

namespace
{

struct verb {
    const char *name;
    serverCommand::action action;
    int fewest; ///< arguments after the verb
    int most;
};

constexpr verb verbs[] = {
    {"serve", serverCommand::serve, 0, 0},       {"publish", serverCommand::publish, 0, 0},
    {"import", serverCommand::importFile, 1, 1}, {"export", serverCommand::exportAll, 0, 0},
    {"list", serverCommand::list, 0, 1},         {"withdraw", serverCommand::withdraw, 0, 1},
    {"restore", serverCommand::restore, 0, 1},   {"accept", serverCommand::acceptHeld, 0, 1},
    {"forget", serverCommand::forget, 0, 1},
};

const QCommandLineOption databaseOption(
    QStringLiteral("database"),
    QStringLiteral("Where the results are: sqlite:FILE, or postgresql://USER@HOST:PORT/NAME."),
    QStringLiteral("ADDRESS"));
const QCommandLineOption listenOption(
    QStringLiteral("listen"),
    QStringLiteral("serve: where to listen; 127.0.0.1:8426 if absent, port 0 for a free one."),
    QStringLiteral("ADDRESS:PORT"));
const QCommandLineOption
    metricsOption(QStringLiteral("metrics"),
                  QStringLiteral("serve: where to serve the page /metrics for Prometheus, for "
                                 "example 127.0.0.1:9426; nowhere if absent."),
                  QStringLiteral("ADDRESS:PORT"));
const QCommandLineOption uploadLimitOption(
    QStringLiteral("upload-limit"),
    QStringLiteral("serve: the most uploads of one address in a period; 30/600 if absent, 0/1 for "
                   "no limit."),
    QStringLiteral("NUMBER/SECONDS"));
const QCommandLineOption
    connectionsOption(QStringLiteral("connections"),
                      QStringLiteral("serve: the most connections at a time; 1024 if absent."),
                      QStringLiteral("NUMBER"));
const QCommandLineOption readLimitOption(
    QStringLiteral("read-limit"),
    QStringLiteral("serve: the most other requests of one address in a period; 200/10 if absent, "
                   "0/1 for no limit."),
    QStringLiteral("NUMBER/SECONDS"));
const QCommandLineOption connectionsOfOneOption(
    QStringLiteral("connections-per-address"),
    QStringLiteral("serve: the most connections of one address; 64 if absent."),
    QStringLiteral("NUMBER"));
const QCommandLineOption proxyOption(
    QStringLiteral("trusted-proxy"),
    QStringLiteral("serve: requests from here come from the last address of X-Forwarded-For; for "
                   "a proxy on the same machine 127.0.0.1. May be given several times."),
    QStringLiteral("NETWORK"));
const QCommandLineOption
    dryRunOption(QStringLiteral("dry-run"),
                 QStringLiteral("publish, withdraw, restore, accept, forget: shows what would "
                                "change, and changes nothing."));
const QCommandLineOption
    endOption(QStringLiteral("without-end"),
              QStringLiteral(
                  "import: takes an export of an older server, which says nothing about its end."));
const QCommandLineOption circleOption(
    QStringLiteral("circle"),
    QStringLiteral(
        "publish: for a small circle that trusts itself, where one upload makes a machine."));
const QCommandLineOption afreshOption(
    QStringLiteral("afresh"),
    QStringLiteral("publish: works out every machine again, also those without new uploads."));
const QCommandLineOption aboveOption(QStringLiteral("above"),
                                     QStringLiteral("publish: the next version is above this one."),
                                     QStringLiteral("VERSION"));

/// Reads ADDRESS:PORT, the argument of @p option.
outcome<listenAddress> readAddress(const QCommandLineParser &parser,
                                   const QCommandLineOption &option)
{
    const QString text = parser.value(option);
    const int colon = text.lastIndexOf(QLatin1Char(':'));
    const std::optional<int> port = wholeNumber(text.mid(colon + 1), 0, 65535);
    if (colon <= 0 || !port) {
        return failure(
            QStringLiteral("--%1 takes ADDRESS:PORT, not '%2'").arg(option.names().first(), text));
    }
    return listenAddress{text.left(colon).remove(QLatin1Char('[')).remove(QLatin1Char(']')), *port};
}

outcome<void> readAddresses(const QCommandLineParser &parser, serverCommand &command)
{
    outcome<listenAddress> read;
    if (parser.isSet(listenOption)) {
        read = readAddress(parser, listenOption);
        if (!read)
            return failure(read.error());
        command.listen = *read;
    }
    if (parser.isSet(metricsOption)) {
        read = readAddress(parser, metricsOption);
        if (!read)
            return failure(read.error());
        command.metrics = *read;
    }
    return {};
}

/// Reads NUMBER/SECONDS, the argument of @p option, if it is there.
outcome<void> readLimit(const QCommandLineParser &parser, const QCommandLineOption &option,
                        int &number, std::chrono::seconds &period)
{
    constexpr int most = 1'000'000;
    if (!parser.isSet(option))
        return {};
    const QString text = parser.value(option);
    const QStringList parts = text.split(QLatin1Char('/'));
    const std::optional<int> tokens = wholeNumber(parts.value(0), 0, most);
    const std::optional<int> seconds = wholeNumber(parts.value(1), 1, most);
    if (parts.size() != 2 || !tokens || !seconds) {
        return failure(QStringLiteral("--%1 takes NUMBER/SECONDS, not '%2'")
                           .arg(option.names().first(), text));
    }
    number = *tokens;
    period = std::chrono::seconds(*seconds);
    return {};
}

/// Reads a number of connections, the argument of @p option, if it is there.
outcome<void> readConnections(const QCommandLineParser &parser, const QCommandLineOption &option,
                              int fewest, int &connections)
{
    constexpr int most = 20'000;
    if (!parser.isSet(option))
        return {};
    const QString text = parser.value(option);
    const std::optional<int> number = wholeNumber(text, fewest, most);
    if (!number) {
        return failure(
            QStringLiteral("--%1 takes a number from %2 to %3, not '%4'")
                .arg(option.names().first(), QString::number(fewest), QString::number(most), text));
    }
    connections = *number;
    return {};
}

outcome<void> readProxies(const QCommandLineParser &parser, serverOptions &options)
{
    const QStringList networks = parser.values(proxyOption);
    for (const QString &text : networks) {
        const auto network = parseNetwork(text.toStdString());
        if (!network) {
            return failure(QStringLiteral("--trusted-proxy takes an address or a network such as "
                                          "10.0.0.0/8, not '%1'")
                               .arg(text));
        }
        options.trustedProxies.push_back(*network);
    }
    return {};
}

outcome<void> readServeOptions(const QCommandLineParser &parser, serverCommand &command)
{
    serverOptions &options = command.options;
    outcome<void> done = readProxies(parser, options);
    if (done)
        done = readAddresses(parser, command);
    if (done)
        done = readLimit(parser, uploadLimitOption, options.uploads, options.uploadPeriod);
    if (done)
        done = readLimit(parser, readLimitOption, options.reads, options.readPeriod);
    if (done)
        done = readConnections(parser, connectionsOption, 2, options.limits.connections);
    if (done) {
        done = readConnections(parser, connectionsOfOneOption, 1, options.limits.connectionsOfOne);
    }
    return done;
}

outcome<void> readPublishOptions(const QCommandLineParser &parser, serverCommand &command)
{
    command.publishing.isAfresh = parser.isSet(afreshOption);
    command.publishing.rules = parser.isSet(circleOption) ? ruleSet::circle : ruleSet::open;
    if (!parser.isSet(aboveOption))
        return {};
    const QString text = parser.value(aboveOption);
    const std::optional<int> above = wholeNumber(text, 0, largestVersion - 1);
    if (!above) {
        return failure(QStringLiteral("--above takes a number from 0 to %1, not '%2'")
                           .arg(QString::number(largestVersion - 1), text));
    }
    command.publishing.above = *above;
    return {};
}

/// What @p action does with uploads; nothing if it is not about single ones.
std::optional<moderation::action> moderationOf(serverCommand::action action)
{
    switch (action) {
    case serverCommand::withdraw:
        return moderation::action::withdraw;
    case serverCommand::restore:
        return moderation::action::restore;
    case serverCommand::acceptHeld:
        return moderation::action::accept;
    case serverCommand::forget:
        return moderation::action::forget;
    default:
        return std::nullopt;
    }
}

/// Options, and the commands that take them.
struct optionOwners {
    QList<QCommandLineOption> options;
    QVector<serverCommand::action> owners;
};

QVector<optionOwners> allOptionOwners()
{
    using command = serverCommand;
    return {
        {{listenOption, metricsOption, uploadLimitOption, readLimitOption, connectionsOption,
          connectionsOfOneOption, proxyOption},
         {command::serve}},
        {{circleOption, afreshOption, aboveOption}, {command::publish}},
        {{endOption}, {command::importFile}},
        {{dryRunOption},
         {command::publish, command::withdraw, command::restore, command::acceptHeld,
          command::forget}},
        {filterOptions(),
         {command::list, command::withdraw, command::restore, command::acceptHeld}},
        {listingOptions(), {command::list}},
        {{whyOption()},
         {command::withdraw, command::restore, command::acceptHeld, command::forget}},
        {{olderThanOption()}, {command::forget}},
    };
}

QString nameOf(serverCommand::action action)
{
    const auto *const found =
        std::find_if(std::begin(verbs), std::end(verbs),
                     [action](const verb &known) { return known.action == action; });
    return QLatin1String(found->name);
}

/// Whether the options are those of @p action.
outcome<void> checkOptions(const QCommandLineParser &parser, serverCommand::action action)
{
    for (const optionOwners &known : allOptionOwners()) {
        for (const QCommandLineOption &option : known.options) {
            if (!parser.isSet(option) || known.owners.contains(action))
                continue;
            QStringList names;
            for (const serverCommand::action owner : known.owners)
                names.append(nameOf(owner));
            return failure(QStringLiteral("--%1 is an option of %2")
                               .arg(option.names().first(), names.join(QStringLiteral(", "))));
        }
    }
    return {};
}

/// Reads what belongs to a command about uploads.
outcome<void> readRequest(const QCommandLineParser &parser, const QString &number,
                          serverCommand &command)
{
    const auto wanted = moderationOf(command.wanted);
    const outcome<operatorRequest> request =
        wanted ? readModeration(parser, *wanted, number, QDateTime::currentMSecsSinceEpoch())
               : readListing(parser, number);
    return request.map([&](const operatorRequest &read) { command.request = read; });
}

/// Reads what belongs to the verb.
outcome<void> readVerb(const QCommandLineParser &parser, const verb &found, serverCommand &command)
{
    const QStringList rest = parser.positionalArguments().mid(1);
    if (rest.size() < found.fewest || rest.size() > found.most) {
        const QString range = found.fewest == found.most
                                  ? QString::number(found.most)
                                  : QStringLiteral("%1 or %2").arg(found.fewest).arg(found.most);
        return failure(QStringLiteral("'%1' takes %2 argument(s), not %3")
                           .arg(QLatin1String(found.name), range, QString::number(rest.size())));
    }
    if (const outcome<void> known = checkOptions(parser, found.action); !known)
        return known;
    command.wanted = found.action;
    command.isDryRun = parser.isSet(dryRunOption);
    command.isEndOptional = parser.isSet(endOption);
    switch (found.action) {
    case serverCommand::serve:
        return readServeOptions(parser, command);
    case serverCommand::publish:
        return readPublishOptions(parser, command);
    case serverCommand::importFile:
        command.file = rest.first();
        return {};
    case serverCommand::exportAll:
        return {};
    default:
        return readRequest(parser, rest.value(0), command);
    }
}

outcome<serverCommand> readCommand(const QCommandLineParser &parser, const QString &defaultDatabase)
{
    if (parser.positionalArguments().isEmpty())
        return failure(QStringLiteral("a command is missing. See --help"));
    const QString address = parser.isSet(databaseOption)
                                ? parser.value(databaseOption)
                                : QStringLiteral("sqlite:") + defaultDatabase;
    const std::optional<databaseAddress> place = parseDatabaseAddress(address);
    if (!place) {
        return failure(
            QStringLiteral("--database takes sqlite:FILE or postgresql://HOST/NAME, not '%1'")
                .arg(address));
    }
    serverCommand command;
    command.options.database = *place;
    const QString name = parser.positionalArguments().first();
    const auto *found =
        std::find_if(std::begin(verbs), std::end(verbs),
                     [&name](const verb &known) { return name == QLatin1String(known.name); });
    if (found == std::end(verbs))
        return failure(QStringLiteral("there is no command '%1'. See --help").arg(name));
    return readVerb(parser, *found, command).map([&command] { return command; });
}

} // namespace

QString serverProgramName()
{
    return QStringLiteral("fennick-server");
}

parsed<serverCommand> parseServerCommand(const QStringList &arguments,
                                         const QString &defaultDatabase)
{
    QCommandLineParser parser;
    parser.setApplicationDescription(
        QStringLiteral("The result database of the CPU benchmark Fennick.\n\n"
                       "serve            answer the programs until Ctrl-C or SIGTERM\n"
                       "publish          make the next reference lists from all uploads\n"
                       "list [ID]        show the uploads\n"
                       "withdraw [ID]    keep uploads out of the lists from now on\n"
                       "restore [ID]     take that back\n"
                       "accept [ID]      let uploads count that are held\n"
                       "forget [ID]      delete what could be personal of uploads\n"
                       "export           write everything to standard output, as XML\n"
                       "import FILE.xml  read an export, or a list of machines"));
    parser.addPositionalArgument(QStringLiteral("command"), QStringLiteral("One of the above."),
                                 QStringLiteral("command [argument]"));
    parser.addOption(databaseOption);
    for (const optionOwners &known : allOptionOwners())
        parser.addOptions(known.options);
    if (const auto closing = readOptions(parser, arguments, serverProgramName()))
        return tl::unexpected(*closing);
    return readCommand(parser, defaultDatabase).map_error([](const QString &sentence) {
        return usageError(serverProgramName(), sentence);
    });
}
