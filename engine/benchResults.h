// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QMap>
#include <QObject>
#include <QString>

/// One machine and its results.
class benchResults
{
public:
    /// The result of one test. It can travel as user data of Qt's objects.
    class test : public QObjectUserData
    {
    public:
        test() = default;
        explicit test(float throughput) : value(throughput) {}
        // g++ warns about a copy constructor that does not name its base.
        // NOLINTNEXTLINE(readability-redundant-member-init)
        test(const test &other) : QObjectUserData(), value(other.value) {}
        test &operator=(const test &other)
        {
            value = other.value;
            return *this;
        }
        ~test() override = default;

        /// Throughput in millions of the test's unit per second.
        float value = 0;
    };

    /// How describe words a machine.
    enum descriptionStyle : int {
        fullDescription = 0,     ///< LAB7 8C 3.4 GHz (windows)
        nameDescription = 1,     ///< LAB7
        processorDescription = 2 ///< Some Processor X8  3.4 GHz
    };

    benchResults() = default;
    /// @p clock in Hz, 0 when unknown.
    benchResults(const QString &machineName, const QString &osWord, const QString &cpuName,
                 float clock, int threadCount);

    QString getName() const { return name; }
    QString getOs() const { return os; }
    QString getCpu() const { return cpu; }
    int getThreads() const { return threads; }
    /// The nominal clock in Hz, 0 when unknown.
    float getFrequency() const { return frequency; }
    /// Whether this process has recorded a result into this record.
    bool isMeasured() const { return measured; }
    /// A working value of the compare window, in percent of a reference machine; not stored.
    float getScore() const { return score; }
    /// A working flag of the compare window; not stored.
    bool isSelected() const { return selected; }

    void setMeasured(bool isMeasured) { measured = isMeasured; }
    void setScore(float percent) { score = percent; }
    void setSelected(bool isSelected) { selected = isSelected; }

    /// The results by the exact names of their tests.
    QMap<QString, test> &getTests() { return tests; }
    const QMap<QString, test> &getTests() const { return tests; }
    /// Inserts or replaces the result of test @p testName.
    void setTest(const QString &testName, const test &result);
    /// The result of test @p testName, or null. The pointer holds until the next change.
    test *findTest(const QString &testName);

    /// One line about the machine in one of the styles above; empty for any other number.
    QString describe(descriptionStyle style) const;

private:
    float score = 0;
    bool selected = false;
    QMap<QString, test> tests;
    QString name;
    QString os;
    QString cpu;
    qint32 threads = 0;
    float frequency = 0;
    bool measured = false;
};
