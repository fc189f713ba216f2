// SPDX-License-Identifier: GPL-3.0-or-later
#include "data/disturbances.h"

#include <QtTest>

#include <functional>

namespace
{

/// A machine that nothing disturbs, and what a row changes of it.
struct setting {
    machineContext context;
    machineMoment moment;
    buildFacts build;
    int threads = 4;
    bool isOtherRunning = false;

    setting()
    {
        build.buildType = QStringLiteral("Release");
        context.governor = QStringLiteral("performance");
        context.frequencyDriver = QStringLiteral("acpi-cpufreq");
        context.boost = true;
        context.power = machineContext::mains;
        context.hugePages = QStringLiteral("madvise");
        moment.loadAverage = 0.1;
    }

    std::vector<disturbance> found() const
    {
        return disturbancesOf(context, moment, build, threads, isOtherRunning);
    }
};

using change = std::function<void(setting &)>;

/// "word: sentence -> remedy" of each, notes in brackets.
QStringList shown(const std::vector<disturbance> &found)
{
    QStringList list;
    for (const disturbance &one : found) {
        const QString text = reasonWord(one.why) + QStringLiteral(": ") + one.sentence
                             + QStringLiteral(" -> ") + one.remedy;
        list.append(one.how == disturbance::note ? QLatin1Char('(') + text + QLatin1Char(')')
                                                 : text);
    }
    return list;
}

} // namespace

Q_DECLARE_METATYPE(change)

class tst_disturbances : public QObject
{
    Q_OBJECT

private slots:
    void none();
    void nothingKnown();
    void one_data();
    void one();
    void noneOf_data();
    void noneOf();
    void load_data();
    void load();
    void all();
};

void tst_disturbances::none()
{
    QCOMPARE(shown(setting().found()), QStringList());
}

/// What is unknown disturbs nobody.
void tst_disturbances::nothingKnown()
{
    QCOMPARE(shown(disturbancesOf({}, {}, {}, 1, false)), QStringList());
}

void tst_disturbances::one_data()
{
    QTest::addColumn<change>("made");
    QTest::addColumn<QString>("expected");
    const auto row = [](const char *name, const change &made, const char *expected) {
        QTest::newRow(name) << made << QString::fromLatin1(expected);
    };
    row(
        "debug", [](setting &s) { s.build.buildType = QStringLiteral("Debug"); },
        "debug-build: this is a debug build -> measure with a release build");
    row(
        "debug in capitals", [](setting &s) { s.build.buildType = QStringLiteral("DEBUG"); },
        "debug-build: this is a debug build -> measure with a release build");
    row(
        "sanitizers", [](setting &s) { s.build.isSanitized = true; },
        "sanitizer-build: this build checks itself with sanitizers, which takes time -> measure "
        "with a build without them");
    row(
        "two instances", [](setting &s) { s.isOtherRunning = true; },
        "second-instance: another instance of Fennick is measuring on this machine -> let it "
        "finish first");
    row(
        "battery", [](setting &s) { s.context.power = machineContext::battery; },
        "battery: the machine runs on its battery, which may keep its clock low -> plug it in");
    row(
        "powersave", [](setting &s) { s.context.governor = QStringLiteral("powersave"); },
        "powersave-governor: the governor \"powersave\" keeps the processor's clock low -> choose "
        "the governor \"performance\"");
    row(
        "powersave of some cores",
        [](setting &s) { s.context.governor = QStringLiteral("performance, powersave"); },
        "powersave-governor: the governor \"powersave\" keeps the processor's clock low -> choose "
        "the governor \"performance\"");
    row(
        "powersave of a processor that chooses",
        [](setting &s) {
            s.context.governor = QStringLiteral("powersave");
            s.context.frequencyDriver = QStringLiteral("intel_pstate");
        },
        "powersave-governor: the governor \"powersave\" lets the processor's clock rise late -> "
        "choose the governor \"performance\"");
    row(
        "busy", [](setting &s) { s.moment.loadAverage = 3.456; },
        "busy-machine: the machine is busy: a load average of 3.46 on 4 processors -> end what "
        "else is running, or wait for it");
    row(
        "busy, one processor",
        [](setting &s) {
            s.moment.loadAverage = 1;
            s.threads = 1;
        },
        "busy-machine: the machine is busy: a load average of 1.00 on 1 processor -> end what "
        "else is running, or wait for it");
    row(
        "busy right now",
        [](setting &s) {
            s.moment.loadAverage = 3;
            s.moment.othersLoad = 1.2;
        },
        "busy-machine: the machine is busy: others keep 1.20 of 4 processors at work -> end what "
        "else is running, or wait for it");
    row(
        "environment",
        [](setting &s) {
            for (const char *name : {"B", "A"})
                s.context.environment.insert(QString::fromLatin1(name), QStringLiteral("1"));
        },
        "environment: the environment has settings that move results: A, B -> unset what you do "
        "not want to measure with");
    row(
        "much environment",
        [](setting &s) {
            for (const char *name : {"A", "B", "C", "D", "E", "F"})
                s.context.environment.insert(QString::fromLatin1(name), QStringLiteral("1"));
        },
        "environment: the environment has settings that move results: A, B, C, D and 2 more -> "
        "unset what you do not want to measure with");
    row(
        "no boost", [](setting &s) { s.context.boost = false; },
        "(boost-off: the processor's clock may not rise above the nominal one -> switch boost on "
        "to measure the processor's best)");
    row(
        "virtual", [](setting &s) { s.context.virtualMachine = QStringLiteral("KVM"); },
        "(virtual-machine: this is a virtual machine (KVM), whose host may be busy with others -> "
        "repeat the run at another time, and compare)");
    row(
        "virtual of any kind",
        [](setting &s) { s.context.virtualMachine = QStringLiteral("unknown"); },
        "(virtual-machine: this is a virtual machine (of unknown kind), whose host may be busy "
        "with others -> repeat the run at another time, and compare)");
    row(
        "huge pages", [](setting &s) { s.context.hugePages = QStringLiteral("always"); },
        "(huge-pages: the system gives huge pages to all programs; Fennick asks it for ordinary "
        "ones -> nothing to do, unless a run warns that it got huge pages)");
}

void tst_disturbances::one()
{
    QFETCH(change, made);
    QFETCH(QString, expected);
    setting now;
    made(now);
    QCOMPARE(shown(now.found()), QStringList(expected));
}

void tst_disturbances::noneOf_data()
{
    QTest::addColumn<change>("made");
    const auto row = [](const char *name, const change &made) { QTest::newRow(name) << made; };
    row("RelWithDebInfo", [](setting &s) { s.build.buildType = QStringLiteral("RelWithDebInfo"); });
    row("no build type", [](setting &s) { s.build.buildType.clear(); });
    row("schedutil", [](setting &s) { s.context.governor = QStringLiteral("schedutil"); });
    row("another word", [](setting &s) { s.context.governor = QStringLiteral("powersave2"); });
    row("never", [](setting &s) { s.context.hugePages = QStringLiteral("never"); });
}

void tst_disturbances::noneOf()
{
    QFETCH(change, made);
    setting now;
    made(now);
    QCOMPARE(shown(now.found()), QStringList());
}

void tst_disturbances::load_data()
{
    QTest::addColumn<int>("threads");
    QTest::addColumn<double>("load");
    QTest::addColumn<bool>("isBusy");
    QTest::newRow("idle") << 1 << 0.0 << false;
    QTest::newRow("1 processor, as restless as any") << 1 << 0.25 << false;
    QTest::newRow("1 processor") << 1 << 0.26 << true;
    QTest::newRow("2 processors") << 2 << 0.26 << true;
    QTest::newRow("16 processors, less than a tenth") << 16 << 1.59 << false;
    QTest::newRow("16 processors, more than a tenth") << 16 << 1.61 << true;
    QTest::newRow("128 processors") << 128 << 12.7 << false;
    QTest::newRow("no processors") << 0 << 0.1 << false;
}

void tst_disturbances::load()
{
    QFETCH(int, threads);
    QFETCH(double, load);
    QFETCH(bool, isBusy);
    setting now;
    now.threads = threads;
    now.moment.loadAverage = load;
    QCOMPARE(now.found().size(), isBusy ? std::size_t(1) : std::size_t(0));
}

void tst_disturbances::all()
{
    setting now;
    now.build.buildType = QStringLiteral("Debug");
    now.build.isSanitized = true;
    now.isOtherRunning = true;
    now.context.power = machineContext::battery;
    now.context.governor = QStringLiteral("powersave");
    now.moment.loadAverage = 9;
    now.context.environment.insert(QStringLiteral("A"), QStringLiteral("1"));
    now.context.boost = false;
    now.context.virtualMachine = QStringLiteral("KVM");
    now.context.hugePages = QStringLiteral("always");
    const std::vector<disturbance> found = now.found();
    QStringList words;
    for (const disturbance &one : found) {
        words.append(reasonWord(one.why));
        // They follow a program's name, and are shared by both programs.
        for (const QString &text : {one.sentence, one.remedy}) {
            QVERIFY2(text.at(0).isLower(), qPrintable(text));
            QVERIFY2(!text.endsWith(QLatin1Char('.')), qPrintable(text));
        }
    }
    QCOMPARE(words.join(QLatin1Char(' ')),
             QStringLiteral("debug-build sanitizer-build second-instance battery "
                            "powersave-governor busy-machine environment boost-off "
                            "virtual-machine huge-pages"));
}

QTEST_APPLESS_MAIN(tst_disturbances)
#include "tst_disturbances.moc"
