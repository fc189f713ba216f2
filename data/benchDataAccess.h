// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "data/benchXml.h"
#include "data/onlineDatabase.h"
#include "engine/benchResults.h"
#include "engine/hooks.h"

#include <QStringList>
#include <QVector>

#include <memory>

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
    void loadReferenceData(int source);
    /// Appends this machine, as it was stored, or as it is and with a result of 0 for every test.
    void loadUserData();
    /// What could not be read in the latest load, of the reference data or after it: one sentence
    /// for each file, without an end of line. The log is not told.
    const QStringList &getLoadProblems() const { return loadProblems; }
    /// Stores the last machine without the results of single-only tests. A file that was there
    /// before is replaced by a complete one or kept; false in that case.
    bool storeUserData();
    /// Removes what was stored; the list in memory stays as it is.
    void removeUserData();
    /// Sends what was stored, or nothing where there is nothing. False if the database did not take
    /// it.
    bool uploadResults();

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
    bool isNewerOnline(quint32 &highestVersion);
    bool downloadReference(bool normal, quint32 version);
    /// Fills the place of the built-in list by a download, if one is wanted. False if it failed.
    bool updateReference(int source);
    bool parseDownloadedReference();
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
