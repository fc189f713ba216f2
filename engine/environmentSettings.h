// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QMap>
#include <QProcessEnvironment>
#include <QString>

/// Those settings of @p environment that move numbers, by their names: of the OpenMP library, of
/// the C library's memory, and what is loaded before it. Empty ones, and those whose names no
/// library would read, are left out. Values are cut to 200 characters, and 64 settings are enough.
QMap<QString, QString> environmentSettings(const QProcessEnvironment &environment);
