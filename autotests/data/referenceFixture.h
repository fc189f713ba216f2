// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "data/benchDataAccess.h"
#include "support/textLog.h"

#include <QMap>

#include <memory>

inline const QString dbFile = QStringLiteral("db.xml");
inline const QString versionFile = QStringLiteral("db_version");

inline const QString noOnline = QStringLiteral("No online database found\n");
inline const QString useBuiltIn = QStringLiteral("Use internal benchmark DB\n");
inline const QString useLocal = QStringLiteral("Use local benchmark DB\n");

inline QByteArray listOf(const QByteArray &name)
{
    return "<Fennick><bench machineName=\"" + name + "\" os=\"linux\"/></Fennick>";
}

/// An online database that answers as it is told and writes down the requests.
class fakeOnline : public onlineDatabase
{
public:
    explicit fakeOnline(QVector<int> *requestLog) : requests(requestLog) {}

    bool request(int requested, QByteArray &data) override
    {
        requests->append(requested);
        if (!replies.contains(requested))
            return false;
        data = replies.value(requested);
        return true;
    }

    QMap<int, QByteArray> replies;

private:
    QVector<int> *requests;
};

/// A data access with a log and a fake online database.
struct referenceFixture {
    referenceFixture()
    {
        auto database = std::make_unique<fakeOnline>(&requests);
        online = database.get();
        data = std::make_unique<benchDataAccess>(&log, QVector<testBase *>(), std::move(database));
    }

    QStringList names() const
    {
        QStringList list;
        for (const benchResults &machine : data->getResults())
            list.append(machine.getName());
        return list;
    }

    textLog log;
    QVector<int> requests;
    fakeOnline *online = nullptr;
    std::unique_ptr<benchDataAccess> data;
};

inline QString found(int devices, int unique)
{
    return QStringLiteral("Found %1 devices (%2 unique)\n")
        .arg(QString::number(devices), QString::number(unique));
}

inline QString foundBuiltIn()
{
    textLog log;
    benchDataAccess data(&log, {});
    data.loadReferenceData(benchDataAccess::builtInReference);
    return log.text.mid(useBuiltIn.size());
}
