// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "engine/outcome.h"

#include <QString>

/// The name of a processor as it is published: in Unicode's normal form KC, with single blanks and
/// with trademark signs spelt the way processors spell them, "(R)" and "(TM)". Fails for a name
/// that no processor has:
///
/// - with `<`, `>`, control, format or invisible characters, or signs beyond ASCII that are no
///   letters: it could look like another name, or harm a page that shows it;
/// - with letters of several scripts, or with foreign letters that all look like Latin ones;
/// - with "unknown" or "(est.)" in it, however they are written: the first is what the programs say
///   where there is no name, the second marks modelled machines.
outcome<QString> publishedProcessorName(const QString &name);

/// What the names of one processor have in common, whoever wrote them: without trademark signs,
/// what is behind an at sign, the word "CPU" and differences of case. Empty if nothing is left.
QString processorKey(const QString &name);
