// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "server/resultStore.h"

#include <optional>

/// Which uploads a command is about: those that all of this is true of.
struct uploadFilter {
    qint64 id = 0;                ///< the one with this number; 0 for all
    QString processor;            ///< its name, however it is spelt, * for any characters
    QString state;                ///< empty for all
    std::optional<qint64> since;  ///< received then or later, in milliseconds since 1970
    std::optional<qint64> before; ///< received earlier
    bool isOutlier = false;       ///< only those with results far from the others of their group
    qint64 after = 0;             ///< only those with higher numbers
    int limit = 0;                ///< at most so many; 0 for all

    /// In the words of the command line.
    QString text() const;
};

/// Hands the uploads that @p filter lets through to @p take, oldest first.
outcome<void> forEachUpload(resultStore &store, const uploadFilter &filter,
                            const std::function<void(const storedUpload &)> &take);
