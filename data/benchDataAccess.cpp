// SPDX-License-Identifier: GPL-3.0-or-later
#include "data/benchDataAccess.h"

#include "data/wholeFile.h"
#include "engine/machineProbe.h"
#include "engine/testBase.h"

#include <QDir>
#include <QFile>
#include <QSet>
#include <QStandardPaths>
#include <QXmlStreamWriter>

#include <cstdio>

namespace
{

/// The version of the list inside the program; only a higher one is worth a download.
constexpr quint32 builtInVersion = 1010;

const QString listName = QStringLiteral("db.xml");
const QString listVersionName = QStringLiteral("db_version");
const QString userDataName = QStringLiteral("user_data.xml");

/// Whether the file could be replaced by one with @p content; if not it is left as it is.
bool writeFile(const QString &path, const QByteArray &content)
{
    return writeWholeFile(path, content, QIODevice::Text).has_value();
}

/// A sentence about a file that could not be read to its end.
std::optional<QString> problemOf(const QFile &file, const listEnd &end)
{
    if (end.how == listEnd::complete)
        return std::nullopt;
    if (file.error() != QFileDevice::NoError) {
        return QStringLiteral("'%1' cannot be read: %2").arg(file.fileName(), file.errorString());
    }
    return (end.how == listEnd::cut
                ? QStringLiteral("'%1' is too long: what follows line %2 is left out")
                : QStringLiteral("'%1' has a fault in line %2: what follows it is left out"))
        .arg(file.fileName(), QString::number(end.line));
}

} // namespace

benchDataAccess::benchDataAccess(printHook *target, QVector<testBase *> tests,
                                 std::unique_ptr<onlineDatabase> database)
    : printTarget(target),
      suiteTests(std::move(tests)),
      online(database ? std::move(database) : std::make_unique<noOnlineDatabase>())
{
}

void benchDataAccess::print(const QString &text)
{
    if (printTarget) {
        printTarget->print(text);
        return;
    }
    const QByteArray bytes = text.toLocal8Bit();
    std::fwrite(bytes.constData(), 1, static_cast<std::size_t>(bytes.size()), stdout);
    std::fflush(stdout);
}

void benchDataAccess::loadReferenceData(referenceSource source)
{
    results.clear();
    loadProblems.clear();
    // A failed download leads to the built-in list even where an older download exists.
    const bool isUpToDate = source != builtInReference && updateReference(source);
    if (!isUpToDate || !parseDownloadedReference())
        parseBuiltInReference();
    printDeviceCount();
}

bool benchDataAccess::updateReference(referenceSource source)
{
    if (source == betaReference) {
        if (!downloadReference(betaReference, 0))
            return false;
        print(QStringLiteral("Update DB successfully (BETA)\n"));
        return true;
    }
    const std::optional<quint32> version = newerOnlineVersion();
    if (!version)
        return true;
    if (!downloadReference(normalReference, *version))
        return false;
    print(QStringLiteral("Update DB successfully\n"));
    return true;
}

bool benchDataAccess::ask(onlineDatabase::requestKind requested, QByteArray &reply)
{
    const bool isAnswered = online->request(requested, reply);
    const QString refusal = online->refusal();
    if (!isAnswered && !refusal.isEmpty())
        loadProblems.append(QStringLiteral("the online database refuses: %1").arg(refusal));
    return isAnswered;
}

std::optional<quint32> benchDataAccess::newerOnlineVersion()
{
    QByteArray reply;
    if (!ask(onlineDatabase::referenceVersion, reply)) {
        print(QStringLiteral("No online database found\n"));
        return std::nullopt;
    }
    const quint32 onlineVersion = QString::fromUtf8(reply).toUInt();
    const quint32 ownVersion = localVersion();
    const QString ownText = ownVersion == 0 ? QStringLiteral("BETA") : QString::number(ownVersion);
    print(QStringLiteral("Online database has version %1 (local %2)\n")
              .arg(QString::number(onlineVersion), ownText));
    return onlineVersion > ownVersion ? std::make_optional(onlineVersion) : std::nullopt;
}

bool benchDataAccess::downloadReference(referenceSource source, quint32 version)
{
    QByteArray xml;
    const onlineDatabase::requestKind list =
        source == betaReference ? onlineDatabase::betaReference : onlineDatabase::reference;
    if (!ask(list, xml) || readMachines(xml).isEmpty())
        return false;
    bool ok = true;
    const QString directory = userDataDirectory(ok);
    // The version last: it must never stand for a list that is not there.
    return ok && writeFile(directory + listName, xml)
           && writeFile(directory + listVersionName, QByteArray::number(version));
}

std::optional<QString> benchDataAccess::userFile(const QString &name)
{
    bool ok = true;
    const QString directory = userDataDirectory(ok);
    return ok ? std::make_optional(directory + name) : std::nullopt;
}

bool benchDataAccess::parseDownloadedReference()
{
    QFile file(userFile(listName).value_or(QString()));
    if (!file.exists())
        return false;
    print(QStringLiteral("Use local benchmark DB\n"));
    parseFile(file);
    return true;
}

void benchDataAccess::parseBuiltInReference()
{
    print(QStringLiteral("Use internal benchmark DB\n"));
    QFile file(QStringLiteral(":/data/benches.xml"));
    parseXml(file);
}

listEnd benchDataAccess::parseXml(QIODevice &device)
{
    if (!device.open(QIODevice::ReadOnly | QIODevice::Text))
        return {listEnd::fault};
    const listEnd end = readMachines(device, results);
    device.close();
    return end;
}

void benchDataAccess::parseFile(QFile &file)
{
    if (const auto problem = problemOf(file, parseXml(file)))
        loadProblems.append(*problem);
}

void benchDataAccess::printDeviceCount()
{
    QSet<QString> names;
    for (const benchResults &machine : qAsConst(results))
        names.insert(machine.getName().toLower());
    print(QStringLiteral("Found %1 devices (%2 unique)\n")
              .arg(QString::number(results.size()), QString::number(names.size())));
}

quint32 benchDataAccess::localVersion()
{
    const std::optional<QString> path = userFile(listVersionName);
    QFile file(path.value_or(QString()));
    if (!path || !file.open(QIODevice::ReadOnly | QIODevice::Text))
        return builtInVersion;
    constexpr qint64 longestNumber = 64;
    return QString::fromUtf8(file.read(longestNumber)).trimmed().toUInt();
}

QString benchDataAccess::userDataDirectory(bool &ok)
{
    const QString location = QStandardPaths::writableLocation(QStandardPaths::AppDataLocation);
    ok = !location.isEmpty() && QDir().mkpath(location);
    if (!ok)
        print(QStringLiteral("cant create userdata directory '%1'\n").arg(location));
    return location + QLatin1Char('/');
}

void benchDataAccess::loadUserData()
{
    if (parseUserData())
        return;
    print(QStringLiteral("Found no local user benchmark data\n"));
    benchResults machine = machineProbe::instance().record();
    for (const testBase *test : qAsConst(suiteTests)) {
        if (test)
            machine.setTest(test->getName(), benchResults::test());
    }
    results.append(machine);
}

bool benchDataAccess::parseUserData()
{
    QFile file(userFile(userDataName).value_or(QString()));
    if (!file.exists())
        return false;
    print(QStringLiteral("Found local user benchmark data\n"));
    const int referenceMachines = results.size();
    parseFile(file);
    if (results.size() > referenceMachines)
        return true;
    print(QStringLiteral("'%1' cannot be read; it is kept until new results are stored\n")
              .arg(file.fileName()));
    return false;
}

bool benchDataAccess::storeUserData()
{
    const std::optional<QString> path = userFile(userDataName);
    if (!path) {
        print(QStringLiteral("Can't store userdata (directory not writable)\n"));
        return false;
    }
    if (!writeFile(*path, userDataXml())) {
        print(QStringLiteral("Can't store userdata (not writable)\n"));
        return false;
    }
    print(QStringLiteral("Store userdata\n"));
    return true;
}

QByteArray benchDataAccess::userDataXml() const
{
    QByteArray content;
    QXmlStreamWriter xml(&content);
    xml.setAutoFormatting(true);
    xml.writeStartDocument();
    xml.writeStartElement(QStringLiteral("Fennick"));
    if (!results.isEmpty()) {
        benchResults machine = results.last();
        for (const testBase *test : qAsConst(suiteTests)) {
            if (test && test->isSingleOnly())
                machine.getTests().remove(test->getName());
        }
        writeMachine(xml, machine);
    }
    xml.writeEndDocument();
    return content;
}

void benchDataAccess::removeUserData()
{
    const std::optional<QString> path = userFile(userDataName);
    if (!path) {
        // It is the directory that does not exist, on purpose; a missing file is not told apart.
        print(QStringLiteral("Can not remove user benchmark data (doesn't exists)\n"));
        return;
    }
    QFile::remove(*path);
    print(QStringLiteral("Remove user benchmark data\n"));
}

bool benchDataAccess::uploadResults()
{
    const std::optional<QString> path = userFile(userDataName);
    if (!path) {
        print(QStringLiteral("Can't upload results (directory) found\n"));
        return false;
    }
    QFile file(*path);
    QByteArray xml;
    // Without results an empty upload is sent, on purpose.
    if (file.open(QIODevice::ReadOnly | QIODevice::Text))
        xml = QString::fromUtf8(file.read(maximumXmlSize)).toUtf8();
    else
        print(QStringLiteral("Can't upload: no user results found\n"));
    const bool isTaken = online->request(onlineDatabase::storeResults, xml);
    print(isTaken ? QStringLiteral("Upload results\n") : QStringLiteral("Can't upload results\n"));
    return isTaken;
}
