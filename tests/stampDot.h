// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "engine/testBase.h"

/// Draws a dot into the frame of @p test: a block of 1/320 of its width by 1/240 of its height, in
/// whole pixels, with its top-left corner at (@p x, @p y). What lies outside is left out; positions
/// above or left of the frame are wrapped negative numbers.
void stampDot(testBase &test, quint32 x, quint32 y, quint32 colour);
