// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/plainText.h"

#include <QStringList>
#include <QTextDocument>

namespace
{

constexpr QChar ellipsis(0x2026);

/// HTML joins blanks to one, and drops them at both ends. Those that it keeps stay what they are.
QString withAllBlanks(const QString &text)
{
    QString result = text;
    for (int i = 0; i < result.size(); ++i) {
        if (!result.at(i).isSpace())
            continue;
        const bool isLost = i == 0 || i + 1 == result.size() || result.at(i - 1).isSpace();
        result[i] = isLost ? QChar(QChar::Nbsp) : QChar(QChar::Space);
    }
    return result;
}

} // namespace

QString plainText::shortened(const QString &text, int longest)
{
    if (text.size() <= longest)
        return text;
    const int kept = longest - 1;
    const bool splitsLetter = kept > 0 && text.at(kept - 1).isHighSurrogate();
    return text.left(splitsLetter ? kept - 1 : kept) + ellipsis;
}

QString plainText::asHtml(const QString &text)
{
    QStringList lines = text.split(QLatin1Char('\n'));
    for (QString &line : lines)
        line = withAllBlanks(line).toHtmlEscaped();
    return lines.join(QStringLiteral("<br>"));
}

QString plainText::asToolTip(const QString &text)
{
    return Qt::mightBeRichText(text) ? asHtml(text) : text;
}
