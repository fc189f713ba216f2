// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "data/runRecord.h"
#include "engine/outcome.h"

#include <QString>
#include <QStringList>

#include <vector>

/// The folder of this user's runs, one file for each. Several programs may add to it at once.
class runStore
{
public:
    /// The most runs that are kept; the oldest make room.
    static constexpr int mostRuns = 500;

    /// A run and the name of its file.
    struct keptRun {
        QString name;
        runRecord run;
    };
    /// What could be read, oldest first, and a sentence for each file that could not.
    struct listing {
        std::vector<keptRun> runs;
        QStringList problems;
    };

    /// The folder @p path, which need not exist; an empty one can neither keep nor give runs.
    explicit runStore(const QString &path);
    /// The folder "runs" in the directory of this user's data.
    static runStore ofUser();

    /// Keeps @p run in a file of its own and gives its name. Names are in the order in which runs
    /// were kept, even where the clock was set back between two of them. Without success nothing
    /// has changed.
    outcome<QString> append(const runRecord &run);
    /// The names of all kept runs, oldest first, whatever is in their files.
    QStringList names() const;
    listing list() const;
    /// The run that @p which names: a number counted from 1 for the oldest, or its file's name with
    /// or without its ending.
    outcome<keptRun> read(const QString &which) const;

    QString path() const { return folder; }

private:
    QString fileOf(const QString &name) const;
    /// The name that a run gets now: later than the latest one.
    QString nextName() const;
    void removeOldest();

    QString folder;
};

/// The run in the file at @p path, wherever that is.
outcome<runRecord> readRunFile(const QString &path);
