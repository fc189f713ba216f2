// SPDX-License-Identifier: GPL-3.0-or-later
#include "data/jsonFields.h"

#include <cmath>

namespace
{

/// Characters beyond the first 65,536 are two units of a string.
bool isLonger(const QString &text, int longest)
{
    return text.size() > longest && text.toUcs4().size() > longest;
}

QString describe(numberRange range)
{
    return QStringLiteral("from %1 to %2")
        .arg(QString::number(range.lowest, 'g', 16), QString::number(range.highest, 'g', 16));
}

} // namespace

jsonFields::jsonFields(const QJsonObject &object, const QString &place, QString &problem)
    : fields(object),
      objectPlace(place),
      firstProblem(problem)
{
}

QString jsonFields::placeOf(const QString &name) const
{
    return objectPlace.isEmpty() ? name : objectPlace + QLatin1Char('.') + name;
}

void jsonFields::refuse(const QString &name, const QString &isNot)
{
    if (firstProblem.isEmpty())
        firstProblem = QStringLiteral("'%1' %2").arg(placeOf(name), isNot);
}

QJsonValue jsonFields::member(const char *name, presence wanted)
{
    QJsonValue value = fields.value(QLatin1String(name));
    if (value.isUndefined() && wanted == required)
        refuse(QString::fromLatin1(name), QStringLiteral("is missing"));
    return value;
}

std::optional<QString> jsonFields::text(const char *name, int longest, presence wanted)
{
    const QJsonValue value = member(name, wanted);
    if (value.isUndefined())
        return std::nullopt;
    if (!value.isString() || isLonger(value.toString(), longest)) {
        refuse(QString::fromLatin1(name),
               QStringLiteral("is no text of at most %1 characters").arg(longest));
        return std::nullopt;
    }
    return value.toString();
}

std::optional<double> jsonFields::number(const char *name, numberRange range, presence wanted)
{
    const QJsonValue value = member(name, wanted);
    if (value.isUndefined())
        return std::nullopt;
    if (!value.isDouble() || !range.contains(value.toDouble())) {
        refuse(QString::fromLatin1(name), QStringLiteral("is no number %1").arg(describe(range)));
        return std::nullopt;
    }
    return value.toDouble();
}

std::optional<qint64> jsonFields::integer(const char *name, numberRange range, presence wanted)
{
    const QJsonValue value = member(name, wanted);
    if (value.isUndefined())
        return std::nullopt;
    const double number = value.toDouble();
    if (!value.isDouble() || !range.contains(number) || std::floor(number) != number) {
        refuse(QString::fromLatin1(name),
               QStringLiteral("is no whole number %1").arg(describe(range)));
        return std::nullopt;
    }
    return static_cast<qint64>(number);
}

std::optional<bool> jsonFields::flag(const char *name, presence wanted)
{
    const QJsonValue value = member(name, wanted);
    if (value.isUndefined())
        return std::nullopt;
    if (!value.isBool()) {
        refuse(QString::fromLatin1(name), QStringLiteral("is neither true nor false"));
        return std::nullopt;
    }
    return value.toBool();
}

std::optional<int> jsonFields::word(const char *name, std::span<const char *const> words,
                                    presence wanted)
{
    const QJsonValue value = member(name, wanted);
    if (value.isUndefined())
        return std::nullopt;
    QStringList known;
    for (const char *word : words)
        known.append(QString::fromLatin1(word));
    const int index = value.isString() ? known.indexOf(value.toString()) : -1;
    if (index < 0) {
        refuse(QString::fromLatin1(name),
               QStringLiteral("is none of %1").arg(known.join(QStringLiteral(", "))));
        return std::nullopt;
    }
    return index;
}

jsonFields jsonFields::object(const char *name, presence wanted)
{
    const QJsonValue value = member(name, wanted);
    if (!value.isUndefined() && !value.isObject())
        refuse(QString::fromLatin1(name), QStringLiteral("is no object"));
    return {value.toObject(), placeOf(QString::fromLatin1(name)), firstProblem};
}

QJsonArray jsonFields::array(const char *name, int longest, presence wanted)
{
    const QJsonValue value = member(name, wanted);
    if (value.isUndefined())
        return {};
    if (!value.isArray() || value.toArray().size() > longest) {
        refuse(QString::fromLatin1(name),
               QStringLiteral("is no array of at most %1 elements").arg(longest));
        return {};
    }
    return value.toArray();
}
