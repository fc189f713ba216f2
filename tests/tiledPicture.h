// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "engine/workBuffer.h"

#include <QString>

/// A picture embedded in the program, repeated in both directions, as opaque pixels 0xAARRGGBB row
/// by row.
class tiledPicture
{
public:
    /// Loads @p resource, repeated @p tiles times each way. False, holding nothing, if it cannot be
    /// read or without memory.
    [[nodiscard]] bool load(const QString &resource, quint32 tiles);
    void free() { pixels.free(); }

    quint32 getWidth() const { return width; }
    quint32 getHeight() const { return height; }
    quint32 getCount() const { return width * height; }
    /// The first pixel, or null when nothing is held.
    const quint32 *data() const { return pixels.data(); }

private:
    quint32 width = 0;
    quint32 height = 0;
    workBuffer<quint32> pixels;
};
