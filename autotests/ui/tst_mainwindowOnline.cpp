// SPDX-License-Identifier: GPL-3.0-or-later

// The window while a request to the online database waits.
#include "ui/mainwindow.h"

#include "data/httpDatabase.h"
#include "support/dataDirectory.h"
#include "support/fakeServer.h"
#include "support/fakeTest.h"
#include "support/messageBoxes.h"

#include <QCursor>
#include <QElapsedTimer>
#include <QPushButton>
#include <QTextEdit>
#include <QtTest>

namespace
{

constexpr int shortTime = 200;
/// A request that is only ended by this has failed the test.
constexpr int longTime = 120'000;

/// A window whose database has answered its start; after that, requests wait.
class waitingWindow
{
public:
    waitingWindow()
    {
        server.reply = sending(httpReply("1"));
        window = std::make_unique<MainWindow>(
            nullptr,
            [](printHook *) {
                suite tests;
                auto test = std::make_unique<fakeTest>(QStringLiteral("one"), nullptr);
                test->canSetup = false;
                tests.push_back(std::move(test));
                return tests;
            },
            std::make_unique<httpDatabase>(server.host(),
                                           httpDatabase::timeOuts{longTime, longTime}));
        window->show();
        atStart = log();
        server.reply = [this](QTcpSocket &socket) { onRequest(socket); };
    }

    QPushButton *button(const char *name) const
    {
        return window->findChild<QPushButton *>(QString::fromLatin1(name));
    }
    QString log() const { return window->findChild<QTextEdit *>()->toPlainText(); }
    QString newLog() const { return log().mid(atStart.size()); }

    fakeServer server;
    fakeServer::answer onRequest;
    std::unique_ptr<MainWindow> window;
    QString atStart;
};

/// Writes down when mouse moves of the user reach a window.
class moveCounter : public QObject
{
public:
    bool eventFilter(QObject *watched, QEvent *event) override
    {
        moves += watched->isWidgetType() && event->type() == QEvent::MouseMove ? 1 : 0;
        return QObject::eventFilter(watched, event);
    }
    int moves = 0;
};

/// Runs the program until it ends, with a click on @p button at its start. The milliseconds that it
/// took, or -1 if it did not end as it should.
qint64 runProgram(QPushButton *button)
{
    QElapsedTimer timer;
    timer.start();
    QTimer::singleShot(0, button, &QPushButton::click);
    QTimer::singleShot(longTime / 2, button, [] { QApplication::exit(1); });
    return QApplication::exec() == 0 ? timer.elapsed() : -1;
}

} // namespace

class tst_mainwindowOnline : public QObject
{
    Q_OBJECT

private slots:
    void init() { directory = std::make_unique<dataDirectory>(); }
    void cleanup() { directory.reset(); }

    void start();
    void userInputIsHeldBack();
    void windowIsRepainted();
    void closedWhileReloading();
    void closedWhileUploading();
    void uploadAfterAFullRun();
    void beta();

private:
    std::unique_ptr<dataDirectory> directory;
};

void tst_mainwindowOnline::start()
{
    const waitingWindow w;
    QVERIFY(w.log().contains(QStringLiteral("Online database has version 1 (local 1010)\n")));
    QCOMPARE(w.server.lastBody(), QByteArray("?app=Fennick&type=getReferenceVersion"));
}

void tst_mainwindowOnline::userInputIsHeldBack()
{
    if (QGuiApplication::platformName() != QLatin1String("offscreen"))
        QSKIP("moves the pointer");
    waitingWindow w;
    QVERIFY(QTest::qWaitForWindowExposed(w.window.get()));
    moveCounter counter;
    const auto movePointer = [&w](int x) { QCursor::setPos(w.window->mapToGlobal({x, 90})); };
    for (QWidget *widget : w.window->findChildren<QWidget *>())
        widget->setMouseTracking(true);
    qApp->installEventFilter(&counter);
    // What is to be held back does arrive otherwise.
    movePointer(50);
    QTRY_VERIFY(counter.moves > 0);

    int atReply = -1;
    w.onRequest = [&](QTcpSocket &socket) {
        counter.moves = 0;
        movePointer(100);
        QTimer::singleShot(shortTime, &socket, [&] {
            atReply = counter.moves;
            socket.write(httpReply("1"));
        });
    };
    w.button("pushButtonDeleteUserData")->click();
    QCOMPARE(atReply, 0);
    QCOMPARE(counter.moves, 0);
    QTRY_VERIFY(counter.moves > 0);
}

void tst_mainwindowOnline::windowIsRepainted()
{
    waitingWindow w;
    QVERIFY(QTest::qWaitForWindowExposed(w.window.get()));
    class paintWatch : public QObject
    {
    public:
        bool eventFilter(QObject *, QEvent *event) override
        {
            wasPainted = wasPainted || event->type() == QEvent::Paint;
            return false;
        }
        bool wasPainted = false;
    } watch;
    bool atReply = false;
    w.onRequest = [&](QTcpSocket &socket) {
        w.window->installEventFilter(&watch);
        w.window->update();
        QTimer::singleShot(shortTime, &socket, [&] {
            atReply = watch.wasPainted;
            socket.write(httpReply("1"));
        });
    };
    w.button("pushButtonLoadStandardReference")->click();
    QVERIFY(atReply);
}

void tst_mainwindowOnline::closedWhileReloading()
{
    waitingWindow w;
    w.onRequest = [&w](QTcpSocket &) { w.window->close(); };
    const qint64 ms = runProgram(w.button("pushButtonDeleteUserData"));
    QVERIFY2(ms >= 0 && ms < longTime / 2, qPrintable(QString::number(ms)));
    QCOMPARE(w.server.requests.size(), 2);
    // The request was given up, and what was begun came to its end.
    QVERIFY(w.newLog().startsWith(
        QStringLiteral("Remove user benchmark data\nNo online database found\nUse internal")));
    QVERIFY(w.newLog().endsWith(QStringLiteral("Found no local user benchmark data\n")));
    w.window.reset();
    QCoreApplication::processEvents();
}

void tst_mainwindowOnline::closedWhileUploading()
{
    waitingWindow w;
    w.onRequest = [&w](QTcpSocket &) { w.window->close(); };
    const boxAnswer answer(QMessageBox::Yes);
    const qint64 ms = runProgram(w.button("benchButton"));
    QVERIFY2(ms >= 0 && ms < longTime / 2, qPrintable(QString::number(ms)));
    QVERIFY(w.server.lastBody().startsWith("?app=Fennick&type=storeUserData&results=%3C%3Fxml"));
    QVERIFY(!directory->read(QStringLiteral("user_data.xml")).isEmpty());
    w.window.reset();
    QCoreApplication::processEvents();
}

void tst_mainwindowOnline::uploadAfterAFullRun()
{
    waitingWindow w;
    w.onRequest = sending(httpReply(""));
    const boxAnswer answer(QMessageBox::Yes);
    w.button("benchButton")->click();
    QVERIFY(w.newLog().endsWith(
        QStringLiteral("Benchmark finished\nStore userdata\nUpload results\n")));
    QCOMPARE(w.server.requests.size(), 2);
}

void tst_mainwindowOnline::beta()
{
    waitingWindow w;
    w.onRequest = sending(httpReply(qCompress("<F><bench machineName=\"Beta\"/></F>")));
    const boxAnswer answer(QMessageBox::Yes);
    w.button("pushButtonLoadBetaReference")->click();
    QVERIFY(w.newLog().startsWith(QStringLiteral("Update DB successfully (BETA)\n")));
    QCOMPARE(w.server.lastBody(), QByteArray("?app=Fennick&type=getReferenceBeta"));
}

QTEST_MAIN(tst_mainwindowOnline)
#include "tst_mainwindowOnline.moc"
