// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QJsonArray>
#include <QJsonObject>
#include <QString>

#include <optional>
#include <span>

struct numberRange {
    double lowest = 0;
    double highest = 0;

    /// False for what is not a number.
    bool contains(double value) const { return lowest <= value && value <= highest; }
};

/// Reads the members of an object strictly: of the right type and within bounds, or not at all.
/// The first problem is kept; reading can go on after it, with nothing for what is wrong.
class jsonFields
{
public:
    /// What a member that is not there means.
    enum presence { required, optional };

    /// @p place names the object in problems, and is empty for the whole file. @p problem, one for
    /// a whole file, receives a sentence if it is still empty.
    jsonFields(const QJsonObject &object, const QString &place, QString &problem);

    /// Of @p longest characters at most.
    std::optional<QString> text(const char *name, int longest, presence wanted = optional);
    std::optional<double> number(const char *name, numberRange range, presence wanted = optional);
    std::optional<qint64> integer(const char *name, numberRange range, presence wanted = optional);
    std::optional<bool> flag(const char *name, presence wanted = optional);
    /// The index of the word among @p words.
    std::optional<int> word(const char *name, std::span<const char *const> words,
                            presence wanted = optional);
    /// Empty where there is none.
    jsonFields object(const char *name, presence wanted = optional);
    QJsonArray array(const char *name, int longest, presence wanted = optional);

    bool has(const char *name) const { return fields.contains(QLatin1String(name)); }
    QStringList names() const { return fields.keys(); }
    bool isFine() const { return firstProblem.isEmpty(); }
    /// Keeps a problem with the member: what it is not.
    void refuse(const QString &name, const QString &isNot);

    QString placeOf(const QString &name) const;

private:
    /// The member, or undefined, which is a problem if it is required.
    QJsonValue member(const char *name, presence wanted);

    QJsonObject fields;
    QString objectPlace;
    QString &firstProblem;
};
