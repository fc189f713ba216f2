// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/historyWindow.h"

#include "compareFixture.h"
#include "data/runFixtures.h"
#include "engine/benchBase.h"
#include "support/dataDirectory.h"
#include "ui/resultwindow.h"

#include <QAbstractScrollArea>
#include <QAccessible>
#include <QAction>
#include <QChartView>
#include <QDateTimeAxis>
#include <QLabel>
#include <QPushButton>
#include <QScatterSeries>
#include <QStatusBar>
#include <QTableWidget>
#include <QToolTip>
#include <QValueAxis>

namespace
{

runRecord runOf(int day, double mean, const char *version = "26.0")
{
    runRecord run = repeatedRun(3, 1, mean);
    run.started = QDateTime(QDate(2026, 1, 1 + day), QTime(12, 0));
    run.build.version = QString::fromLatin1(version);
    return run;
}

runStore::listing listOf(const std::vector<runRecord> &runs)
{
    runStore::listing list;
    for (const runRecord &run : runs)
        list.runs.push_back({QString(), run});
    return list;
}

struct historyFixture {
    explicit historyFixture(const runStore::listing &list = listOf({runOf(0, 0.1), runOf(1, 0.2),
                                                                    runOf(3, 0.05, "27.0")}))
        : window(nullptr, list, 9)
    {
        window.show();
        window.activateWindow();
        QVERIFY(QTest::qWaitForWindowActive(&window));
    }
    template <typename T> T *find(const char *name) const
    {
        return window.findChild<T *>(QString::fromLatin1(name));
    }
    QChartView *view() const { return window.findChild<QChartView *>(); }
    QScatterSeries *dots() const
    {
        return qobject_cast<QScatterSeries *>(view()->chart()->series().at(1));
    }
    QTableWidget *table() const { return window.findChild<QTableWidget *>(); }
    QString cell(int row, int column) const { return table()->item(row, column)->text(); }

    historyWindow window;
};

} // namespace

class tst_historyWindow : public QObject
{
    Q_OBJECT

private slots:
    void meanOverTime();
    void oneTestOverTime();
    void hovering();
    void arrowKeys();
    void sideBySide();
    void oneRun();
    void noRuns();
    void damagedFiles();
    void everythingHasAName();
    void closes();
    void reachedFromTheWindows();
};

void tst_historyWindow::meanOverTime()
{
    const historyFixture f;
    QCOMPARE(f.dots()->count(), 3);
    QCOMPARE(f.dots()->at(0).y(), 100.0);
    QVERIFY(std::abs(f.dots()->at(1).y() - 50) < 2);
    QVERIFY(std::abs(f.dots()->at(2).y() - 200) < 8);
    QCOMPARE(f.dots()->at(2).x() - f.dots()->at(1).x(), 2 * 24 * 3600 * 1000.0);
    QCOMPARE(f.view()->chart()->title(), QStringLiteral("mean of all tests"));
    const auto *value = qobject_cast<QValueAxis *>(f.view()->chart()->axes(Qt::Vertical).at(0));
    QCOMPARE(value->titleText(), QStringLiteral("% of the first run"));
    QVERIFY(value->min() < 50 && value->max() > 200);
    const auto *time = qobject_cast<QDateTimeAxis *>(f.view()->chart()->axes(Qt::Horizontal).at(0));
    QVERIFY(time->min() < QDateTime(QDate(2026, 1, 1), QTime(12, 0)));
    QVERIFY(time->max() > QDateTime(QDate(2026, 1, 4), QTime(12, 0)));
}

void tst_historyWindow::oneTestOverTime()
{
    const historyFixture f;
    auto *tests = f.find<QComboBox>("comboBoxTest");
    QCOMPARE(tests->count(), 3); // the mean, mandel, lines
    tests->setCurrentIndex(2);
    QCOMPARE(f.view()->chart()->title(), QStringLiteral("lines"));
    QVERIFY(std::abs(f.dots()->at(0).y() / f.dots()->at(1).y() - 2) < 0.05);
    QCOMPARE(f.view()->chart()->axes(Qt::Vertical).at(0)->titleText(),
             runOf(0, 0.1).tests[1].unit + QStringLiteral("/s"));
}

void tst_historyWindow::hovering()
{
    const historyFixture f;
    emit f.dots()->hovered(f.dots()->at(2), true);
    const QStringList lines = QToolTip::text().split(QLatin1Char('\n'));
    QCOMPARE(lines.size(), 3);
    QVERIFY2(lines.at(0).startsWith(QStringLiteral("2026-01-04 12:00: ")), qPrintable(lines.at(0)));
    QVERIFY(lines.at(0).endsWith(QStringLiteral(" %")));
    QCOMPARE(lines.at(1), QStringLiteral("version 27.0"));
    QVERIFY2(lines.at(2).startsWith(QStringLiteral("6 of 6 tests good")), qPrintable(lines.at(2)));
    emit f.dots()->hovered(f.dots()->at(2), false);
    QTRY_VERIFY(!QToolTip::isVisible());
}

void tst_historyWindow::arrowKeys()
{
    const historyFixture f;
    f.view()->setFocus();
    QTest::keyClick(f.view(), Qt::Key_Right);
    QVERIFY(QToolTip::text().startsWith(QStringLiteral("2026-01-01")));
    QTest::keyClick(f.view(), Qt::Key_End);
    QVERIFY(QToolTip::text().startsWith(QStringLiteral("2026-01-04")));
}

void tst_historyWindow::sideBySide()
{
    const historyFixture f;
    QCOMPARE(f.find<QComboBox>("comboBoxFirst")->currentIndex(), 1); // the last two
    QCOMPARE(f.find<QComboBox>("comboBoxSecond")->currentIndex(), 2);
    QCOMPARE(f.table()->rowCount(), 2);
    QCOMPARE(f.cell(1, 0), QStringLiteral("lines"));
    QVERIFY(std::abs(f.cell(1, 3).toDouble() - 4) < 0.2);
    QVERIFY(f.find<QLabel>("labelMean")
                ->text()
                .startsWith(QStringLiteral("Geometric mean of B / A: ")));
    f.find<QComboBox>("comboBoxFirst")->setCurrentIndex(2);
    QCOMPARE(f.cell(0, 3), QStringLiteral("1.000"));
    QCOMPARE(f.cell(0, 4), QStringLiteral("no clear difference"));
}

void tst_historyWindow::oneRun()
{
    const historyFixture f(listOf({runOf(0, 0.1)}));
    QCOMPARE(f.dots()->count(), 1);
    const auto *time = qobject_cast<QDateTimeAxis *>(f.view()->chart()->axes(Qt::Horizontal).at(0));
    QVERIFY(time->min() < time->max());
    QCOMPARE(f.cell(0, 3), QStringLiteral("1.000"));
}

void tst_historyWindow::noRuns()
{
    const historyFixture f{runStore::listing()};
    QCOMPARE(f.table()->rowCount(), 0);
    QCOMPARE(f.view()->chart()->title(), QStringLiteral("nothing to show"));
    QVERIFY(f.window.statusBar()->currentMessage().startsWith(
        QStringLiteral("No run has been kept yet")));
}

void tst_historyWindow::damagedFiles()
{
    runStore::listing list = listOf({runOf(0, 0.1)});
    for (int i = 0; i < 5; ++i)
        list.problems.append(QStringLiteral("'run-%1' is damaged").arg(i));
    const historyFixture f(list);
    QCOMPARE(f.window.statusBar()->currentMessage(),
             QStringLiteral("'run-0' is damaged\n'run-1' is damaged\n'run-2' is damaged\n"
                            "and 2 more files"));
}

void tst_historyWindow::everythingHasAName()
{
    const historyFixture f;
    for (QWidget *widget : f.window.findChildren<QWidget *>()) {
        if (widget->focusPolicy() == Qt::NoFocus || widget->focusProxy() || !widget->isVisible()
            || qobject_cast<QAbstractScrollArea *>(widget->parent()))
            continue;
        const QAccessibleInterface *access = QAccessible::queryAccessibleInterface(widget);
        QVERIFY2(access && !access->text(QAccessible::Name).isEmpty(),
                 widget->metaObject()->className());
    }
    QVERIFY(f.view()->accessibleDescription().contains(QStringLiteral("version 27.0")));
}

void tst_historyWindow::closes()
{
    historyFixture f;
    QTest::keyClick(&f.window, Qt::Key_Escape);
    QVERIFY(!f.window.isVisible());
}

void tst_historyWindow::reachedFromTheWindows()
{
    const dataDirectory directory;
    QVERIFY(runStore::ofUser().append(runOf(0, 0.1)));
    const compareFixture f;
    f.find<QAction>("actionHistory")->trigger();
    QPointer<historyWindow> window = f.window->findChild<historyWindow *>();
    QVERIFY(window && window->isVisible());
    QCOMPARE(window->findChild<QComboBox *>(QStringLiteral("comboBoxFirst"))->count(), 1);
    window->close();
    QTRY_VERIFY(!window);

    textLog log;
    const benchBase runner(&log, nullptr, nullptr, suite());
    const resultwindow results(nullptr, &runner);
    results.findChild<QAction *>(QStringLiteral("actionHistory"))->trigger();
    QVERIFY(results.findChild<historyWindow *>());
}

QTEST_MAIN(tst_historyWindow)
#include "tst_historyWindow.moc"
