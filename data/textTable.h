// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>
#include <QStringList>

#include <vector>

/// Rows of cells in columns that are as wide as their widest cell, with two blanks between. The
/// first column is aligned to the left, and so are those in @p leftColumns; the others to the
/// right. Each row ends its line; no line ends in a blank.
QString textTable(const std::vector<QStringList> &rows, const std::vector<int> &leftColumns = {});
