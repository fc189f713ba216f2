// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "data/benchDataAccess.h"
#include "support/fakeTest.h"
#include "support/textLog.h"
#include "ui/compareWindow.h"

#include <QApplication>
#include <QBarSeries>
#include <QBarSet>
#include <QCheckBox>
#include <QComboBox>
#include <QGestureEvent>
#include <QtTest>

#include <memory>

inline const QString oneCore = QStringLiteral("colors "); // names may end in a blank
inline const QString manyCores = QStringLiteral("mandel (multicore)");

/// A list of machines to fill at will.
class machineList : public benchDataAccess
{
public:
    machineList(printHook *log, const QVector<testBase *> &tests) : benchDataAccess(log, tests) {}

    void add(const QString &name, float single, float multi,
             const QString &os = QStringLiteral("windows"))
    {
        benchResults machine(name, os, name + QStringLiteral(" cpu"), 2e9F, 4);
        machine.setTest(oneCore, benchResults::test(single));
        machine.setTest(manyCores, benchResults::test(multi));
        results.append(machine);
    }
    QVector<benchResults> &machines() { return results; }
};

/// A compare window over fakes; the last machine, LAB7, is the user's.
struct compareFixture {
    explicit compareFixture(bool showIpc = true)
    {
        multi.multicore = true;
        hidden.setSingleOnly(true);
        data.add(QStringLiteral("PC-A"), 10, 100);
        data.add(QStringLiteral("PC-B"), 40, 50, QStringLiteral("linux"));
        data.add(QStringLiteral("Phone %1"), 5, 400, QStringLiteral("android"));
        data.add(QStringLiteral("pc-a"), 30, 300);
        data.add(QStringLiteral("LAB7"), 20, 200, QStringLiteral("linux"));
        data.machines().last().setMeasured(true);
        window = std::make_unique<compareWindow>(nullptr, &data, showIpc, 9);
        window->show();
    }

    template <typename T> T *find(const char *name) const
    {
        return window->findChild<T *>(QString::fromLatin1(name));
    }
    QChart *chart() const { return window->findChild<QChartView *>()->chart(); }
    QBarSeries *bars() const { return qobject_cast<QBarSeries *>(chart()->series().at(0)); }
    QStringList labels() const
    {
        QStringList list;
        for (const QBarSet *set : bars()->barSets())
            list.append(set->label());
        return list;
    }
    QVector<double> values() const
    {
        QVector<double> list;
        for (const QBarSet *set : bars()->barSets())
            list.append(set->at(0));
        return list;
    }
    void click(const char *checkBox) const { find<QCheckBox>(checkBox)->click(); }
    /// Chooses an item as a user does.
    void choose(const char *comboBox, int index) const
    {
        auto *box = find<QComboBox>(comboBox);
        box->setCurrentIndex(index);
        emit box->activated(index);
    }
    void swipe(QSwipeGesture::SwipeDirection direction) const
    {
        QSwipeGesture gesture;
        gesture.setSwipeAngle(direction == QSwipeGesture::Left ? 180 : 0);
        QCOMPARE(gesture.horizontalDirection(), direction);
        QGestureEvent event({&gesture});
        QApplication::sendEvent(window.get(), &event);
    }

    textLog log;
    fakeTest single{oneCore, nullptr};
    fakeTest multi{manyCores, nullptr};
    fakeTest hidden{QStringLiteral("hidden"), nullptr};
    machineList data{&log, {&single, &multi, &hidden}};
    std::unique_ptr<compareWindow> window;
};

/// Its bars at the start.
inline const QStringList mergedLabels = {QStringLiteral("PC-B"), QStringLiteral("PC-A"),
                                         QStringLiteral("Phone %1"), QStringLiteral("[you] LAB7")};
