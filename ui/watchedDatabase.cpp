// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/watchedDatabase.h"

#include <QCoreApplication>

namespace
{

QString waitText(int requested)
{
    switch (requested) {
    case onlineDatabase::reference:
        return QCoreApplication::translate("watchedDatabase", "downloading the list of machines…");
    case onlineDatabase::betaReference:
        return QCoreApplication::translate("watchedDatabase",
                                           "downloading the beta list of machines…");
    case onlineDatabase::storeResults:
        return QCoreApplication::translate("watchedDatabase", "uploading…");
    default:
        return QCoreApplication::translate("watchedDatabase", "looking for the online database…");
    }
}

} // namespace

watchedDatabase::watchedDatabase(std::unique_ptr<onlineDatabase> watched,
                                 std::function<void(const QString &)> starts,
                                 std::function<void()> ends)
    : database(std::move(watched)),
      onStart(std::move(starts)),
      onEnd(std::move(ends))
{
}

bool watchedDatabase::request(int requested, QByteArray &data)
{
    onStart(waitText(requested));
    const bool isAnswered = database->request(requested, data);
    onEnd();
    return isAnswered;
}
