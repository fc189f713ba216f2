// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "data/ranking.h"

class testBase;

/// What the ranking has to know of @p tests, in their order.
QVector<ranking::rankedTest> rankedTestsOf(const QVector<testBase *> &tests);
