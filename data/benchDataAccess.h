// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "data/benchXml.h"
#include "data/onlineDatabase.h"
#include "engine/benchResults.h"
#include "engine/hooks.h"

#include <QStringList>
#include <QVector>

#include <memory>
#include <optional>

class QFile;
class QIODevice;
class testBase;

/// Keeps the list of machines: the reference machines in the order of their file, then this
/// machine, always last. Failures are reported through print, and every source has a fallback.
class benchDataAccess : public printHook
{
public:
    enum referenceSource {
        normalReference = 0,  ///< the newest list, asking the online database for one
        betaReference = 1,    ///< the BETA list of the online database
        builtInReference = 2, ///< the list inside the program
    };

    /// @p target receives all messages and is not owned; without it they go to standard output.
    /// @p tests is the suite, not owned. Without @p database there is no online database.
    benchDataAccess(printHook *target, QVector<testBase *> tests,
                    std::unique_ptr<onlineDatabase> database = nullptr);

    void print(const QString &text) override;

    /// Empties the list and fills it with reference machines. loadUserData must follow, or the last
    /// reference machine would pass for this one.
    void loadReferenceData(referenceSource source);
    /// Appends this machine, as it was stored, or as it is and with a result of 0 for every test.
    void loadUserData();
    /// What could not be read since the latest load of reference data, that load included, and why
    /// the online database refused to answer, if it said so: one sentence for each, without an end
    /// of line. They are not printed.
    const QStringList &getLoadProblems() const { return loadProblems; }
    /// Stores the last machine without the results of single-only tests. An older file is replaced
    /// by a complete one, or kept if that fails, which is false.
    bool storeUserData();
    /// Removes what was stored; the list in memory stays as it is.
    void removeUserData();
    /// Sends what was stored, which may be nothing. False if the database did not accept it.
    bool uploadResults();
    /// In what words the database refused them, as one line; empty if it did not, or gave no
    /// reason. They are not printed.
    QString getUploadRefusal() const { return online->refusal(); }

    /// Opens @p device and appends the machines of its XML. Nothing happens if it cannot be opened,
    /// which is a fault.
    listEnd parseXml(QIODevice &device);
    /// The version of the downloaded list, 0 for a BETA list, or that of the built-in one.
    quint32 localVersion();
    /// The directory of this program's files with a slash at its end, created when missing.
    /// Clears @p ok and says so if there is none.
    QString userDataDirectory(bool &ok);

    /// The suite in its order, tests that a full run leaves out included.
    QVector<testBase *> getTests() const { return suiteTests; }
    const QVector<benchResults> &getResults() const { return results; }

protected:
    QVector<benchResults> results;

private:
    /// Asks the online database for what is loaded, and notes why it refuses.
    bool ask(onlineDatabase::requestKind requested, QByteArray &reply);
    /// The version of the online list, if it is newer than the local one.
    std::optional<quint32> newerOnlineVersion();
    /// Stores the list of @p source as one of @p version. False if that failed.
    bool downloadReference(referenceSource source, quint32 version);
    /// Downloads the list of @p source, if there is a newer one. False if that failed.
    bool updateReference(referenceSource source);
    bool parseDownloadedReference();
    /// Where the file @p name of this program is, or would be. Prints it if there is no directory.
    std::optional<QString> userFile(const QString &name);
    /// Parses @p file, and keeps a sentence if not all of it could be read.
    void parseFile(QFile &file);
    /// False if there are no stored results, or none that can be read.
    bool parseUserData();
    QByteArray userDataXml() const;
    void parseBuiltInReference();
    void printDeviceCount();

    printHook *printTarget;
    QVector<testBase *> suiteTests;
    std::unique_ptr<onlineDatabase> online;
    QStringList loadProblems;
};
