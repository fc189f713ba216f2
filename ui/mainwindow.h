// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "data/onlineDatabase.h"
#include "engine/hooks.h"
#include "tests/suite.h"
#include "ui/runStateNotifier.h"

#include <QMainWindow>
#include <QPointer>

#include <functional>
#include <memory>

class benchBase;
class compareWindow;
class displayWidget;
class resultwindow;
class runStatus;
class trustNotes;
class waitSplash;
struct doctorSubject;
struct runRecord;
struct runSettings;

namespace Ui
{
class MainWindow;
}

/// The program's window. It owns the runner and is its log, its display and its stop button.
///
/// A run happens inside the slot that starts it; events are only processed between two work units,
/// in updateProgress.
class MainWindow : public QMainWindow, public updateHook, public printHook, public stopHook
{
    Q_OBJECT

public:
    using suiteFactory = std::function<suite(printHook *)>;

    /// @p tests makes the suite that the window runs. Without @p database there is no online
    /// database.
    explicit MainWindow(QWidget *parent = nullptr, const suiteFactory &tests = makeSuite,
                        std::unique_ptr<onlineDatabase> database = nullptr);
    ~MainWindow() override;

    /// Lets @p look tell of the machine, in place of a look at this one.
    void setExamination(const std::function<doctorSubject()> &look);

    void updateStart(testBase *test) override;
    void updateProgress(testBase *test, int elapsedMs) override;
    void updateEnd(testBase *test) override;
    void print(const QString &text) override;
    bool isStopRequested() override;

public slots:
    void benchStart();
    void benchSingleStart();
    void about();
    void compareResults();
    void showResults();
    void hideDebugBox(bool hidden);
    void singleTestStop();
    void loadStandardReferenceData();
    void loadBetaReferenceData();
    void deleteUserData();
    void doClose();

protected:
    void closeEvent(QCloseEvent *event) override;

private:
    void fillChoosers();
    void addDisplay();
    void connectControls();
    void showFrames();
    void showControls();
    void prepareDisplay(bool isFullRun, int testCount);
    void addStatus();
    /// Tells of requests of @p database while they wait. None stays none.
    std::unique_ptr<onlineDatabase> watched(std::unique_ptr<onlineDatabase> database);
    /// A full run of @p testCount tests, which is kept among the user's runs. True if the user
    /// stopped it.
    bool runRecorded(int testCount);
    /// A single test. False if it could not be run.
    bool runSingleRecorded(const QString &testName, const QString &resolutionName);
    void warnBeforeRun();
    /// Shows all that is known of the latest run and of the machine.
    void showDetails();
    void showHelp();
    /// What people use beside the mouse: keys, marks of the focus, names for screen readers.
    void openToEverybody();
    void addKey(const QKeySequence &key, const std::function<void()> &pressed);
    /// Ends a run that is going on. No other run will know of it.
    void stopByKey();
    /// The program may not be left by mistake, unless it is busy: then there is nobody to answer.
    void quitByKey();
    /// Asks a question without a title. True unless the answer is No.
    bool isConfirmed(const QString &question);
    int chosenTestTime() const;
    /// Lasts as long as a test would, or until the stop. A test that cannot be run processes no
    /// events: repeated at once, it would fill the log and never let the stop button be pressed.
    void waitForNextTry();

    bool stopFlag = false;
    std::unique_ptr<Ui::MainWindow> ui;
    displayWidget *display = nullptr;
    compareWindow *compareWindowInstance = nullptr;
    resultwindow *resultWindowInstance = nullptr;
    std::unique_ptr<benchBase> runner;
    runStateNotifier runState;
    runStatus *status = nullptr;
    std::unique_ptr<trustNotes> trust;
    std::function<doctorSubject()> firstLook; ///< before there is a run, while nobody wants to wait
    std::unique_ptr<waitSplash> splash;       ///< until there is a window
    bool isRunning = false;
    bool isStoppedByKey = false;
    bool isClosed = false;      ///< since the latest run began
    QPointer<QWidget> hadFocus; ///< before the run
};
