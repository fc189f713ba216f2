// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "server/uploadFilter.h"

/// What operators do with uploads. Each transaction adds a line to the audit: what was done, to
/// which uploads, and why.
namespace moderation
{

/// The uploads that a call changes, or would change, oldest first.
struct report {
    QVector<qint64> changed;
    /// Those that stay as they are, though they were meant: their names are none that is published.
    QVector<qint64> refused;
};

enum class action {
    withdraw, ///< keeps uploads out of the lists from now on
    restore,  ///< takes that back; what cannot be right is held again
    accept,   ///< lets uploads count that are held
    forget    ///< deletes what could be personal: the computers' names and the sources
};

/// Does @p wanted to the uploads that @p filter lets through and that it makes a difference to. If
/// @p isDryRun, only says to which. Many uploads take several transactions, so that others can be
/// stored in between; who is interrupted goes on by the same call.
///
/// An upload that is forgotten keeps its results, and has its number in place of the computer's
/// name. If its source's token could still be found out, because the day's key is there, a random
/// one replaces it in all uploads that have it: they still count once, and no list changes.
outcome<report> apply(resultStore &store, action wanted, const uploadFilter &filter,
                      const QString &reason, bool isDryRun);

/// The verb.
QString nameOf(action wanted);

/// Numbers in few words: "3-5, 9".
QString numbersText(const QVector<qint64> &numbers);

} // namespace moderation
