// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/resultwindow.h"

#include "engine/benchBase.h"

#include "support/dataDirectory.h"
#include "support/fakeTest.h"
#include "support/textLog.h"

#include <QMenuBar>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QScrollBar>
#include <QStatusBar>
#include <QtTest>
#include <QVBoxLayout>

class tst_resultwindow : public QObject
{
    Q_OBJECT

private slots:
    void form();
    void text();
    void opensAtItsStart();
    void nothingLoaded();
    void closes();

private:
    dataDirectory directory;
};

namespace
{

template <typename T> T *find(const resultwindow &window, const char *name)
{
    return window.findChild<T *>(QString::fromLatin1(name));
}

} // namespace

void tst_resultwindow::form()
{
    const resultwindow window(nullptr, nullptr);
    QCOMPARE(window.objectName(), QStringLiteral("resultwindow"));
    QCOMPARE(window.size(), QSize(460, 597));
    QCOMPARE(window.windowTitle(), QStringLiteral("results"));
    const auto *layout = find<QVBoxLayout>(window, "verticalLayout");
    QCOMPARE(layout->itemAt(0)->widget()->objectName(), QStringLiteral("plainTextEdit"));
    QCOMPARE(layout->itemAt(1)->widget()->objectName(), QStringLiteral("closeButton"));
    const auto *text = find<QPlainTextEdit>(window, "plainTextEdit");
    QCOMPARE(text->font().family(), QStringLiteral("Courier"));
    QCOMPARE(text->font().pointSize(), 10);
    QCOMPARE(text->focusPolicy(), Qt::NoFocus);
    QCOMPARE(text->lineWrapMode(), QPlainTextEdit::NoWrap);
    QVERIFY(text->isReadOnly());
    QVERIFY(text->toPlainText().isEmpty());
    const auto *button = find<QPushButton>(window, "closeButton");
    QCOMPARE(button->text(), QStringLiteral("close"));
    QCOMPARE(button->focusPolicy(), Qt::NoFocus);
    QCOMPARE(window.centralWidget()->objectName(), QStringLiteral("centralwidget"));
    QCOMPARE(find<QMenuBar>(window, "menubar")->geometry(), QRect(0, 0, 460, 21));
    QVERIFY(find<QStatusBar>(window, "statusbar"));
}

void tst_resultwindow::text()
{
    directory.write(QStringLiteral("user_data.xml"),
                    "<F><bench machineName=\"LAB7 %1 %2\" os=\"linux\" cpu=\"c\" "
                    "clock=\"3400000000\" threadCount=\"8\">"
                    "<test name=\"vertex (multicore)\" result=\"555.6094\"/>"
                    "<test name=\"%2 hidden\" result=\"1234567\"/>"
                    "<test name=\"unknown\" result=\"3\"/>"
                    "<test name=\"colors \" result=\"0\"/></bench></F>");
    textLog log;
    suite tests;
    for (const char *name : {"colors ", "vertex (multicore)", "no result", "%2 hidden"})
        tests.push_back(std::make_unique<fakeTest>(QString::fromLatin1(name), nullptr));
    tests.back()->setSingleOnly(true);
    benchBase runner(&log, nullptr, nullptr, std::move(tests));
    runner.loadReferenceData(benchBase::builtInReference);
    runner.loadUserData();
    const resultwindow window(nullptr, &runner);
    QCOMPARE(find<QPlainTextEdit>(window, "plainTextEdit")->toPlainText(),
             QStringLiteral("LAB7 %1 %2 8C 3.4 GHz (linux)\n"
                            "colors  0 \n"
                            "vertex (multicore) 555.609 \n"
                            "%2 hidden 1.23457e+06 [hidden]"));
}

void tst_resultwindow::opensAtItsStart()
{
    directory.write(QStringLiteral("user_data.xml"), "");
    textLog log;
    suite tests;
    for (int i = 0; i < 200; ++i)
        tests.push_back(std::make_unique<fakeTest>(QStringLiteral("test %1").arg(i), nullptr));
    benchBase runner(&log, nullptr, nullptr, std::move(tests));
    runner.loadReferenceData(benchBase::builtInReference);
    runner.loadUserData();
    resultwindow window(nullptr, &runner);
    window.show();
    QVERIFY(QTest::qWaitForWindowExposed(&window));
    const auto *text = find<QPlainTextEdit>(window, "plainTextEdit");
    QVERIFY(text->verticalScrollBar()->maximum() > 100); // the end is far away
    QCOMPARE(text->verticalScrollBar()->value(), 0);
    QCOMPARE(text->textCursor().position(), 0);
}

void tst_resultwindow::nothingLoaded()
{
    textLog log;
    const benchBase runner(&log, nullptr, nullptr, suite());
    const resultwindow window(nullptr, &runner);
    QVERIFY(find<QPlainTextEdit>(window, "plainTextEdit")->toPlainText().isEmpty());
}

void tst_resultwindow::closes()
{
    resultwindow window(nullptr, nullptr);
    window.show();
    find<QPushButton>(window, "closeButton")->click();
    QVERIFY(!window.isVisible());
}

QTEST_MAIN(tst_resultwindow)
#include "tst_resultwindow.moc"
