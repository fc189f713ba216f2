// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QObject>
#include <QTimer>

#include <memory>

class QSplashScreen;

/// Says what is waited for while there is no window yet, if it takes long enough to be wondered at.
class waitSplash : public QObject
{
    Q_OBJECT

public:
    waitSplash();
    ~waitSplash() override;

    /// Begins a wait for what @p text names.
    void start(const QString &text);
    /// Ends it; what was shown goes.
    void end();

private:
    void show();

    QTimer patience;
    QString waitedFor;
    std::unique_ptr<QSplashScreen> splash;
};
