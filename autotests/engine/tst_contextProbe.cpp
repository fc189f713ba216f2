// SPDX-License-Identifier: GPL-3.0-or-later
#include "engine/contextProbe.h"
#include "support/systemTree.h"

#include <QtTest>

#include <clocale>

namespace
{

const QString absent = QStringLiteral("absent");

QString shown(const std::optional<QString> &text)
{
    return text.value_or(absent);
}

QString shown(const std::optional<bool> &value)
{
    return value ? QString::number(*value ? 1 : 0) : absent;
}

QString shown(const std::optional<double> &number)
{
    return number ? QString::number(*number) : absent;
}

QString shown(const std::optional<machineContext::powerSource> &power)
{
    if (!power)
        return absent;
    return *power == machineContext::battery ? QStringLiteral("battery") : QStringLiteral("mains");
}

contextSources without(const std::filesystem::path &root)
{
    return {root, QProcessEnvironment(), std::nullopt};
}

/// All answers in one text, so that a row shows a whole machine.
QString answers(const std::filesystem::path &root)
{
    const machineContext context = readMachineContext(without(root));
    const machineMoment moment = readMachineMoment(root);
    return QStringList{
        shown(context.governor),  shown(context.frequencyDriver), shown(context.boost),
        shown(context.power),     shown(context.virtualMachine),  shown(context.kernel),
        shown(context.hugePages), shown(moment.loadAverage),      shown(moment.temperature)}
        .join(QLatin1Char('|'));
}

const QString cpu = QStringLiteral("sys/devices/system/cpu/");
const QString supplies = QStringLiteral("sys/class/power_supply/");
const QString sensors = QStringLiteral("sys/class/hwmon/");
const QString zones = QStringLiteral("sys/class/thermal/");
const QString board = QStringLiteral("sys/class/dmi/id/");
const QString cpuinfo = QStringLiteral("proc/cpuinfo");

systemFiles supply(const char *name, const char *type, const char *file, const char *value)
{
    const QString directory = supplies + QLatin1String(name) + QLatin1Char('/');
    return {{directory + QStringLiteral("type"), QByteArray(type) + '\n'},
            {directory + QLatin1String(file), QByteArray(value) + '\n'}};
}

systemFiles both(systemFiles one, const systemFiles &other)
{
    for (auto file = other.cbegin(); file != other.cend(); ++file)
        one.insert(file.key(), file.value());
    return one;
}

systemFiles madeBy(const char *vendor, const char *product)
{
    return {{board + QStringLiteral("sys_vendor"), QByteArray(vendor) + '\n'},
            {board + QStringLiteral("product_name"), QByteArray(product) + '\n'}};
}

} // namespace

class tst_contextProbe : public QObject
{
    Q_OBJECT

private slots:
    void machines_data();
    void machines();
    void governors_data();
    void governors();
    void boost_data();
    void boost();
    void power_data();
    void power();
    void virtualMachine_data();
    void virtualMachine();
    void temperature_data();
    void temperature();
    void oddFiles_data();
    void oddFiles();
    void environment();
    void environmentIsBounded();
    void pageSize();
    void commaLocale();
    void thisMachine();
};

void tst_contextProbe::machines_data()
{
    QTest::addColumn<QString>("expected");
    QTest::newRow("laptopOnBattery") << QStringLiteral(
        "powersave|intel_pstate|1|battery|absent|Linux 6.1.0-18-amd64|madvise|0.42|61");
    QTest::newRow("server") << QStringLiteral(
        "performance|acpi-cpufreq|1|absent|absent|Linux 5.15.0-101-generic|always|12.57|52.375");
    QTest::newRow("board") << QStringLiteral(
        "ondemand|cpufreq-dt|0|absent|absent|Linux 6.1.0-rpi8-rpi-v8|never|0.08|48.199");
    QTest::newRow("container") << QStringLiteral(
        "absent|absent|absent|absent|absent|Linux 5.10.0-28-amd64|madvise|3.91|absent");
}

void tst_contextProbe::machines()
{
    QFETCH(QString, expected);
    QCOMPARE(answers(machineRoot(QTest::currentDataTag())), expected);
}

void tst_contextProbe::governors_data()
{
    QTest::addColumn<systemFiles>("files");
    QTest::addColumn<QString>("expected");
    const auto governor = [](int processor) {
        return cpu + QStringLiteral("cpu%1/cpufreq/scaling_governor").arg(processor);
    };
    QTest::newRow("one") << systemFiles{{governor(0), "schedutil\n"}}
                         << QStringLiteral("schedutil");
    QTest::newRow("the same") << systemFiles{{governor(0), "schedutil\n"},
                                             {governor(1), "schedutil\n"}}
                              << QStringLiteral("schedutil");
    QTest::newRow("mixed") << systemFiles{{governor(0), "powersave\n"},
                                          {governor(1), "performance\n"},
                                          {governor(11), "powersave\n"}}
                           << QStringLiteral("performance, powersave");
    QTest::newRow("one without") << systemFiles{{governor(0), "\n"}, {governor(1), "ondemand\n"}}
                                 << QStringLiteral("ondemand");
    QTest::newRow("none") << systemFiles{{cpu + QStringLiteral("cpu0/online"), "1\n"}} << absent;
}

void tst_contextProbe::governors()
{
    QFETCH(systemFiles, files);
    QFETCH(QString, expected);
    const systemTree tree(files);
    QCOMPARE(shown(readMachineContext(without(tree.root())).governor), expected);
}

void tst_contextProbe::boost_data()
{
    QTest::addColumn<systemFiles>("files");
    QTest::addColumn<QString>("expected");
    const QString noTurbo = cpu + QStringLiteral("intel_pstate/no_turbo");
    const QString general = cpu + QStringLiteral("cpufreq/boost");
    const QString on = QStringLiteral("1");
    const QString off = QStringLiteral("0");
    QTest::newRow("Intel, on") << systemFiles{{noTurbo, "0\n"}} << on;
    QTest::newRow("Intel, off") << systemFiles{{noTurbo, "1\n"}} << off;
    QTest::newRow("others, on") << systemFiles{{general, "1\n"}} << on;
    QTest::newRow("others, off") << systemFiles{{general, "0\n"}} << off;
    QTest::newRow("neither yes nor no") << systemFiles{{noTurbo, "2\n"}} << absent;
    QTest::newRow("negative") << systemFiles{{general, "-1\n"}} << absent;
    QTest::newRow("empty") << systemFiles{{general, ""}} << absent;
}

void tst_contextProbe::boost()
{
    QFETCH(systemFiles, files);
    QFETCH(QString, expected);
    const systemTree tree(files);
    QCOMPARE(shown(readMachineContext(without(tree.root())).boost), expected);
}

void tst_contextProbe::power_data()
{
    QTest::addColumn<systemFiles>("files");
    QTest::addColumn<QString>("expected");
    const QString mains = QStringLiteral("mains");
    const QString battery = QStringLiteral("battery");
    const systemFiles pluggedIn = supply("AC", "Mains", "online", "1");
    const systemFiles unplugged = supply("AC", "Mains", "online", "0");
    const auto has = [](const char *status) { return supply("BAT0", "Battery", "status", status); };
    QTest::newRow("full, plugged in") << both(pluggedIn, has("Full")) << mains;
    QTest::newRow("charging") << both(pluggedIn, has("Charging")) << mains;
    QTest::newRow("discharging, unplugged") << both(unplugged, has("Discharging")) << battery;
    QTest::newRow("discharging, plugged in") << both(pluggedIn, has("Discharging")) << battery;
    QTest::newRow("unknown, unplugged") << both(unplugged, has("Unknown")) << battery;
    QTest::newRow("discharging, no word of mains") << has("Discharging") << battery;
    QTest::newRow("full, no word of mains") << has("Full") << absent;
    QTest::newRow("charged through USB")
        << both(both(unplugged, supply("USBC000", "USB", "online", "1")), has("Charging")) << mains;
    QTest::newRow("two batteries, one of them in use")
        << both(both(pluggedIn, has("Full")), supply("BAT1", "Battery", "status", "Discharging"))
        << battery;
    QTest::newRow("mains alone") << pluggedIn << mains;
    QTest::newRow("an unplugged socket of a board") << unplugged << absent;
    QTest::newRow("a mouse") << both(
        both(pluggedIn, supply("hidpp", "Battery", "status", "Discharging")),
        supply("hidpp", "Battery", "scope", "Device"))
                             << mains;
    QTest::newRow("an uninterruptible supply")
        << supply("ups", "UPS", "status", "Discharging") << absent;
    QTest::newRow("nonsense") << both(supply("AC", "Mains", "online", "yes"), has("")) << absent;
}

void tst_contextProbe::power()
{
    QFETCH(systemFiles, files);
    QFETCH(QString, expected);
    const systemTree tree(files);
    QCOMPARE(shown(readMachineContext(without(tree.root())).power), expected);
}

void tst_contextProbe::virtualMachine_data()
{
    QTest::addColumn<systemFiles>("files");
    QTest::addColumn<QString>("expected");
    const systemFiles flagged = {{cpuinfo, "processor\t: 0\nflags\t\t: fpu vme hypervisor lm\n"}};
    const systemFiles last = {{cpuinfo, "processor\t: 0\nflags\t\t: fpu hypervisor\nbugs\t: no\n"}};
    const systemFiles alike = {{cpuinfo, "processor\t: 0\nflags\t\t: fpu hypervisor2\n"}};
    const QString tree = QStringLiteral("proc/device-tree/");
    QTest::newRow("a flag alone") << flagged << QStringLiteral("unknown");
    QTest::newRow("the last flag") << last << QStringLiteral("unknown");
    QTest::newRow("another flag") << alike << absent;
    QTest::newRow("the word elsewhere")
        << systemFiles{{cpuinfo, "model name\t: a hypervisor \nflags\t\t: fpu\n"}} << absent;
    QTest::newRow("VMware") << both(flagged, madeBy("VMware, Inc.", "VMware7,1"))
                            << QStringLiteral("VMware");
    QTest::newRow("VirtualBox") << madeBy("innotek GmbH", "VirtualBox")
                                << QStringLiteral("VirtualBox");
    QTest::newRow("Hyper-V") << madeBy("Microsoft Corporation", "Virtual Machine")
                             << QStringLiteral("Hyper-V");
    QTest::newRow("a tablet of the same maker")
        << madeBy("Microsoft Corporation", "Surface Pro 7") << absent;
    QTest::newRow("QEMU") << madeBy("QEMU", "Standard PC (Q35 + ICH9, 2009)")
                          << QStringLiteral("QEMU");
    QTest::newRow("rented") << madeBy("Amazon EC2", "m5.large") << QStringLiteral("Amazon EC2");
    QTest::newRow("rented as a whole") << madeBy("Amazon EC2", "c7g.metal-48xl") << absent;
    QTest::newRow("a real board") << madeBy("ASUSTeK COMPUTER INC.", "PRIME X470") << absent;
    QTest::newRow("Xen") << systemFiles{{QStringLiteral("sys/hypervisor/type"), "xen\n"}}
                         << QStringLiteral("Xen");
    QTest::newRow("a guest on ARM") << systemFiles{{tree + QStringLiteral("hypervisor/compatible"),
                                                    QByteArray("linux,kvm\0", 10)}}
                                    << QStringLiteral("KVM");
    QTest::newRow("QEMU on ARM") << systemFiles{{tree + QStringLiteral("compatible"),
                                                 QByteArray("linux,dummy-virt\0", 17)}}
                                 << QStringLiteral("QEMU");
}

void tst_contextProbe::virtualMachine()
{
    QFETCH(systemFiles, files);
    QFETCH(QString, expected);
    const systemTree tree(files);
    QCOMPARE(shown(readMachineContext(without(tree.root())).virtualMachine), expected);
}

void tst_contextProbe::temperature_data()
{
    QTest::addColumn<systemFiles>("files");
    QTest::addColumn<QString>("expected");
    const auto sensor = [](int number, const char *file, const char *value) {
        return systemFiles{{sensors + QStringLiteral("hwmon%1/").arg(number) + QLatin1String(file),
                            QByteArray(value) + '\n'}};
    };
    const auto zone = [](const char *type, const char *value) {
        return systemFiles{
            {zones + QStringLiteral("thermal_zone0/type"), QByteArray(type) + '\n'},
            {zones + QStringLiteral("thermal_zone0/temp"), QByteArray(value) + '\n'}};
    };
    const systemFiles first = sensor(0, "name", "coretemp");
    const systemFiles disk = both(sensor(1, "name", "nvme"), sensor(1, "temp1_input", "90000"));
    const auto measured = [&](const char *value) {
        return both(first, sensor(0, "temp1_input", value));
    };
    QTest::newRow("one sensor") << measured("45500") << QStringLiteral("45.5");
    QTest::newRow("the hottest") << both(measured("45500"), sensor(0, "temp2_input", "47000"))
                                 << QStringLiteral("47");
    QTest::newRow("two sockets") << both(
        measured("45500"), both(sensor(2, "name", "coretemp"), sensor(2, "temp1_input", "51000")))
                                 << QStringLiteral("51");
    QTest::newRow("limits are no measurements")
        << both(measured("45500"), sensor(0, "temp1_max", "100000")) << QStringLiteral("45.5");
    QTest::newRow("a disk") << disk << absent;
    QTest::newRow("what the fan is told")
        << both(both(sensor(0, "name", "k10temp"),
                     both(sensor(0, "temp1_label", "Tctl"), sensor(0, "temp1_input", "72000"))),
                both(sensor(0, "temp2_label", "Tdie"), sensor(0, "temp2_input", "45000")))
        << QStringLiteral("45");
    QTest::newRow("a zone") << zone("x86_pkg_temp", "50000") << QStringLiteral("50");
    QTest::newRow("a zone of a board") << zone("cpu0-thermal", "50000") << QStringLiteral("50");
    QTest::newRow("another zone") << zone("acpitz", "50000") << absent;
    QTest::newRow("a sensor before a zone")
        << both(measured("45500"), zone("cpu", "50000")) << QStringLiteral("45.5");
    QTest::newRow("a zone for a dead sensor")
        << both(measured("0"), zone("cpu", "50000")) << QStringLiteral("50");
    QTest::newRow("negative") << measured("-128000") << absent;
    QTest::newRow("too hot to be true") << measured("255000") << absent;
    QTest::newRow("out of range") << measured("99999999999999999999") << absent;
    QTest::newRow("words") << measured("45500 or so") << absent;
}

void tst_contextProbe::temperature()
{
    QFETCH(systemFiles, files);
    QFETCH(QString, expected);
    const systemTree tree(files);
    QCOMPARE(shown(readMachineMoment(tree.root()).temperature), expected);
}

void tst_contextProbe::oddFiles_data()
{
    QTest::addColumn<QByteArray>("content");
    QTest::newRow("empty") << QByteArray();
    QTest::newRow("an end of line") << QByteArray("\n");
    QTest::newRow("huge") << QByteArray(3 << 20, '1');
    QTest::newRow("binary") << QByteArray("\x7f\x45\x4c\x46\x01\0\0\x1b[2J", 11);
    QTest::newRow("letters of other scripts") << QByteArray("\xc3\xa4\xff");
    QTest::newRow("a number without an end") << QByteArray("-");
    QTest::newRow("not a number") << QByteArray("nan nan nan\n");
    QTest::newRow("no finite number") << QByteArray("inf inf inf\n");
    QTest::newRow("negative") << QByteArray("-1 -1 -1\n");
    QTest::newRow("brackets alone") << QByteArray("[] ][\n");
}

/// The same nonsense in every file that is read. What is a word may pass for one; no number may.
void tst_contextProbe::oddFiles()
{
    QFETCH(QByteArray, content);
    const systemTree tree;
    for (const QString &file :
         {cpu + QStringLiteral("cpufreq/boost"), cpu + QStringLiteral("intel_pstate/no_turbo"),
          supplies + QStringLiteral("BAT0/type"), supplies + QStringLiteral("AC/online"), cpuinfo,
          sensors + QStringLiteral("hwmon0/temp1_input"),
          zones + QStringLiteral("thermal_zone0/temp"), QStringLiteral("proc/loadavg"),
          QStringLiteral("sys/kernel/mm/transparent_hugepage/enabled")})
        QVERIFY(tree.write(file, content));
    QVERIFY(tree.write(supplies + QStringLiteral("AC/type"), "Mains\n"));
    QVERIFY(tree.write(sensors + QStringLiteral("hwmon0/name"), "coretemp\n"));
    QVERIFY(tree.write(zones + QStringLiteral("thermal_zone0/type"), "cpu\n"));
    QCOMPARE(answers(tree.root()),
             QStringList(QVector<QString>(9, absent).toList()).join(QLatin1Char('|')));
    // Words are kept only if they can be shown as they are.
    QVERIFY(tree.write(cpu + QStringLiteral("cpu0/cpufreq/scaling_governor"), content));
    const auto governor = readMachineContext(without(tree.root())).governor;
    QVERIFY(!governor || QByteArray(governor->toLatin1() + '\n') == content
            || governor->toLatin1() == content);
}

void tst_contextProbe::environment()
{
    contextSources sources = without(machineRoot("board"));
    for (const char *name : {"OMP_NUM_THREADS", "GOMP_CPU_AFFINITY", "KMP_BLOCKTIME",
                             "MALLOC_ARENA_MAX", "GLIBC_TUNABLES", "LD_PRELOAD"})
        sources.environment.insert(QString::fromLatin1(name),
                                   QStringLiteral("value of ") + QLatin1String(name));
    sources.environment.insert(QStringLiteral("OMP_EMPTY"), QString());
    for (const char *name : {"HOME", "LD_PRELOAD_OTHER", "GLIBC_TUNABLES2", "MY_OMP_NUM_THREADS",
                             "OMP_ \x1b[2J", "omp_num_threads", "MALLOC"})
        sources.environment.insert(QString::fromLatin1(name), QStringLiteral("1"));
    const QMap<QString, QString> found = readMachineContext(sources).environment;
    QCOMPARE(found.keys(),
             QStringList({QStringLiteral("GLIBC_TUNABLES"), QStringLiteral("GOMP_CPU_AFFINITY"),
                          QStringLiteral("KMP_BLOCKTIME"), QStringLiteral("LD_PRELOAD"),
                          QStringLiteral("MALLOC_ARENA_MAX"), QStringLiteral("OMP_NUM_THREADS")}));
    QCOMPARE(found.value(QStringLiteral("LD_PRELOAD")), QStringLiteral("value of LD_PRELOAD"));
}

void tst_contextProbe::environmentIsBounded()
{
    contextSources sources = without(machineRoot("board"));
    const QString longName = QStringLiteral("GOMP_") + QString(60, QLatin1Char('A'));
    sources.environment.insert(longName, QStringLiteral("1"));
    sources.environment.insert(QStringLiteral("GOMP_LONG"), QString(5000, QLatin1Char('x')));
    for (int i = 0; i < 100; ++i)
        sources.environment.insert(QStringLiteral("OMP_%1").arg(i), QStringLiteral("1"));
    const QMap<QString, QString> found = readMachineContext(sources).environment;
    QCOMPARE(found.size(), 64);
    QCOMPARE(found.value(QStringLiteral("GOMP_LONG")), QString(200, QLatin1Char('x')));
    QVERIFY(!found.contains(longName));
}

void tst_contextProbe::pageSize()
{
    contextSources sources = without(machineRoot("board"));
    sources.pageSize = 16384;
    QCOMPARE(readMachineContext(sources).pageSize.value_or(0), qint64(16384));
    const qint64 ours = contextSources::systemPageSize().value_or(0);
    QVERIFY(ours >= 4096 && (ours & (ours - 1)) == 0);
}

void tst_contextProbe::commaLocale()
{
    if (!std::setlocale(LC_NUMERIC, "de_DE.UTF-8"))
        QSKIP("no locale with a decimal comma is installed");
    const machineMoment moment = readMachineMoment(machineRoot("server"));
    std::setlocale(LC_NUMERIC, "C");
    QCOMPARE(moment.loadAverage.value_or(0), 12.57);
}

/// Against what the system's own calls say.
void tst_contextProbe::thisMachine()
{
    const machineContext context = readMachineContext();
    QCOMPARE(shown(context.kernel), QStringLiteral("Linux %1").arg(QSysInfo::kernelVersion()));
    double load = 0;
    QCOMPARE(getloadavg(&load, 1), 1);
    QVERIFY(readMachineMoment().loadAverage.has_value());
}

QTEST_APPLESS_MAIN(tst_contextProbe)
#include "tst_contextProbe.moc"
