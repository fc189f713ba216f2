// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "server/moderation.h"
#include "server/uploadListing.h"

#include <QCommandLineOption>
#include <QList>

class QCommandLineParser;

/// What an operator asks for about uploads.
struct operatorRequest {
    uploadFilter filter;
    listingForm form = listingForm::lines;
    QString reason;
};

/// The options that choose uploads: of list, withdraw, restore and accept.
QList<QCommandLineOption> filterOptions();
/// How list shows them.
QList<QCommandLineOption> listingOptions();
/// Why an operator does something.
const QCommandLineOption &whyOption();
/// What forget takes in place of a number.
const QCommandLineOption &olderThanOption();

/// Reads the options of list, whose argument @p number may be.
outcome<operatorRequest> readListing(const QCommandLineParser &parser, const QString &number);

/// Reads the number of an upload, or the options that choose some, for @p wanted at @p now, in
/// milliseconds since 1970. Neither would mean all, which nobody may say by mistake.
outcome<operatorRequest> readModeration(const QCommandLineParser &parser, moderation::action wanted,
                                        const QString &number, qint64 now);
