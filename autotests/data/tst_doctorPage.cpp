// SPDX-License-Identifier: GPL-3.0-or-later
#include "data/doctorPage.h"

#include "engine/contextProbe.h"
#include "engine/processorInfo.h"
#include "support/systemTree.h"

#include <QtTest>

#include <cmath>

namespace
{

buildFacts someBuild()
{
    buildFacts build;
    build.version = QStringLiteral("26.0");
    build.compiler = QStringLiteral("GNU");
    build.compilerVersion = QStringLiteral("12.2.0");
    build.buildType = QStringLiteral("Release");
    build.measuredFlags = QStringLiteral(
        "-O3 -DNDEBUG -O2 -fno-fast-math -ffp-contract=off -fno-lto -falign-functions=64 -fopenmp");
    build.workloadDigest =
        QStringLiteral("ea71f49f2aefedfefc576d1fe9578fd8e3a32978abcc9a35b47357e7113e1445");
    return build;
}

doctorSubject subjectOf(const char *machine, int threads, const contextSources &sources)
{
    doctorSubject subject;
    const processorInfo processor = readProcessorInfo(sources.root);
    subject.machine = {QString::fromLatin1(machine), QStringLiteral("linux"),
                       QString::fromStdString(processor.name.value_or("")), threads,
                       processor.megahertz.value_or(0) * 1e6};
    subject.context = readMachineContext(sources);
    subject.moment = readMachineMoment(sources.root);
    subject.build = someBuild();
    subject.disturbances =
        disturbancesOf(subject.context, subject.moment, subject.build, threads, false);
    return subject;
}

doctorSubject subjectOf(const char *machine, int threads)
{
    return subjectOf(machine, threads, {machineRoot(machine), QProcessEnvironment(), std::nullopt});
}

/// Nothing but letters in lines of 80 at most, with an end of line after each.
void checkShape(const QString &page)
{
    QVERIFY(page.endsWith(QLatin1Char('\n')));
    for (const QString &line : page.split(QLatin1Char('\n'))) {
        QVERIFY2(line.size() <= 80, qPrintable(line));
        QVERIFY2(!line.endsWith(QLatin1Char(' ')), qPrintable(line));
        for (const QChar c : line)
            QVERIFY2(c.isPrint(), qPrintable(line));
    }
}

} // namespace

class tst_doctorPage : public QObject
{
    Q_OBJECT

private slots:
    void laptopOnBattery();
    void container();
    void otherMachines_data();
    void otherMachines();
    void nothingKnown();
    void undisturbed();
    void environment();
    void strangers();
    void wideLetters();
};

void tst_doctorPage::laptopOnBattery()
{
    contextSources sources = {machineRoot("laptopOnBattery"), QProcessEnvironment(), 4096};
    sources.environment.insert(QStringLiteral("OMP_NUM_THREADS"), QStringLiteral("4"));
    const QString page = doctorPage(subjectOf("laptopOnBattery", 8, sources));
    QCOMPARE(page, QStringLiteral(R"(This machine
  name             laptopOnBattery
  system           linux
  processor        Intel(R) Core(TM) i7-8650U CPU @ 1.90GHz
  threads          8
  nominal clock    1900 MHz
  governor         powersave (driver intel_pstate)
  boost            on
  power            battery
  virtual machine  no sign of one
  temperature      61 degrees Celsius
  load average     0.42
  kernel           Linux 6.1.0-18-amd64
  page size        4096 bytes
  huge pages       madvise
  environment      OMP_NUM_THREADS=4

This build of Fennick
  version          26.0
  compiler         GNU 12.2.0
  build type       Release
  workloads' flags -O3 -DNDEBUG -O2 -fno-fast-math -ffp-contract=off -fno-lto
                   -falign-functions=64 -fopenmp
  workloads' code  ea71f49f2aefedfe

What disturbs a measurement here, and what to do
  - The machine runs on its battery, which may keep its clock low.
    Plug it in.
  - The governor "powersave" lets the processor's clock rise late.
    Choose the governor "performance".
  - The environment has settings that move results: OMP_NUM_THREADS.
    Unset what you do not want to measure with.
)"));
    checkShape(page);
}

void tst_doctorPage::container()
{
    const QString page = doctorPage(subjectOf("container", 2));
    QVERIFY2(page.startsWith(QStringLiteral(R"(This machine
  name             container
  system           linux
  processor        Intel(R) Xeon(R) Gold 6148 CPU @ 2.40GHz
  threads          2
  nominal clock    2400 MHz
  governor         unknown
  boost            unknown
  power            unknown
  virtual machine  no sign of one
  temperature      unknown
  load average     3.91
  kernel           Linux 5.10.0-28-amd64
  page size        unknown
  huge pages       madvise
  environment      no settings that move results

)")),
             qPrintable(page));
    QVERIFY2(page.endsWith(QStringLiteral(R"(
What disturbs a measurement here, and what to do
  - The machine is busy: a load average of 3.91 on 2 processors.
    End what else is running, or wait for it.
)")),
             qPrintable(page));
    checkShape(page);
}

void tst_doctorPage::otherMachines_data()
{
    QTest::addColumn<int>("threads");
    QTest::addColumn<QString>("end");
    QTest::newRow("server") << 32 << QStringLiteral(R"(
What disturbs a measurement here, and what to do
  - The machine is busy: a load average of 12.57 on 32 processors.
    End what else is running, or wait for it.

Good to know when results are compared
  - The system gives huge pages to all programs; Fennick asks it for ordinary
    ones.
    Nothing to do, unless a run warns that it got huge pages.
)");
    QTest::newRow("board") << 4 << QStringLiteral(R"(
What disturbs a measurement here, and what to do
  Nothing that Fennick can see.

Good to know when results are compared
  - The processor's clock may not rise above the nominal one.
    Switch boost on to measure the processor's best.
)");
}

void tst_doctorPage::otherMachines()
{
    QFETCH(int, threads);
    QFETCH(QString, end);
    const QString page = doctorPage(subjectOf(QTest::currentDataTag(), threads));
    QVERIFY2(page.endsWith(end), qPrintable(page));
    checkShape(page);
}

void tst_doctorPage::nothingKnown()
{
    const QString page = doctorPage({});
    QCOMPARE(page.count(QStringLiteral(" unknown\n")), 18);
    checkShape(page);
}

void tst_doctorPage::undisturbed()
{
    doctorSubject subject;
    subject.machine.name = QStringLiteral("quiet");
    const QString page = doctorPage(subject);
    QVERIFY(page.endsWith(QStringLiteral("what to do\n  Nothing that Fennick can see.\n")));
    QVERIFY(!page.contains(QStringLiteral("Good to know")));
}

void tst_doctorPage::environment()
{
    doctorSubject subject;
    subject.context.environment = {
        {QStringLiteral("GLIBC_TUNABLES"), QString(200, QLatin1Char('x'))},
        {QStringLiteral("OMP_NUM_THREADS"), QStringLiteral("4")}};
    const QString page = doctorPage(subject);
    const QString blanks(19, QLatin1Char(' '));
    QVERIFY2(page.contains(QStringLiteral("  environment      GLIBC_TUNABLES=")
                           + QString(46, QLatin1Char('x')) + QLatin1Char('\n') + blanks
                           + QString(61, QLatin1Char('x')) + QLatin1Char('\n')),
             qPrintable(page));
    QVERIFY2(page.contains(QLatin1Char('\n') + blanks + QStringLiteral("OMP_NUM_THREADS=4\n")),
             qPrintable(page));
    checkShape(page);
}

void tst_doctorPage::strangers()
{
    doctorSubject subject;
    const QString nasty = QStringLiteral("a\x1b[2J\r\n\tb\x7f\u0085\u202e\u2028\u2029 c");
    subject.machine = {nasty, nasty, nasty + QString(300, QLatin1Char('y')), -1, -1};
    subject.machine.clock = std::nan("");
    subject.context.governor = nasty;
    subject.context.environment.insert(QStringLiteral("OMP_X"), nasty);
    subject.build.measuredFlags = nasty;
    disturbance one;
    one.sentence = nasty;
    one.remedy = QString();
    subject.disturbances = {one};
    const QString page = doctorPage(subject);
    QVERIFY2(page.contains(QStringLiteral("  name             a?[2J???b????? c\n")),
             qPrintable(page));
    QVERIFY(page.contains(QStringLiteral("  threads          unknown\n")));
    QVERIFY(page.contains(QStringLiteral("  nominal clock    unknown\n")));
    checkShape(page);
}

void tst_doctorPage::wideLetters()
{
    doctorSubject subject;
    subject.machine.name = QString(45, QChar(0x6a5f));
    const QString page = doctorPage(subject);
    QVERIFY(page.contains(QStringLiteral("  name             ") + QString(30, QChar(0x6a5f))
                          + QLatin1Char('\n') + QString(19, QLatin1Char(' '))
                          + QString(15, QChar(0x6a5f)) + QLatin1Char('\n')));
}

QTEST_APPLESS_MAIN(tst_doctorPage)
#include "tst_doctorPage.moc"
