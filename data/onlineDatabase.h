// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QByteArray>
#include <QString>

/// The way to the online result database. Each request is answered before it returns.
class onlineDatabase
{
public:
    enum requestKind {
        referenceVersion = 0, ///< out: the version of the online list as decimal text
        reference = 1,        ///< out: the list as XML
        betaReference = 2,    ///< out: the BETA list as XML
        storeResults = 3      ///< in: this machine's results as XML
    };

    /// False if the database did not answer, or not in a way that makes sense; @p data is then
    /// of no use.
    virtual bool request(int requested, QByteArray &data) = 0;
    /// In what words the database refused the latest request: one line for a person. Empty if it
    /// did not, or gave no reason.
    virtual QString refusal() const { return {}; }
    virtual ~onlineDatabase() = default;
};

/// Stands for a database that never answers.
class noOnlineDatabase : public onlineDatabase
{
public:
    bool request(int, QByteArray &) override { return false; }
};
