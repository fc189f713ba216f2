// SPDX-License-Identifier: GPL-3.0-or-later

// Names that strangers chose, in the compare window and in the text window.

#include "accessWatch.h"
#include "compareFixture.h"
#include "engine/benchBase.h"
#include "support/dataDirectory.h"
#include "support/peakMemory.h"
#include "ui/plainText.h"
#include "ui/resultwindow.h"

#include <QGraphicsTextItem>
#include <QLegendMarker>
#include <QPlainTextEdit>
#include <QTemporaryFile>
#include <QTextDocument>
#include <QToolTip>

namespace
{

constexpr qint64 mebibyte = 1024 * 1024;

/// The fixture's window with one more machine.
struct namedFixture : compareFixture {
    explicit namedFixture(const QString &name)
    {
        addMachine(name);
        // Wide enough for every label.
        window->resize(1600, 700);
        click("checkBoxMerged");
        show();
    }
    void addMachine(const QString &name)
    {
        const benchResults own = data.machines().takeLast();
        benchResults machine(name, QStringLiteral("linux"), name, 2e9F, 4);
        machine.setTest(oneCore, benchResults::test(15));
        machine.setTest(manyCores, benchResults::test(15));
        data.machines().append(machine);
        data.machines().append(own);
    }
    void show() const
    {
        QVERIFY(QTest::qWaitForWindowExposed(window.get()));
        QCoreApplication::processEvents();
        window->grab();
    }
    /// What is written in the chart, with what widgets made of it.
    QStringList writtenTexts() const
    {
        QStringList list;
        for (const QGraphicsItem *item : window->findChild<QChartView *>()->scene()->items()) {
            if (const auto *text = dynamic_cast<const QGraphicsTextItem *>(item))
                list.append(text->toPlainText());
        }
        return list;
    }
    QBarSet *barOf(const QString &name) const
    {
        return bars()->barSets().at(labels().indexOf(name));
    }
    /// The tool tip of a bar as it can be read.
    QString tipOf(QBarSet *bar) const
    {
        QBarSeries *series = bars();
        emit series->hovered(true, 0, bar);
        QString tip = QToolTip::text();
        if (!Qt::mightBeRichText(tip))
            return tip;
        QTextDocument document;
        document.setHtml(tip);
        return document.toPlainText();
    }
};

} // namespace

class tst_compareNames : public QObject
{
    Q_OBJECT

private slots:
    void letterForLetter_data();
    void letterForLetter();
    void everyStyle();
    void nothingIsLoaded();
    void longNames();
    void textWindow();
};

void tst_compareNames::letterForLetter_data()
{
    QTest::addColumn<QString>("name");
    QTest::newRow("ordinary") << QStringLiteral("LAB8");
    QTest::newRow("tag") << QStringLiteral("R&D <PC>");
    QTest::newRow("bold") << QStringLiteral("<b>x</b>");
    QTest::newRow("entity") << QStringLiteral("a &amp; b");
    QTest::newRow("blanks") << QStringLiteral("a  b   c");
}

void tst_compareNames::letterForLetter()
{
    QFETCH(QString, name);
    const namedFixture f(name);
    QVERIFY(f.labels().contains(name)); // the set's own label is raw
    QVERIFY2(f.writtenTexts().contains(name), qPrintable(f.writtenTexts().join(QLatin1Char('|'))));
    QCOMPARE(f.tipOf(f.barOf(name)), QStringLiteral("%1 4C 2 GHz (linux)\n%1: 75 %").arg(name));
}

void tst_compareNames::everyStyle()
{
    const QString name = QStringLiteral("R&D <PC>");
    const namedFixture f(name);
    f.click("checkBoxNameType");
    f.show();
    QVERIFY(f.writtenTexts().contains(QStringLiteral("R&D <PC> X4  2 GHz")));
    f.click("checkBoxNameType");
    f.show();
    QVERIFY(f.writtenTexts().contains(QStringLiteral("R&D <PC> 4C 2 GHz (linux)")));
}

void tst_compareNames::nothingIsLoaded()
{
    QTemporaryFile picture;
    QVERIFY(picture.open());
    QImage image(8, 8, QImage::Format_RGB32);
    image.fill(Qt::red);
    QVERIFY(image.save(&picture, "PNG"));
    picture.flush();
    const accessWatch watch(picture.fileName());
    if (!watch.isAvailable())
        QSKIP("inotify is not available here");
    const QString name = QStringLiteral("<img src=\"%1\">").arg(picture.fileName());
    {
        QTextDocument reader;
        reader.setHtml(name);
        reader.size();
        QVERIFY(watch.wasOpened()); // so it would be noticed
    }
    const namedFixture f(name);
    QVERIFY(f.labels().contains(name));
    f.tipOf(f.barOf(name));
    QTRY_VERIFY(QToolTip::isVisible());
    f.click("checkBoxNameType");
    f.show();
    f.click("checkBoxNameType");
    f.show();
    QVERIFY(!watch.wasOpened());
}

void tst_compareNames::longNames()
{
    const QString name = QString(60'000, QLatin1Char('x'));
    const peakMemory memory;
    if (!memory.isAvailable())
        QSKIP("the peak of the memory is not known here");
    namedFixture f(QStringLiteral("first"));
    for (int i = 0; i < 18; ++i)
        f.addMachine(QString::number(i) + name);
    f.choose("comboBoxSortBy", 4);
    f.show();
    QCOMPARE(f.labels().filter(name).size(), 18);
    const QString shown = QStringLiteral("7") + QString(98, QLatin1Char('x')) + QChar(0x2026);
    QVERIFY(f.tipOf(f.barOf(QStringLiteral("7") + name)).startsWith(shown + QLatin1Char('\n')));
    for (const QLegendMarker *marker : f.chart()->legend()->markers())
        QVERIFY(marker->label().size() <= plainText::longestName);
    QVERIFY2(memory.growth() < 100 * mebibyte, qPrintable(QString::number(memory.growth())));
}

void tst_compareNames::textWindow()
{
    const dataDirectory directory;
    const QString name = QStringLiteral("<img src=\"/nowhere\"> R&D  <b>PC</b>");
    directory.write(QStringLiteral("user_data.xml"),
                    QStringLiteral("<F><bench machineName=\"%1\" os=\"linux\"/></F>")
                        .arg(name.toHtmlEscaped())
                        .toUtf8());
    textLog log;
    benchBase runner(&log, nullptr, nullptr, suite());
    runner.loadReferenceData(benchBase::builtInReference);
    runner.loadUserData();
    const resultwindow window(nullptr, &runner);
    QVERIFY(window.findChild<QPlainTextEdit *>()->toPlainText().startsWith(name));
}

QTEST_MAIN(tst_compareNames)
#include "tst_compareNames.moc"
