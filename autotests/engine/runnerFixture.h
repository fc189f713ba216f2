// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "engine/benchBase.h"

#include "engine/benchAndMeasure.h"
#include "support/fakeClock.h"
#include "support/fakeTest.h"
#include "support/textLog.h"

#include <QRegularExpression>
#include <QSysInfo>
#include <QtTest>

#include <limits>

using std::chrono::milliseconds;

/// Print, stop and update hook that write into one event log, and a runner over fakes. The stop
/// hook answers true from its poll number stopAtPoll on.
class bench : public textLog, public stopHook, public updateHook
{
public:
    explicit bench(const QStringList &names)
    {
        suite tests;
        for (const QString &name : names) {
            tests.push_back(std::make_unique<fakeTest>(name, &events));
            fakes.append(static_cast<fakeTest *>(tests.back().get()));
        }
        runner = std::make_unique<benchBase>(this, this, this, std::move(tests));
        runner->loadReferenceData(benchBase::builtInReference);
        runner->loadUserData();
        // Each test takes exactly one measurement, since a work unit lasts longer than the test
        // time.
        runner->setTestTime(60);
        for (fakeTest *test : qAsConst(fakes))
            test->onRun = [] { fakeClock::pass(milliseconds(70)); };
        text.clear();
    }

    void updateStart(testBase *test) override { note(test, "updateStart"); }
    void updateProgress(testBase *test, int elapsedMs) override
    {
        note(test, "updateProgress");
        spans.append(elapsedMs);
        fakeClock::pass(progressTime);
    }
    void updateEnd(testBase *test) override { note(test, "updateEnd"); }
    bool isStopRequested() override { return ++polls >= stopAtPoll; }

    /// The stored value of a test, or -1 without an entry.
    float stored(const QString &name) const
    {
        benchResults machine = runner->getResults().last();
        const benchResults::test *entry = machine.findTest(name);
        return entry ? entry->value : -1.0F;
    }

    QStringList events;
    QVector<int> spans;
    /// What the update hook takes for itself.
    milliseconds progressTime{0};
    QVector<fakeTest *> fakes;
    int polls = 0;
    int stopAtPoll = std::numeric_limits<int>::max();
    std::unique_ptr<benchBase> runner;

private:
    fakeClock clock;

    void note(testBase *test, const char *event)
    {
        events.append(test->getName() + QLatin1Char('.') + QLatin1String(event));
    }
};

/// What one test of one measurement leaves in the event log.
inline QStringList eventsOf(const QString &name)
{
    QStringList events;
    for (const char *event : {"setup", "release", "updateStart", "preRun", "run", "postRun",
                              "updateProgress", "updateEnd", "release"})
        events.append(name + QLatin1Char('.') + QLatin1String(event));
    return events;
}

/// Takes the measured figures, which no test can know, out of a log.
inline QString withoutFigures(QString text)
{
    text.replace(QRegularExpression(QStringLiteral("Result: [0-9.e+inf]+/s (\\w+) \\(avg "
                                                   "[0-9.e+]+ms\\)")),
                 QStringLiteral("Result: N/s \\1 (avg Nms)"));
    return text;
}

inline QString testLine(const QString &name)
{
    return QStringLiteral("Test ") + name.rightJustified(36) + QStringLiteral(" Result: ");
}

inline const QString figures = QStringLiteral("N/s MFakes (avg Nms)\n");
inline const QString title =
    QStringLiteral("Fennick CPU bench (%1)").arg(QSysInfo::buildCpuArchitecture());
inline const QString a = QStringLiteral("a");
inline const QString b = QStringLiteral("b");
inline const QString c = QStringLiteral("c");

/// For initTestCase.
inline void prepareRunners()
{
    QStandardPaths::setTestModeEnabled(true);
    // The stopwatch of the process starts with the first question.
    const fakeClock clock;
    benchAndMeasure().measure(nullptr);
}
