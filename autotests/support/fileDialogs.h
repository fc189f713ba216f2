// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QApplication>
#include <QDialogButtonBox>
#include <QFileDialog>
#include <QLineEdit>
#include <QPushButton>
#include <QTimer>

/// Types a path into the next file dialog that opens, and saves; without a path it is cancelled.
class fileDialogAnswer
{
public:
    explicit fileDialogAnswer(const QString &path)
    {
        timer.setInterval(5);
        QObject::connect(&timer, &QTimer::timeout, &timer, [this, path] {
            auto *dialog = qobject_cast<QFileDialog *>(QApplication::activeModalWidget());
            if (!dialog)
                return;
            timer.stop();
            wasAsked = true;
            if (path.isEmpty()) {
                dialog->reject();
                return;
            }
            dialog->findChild<QLineEdit *>(QStringLiteral("fileNameEdit"))->setText(path);
            dialog->findChild<QDialogButtonBox *>()->button(QDialogButtonBox::Save)->click();
        });
        timer.start();
    }

    bool wasAsked = false;

private:
    QTimer timer;
};
