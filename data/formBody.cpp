// SPDX-License-Identifier: GPL-3.0-or-later
#include "data/formBody.h"

#include <QString>
#include <QUrl>
#include <QUrlQuery>

QByteArray formBody(const QVector<QPair<QByteArray, QByteArray>> &items)
{
    QUrlQuery query;
    for (const auto &[key, value] : items) {
        // The query alone would leave a plus sign as it is, which forms read as a blank, and would
        // take "%41" for something that is encoded already.
        // A null value would lose its equals sign.
        query.addQueryItem(QString::fromUtf8(key),
                           QLatin1String("") + QString::fromLatin1(value.toPercentEncoding()));
    }
    QUrl url;
    url.setQuery(query);
    return url.toEncoded(QUrl::FullyEncoded);
}
