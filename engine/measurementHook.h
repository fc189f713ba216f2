// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "engine/roundSpan.h"

#include <QSize>

class testBase;

/// How a test came to its end.
enum class testEnd {
    complete, ///< its time was over
    stopped,  ///< by the user; what was measured until then counts
    failed    ///< could not be set up or could not do its work: no result
};

/// Follows what is measured, for a record of it. It is called outside of all timed spans, and must
/// not take long between two rounds.
class measurementHook
{
public:
    /// @p test is about to be set up.
    virtual void testStarts(const testBase &test, const QSize &resolution) = 0;
    virtual void roundMeasured(const roundSpan &span) = 0;
    /// @p average is the official mean of a round in seconds, of no meaning after a failure. The
    /// test is still set up, unless that failed.
    virtual void testEnded(const testBase &test, testEnd end, float average) = 0;
    virtual ~measurementHook() = default;
};
