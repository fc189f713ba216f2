// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "tests/codecTest.h"

/// Decompresses a large tiled picture, which is compressed afresh before each timed run.
class zlib : public codecTest
{
public:
    zlib();

    QString getName() const override { return QStringLiteral("zlib uncompress"); }
    void preRun() override;
    void run() override;
    float getWork() const override { return megawords(); }
};
