// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QByteArray>
#include <QList>
#include <QPair>
#include <QVector>

/// The bytes that a form's key or value stands for: a plus sign is a blank, %XX a byte. Written out
/// here so that it shares nothing with what has encoded them.
inline QByteArray formDecoded(const QByteArray &text)
{
    QByteArray result;
    for (int i = 0; i < text.size(); ++i) {
        if (text.at(i) == '+') {
            result += ' ';
        } else if (text.at(i) == '%') {
            result += static_cast<char>(text.mid(i + 1, 2).toInt(nullptr, 16));
            i += 2;
        } else {
            result += text.at(i);
        }
    }
    return result;
}

/// The items of a form's body, in their order.
inline QVector<QPair<QByteArray, QByteArray>> formItems(const QByteArray &body)
{
    QVector<QPair<QByteArray, QByteArray>> items;
    const QList<QByteArray> parts = body.split('&');
    for (const QByteArray &part : parts) {
        const int equals = part.indexOf('=');
        items.append({formDecoded(part.left(equals)), formDecoded(part.mid(equals + 1))});
    }
    return items;
}
