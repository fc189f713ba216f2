// SPDX-License-Identifier: GPL-3.0-or-later
#include "server/databaseAddress.h"

#include <QStringList>
#include <QUrl>
#include <QUrlQuery>

namespace
{

using option = QPair<QString, QString>;

/// A connection of which nothing is heard is given up after some seconds: while it is made, while
/// what was sent to it is not acknowledged, and while it waits for an answer.
const QVector<option> &timeLimits()
{
    static const QVector<option> limits = {
        {QStringLiteral("connect_timeout"), QStringLiteral("5")},
        {QStringLiteral("tcp_user_timeout"), QStringLiteral("5000")},
        {QStringLiteral("keepalives_idle"), QStringLiteral("3")},
        {QStringLiteral("keepalives_interval"), QStringLiteral("1")},
        {QStringLiteral("keepalives_count"), QStringLiteral("2")},
    };
    return limits;
}

/// As the library reads it, whatever is in it.
QString quoted(QString value)
{
    value.replace(QLatin1Char('\\'), QLatin1String("\\\\"))
        .replace(QLatin1Char('\''), QLatin1String("\\'"));
    return QLatin1Char('\'') + value + QLatin1Char('\'');
}

/// Reads what stands behind the question mark. False if a time limit is no number.
bool readQuery(const QUrlQuery &query, databaseAddress &address)
{
    QVector<option> options = timeLimits();
    for (const option &item : query.queryItems(QUrl::FullyDecoded)) {
        const bool isLock = item.first == QLatin1String("lock_timeout");
        if (isLock || item.first == QLatin1String("statement_timeout")) {
            bool isNumber = false;
            const int value = item.second.toInt(&isNumber);
            if (!isNumber || value < 0)
                return false;
            (isLock ? address.lockTimeout : address.statementTimeout) = value;
        } else if (item.first == QLatin1String("host")) {
            address.host = item.second;
        } else {
            options.append(item); // of two with one name, the library takes the last
        }
    }
    QStringList all;
    for (const option &item : options)
        all.append(item.first + QLatin1Char('=') + quoted(item.second));
    address.options = all.join(QLatin1Char(';'));
    return true;
}

} // namespace

std::optional<databaseAddress> parseDatabaseAddress(const QString &text)
{
    const QString filePrefix = QStringLiteral("sqlite:");
    databaseAddress address;
    if (text.startsWith(filePrefix)) {
        address.name = text.mid(filePrefix.size());
        return address.name.isEmpty() ? std::nullopt : std::make_optional(address);
    }
    const QUrl url(text);
    if (!url.isValid()
        || (url.scheme() != QLatin1String("postgresql")
            && url.scheme() != QLatin1String("postgres")))
        return std::nullopt;
    address.product = databaseAddress::postgresql;
    address.name = url.path().mid(1);
    address.host = url.host();
    address.port = url.port();
    address.user = url.userName();
    address.password = url.password();
    if (address.name.isEmpty() || !readQuery(QUrlQuery(url), address))
        return std::nullopt;
    return address;
}
