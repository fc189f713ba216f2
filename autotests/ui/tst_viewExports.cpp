// SPDX-License-Identifier: GPL-3.0-or-later

// What can be taken out of the windows, by their menus and keys.

#include "compareFixture.h"

#include "engine/benchBase.h"
#include "support/dataDirectory.h"
#include "support/fileDialogs.h"
#include "support/messageBoxes.h"
#include "support/systemFaults.h"
#include "ui/chartPicture.h"
#include "ui/legendScrollView.h"
#include "ui/resultwindow.h"

#include <QAction>
#include <QClipboard>
#include <QMenu>
#include <QMenuBar>
#include <QStatusBar>
#include <QTemporaryDir>
#include <QXmlStreamReader>

namespace
{

/// What is written in a drawing, one string for each text of it.
QStringList textsOf(const QByteArray &svg)
{
    QStringList texts;
    QXmlStreamReader reader(svg);
    while (!reader.atEnd()) {
        if (reader.readNext() == QXmlStreamReader::StartElement
            && reader.name() == QLatin1String("text"))
            texts.append(reader.readElementText());
    }
    return reader.hasError() ? QStringList() : texts;
}

QByteArray contentOf(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

bool hasRed(const QImage &image)
{
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x) {
            if (image.pixel(x, y) == 0xFFFF0000U)
                return true;
        }
    }
    return false;
}

/// The compare window, with sixty more machines on request.
struct exportFixture : compareFixture {
    explicit exportFixture(int more = 0)
    {
        const benchResults own = data.machines().takeLast();
        for (int i = 0; i < more; ++i)
            data.add(QStringLiteral("machine %1 (est.)").arg(i), 1, 1);
        data.machines().append(own);
        choose("comboBoxSortBy", 4);
        window->activateWindow();
        QVERIFY(QTest::qWaitForWindowActive(window.get()));
    }
    void save(const QString &path) const
    {
        const fileDialogAnswer answer(path);
        find<QAction>("actionSave")->trigger();
        QVERIFY(answer.wasAsked);
    }
    QString path(const char *name) const { return directory.filePath(QString::fromLatin1(name)); }

    QTemporaryDir directory;
};

} // namespace

class tst_viewExports : public QObject
{
    Q_OBJECT

private slots:
    void savesPng();
    void savesSvg();
    void endingFollows_data();
    void endingFollows();
    void allNamesAreInThePicture();
    void fullDiskKeepsWhatWasThere();
    void missingFolder();
    void cancelled();
    void otherEnding();
    void copiesPicture();
    void copiesTable();
    void copiesResults();
    void keys();
    void resultWindowMenus();
    void resultWindowWithoutResults();
    void notesOutliveMenus();
};

void tst_viewExports::savesPng()
{
    const exportFixture f;
    f.save(f.path("chart.png"));
    const QImage image(f.path("chart.png"));
    const QSize shown = f.window->findChild<QChartView *>()->size();
    QCOMPARE(image.width(), 2 * shown.width());
    QVERIFY(image.height() > 2 * shown.height()); // the remarks are below
    QVERIFY(hasRed(image));
}

void tst_viewExports::savesSvg()
{
    const exportFixture f;
    f.save(f.path("chart.svg"));
    const QByteArray svg = contentOf(f.path("chart.svg"));
    const QStringList texts = textsOf(svg);
    for (const char *text :
         {"combined (singlecore)", "PC-B", "[you] LAB7", "% of this machine", "200.0", "180.0"})
        QVERIFY2(texts.contains(QString::fromLatin1(text)),
                 qPrintable(texts.join(QLatin1Char('|'))));
    QVERIFY(svg.contains("place 2 of 4"));
}

void tst_viewExports::endingFollows_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QString>("file");
    QTest::newRow("none") << QStringLiteral("chart") << QStringLiteral("chart.png");
    QTest::newRow("capitals") << QStringLiteral("CHART.PNG") << QStringLiteral("CHART.PNG");
}

void tst_viewExports::endingFollows()
{
    QFETCH(QString, name);
    QFETCH(QString, file);
    const exportFixture f;
    f.save(f.directory.filePath(name));
    QVERIFY(!QImage(f.directory.filePath(file)).isNull());
}

void tst_viewExports::allNamesAreInThePicture()
{
    const exportFixture f(60);
    f.save(f.path("chart.svg"));
    const QByteArray svg = contentOf(f.path("chart.svg"));
    const QStringList texts = textsOf(svg);
    for (int i = 0; i < 60; ++i) {
        const QString name = QStringLiteral("machine %1 (est.)").arg(i);
        QVERIFY2(texts.contains(name), qPrintable(name));
    }
    QVERIFY(texts.contains(QStringLiteral("[you] LAB7")));
    QVERIFY(svg.contains("60 of 64 bars are modelled estimates (est.), not measured results"));
    // Without names the mark stays in the remarks.
    f.click("checkBoxNameType");
    f.save(f.path("processors.svg"));
    QVERIFY(contentOf(f.path("processors.svg")).contains("60 of 64 bars are modelled estimates"));
}

void tst_viewExports::fullDiskKeepsWhatWasThere()
{
    const exportFixture f;
    f.save(f.path("chart.png"));
    const QByteArray before = contentOf(f.path("chart.png"));
    QVERIFY(!before.isEmpty());
    f.choose("comboBox", 3);
    boxAnswer overwrite(QMessageBox::Yes);
    std::unique_ptr<boxAnswer> failure;
    const fullDisk disk;
    QTimer poll;
    poll.setInterval(5);
    // The dialog asks whether to replace the file; then comes the message.
    QObject::connect(&poll, &QTimer::timeout, &poll, [&] {
        if (overwrite.wasAsked && !failure)
            failure = std::make_unique<boxAnswer>(QMessageBox::Ok);
    });
    poll.start();
    f.save(f.path("chart.png"));
    QVERIFY(failure && failure->wasAsked);
    QVERIFY2(failure->text.contains(f.path("chart.png")), qPrintable(failure->text));
    QVERIFY(failure->text.contains(QStringLiteral("cannot be written")));
    QCOMPARE(contentOf(f.path("chart.png")), before);
}

void tst_viewExports::missingFolder()
{
    const exportFixture f;
    const boxAnswer answer(QMessageBox::Ok);
    f.save(f.path("nowhere/chart.png"));
    QVERIFY(answer.wasAsked);
    QVERIFY2(answer.text.contains(QStringLiteral("nowhere/chart.png' cannot be written: ")),
             qPrintable(answer.text));
    QVERIFY(!QFile::exists(f.path("nowhere")));
}

void tst_viewExports::cancelled()
{
    const exportFixture f;
    f.save(QString());
    QVERIFY(QDir(f.directory.path()).isEmpty());
}

void tst_viewExports::otherEnding()
{
    const exportFixture f;
    const boxAnswer answer(QMessageBox::Ok);
    f.save(f.path("chart.bmp"));
    QVERIFY(answer.wasAsked);
    QVERIFY(answer.text.contains(QStringLiteral("must end in .png or .svg")));
    QVERIFY(QDir(f.directory.path()).isEmpty());
}

void tst_viewExports::copiesPicture()
{
    const exportFixture f(60);
    QApplication::clipboard()->clear();
    f.find<QAction>("actionCopyPicture")->trigger();
    const QImage image = QApplication::clipboard()->image();
    QVERIFY(hasRed(image));
    // As high as its 64 names take.
    QVERIFY(image.height() > 64 * QFontMetrics(f.chart()->legend()->font()).height());
}

void tst_viewExports::copiesTable()
{
    const exportFixture f;
    f.choose("comboBox", 3);
    f.find<QAction>("actionCopyTable")->trigger();
    const QStringList lines = QApplication::clipboard()->text().split(QLatin1Char('\n'));
    QCOMPARE(lines.size(), 6); // a heading, four machines, and an end
    QVERIFY(lines.at(0).endsWith(QStringLiteral("(MFakes/s)")));
    QVERIFY(lines.at(4).startsWith(QStringLiteral("[you] LAB7\t")));
    QVERIFY(lines.at(4).endsWith(QStringLiteral("\t20")));
}

void tst_viewExports::copiesResults()
{
    const exportFixture f;
    f.find<QAction>("actionCopyResults")->trigger();
    QCOMPARE(QApplication::clipboard()->text(),
             QStringLiteral("LAB7 4C 2 GHz (linux)\ncolors: 20 MFakes/s\n"
                            "mandel (multicore): 200 MFakes/s\nhidden: no result\n"));
}

void tst_viewExports::keys()
{
    const exportFixture f;
    QApplication::clipboard()->clear();
    QTest::keyClick(f.window.get(), Qt::Key_C, Qt::ControlModifier);
    QVERIFY(hasRed(QApplication::clipboard()->image()));
    QTest::keyClick(f.window.get(), Qt::Key_C, Qt::ControlModifier | Qt::ShiftModifier);
    QVERIFY(QApplication::clipboard()->text().startsWith(QStringLiteral("machine\t")));
    const fileDialogAnswer answer{QString()};
    QTest::keyClick(f.window.get(), Qt::Key_S, Qt::ControlModifier);
    QVERIFY(answer.wasAsked);
    const auto *view = f.window->findChild<QChartView *>();
    QCOMPARE(view->contextMenuPolicy(), Qt::ActionsContextMenu);
    QVERIFY(view->actions().contains(f.find<QAction>("actionSave")));
}

void tst_viewExports::resultWindowMenus()
{
    dataDirectory directory;
    directory.write(QStringLiteral("user_data.xml"),
                    "<F><bench machineName=\"LAB7\" os=\"linux\" cpu=\"c\" clock=\"3400000000\" "
                    "threadCount=\"8\"><test name=\"colors \" result=\"7.5\"/></bench></F>");
    textLog log;
    suite tests;
    tests.push_back(std::make_unique<fakeTest>(oneCore, nullptr));
    benchBase runner(&log, nullptr, nullptr, std::move(tests));
    runner.loadReferenceData(benchBase::builtInReference);
    runner.loadUserData();
    resultwindow window(nullptr, &runner);
    window.show();
    window.activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(&window));
    const QList<QAction *> menus = window.findChild<QMenuBar *>()->actions();
    QCOMPARE(menus.size(), 1);
    const QList<QAction *> entries = menus.first()->menu()->actions();
    for (const char *name :
         {"actionSave", "actionCopyPicture", "actionCopyTable", "actionCopyResults"})
        QVERIFY2(entries.contains(window.findChild<QAction *>(QString::fromLatin1(name))), name);
    QTest::keyClick(&window, Qt::Key_C, Qt::ControlModifier);
    QCOMPARE(QApplication::clipboard()->text(),
             QStringLiteral("LAB7 8C 3.4 GHz (linux)\ncolors: 7.5 MFakes/s\n"));
    window.findChild<QAction *>(QStringLiteral("actionCopyTable"))->trigger();
    QCOMPARE(QApplication::clipboard()->text(),
             QStringLiteral("test\tresult\tunit\ncolors\t7.5\tMFakes/s\n"));
    const QTemporaryDir place;
    const QString file = place.filePath(QStringLiteral("chart.svg"));
    const fileDialogAnswer answer(file);
    QTest::keyClick(&window, Qt::Key_S, Qt::ControlModifier);
    QVERIFY(answer.wasAsked);
    QVERIFY(textsOf(contentOf(file)).contains(QStringLiteral("[you] LAB7")));
    window.activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(&window));
    QTest::keyClick(&window, Qt::Key_Escape);
    QVERIFY(!window.isVisible());
}

void tst_viewExports::resultWindowWithoutResults()
{
    textLog log;
    const benchBase runner(&log, nullptr, nullptr, suite());
    resultwindow window(nullptr, &runner);
    const boxAnswer answer(QMessageBox::Ok);
    window.findChild<QAction *>(QStringLiteral("actionSave"))->trigger();
    QVERIFY(answer.wasAsked);
    QCOMPARE(answer.text, QStringLiteral("There is no chart to save."));
}

void tst_viewExports::notesOutliveMenus()
{
    const exportFixture f(1);
    const auto *bar = f.find<QStatusBar>("statusBar");
    const QString note = bar->currentMessage();
    QVERIFY(note.contains(QStringLiteral("estimates")));
    f.find<QAction>("actionSave")->showStatusText(f.window.get()); // as its menu does
    QCOMPARE(bar->currentMessage(), note);
}

QTEST_MAIN(tst_viewExports)
#include "tst_viewExports.moc"
