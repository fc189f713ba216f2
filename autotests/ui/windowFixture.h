// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "data/doctorPage.h"
#include "support/fakeTest.h"
#include "ui/displayWidget.h"
#include "ui/mainwindow.h"

#include <QComboBox>
#include <QPushButton>
#include <QTabWidget>
#include <QTextEdit>

#include <memory>

inline const QString oneCore = QStringLiteral("one");
inline const QString manyCores = QStringLiteral("many");
inline const QString singleOnly = QStringLiteral("single only");

/// A window over three fakes, the last of which is left out of a full run.
class windowFixture
{
public:
    windowFixture()
        : windowFixture([this](printHook *) {
              suite tests;
              for (const QString &name : {oneCore, manyCores, singleOnly}) {
                  tests.push_back(std::make_unique<fakeTest>(name, &events));
                  fakes.append(static_cast<fakeTest *>(tests.back().get()));
              }
              fakes.at(1)->multicore = true;
              fakes.at(2)->setSingleOnly(true);
              return tests;
          })
    {
    }
    /// The same over other tests.
    explicit windowFixture(const MainWindow::suiteFactory &tests,
                           std::unique_ptr<onlineDatabase> database = nullptr)
        : window(std::make_unique<MainWindow>(nullptr, tests, std::move(database)))
    {
        // What disturbs the machine of a test is not its matter.
        window->setExamination([] { return doctorSubject(); });
        window->show();
        atStart = log();
    }

    template <typename T> T *find(const char *name) const
    {
        return window->findChild<T *>(QString::fromLatin1(name));
    }
    QPushButton *button(const char *name) const { return find<QPushButton>(name); }
    displayWidget *display() const { return window->findChild<displayWidget *>(); }
    QString log() const { return find<QTextEdit>("debugBox")->toPlainText(); }
    /// What has been printed since the start.
    QString newLog() const { return log().mid(atStart.size()); }

    /// True while the controls, and not the frames, are to be seen.
    bool isIdle() const
    {
        return find<QTabWidget>("tabWidget")->isVisible() && !display()->isVisible()
               && !button("pushButtonStop")->isVisible();
    }

    /// The view of this kind, or null unless there is exactly one.
    template <typename T> T *onlyView() const
    {
        const QList<T *> views = window->findChildren<T *>();
        return views.size() == 1 ? views.first() : nullptr;
    }

    void addTestTime(const QString &seconds) const
    {
        auto *box = find<QComboBox>("comboBoxSingleTestTime");
        box->addItem(seconds);
        box->setCurrentIndex(box->count() - 1);
    }

    QVector<fakeTest *> fakes;
    QStringList events;
    std::unique_ptr<MainWindow> window;
    QString atStart;
};
