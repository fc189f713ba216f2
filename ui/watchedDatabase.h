// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "data/onlineDatabase.h"

#include <functional>
#include <memory>

/// Another way to the online database, with word of each request that waits.
class watchedDatabase : public onlineDatabase
{
public:
    /// @p starts is called before each request, with what is waited for, in words; @p ends after
    /// it. Neither may be empty.
    watchedDatabase(std::unique_ptr<onlineDatabase> watched,
                    std::function<void(const QString &)> starts, std::function<void()> ends);

    bool request(int requested, QByteArray &data) override;
    QString refusal() const override { return database->refusal(); }

private:
    std::unique_ptr<onlineDatabase> database;
    std::function<void(const QString &)> onStart;
    std::function<void()> onEnd;
};
