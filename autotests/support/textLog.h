// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "engine/hooks.h"

/// Keeps what is printed.
class textLog : public printHook
{
public:
    void print(const QString &added) override { text += added; }

    QString text;
};
