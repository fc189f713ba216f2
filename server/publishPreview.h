// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "server/publication.h"

/// What publishing would do.
struct publishPreview {
    int version = 0; ///< of the lists as they are now
    bool isNew = false;
    QStringList normal; ///< a line for each machine of the normal list that would change
    QStringList beta;
};

/// The machines that @p after has and @p before has not, or otherwise, or with other values, a line
/// for each: "added", "removed" or "changed" and the machine. Both are lists as XML.
QStringList differences(const QByteArray &before, const QByteArray &after);

/// Works out what publishing from the uploads in @p store would change, as they are at one moment
/// and without what is kept from earlier times. Changes nothing.
outcome<publishPreview> previewOf(resultStore &store, const QVector<benchResults> &builtIn,
                                  ruleSet rules);
