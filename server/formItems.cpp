// SPDX-License-Identifier: GPL-3.0-or-later
#include "server/formItems.h"

namespace
{

std::optional<int> hexDigit(char c)
{
    if (c >= '0' && c <= '9')
        return c - '0';
    if (c >= 'a' && c <= 'f')
        return c - 'a' + 10;
    if (c >= 'A' && c <= 'F')
        return c - 'A' + 10;
    return std::nullopt;
}

std::optional<QByteArray> decoded(const QByteArray &text)
{
    QByteArray result;
    result.reserve(text.size());
    for (int i = 0; i < text.size(); ++i) {
        const char c = text.at(i);
        if (c != '%') {
            result.append(c == '+' ? ' ' : c);
            continue;
        }
        const bool isLongEnough = i + 2 < text.size();
        const std::optional<int> high = isLongEnough ? hexDigit(text.at(i + 1)) : std::nullopt;
        const std::optional<int> low = isLongEnough ? hexDigit(text.at(i + 2)) : std::nullopt;
        if (!high || !low)
            return std::nullopt;
        result.append(static_cast<char>(*high * 16 + *low));
        i += 2;
    }
    return result;
}

} // namespace

std::optional<QMap<QByteArray, QByteArray>> formItems(const QByteArray &body)
{
    QMap<QByteArray, QByteArray> items;
    const QByteArray text = body.startsWith('?') ? body.mid(1) : body;
    if (text.isEmpty())
        return items;
    for (const QByteArray &item : text.split('&')) {
        const int equals = item.indexOf('=');
        const std::optional<QByteArray> name = decoded(equals < 0 ? item : item.left(equals));
        const std::optional<QByteArray> value =
            decoded(equals < 0 ? QByteArray() : item.mid(equals + 1));
        if (!name || !value || name->isEmpty() || items.contains(*name))
            return std::nullopt;
        items.insert(*name, *value);
    }
    return items;
}
