// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QByteArray>
#include <QString>
#include <QStringList>
#include <QVector>

namespace reference
{

/// One line of a table, whose cells are taken as texts or numbers. The first cell that is not what
/// it should be is kept as the error.
class csvRow
{
public:
    csvRow(const QString &place, const QStringList &columns, const QStringList &cells);

    QString text(const char *column) const;
    /// A decimal number from @p lowest to @p highest.
    double number(const char *column, double lowest, double highest);
    /// A whole number from @p lowest to @p highest.
    int count(const char *column, int lowest, int highest);
    /// Notes @p what as the error of this row, unless there is one already.
    void fail(const QString &what);

    /// Names the table, the line and what is wrong; empty if nothing is.
    QString error() const { return firstError; }

private:
    QString where;
    QStringList columnNames;
    QStringList cellTexts;
    QString firstError;
};

/// Splits @p content, which is called @p name in messages, into rows below the header @p columns.
///
/// The format is ASCII with LF after every line and a comma between cells; there is no quoting, and
/// a cell is not empty. Blanks belong to the cell. On a fault, @p error says what and where, and
/// there are no rows.
QVector<csvRow> readCsv(const QString &name, const QByteArray &content, const QStringList &columns,
                        QString &error);

} // namespace reference
