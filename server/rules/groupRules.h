// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "engine/benchResults.h"

#include <QByteArray>
#include <QString>
#include <QVector>

#include <optional>

/// An upload that has a say in what is published.
struct countedUpload {
    qint64 received = 0; ///< milliseconds since 1970
    QByteArray source;   ///< a token of where it came from; empty if that is not known
    benchResults machine;
};

/// Whom the lists are for.
enum class ruleSet {
    open,  ///< anybody may upload
    circle ///< a small group that trusts itself: one upload makes a machine
};

/// What the uploads of one group make.
struct groupVerdict {
    std::optional<benchResults> normal; ///< the machine of the normal list
    std::optional<benchResults> beta;
    int sources = 0;  ///< how many tokens have a say in it
    qint64 first = 0; ///< when the oldest upload that counts was received
};

/// What the uploads of one machine have in common: the name of the processor, the operating system
/// and the thread count. Empty if the name is none that is published.
QString groupKey(const benchResults &machine);

/// Judges the uploads of one group, in whatever order they are.
groupVerdict judge(const QVector<countedUpload> &uploads, ruleSet rules);
