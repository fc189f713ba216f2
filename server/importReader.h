// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "data/benchReader.h"
#include "server/resultStore.h"

#include <QXmlStreamReader>

/// What an import has read.
struct importReport {
    int uploads = 0;
    int lists = 0;
    int estimates = 0; ///< modelled machines, which are passed over
};

/// How to import.
struct importOptions {
    qint64 now = 0; ///< milliseconds since 1970
    /// Takes an export that says nothing about its end, as they were before there was one.
    bool isEndOptional = false;
};

/// Reads an export, or a list of machines, whose machines become uploads received now. Everything
/// in it must be right.
class importReader
{
public:
    importReader(QIODevice &device, const importOptions &wanted) : xml(&device), options(wanted) {}

    outcome<importReport> read();

    QVector<storedUpload> uploads;
    QVector<storedList> lists;

private:
    enum place { outside, inList, inExport, inUpload, behindEnd };

    failure inThisLine(const QString &sentence) const;
    QString attribute(const char *name) const;
    /// The time in attribute @p name.
    outcome<qint64> timeIn(const char *name) const;

    outcome<void> readToken();
    outcome<void> beginRoot();
    outcome<void> beginPart();
    outcome<void> beginUpload();
    outcome<void> endUpload();
    outcome<void> readList();
    outcome<void> readEnd();
    outcome<void> takeMachine();
    outcome<void> takeMachineOfUpload(const benchResults &machine);

    QXmlStreamReader xml;
    importOptions options;
    importReport report;
    place where = outside;
    int format = 0;      ///< of the export; 0 for an old one
    storedUpload upload; ///< the one that is being read, as far as its attributes say
    QString hash;        ///< as they say
    bool hasMachine = false;
    QVector<benchResults> machines; ///< the one that is being read
    benchReader machineReader{machines};
};
