// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "data/benchDataAccess.h"
#include "engine/benchBase.h"

#include "support/fakeClock.h"
#include "support/fakeTest.h"
#include "support/textLog.h"

#include <QtTest>

#include <memory>

inline const QString userFile = QStringLiteral("user_data.xml");
inline const QString foundNone = QStringLiteral("Found no local user benchmark data\n");
inline const QString foundSome = QStringLiteral("Found local user benchmark data\n");
inline const QString stored = QStringLiteral("Store userdata\n");
inline const QString notWritable = QStringLiteral("Can't store userdata (not writable)\n");
inline const QString removed = QStringLiteral("Remove user benchmark data\n");

/// A runner with three fakes, the last of which a full run leaves out.
struct userStoreFixture {
    userStoreFixture()
    {
        suite tests;
        for (const char *name : {"mandel", "colors ", "hidden"})
            tests.push_back(std::make_unique<fakeTest>(QString::fromLatin1(name), nullptr));
        tests.back()->setSingleOnly(true);
        runner = std::make_unique<benchBase>(&log, nullptr, nullptr, std::move(tests));
        load();
    }

    void load()
    {
        runner->loadReferenceData(benchDataAccess::builtInReference);
        referenceCount = runner->getResults().size();
        log.text.clear();
        runner->loadUserData();
    }
    QString logOfLoad()
    {
        load();
        return log.text;
    }
    QString logOf(void (benchDataAccess::*operation)())
    {
        log.text.clear();
        (runner.get()->*operation)();
        return log.text;
    }
    QString logOf(bool (benchDataAccess::*operation)())
    {
        log.text.clear();
        wasDone = (runner.get()->*operation)();
        return log.text;
    }
    /// Lets a test of the suite have a result of its own.
    void record(int index)
    {
        auto *test = static_cast<fakeTest *>(runner->getTests().at(index));
        const fakeClock clock;
        test->onRun = [] { fakeClock::pass(std::chrono::milliseconds(2)); };
        runner->setTestTime(1);
        runner->runTest(test, QSize(3820, 2160), true);
    }
    const benchResults &own() const { return runner->getResults().last(); }
    float result(const char *test) const
    {
        return own().getTests().value(QString::fromLatin1(test), benchResults::test(-1)).value;
    }

    textLog log;
    std::unique_ptr<benchBase> runner;
    int referenceCount = 0;
    bool wasDone = false;
};
