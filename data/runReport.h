// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "data/runRecord.h"

#include <QByteArray>
#include <QString>

/// @p run as comma-separated values in UTF-8 (RFC 4180): a header, then one row for each test and
/// repetition. Numbers have a dot as decimal point; what is unknown is empty. Texts are as they
/// are: what a spreadsheet makes of one that looks like a formula is not kept from it.
QByteArray toCsv(const runRecord &run);

/// @p run as a table in GitHub's Markdown, under a line about the machine, the version and the
/// date: one row for each test, of a repeated one with the median value and the spread of its
/// values.
QString toMarkdown(const runRecord &run);
