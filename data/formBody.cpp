// SPDX-License-Identifier: GPL-3.0-or-later
#include "data/formBody.h"

#include <QString>
#include <QUrl>
#include <QUrlQuery>

QByteArray formBody(const QByteArray &type, const QByteArray &results)
{
    QUrlQuery query;
    const auto add = [&query](const char *key, const QByteArray &value) {
        // The query would leave a plus sign as it is, which forms read as a blank, and take "%41"
        // for something encoded already.
        query.addQueryItem(QString::fromLatin1(key),
                           QString::fromLatin1(value.toPercentEncoding()));
    };
    add("app", "Fennick");
    add("type", type);
    if (!results.isNull())
        add("results", results);
    QUrl url;
    url.setQuery(query);
    return url.toEncoded(QUrl::FullyEncoded);
}
