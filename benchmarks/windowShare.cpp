// SPDX-License-Identifier: GPL-3.0-or-later

// A full run in the window, with its throughputs, and for each test the rounds, the share of its
// wall time in the test itself (preRun, run, postRun; the rest is ours: repainting, events,
// bookkeeping) and the share in the timed run. Also the time from start to shown window and that of
// the whole run.

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
        inTest = 0;
        inRun = 0;
        runs = 0;
        sinceSetup.start();
        return true;
    }
    void release() override
    {
        if (isSetup) {
            const double percent = 100.0 / double(sinceSetup.nsecsElapsed());
            std::printf("%-36s %9.3f M/s %6d rounds %7.2f %% in the test %7.2f %% in run\n",
                        qPrintable(getName()), double(getWork()) * runs / (double(inRun) * 1e-9),
                        runs, percent * double(inTest), percent * double(inRun));
            std::fflush(stdout);
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
        const qint64 before = inTest;
        timed([this] { inner->run(); });
        inRun += inTest - before;
        ++runs;
        if (inner->hasFailed())
            fail();
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
        inTest += timer.nsecsElapsed();
    }

    std::unique_ptr<testBase> inner;
    QElapsedTimer sinceSetup;
    /// Nanoseconds.
    qint64 inTest = 0;
    qint64 inRun = 0;
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
    QElapsedTimer fullRun;
    fullRun.start();
    runner.runBenchmark();
    std::printf("full run: %.2f s\n", double(fullRun.elapsed()) * 1e-3);
    return 0;
}
