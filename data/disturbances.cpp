// SPDX-License-Identifier: GPL-3.0-or-later
#include "data/disturbances.h"

#include <QStringList>

#include <algorithm>

namespace
{

struct situation {
    const machineContext &context;
    const machineMoment &moment;
    const buildFacts &build;
    int threads;
    bool isOtherRunning;
};

/// The sentence and the remedy; no sentence where all is well.
struct finding {
    QString sentence;
    QString remedy;
};

finding debugBuildIn(const situation &now)
{
    if (now.build.buildType.compare(QLatin1String("debug"), Qt::CaseInsensitive) != 0)
        return {};
    return {QStringLiteral("this is a debug build"),
            QStringLiteral("measure with a release build")};
}

finding sanitizerBuildIn(const situation &now)
{
    if (!now.build.isSanitized)
        return {};
    return {QStringLiteral("this build checks itself with sanitizers, which takes time"),
            QStringLiteral("measure with a build without them")};
}

finding secondInstanceIn(const situation &now)
{
    if (!now.isOtherRunning)
        return {};
    return {QStringLiteral("another instance of Fennick is measuring on this machine"),
            QStringLiteral("let it finish first")};
}

finding batteryIn(const situation &now)
{
    if (now.context.power != machineContext::battery)
        return {};
    return {QStringLiteral("the machine runs on its battery, which may keep its clock low"),
            QStringLiteral("plug it in")};
}

/// Where the processor chooses its clock itself, its driver calls the usual way to do so
/// "powersave". The clock still follows the load, a little later.
bool choosesOwnClock(const QString &driver)
{
    return driver == QLatin1String("intel_pstate") || driver == QLatin1String("amd-pstate-epp");
}

finding governorIn(const situation &now)
{
    const QStringList governors =
        now.context.governor.value_or(QString()).split(QStringLiteral(", "));
    if (!governors.contains(QStringLiteral("powersave")))
        return {};
    const QString remedy = QStringLiteral("choose the governor \"performance\"");
    if (choosesOwnClock(now.context.frequencyDriver.value_or(QString()))) {
        return {QStringLiteral("the governor \"powersave\" lets the processor's clock rise late"),
                remedy};
    }
    return {QStringLiteral("the governor \"powersave\" keeps the processor's clock low"), remedy};
}

finding loadIn(const situation &now)
{
    // What others do now says more than the average of the last minute.
    const bool isWatched = now.moment.othersLoad.has_value();
    const double load = isWatched ? *now.moment.othersLoad : now.moment.loadAverage.value_or(0);
    if (load <= busyLoad(now.threads))
        return {};
    const QString sentence =
        isWatched ? QStringLiteral("the machine is busy: others keep %1 of %2 at work")
                  : QStringLiteral("the machine is busy: a load average of %1 on %2");
    return {sentence.arg(QString::number(load, 'f', 2),
                         now.threads == 1 ? QStringLiteral("1 processor")
                                          : QStringLiteral("%1 processors").arg(now.threads)),
            QStringLiteral("end what else is running, or wait for it")};
}

/// Names come from the environment, and there may be many of them.
finding environmentIn(const situation &now)
{
    constexpr int mostNamed = 4;
    const QStringList names = now.context.environment.keys();
    if (names.isEmpty())
        return {};
    QString named = QStringList(names.mid(0, mostNamed)).join(QStringLiteral(", "));
    if (names.size() > mostNamed)
        named += QStringLiteral(" and %1 more").arg(names.size() - mostNamed);
    return {QStringLiteral("the environment has settings that move results: %1").arg(named),
            QStringLiteral("unset what you do not want to measure with")};
}

finding boostIn(const situation &now)
{
    if (now.context.boost.value_or(true))
        return {};
    return {QStringLiteral("the processor's clock may not rise above the nominal one"),
            QStringLiteral("switch boost on to measure the processor's best")};
}

finding virtualMachineIn(const situation &now)
{
    if (!now.context.virtualMachine)
        return {};
    const QString kind = *now.context.virtualMachine;
    return {QStringLiteral("this is a virtual machine (%1), whose host may be busy with others")
                .arg(kind == QLatin1String("unknown") ? QStringLiteral("of unknown kind") : kind),
            QStringLiteral("repeat the run at another time, and compare")};
}

finding hugePagesIn(const situation &now)
{
    if (now.context.hugePages != QStringLiteral("always"))
        return {};
    return {QStringLiteral("the system gives huge pages to all programs; Fennick asks it for "
                           "ordinary ones"),
            QStringLiteral("nothing to do, unless a run warns that it got huge pages")};
}

struct row {
    disturbance::reason why;
    disturbance::weight how;
    const char *word;
    finding (*look)(const situation &now);
};

/// The worst first.
constexpr row rows[] = {
    {disturbance::debugBuild, disturbance::warning, "debug-build", debugBuildIn},
    {disturbance::sanitizerBuild, disturbance::warning, "sanitizer-build", sanitizerBuildIn},
    {disturbance::secondInstance, disturbance::warning, "second-instance", secondInstanceIn},
    {disturbance::onBattery, disturbance::warning, "battery", batteryIn},
    {disturbance::powersaveGovernor, disturbance::warning, "powersave-governor", governorIn},
    {disturbance::busyMachine, disturbance::warning, "busy-machine", loadIn},
    {disturbance::environmentSettings, disturbance::warning, "environment", environmentIn},
    {disturbance::boostOff, disturbance::note, "boost-off", boostIn},
    {disturbance::virtualMachine, disturbance::note, "virtual-machine", virtualMachineIn},
    {disturbance::hugePages, disturbance::note, "huge-pages", hugePagesIn},
};

} // namespace

QString reasonWord(disturbance::reason why)
{
    const auto found = std::find_if(std::begin(rows), std::end(rows),
                                    [&](const row &one) { return one.why == why; });
    return found == std::end(rows) ? QString() : QString::fromLatin1(found->word);
}

QString warningText(const disturbance &one)
{
    return QStringLiteral("warning: %1; %2").arg(one.sentence, one.remedy);
}

double busyLoad(int threads)
{
    return std::max(0.25, 0.1 * threads);
}

std::vector<disturbance> disturbancesOf(const machineContext &context, const machineMoment &moment,
                                        const buildFacts &build, int threads, bool isOtherRunning)
{
    const situation now = {context, moment, build, threads, isOtherRunning};
    std::vector<disturbance> found;
    for (const row &one : rows) {
        const finding seen = one.look(now);
        if (!seen.sentence.isEmpty())
            found.push_back({one.why, one.how, seen.sentence, seen.remedy});
    }
    return found;
}
