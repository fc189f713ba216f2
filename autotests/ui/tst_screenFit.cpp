// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/screenFit.h"

#include "support/dataDirectory.h"
#include "windowFixture.h"

#include <QtTest>

class tst_screenFit : public QObject
{
    Q_OBJECT

private slots:
    void sizes_data();
    void sizes();
    void everythingIsReached();
    void formStaysOnLargeScreens();

private:
    dataDirectory directory;
};

void tst_screenFit::sizes_data()
{
    QTest::addColumn<QRect>("area");
    QTest::newRow("1366x768") << QRect(0, 0, 1366, 768);
    QTest::newRow("1024x600") << QRect(0, 0, 1024, 600);
    QTest::newRow("1024x600, a panel at the top") << QRect(0, 28, 1024, 572);
    QTest::newRow("800x600, two panels") << QRect(50, 28, 750, 544);
}

void tst_screenFit::sizes()
{
    QFETCH(QRect, area);
    const windowFixture f;
    screenFit::fit(*f.window, area);
    QCoreApplication::processEvents();
    // A title and a border are still to come.
    QVERIFY2(f.window->height() + 24 <= area.height(),
             qPrintable(QString::number(f.window->height())));
    QVERIFY(f.window->width() <= area.width());
    QCOMPARE(f.window->pos(), area.topLeft());
}

/// However small, nothing is cut off.
void tst_screenFit::everythingIsReached()
{
    const windowFixture f;
    screenFit::fit(*f.window, QRect(0, 0, 1024, 572));
    auto *pages = f.find<QTabWidget>("tabWidget");
    for (int page = 0; page < pages->count(); ++page) {
        pages->setCurrentIndex(page);
        QCoreApplication::processEvents();
        for (const QPushButton *button : f.window->findChildren<QPushButton *>()) {
            if (!button->isVisible())
                continue;
            const QRect place(button->mapTo(f.window.get(), QPoint()), button->size());
            QVERIFY2(f.window->rect().contains(place), qPrintable(button->objectName()));
            QVERIFY2(button->height() >= button->fontMetrics().height(),
                     qPrintable(button->objectName()));
        }
    }
}

void tst_screenFit::formStaysOnLargeScreens()
{
    const windowFixture f;
    const QString sheet = f.window->centralWidget()->styleSheet();
    screenFit::fit(*f.window, QRect(0, 0, 1920, 1080));
    QCOMPARE(f.window->size(), QSize(688, 905));
    QCOMPARE(f.window->centralWidget()->styleSheet(), sheet);
}

QTEST_MAIN(tst_screenFit)
#include "tst_screenFit.moc"
