// SPDX-License-Identifier: GPL-3.0-or-later
#include <QApplication>
#include <QEvent>
#include <QTimer>
#include <QWidget>

#include <cstdio>

namespace
{

/// Says which windows a program shows, and ends its event loop then where a test asks for that.
class windowWatch : public QObject
{
public:
    bool eventFilter(QObject *watched, QEvent *event) override
    {
        const auto *widget = qobject_cast<QWidget *>(watched);
        if (event->type() == QEvent::Show && widget && widget->isWindow()) {
            std::fprintf(stderr, "shown: %s\n", qUtf8Printable(widget->windowTitle()));
            std::fprintf(stderr, "OpenGL: %s\n", qgetenv("QT_XCB_GL_INTEGRATION").constData());
            bool isAsked = false;
            const int code = qEnvironmentVariableIntValue("FENNICK_TEST_EXIT_CODE", &isAsked);
            if (isAsked)
                QTimer::singleShot(0, qApp, [code] { QCoreApplication::exit(code); });
        }
        return QObject::eventFilter(watched, event);
    }
};

void watchWindows()
{
    static windowWatch watch;
    qApp->installEventFilter(&watch);
}

} // namespace

Q_COREAPP_STARTUP_FUNCTION(watchWindows)
