// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "engine/testBase.h"
#include "tests/suite.h"

#include <algorithm>
#include <functional>
#include <memory>
#include <utility>

/// A test of the suite whose frame somebody meddles with after each round.
class meddledTest : public testBase
{
public:
    using meddler = std::function<void(testBase &, int round)>;

    meddledTest(std::unique_ptr<testBase> meddled, meddler what)
        : inner(std::move(meddled)),
          meddle(std::move(what))
    {
    }
    bool setup(int newWidth, int newHeight) override
    {
        round = 0;
        return testBase::setup(newWidth, newHeight) && inner->setup(newWidth, newHeight);
    }
    void release() override
    {
        inner->release();
        testBase::release();
    }
    QString getName() const override { return inner->getName(); }
    void preRun() override { inner->preRun(); }
    void run() override { inner->run(); }
    void postRun() override
    {
        inner->postRun();
        meddle(*inner, ++round);
        std::copy_n(inner->getBuffer(), getWidth() * getHeight(), getBuffer());
    }
    float getWork() const override { return inner->getWork(); }
    QString getUnit() const override { return inner->getUnit(); }
    bool isMulticore() const override { return inner->isMulticore(); }

private:
    std::unique_ptr<testBase> inner;
    meddler meddle;
    int round = 0;
};

/// The test of the suite that is called @p name, or none.
inline std::unique_ptr<testBase> suiteTest(const char *name)
{
    for (auto &test : makeSuite(nullptr)) {
        if (test->getName() == QLatin1String(name))
            return std::move(test);
    }
    return nullptr;
}
