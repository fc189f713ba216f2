// SPDX-License-Identifier: GPL-3.0-or-later
#include "server/serverCommand.h"

#include <QCommandLineParser>

namespace
{

struct verb {
    const char *name;
    serverCommand::action action;
    int arguments; ///< after the verb
};

constexpr verb verbs[] = {
    {"serve", serverCommand::serve, 0},       {"publish", serverCommand::publish, 0},
    {"import", serverCommand::importFile, 1}, {"export", serverCommand::exportAll, 0},
    {"withdraw", serverCommand::withdraw, 1}, {"list", serverCommand::list, 0},
};

serverCommand withMessage(serverCommand::action action, const QString &message)
{
    serverCommand command;
    command.wanted = action;
    command.message = message;
    return command;
}

serverCommand errorOf(const QString &message)
{
    return withMessage(serverCommand::showError,
                       QStringLiteral("fennick-server: %1\n").arg(message));
}

const QCommandLineOption databaseOption(
    QStringLiteral("database"),
    QStringLiteral("Where the results are: sqlite:FILE, or postgresql://USER@HOST:PORT/NAME."),
    QStringLiteral("ADDRESS"));
const QCommandLineOption listenOption(
    QStringLiteral("listen"),
    QStringLiteral("serve: where to listen; 127.0.0.1:8426 if absent, port 0 for a free one."),
    QStringLiteral("ADDRESS:PORT"));
const QCommandLineOption uploadLimitOption(
    QStringLiteral("upload-limit"),
    QStringLiteral("serve: uploads of one address in so many seconds; 30/600 if absent, 0/1 for no "
                   "limit."),
    QStringLiteral("NUMBER/SECONDS"));
const QCommandLineOption
    connectionsOption(QStringLiteral("connections"),
                      QStringLiteral("serve: connections at a time; 1024 if absent."),
                      QStringLiteral("NUMBER"));
const QCommandLineOption
    proxyOption(QStringLiteral("behind-proxy"),
                QStringLiteral("serve: the client is the last address of X-Forwarded-For."));
const QCommandLineOption whyOption(QStringLiteral("why"),
                                   QStringLiteral("withdraw: the reason, which is kept."),
                                   QStringLiteral("TEXT"));

bool isNumber(const QString &text, int least, int most, int &value)
{
    bool ok = false;
    value = text.toInt(&ok);
    return ok && value >= least && value <= most;
}

/// The error in the options of serve, or an empty text.
QString readServeOptions(const QCommandLineParser &parser, serverCommand &command)
{
    if (parser.isSet(listenOption)) {
        const QString text = parser.value(listenOption);
        const int colon = text.lastIndexOf(QLatin1Char(':'));
        command.address = text.left(colon).remove(QLatin1Char('[')).remove(QLatin1Char(']'));
        if (colon <= 0 || !isNumber(text.mid(colon + 1), 0, 65535, command.port))
            return QStringLiteral("--listen takes ADDRESS:PORT, not '%1'").arg(text);
    }
    if (parser.isSet(uploadLimitOption)) {
        const QStringList parts = parser.value(uploadLimitOption).split(QLatin1Char('/'));
        int seconds = 0;
        if (parts.size() != 2 || !isNumber(parts.at(0), 0, 1'000'000, command.options.uploads)
            || !isNumber(parts.at(1), 1, 1'000'000, seconds)) {
            return QStringLiteral("--upload-limit takes NUMBER/SECONDS, not '%1'")
                .arg(parser.value(uploadLimitOption));
        }
        command.options.period = std::chrono::seconds(seconds);
    }
    if (parser.isSet(connectionsOption)
        && !isNumber(parser.value(connectionsOption), 2, 20'000, command.options.connections)) {
        return QStringLiteral("--connections takes a number from 2 to 20000, not '%1'")
            .arg(parser.value(connectionsOption));
    }
    command.options.isBehindProxy = parser.isSet(proxyOption);
    return {};
}

/// The error in the arguments of withdraw, or an empty text.
QString readWithdrawal(const QCommandLineParser &parser, serverCommand &command)
{
    bool ok = false;
    command.id = parser.positionalArguments().at(1).toLongLong(&ok);
    command.reason = parser.value(whyOption).trimmed();
    if (!ok || command.id < 1) {
        return QStringLiteral("withdraw takes the number of an upload, not '%1'")
            .arg(parser.positionalArguments().at(1));
    }
    if (command.reason.isEmpty())
        return QStringLiteral("withdraw needs a reason: --why TEXT");
    return {};
}

/// The error in what follows the verb, or an empty text.
QString readVerb(const QCommandLineParser &parser, const verb &found, serverCommand &command)
{
    const QStringList rest = parser.positionalArguments().mid(1);
    if (rest.size() != found.arguments) {
        return QStringLiteral("'%1' takes %2 argument(s), not %3")
            .arg(QLatin1String(found.name), QString::number(found.arguments),
                 QString::number(rest.size()));
    }
    const QVector<QCommandLineOption> ofServe = {listenOption, uploadLimitOption, connectionsOption,
                                                 proxyOption};
    for (const QCommandLineOption &option : ofServe) {
        if (parser.isSet(option) && found.action != serverCommand::serve) {
            return QStringLiteral("--%1 is an option of serve").arg(option.names().first());
        }
    }
    if (parser.isSet(whyOption) && found.action != serverCommand::withdraw)
        return QStringLiteral("--why is an option of withdraw");
    command.wanted = found.action;
    if (found.action == serverCommand::importFile)
        command.file = rest.first();
    if (found.action == serverCommand::withdraw)
        return readWithdrawal(parser, command);
    return readServeOptions(parser, command);
}

} // namespace

serverCommand parseServerCommand(const QStringList &arguments, const QString &defaultDatabase)
{
    QCommandLineParser parser;
    parser.setApplicationDescription(
        QStringLiteral("The result database of the CPU benchmark Fennick.\n\n"
                       "serve            answer the programs until Ctrl-C or SIGTERM\n"
                       "publish          make the next reference lists of all uploads\n"
                       "list             show the uploads\n"
                       "withdraw ID      keep an upload out of the lists from now on\n"
                       "export           write everything to standard output, as XML\n"
                       "import FILE.xml  read an export, or a list of machines"));
    parser.addPositionalArgument(QStringLiteral("command"), QStringLiteral("One of the above."),
                                 QStringLiteral("command [argument]"));
    const QCommandLineOption help = parser.addHelpOption();
    const QCommandLineOption version = parser.addVersionOption();
    parser.addOptions({databaseOption, listenOption, uploadLimitOption, connectionsOption,
                       proxyOption, whyOption});
    if (!parser.parse(arguments))
        return errorOf(parser.errorText());
    if (parser.isSet(help))
        return withMessage(serverCommand::showText, parser.helpText());
    if (parser.isSet(version)) {
        return withMessage(
            serverCommand::showText,
            QStringLiteral("fennick-server %1\n").arg(QStringLiteral(FENNICK_VERSION)));
    }
    if (parser.positionalArguments().isEmpty())
        return errorOf(QStringLiteral("what is to be done? See --help"));

    serverCommand command;
    const QString database = parser.isSet(databaseOption)
                                 ? parser.value(databaseOption)
                                 : QStringLiteral("sqlite:") + defaultDatabase;
    const std::optional<databaseAddress> place = parseDatabaseAddress(database);
    if (!place) {
        return errorOf(
            QStringLiteral("--database takes sqlite:FILE or postgresql://HOST/NAME, not '%1'")
                .arg(database));
    }
    command.options.database = *place;
    const QString name = parser.positionalArguments().first();
    for (const verb &known : verbs) {
        if (name == QLatin1String(known.name)) {
            const QString error = readVerb(parser, known, command);
            return error.isEmpty() ? command : errorOf(error);
        }
    }
    return errorOf(QStringLiteral("there is no command '%1'. See --help").arg(name));
}
