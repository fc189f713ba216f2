// SPDX-License-Identifier: GPL-3.0-or-later
#include "data/runStore.h"

#include "data/runJson.h"
#include "data/wholeFile.h"

#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QLockFile>
#include <QRegularExpression>
#include <QStandardPaths>

namespace
{

/// UTC to the millisecond, and a number for more than one run in it: 20260131T225958007Z-000.
const QString timeForm = QStringLiteral("yyyyMMdd'T'HHmmsszzz'Z'");
const QString beginning = QStringLiteral("run-");
const QString ending = QStringLiteral(".json");
constexpr int counterDigits = 3;

QString nameOf(const QString &time, int counter)
{
    return beginning + time
           + QStringLiteral("-%1").arg(counter, counterDigits, 10, QLatin1Char('0')) + ending;
}

/// Whether a file with this name is one of the store's.
bool isOurs(const QString &name)
{
    static const QRegularExpression form(
        QStringLiteral(R"(\Arun-[0-9]{8}T[0-9]{9}Z-[0-9]{3}\.json\z)"));
    return form.match(name).hasMatch();
}

QString lockProblem(QLockFile::LockError error)
{
    if (error == QLockFile::LockFailedError)
        return QStringLiteral("'%1' is being written to by another program");
    if (error == QLockFile::PermissionError)
        return QStringLiteral("'%1' cannot be written to");
    return QStringLiteral("'%1' cannot be written to; is the disk full?");
}

} // namespace

runStore::runStore(const QString &path) : folder(path) {}

runStore runStore::ofUser()
{
    const QString data = QStandardPaths::writableLocation(QStandardPaths::AppDataLocation);
    return runStore(data.isEmpty() ? QString() : data + QStringLiteral("/runs"));
}

QString runStore::fileOf(const QString &name) const
{
    return folder + QLatin1Char('/') + name;
}

QStringList runStore::names() const
{
    QStringList found;
    if (folder.isEmpty())
        return found;
    const QStringList files = QDir(folder).entryList(QDir::Files, QDir::Unsorted);
    std::copy_if(files.begin(), files.end(), std::back_inserter(found), isOurs);
    std::sort(found.begin(), found.end());
    return found;
}

QString runStore::nextName() const
{
    QString now = nameOf(QDateTime::currentDateTimeUtc().toString(timeForm), 0);
    const QStringList present = names();
    if (present.isEmpty() || now > present.last())
        return now;
    // Several at once, or the clock was set back. After the last number comes the next millisecond.
    const QString latest = present.last().mid(beginning.size()).chopped(ending.size());
    const QString time = latest.chopped(counterDigits + 1);
    const int counter = latest.right(counterDigits).toInt() + 1;
    if (counter < 1000)
        return nameOf(time, counter);
    QDateTime moment = QDateTime::fromString(time, timeForm);
    moment.setTimeSpec(Qt::UTC);
    return nameOf(moment.addMSecs(1).toString(timeForm), 0);
}

outcome<QString> runStore::append(const runRecord &run)
{
    if (folder.isEmpty())
        return failure(QStringLiteral("there is no directory for this user's data"));
    if (!QDir().mkpath(folder))
        return failure(QStringLiteral("the directory '%1' cannot be made").arg(folder));
    const QByteArray json = toJson(run);
    constexpr int patience = 10'000; // ms; others hold the lock for as long as writing a file takes
    QLockFile lock(fileOf(QStringLiteral("lock")));
    if (!lock.tryLock(patience))
        return failure(lockProblem(lock.error()).arg(folder));
    const QString name = nextName();
    if (const outcome<void> written = writeWholeFile(fileOf(name), json); !written)
        return failure(written.error());
    removeOldest();
    return name;
}

void runStore::removeOldest()
{
    const QStringList present = names();
    for (int i = 0; i < present.size() - mostRuns; ++i)
        QFile::remove(fileOf(present.at(i)));
}

runStore::listing runStore::list() const
{
    listing found;
    // What can be read has at least an entry for itself.
    if (!folder.isEmpty() && QFile::exists(folder) && QDir(folder).entryList(QDir::Dirs).isEmpty())
        found.problems.append(QStringLiteral("'%1' cannot be read").arg(folder));
    for (const QString &name : names()) {
        outcome<runRecord> run = readRunFile(fileOf(name));
        if (run)
            found.runs.push_back({name, std::move(*run)});
        else
            found.problems.append(run.error());
    }
    return found;
}

outcome<runStore::keptRun> runStore::read(const QString &which) const
{
    const QStringList present = names();
    if (present.isEmpty())
        return failure(QStringLiteral("no run is kept"));
    bool isNumber = false;
    const int number = which.toInt(&isNumber);
    if (isNumber && (number < 1 || number > present.size())) {
        return failure(QStringLiteral("there is no run %1: %2 are kept, counted from the oldest")
                           .arg(which, QString::number(present.size())));
    }
    const int index =
        isNumber ? number - 1 : std::max(present.indexOf(which), present.indexOf(which + ending));
    if (index < 0)
        return failure(QStringLiteral("no kept run is called '%1'").arg(which));
    outcome<runRecord> run = readRunFile(fileOf(present.at(index)));
    if (!run)
        return failure(run.error());
    return keptRun{present.at(index), std::move(*run)};
}

outcome<runRecord> readRunFile(const QString &path)
{
    const outcome<QByteArray> content = readWholeFile(path, runJson::longestFile);
    if (!content)
        return failure(content.error());
    outcome<runRecord> run = readRunRecord(*content);
    if (!run)
        return failure(QStringLiteral("'%1': %2").arg(path, run.error()));
    return run;
}
