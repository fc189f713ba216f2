// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QApplication>
#include <QMessageBox>
#include <QPushButton>
#include <QTimer>

/// Presses a button of the next message box that opens, and remembers what the box said.
class boxAnswer
{
public:
    explicit boxAnswer(QMessageBox::StandardButton button)
    {
        timer.setInterval(5);
        QObject::connect(&timer, &QTimer::timeout, &timer, [this, button] {
            auto *box = qobject_cast<QMessageBox *>(QApplication::activeModalWidget());
            if (!box)
                return;
            timer.stop();
            wasAsked = true;
            title = box->windowTitle();
            text = box->text();
            buttons = box->standardButtons();
            defaultButton = box->standardButton(box->defaultButton());
            if (button == QMessageBox::NoButton)
                box->close();
            else
                box->button(button)->click();
        });
        timer.start();
    }

    bool wasAsked = false;
    QString title;
    QString text;
    QMessageBox::StandardButtons buttons;
    QMessageBox::StandardButton defaultButton = QMessageBox::NoButton;

private:
    QTimer timer;
};
