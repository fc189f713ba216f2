// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "engine/testBase.h"

#include <QStringList>

#include <functional>
#include <utility>

/// A test that does nothing but write down what is asked of it, as "name.operation".
class fakeTest : public testBase
{
public:
    fakeTest(QString ownName, QStringList *eventLog) : name(std::move(ownName)), log(eventLog) {}

    bool setup(int newWidth, int newHeight) override
    {
        note("setup");
        const bool isSetUp = canSetup && testBase::setup(newWidth, newHeight);
        if (onSetup)
            onSetup();
        return isSetUp;
    }
    void release() override
    {
        note("release");
        testBase::release();
    }
    QString getName() const override { return name; }
    void preRun() override { note("preRun"); }
    void run() override
    {
        note("run");
        if (onRun)
            onRun();
        if (!canWork)
            fail();
    }
    void postRun() override { note("postRun"); }
    float getWork() const override { return work; }
    QString getUnit() const override { return QStringLiteral("MFakes"); }
    bool isMulticore() const override { return multicore; }

    bool canSetup = true;
    bool canWork = true;
    bool multicore = false;
    float work = 3;
    std::function<void()> onSetup;
    std::function<void()> onRun;

private:
    void note(const char *operation)
    {
        if (log)
            log->append(name + QLatin1Char('.') + QLatin1String(operation));
    }

    QString name;
    QStringList *log;
};
