// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "engine/outcome.h"

#include <QByteArray>
#include <QString>
#include <QStringList>

#include <functional>

namespace reference
{

/// One row of a table. The first cell that cannot be read makes the row's error.
class csvRow
{
public:
    /// @p cells holds one cell for each of @p columns.
    csvRow(const QStringList &columns, const QStringList &cells);

    /// The cell as it is, blanks included; an empty one is an error.
    QString text(const char *column);
    /// A decimal number from @p lowest to @p highest; anything else reads as @p lowest.
    double number(const char *column, double lowest, double highest);
    /// A whole number from @p lowest to @p highest.
    int count(const char *column, int lowest, int highest);
    /// Sets the error unless there is one.
    void fail(const QString &what);

    /// What is wrong with this row; empty if nothing is.
    QString error() const { return firstError; }

private:
    QString cell(const char *column) const;

    QStringList columnNames;
    QStringList cellTexts;
    QString firstError;
};

/// Calls @p read for each row of @p csv, whose first line must be @p columns. Cells are separated
/// by commas and are not quoted. Stops at the first error and returns it with the table's @p name
/// and the line.
outcome<void> readRows(const QString &name, const QByteArray &csv, const QString &columns,
                       const std::function<void(csvRow &)> &read);

} // namespace reference
