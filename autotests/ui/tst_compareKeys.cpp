// SPDX-License-Identifier: GPL-3.0-or-later

// The compare window by keyboard and for screen readers.

#include "compareFixture.h"

#include "ui/legendScrollView.h"
#include "ui/noteBar.h"

#include <QAbstractScrollArea>
#include <QAccessible>
#include <QPushButton>
#include <QToolTip>

namespace
{

/// The window with the focus in its chart.
struct keyFixture : compareFixture {
    keyFixture()
    {
        window->activateWindow();
        QVERIFY(QTest::qWaitForWindowActive(window.get()));
        view()->setFocus();
    }
    legendScrollView *view() const { return window->findChild<legendScrollView *>(); }
    /// The bar that is highlighted, or -1.
    int highlighted() const
    {
        const QList<QBarSet *> sets = bars()->barSets();
        for (int i = 0; i < sets.size(); ++i) {
            if (sets.at(i)->pen().width() == 4)
                return i;
        }
        return -1;
    }
    void press(Qt::Key key) const { QTest::keyClick(view(), key); }
};

} // namespace

class tst_compareKeys : public QObject
{
    Q_OBJECT

private slots:
    void arrows();
    void fromNowhereToYou();
    void tipIsAtTheBar();
    void newChartStartsAnew();
    void focusLeaves();
    void otherKeysPass();
    void escapeCloses();
    void tabOrder();
    void focusIsSeen();
    void everythingHasAName();
    void chartIsATable();
    void tableFollowsTheChart();
    void cellsEndWithTheWindow();
};

void tst_compareKeys::arrows()
{
    const keyFixture f;
    QCOMPARE(f.highlighted(), -1);
    f.press(Qt::Key_Right);
    QCOMPARE(f.highlighted(), 0);
    QCOMPARE(QToolTip::text(), QStringLiteral("PC-B 4C 2 GHz (linux)\nPC-B cpu: 200 %"));
    f.press(Qt::Key_Right);
    QCOMPARE(f.highlighted(), 1);
    QVERIFY(QToolTip::text().startsWith(QStringLiteral("PC-A ")));
    f.press(Qt::Key_Left);
    f.press(Qt::Key_Left);
    QCOMPARE(f.highlighted(), 0);
    f.press(Qt::Key_End);
    QCOMPARE(f.highlighted(), 3);
    f.press(Qt::Key_Right);
    QCOMPARE(f.highlighted(), 3);
    f.press(Qt::Key_Home);
    QCOMPARE(f.highlighted(), 0);
}

void tst_compareKeys::fromNowhereToYou()
{
    const keyFixture f;
    f.press(Qt::Key_Left);
    QCOMPARE(f.highlighted(), 3);
    QVERIFY(QToolTip::text().startsWith(QStringLiteral("LAB7 ")));
}

void tst_compareKeys::tipIsAtTheBar()
{
    const keyFixture f;
    QCoreApplication::processEvents();
    const QRect view(f.view()->mapToGlobal({}), f.view()->size());
    const int left = f.view()->placeOf(0).x();
    const int right = f.view()->placeOf(3).x();
    QVERIFY(view.contains(f.view()->placeOf(0)));
    // The four bars take nine tenths of the plot, and three quarters of that lie between the
    // middles.
    QVERIFY(std::abs(right - left - 0.9 * 0.75 * f.chart()->plotArea().width()) < 2);
}

void tst_compareKeys::newChartStartsAnew()
{
    const keyFixture f;
    f.press(Qt::Key_End);
    f.choose("comboBox", 1);
    QCOMPARE(f.highlighted(), -1);
    f.press(Qt::Key_Right);
    QCOMPARE(f.highlighted(), 0);
}

void tst_compareKeys::focusLeaves()
{
    const keyFixture f;
    f.press(Qt::Key_Home);
    f.find<QComboBox>("comboBox")->setFocus();
    QCOMPARE(f.highlighted(), -1);
    QTRY_VERIFY(!QToolTip::isVisible());
}

void tst_compareKeys::otherKeysPass()
{
    const keyFixture f;
    f.press(Qt::Key_X);
    QCOMPARE(f.highlighted(), -1);
}

void tst_compareKeys::escapeCloses()
{
    const keyFixture f;
    f.press(Qt::Key_Escape);
    QVERIFY(!f.window->isVisible());
}

void tst_compareKeys::tabOrder()
{
    const keyFixture f;
    f.find<QCheckBox>("checkBoxAndroid")->setFocus();
    QStringList order;
    for (int i = 0; i < 11; ++i) {
        order.append(QApplication::focusWidget() == f.view()
                         ? QStringLiteral("chart")
                         : QApplication::focusWidget()->objectName());
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_Tab);
    }
    QCOMPARE(order.join(QLatin1Char(' ')),
             QStringLiteral("checkBoxAndroid checkBoxWindows checkBoxLinux checkBoxMerged "
                            "checkBoxIPC checkBoxNameType comboBoxSortBy comboBoxCount comboBox "
                            "chart closeButton"));
}

void tst_compareKeys::focusIsSeen()
{
    const keyFixture f;
    QCoreApplication::processEvents();
    const QImage with = f.view()->grab().toImage();
    f.find<QComboBox>("comboBox")->setFocus();
    QVERIFY(f.view()->grab().toImage() != with);
}

void tst_compareKeys::everythingHasAName()
{
    const keyFixture f;
    for (QWidget *widget : f.window->findChildren<QWidget *>()) {
        // A viewport hands the focus on.
        if (widget->focusPolicy() == Qt::NoFocus || widget->focusProxy() || !widget->isVisible()
            || qobject_cast<QAbstractScrollArea *>(widget->parent()))
            continue;
        const QAccessibleInterface *access = QAccessible::queryAccessibleInterface(widget);
        QVERIFY2(access && !access->text(QAccessible::Name).isEmpty(),
                 qPrintable(widget->objectName() + QLatin1Char(' ')
                            + QLatin1String(widget->metaObject()->className())));
    }
    QCOMPARE(f.find<QComboBox>("comboBoxCount")->accessibleName(),
             QStringLiteral("number of devices"));
    QCOMPARE(f.find<noteBar>("statusBar")->accessibleDescription(),
             QStringLiteral("place 2 of 4, faster than 33 %; 100 = this machine"));
}

void tst_compareKeys::chartIsATable()
{
    const keyFixture f;
    QAccessibleInterface *access = QAccessible::queryAccessibleInterface(f.view());
    QVERIFY(access);
    QCOMPARE(access->role(), QAccessible::Table);
    QCOMPARE(access->text(QAccessible::Name), QStringLiteral("chart: combined (singlecore)"));
    QVERIFY(access->text(QAccessible::Description).startsWith(QStringLiteral("place 2 of 4")));
    QAccessibleTableInterface *table = access->tableInterface();
    QVERIFY(table);
    QCOMPARE(table->rowCount(), 4);
    QCOMPARE(table->columnCount(), 2);
    QCOMPARE(table->columnDescription(0), QStringLiteral("machine"));
    QCOMPARE(table->columnDescription(1), QStringLiteral("% of this machine"));
    const auto text = [&](int row, int column) {
        return table->cellAt(row, column)->text(QAccessible::Name);
    };
    QCOMPARE(text(0, 0), QStringLiteral("PC-B"));
    QCOMPARE(text(0, 1), QStringLiteral("200 %"));
    QCOMPARE(text(3, 0), QStringLiteral("[you] LAB7"));
    QVERIFY(!table->cellAt(4, 0));
    QVERIFY(!table->cellAt(0, 2));
    QAccessibleInterface *cell = table->cellAt(2, 1);
    QCOMPARE(cell->tableCellInterface()->rowIndex(), 2);
    QCOMPARE(cell->tableCellInterface()->columnIndex(), 1);
    QCOMPARE(cell->tableCellInterface()->table(), access);
    QCOMPARE(access->childCount(), 8);
    QCOMPARE(access->child(5), cell);
    QCOMPARE(access->indexOfChild(cell), 5);
}

void tst_compareKeys::tableFollowsTheChart()
{
    keyFixture f;
    f.data.machines()[1].getTests().remove(oneCore);
    f.choose("comboBox", 3);
    QAccessibleTableInterface *table =
        QAccessible::queryAccessibleInterface(f.view())->tableInterface();
    QCOMPARE(table->columnDescription(1), QStringLiteral("MFakes/s"));
    const int row = f.labels().indexOf(QStringLiteral("PC-B"));
    QCOMPARE(table->cellAt(row, 1)->text(QAccessible::Name), QStringLiteral("no result"));
    QAccessibleInterface *last = table->cellAt(3, 0);
    for (const char *box : {"checkBoxAndroid", "checkBoxWindows", "checkBoxLinux"})
        f.click(box);
    QCOMPARE(table->rowCount(), 1);
    QVERIFY(!last->isValid()); // a reader may still hold it
    QCOMPARE(last->text(QAccessible::Name), QString());
}

void tst_compareKeys::cellsEndWithTheWindow()
{
    QAccessible::Id id = 0;
    {
        const keyFixture f;
        QAccessibleInterface *cell =
            QAccessible::queryAccessibleInterface(f.view())->tableInterface()->cellAt(0, 0);
        id = QAccessible::uniqueId(cell);
        QVERIFY(QAccessible::accessibleInterface(id));
    }
    QVERIFY(!QAccessible::accessibleInterface(id));
}

QTEST_MAIN(tst_compareKeys)
#include "tst_compareKeys.moc"
