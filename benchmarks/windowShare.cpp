// SPDX-License-Identifier: GPL-3.0-or-later

// How much of a test's wall time in the window is spent in the test itself (preRun, run, postRun);
// the rest is ours: repainting, events, bookkeeping. Also the time from start to shown window.

#include "engine/benchBase.h"
#include "ui/displayWidget.h"
#include "ui/mainwindow.h"

#include <QApplication>
#include <QElapsedTimer>
#include <QTabWidget>

#include <cstdio>

namespace
{

/// Passes everything on to another test, and adds up how long its three steps take.
class timedTest : public testBase
{
public:
    explicit timedTest(std::unique_ptr<testBase> test) : inner(std::move(test)) {}

    bool setup(int newWidth, int newHeight) override
    {
        // Our own frame first: its set-up releases everything.
        if (!testBase::setup(1, 1) || !inner->setup(newWidth, newHeight))
            return false;
        nanoseconds = 0;
        runs = 0;
        sinceSetup.start();
        return true;
    }
    void release() override
    {
        if (isSetup) {
            const double share = 100.0 * double(nanoseconds) / double(sinceSetup.nsecsElapsed());
            std::printf("%-36s %6d runs  %6.2f %% of the wall time in the test\n",
                        qPrintable(getName()), runs, share);
        }
        inner->release();
        testBase::release();
    }
    QString getName() const override { return inner->getName(); }
    void preRun() override
    {
        timed([this] { inner->preRun(); });
    }
    void run() override
    {
        timed([this] { inner->run(); });
        ++runs;
    }
    void postRun() override
    {
        timed([this] { inner->postRun(); });
    }
    float getWork() const override { return inner->getWork(); }
    QString getUnit() const override { return inner->getUnit(); }
    bool isMulticore() const override { return inner->isMulticore(); }
    /// The test whose frame is shown.
    testBase *shown() const { return inner.get(); }

private:
    template <typename Step> void timed(Step step)
    {
        QElapsedTimer timer;
        timer.start();
        step();
        nanoseconds += timer.nsecsElapsed();
    }

    std::unique_ptr<testBase> inner;
    QElapsedTimer sinceSetup;
    qint64 nanoseconds = 0;
    int runs = 0;
};

/// The window as update hook, shown the real frames.
class shownFrames : public updateHook
{
public:
    explicit shownFrames(MainWindow &mainWindow) : window(mainWindow) {}
    void updateStart(testBase *test) override
    {
        window.updateStart(static_cast<timedTest *>(test)->shown());
    }
    void updateProgress(testBase *test, int ms) override { window.updateProgress(test, ms); }
    void updateEnd(testBase *test) override
    {
        window.updateEnd(test);
        window.updateStart(nullptr);
    }

private:
    MainWindow &window;
};

} // namespace

int main(int argc, char *argv[])
{
    QElapsedTimer sinceStart;
    sinceStart.start();
    QApplication application(argc, argv);
    MainWindow window;
    window.show();
    QApplication::processEvents();
    std::printf("start to shown window: %lld ms\n", static_cast<long long>(sinceStart.elapsed()));

    window.findChild<QTabWidget *>()->hide();
    window.findChild<displayWidget *>()->show();
    suite tests;
    for (auto &test : makeSuite(&window)) {
        const bool isSingleOnly = test->isSingleOnly();
        tests.push_back(std::make_unique<timedTest>(std::move(test)));
        tests.back()->setSingleOnly(isSingleOnly);
    }
    shownFrames frames(window);
    benchBase runner(&window, nullptr, &frames, std::move(tests));
    runner.runBenchmark();
    return 0;
}
