// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QImage>
#include <QString>
#include <QVector>
#include <QWidget>

#include <functional>

class testBase;

/// Shows the frame of the running test, stretched over the whole widget, under a line that says
/// which test it is. The frame is never copied: every repaint shows the test's own memory as it is
/// at that moment. The owner asks for repaints.
class displayWidget : public QWidget
{
    Q_OBJECT

public:
    explicit displayWidget(QWidget *parent = nullptr);

    /// Shows @p newTest, which must be set up and keep its frame until another test, or null for a
    /// black widget, is handed over.
    void setTest(testBase *newTest);
    /// Whether the place of the test among all tests is shown.
    void setShowProgress(bool show) { showProgress = show; }
    /// The zero-based place of the running test.
    void setTestIndex(int newIndex) { index = newIndex; }
    int testIndex() const { return index; }
    void setTestCount(int count) { testCount = count; }
    /// Whether the clock of each core is shown, as far as the machine probe knows it.
    void setShowClocks(bool show) { showClocks = show; }
    /// Takes the clock of each core, in kilohertz, from @p newSource instead of the machine probe.
    void setClockSource(std::function<QVector<float>()> newSource)
    {
        clockSource = std::move(newSource);
    }
    /// Takes note of the time in milliseconds since the previous frame; nothing shows it.
    void setFrameTime(int ms) { frameTime = ms; }

    /// The line about core number @p core, counted from 1, at a clock of @p kilohertz.
    static QString clockLine(int core, float kilohertz);

protected:
    void paintEvent(QPaintEvent *event) override;

private:
    QString statusLine() const;
    void drawClocks(QPainter &painter, int lineHeight) const;

    [[maybe_unused]] qint32 frameTime = 0;
    bool showProgress = false;
    qint32 index = 0;
    qint32 testCount = 0;
    bool showClocks = true;
    std::function<QVector<float>()> clockSource;
    testBase *test = nullptr;
    QImage frame;
};
