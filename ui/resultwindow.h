// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QMainWindow>

#include <memory>

class benchBase;

namespace Ui
{
class resultwindow;
}

/// Lists this machine's results as text, as they are when the window opens. Its menus copy and save
/// them, and the chart that compares them.
class resultwindow : public QMainWindow
{
    Q_OBJECT

public:
    /// @p runner is only read here. Without it the window stays empty.
    resultwindow(QWidget *parent, const benchBase *runner);
    ~resultwindow() override;

private:
    void fill(const benchBase &runner);
    void addMenus(const benchBase &runner);

    std::unique_ptr<Ui::resultwindow> ui;
};
