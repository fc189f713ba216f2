// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "data/doctorPage.h"
#include "data/runRecord.h"

#include <functional>
#include <optional>

/// Whether results are to be trusted: what is to be said before and after a run, in a line and on a
/// page, in the words of the console runner.
class trustNotes
{
public:
    /// @p look tells of the machine as it is now.
    explicit trustNotes(std::function<doctorSubject()> look);

    /// Tells of @p subject, this machine when the program starts.
    void atStart(const doctorSubject &subject);
    /// Looks at the machine again. A run that is over is no longer spoken of.
    void beforeRun();
    /// The run is over. @p trouble, if any, is why it is not kept.
    void afterRun(const runRecord &run, const QString &trouble = {});

    /// The worst of it; empty if all is well and there has been no run.
    QString line() const;
    /// All of it, with the machine as it is now.
    QString page() const;

private:
    std::function<doctorSubject()> source;
    std::vector<disturbance> warnings;
    std::optional<runRecord> latest;
    QString unkept;
};
