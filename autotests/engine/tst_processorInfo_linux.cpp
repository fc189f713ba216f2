// SPDX-License-Identifier: GPL-3.0-or-later
#include "engine/processorInfo.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <QtTest>

#include <clocale>

namespace
{

using fileList = QMap<QString, QByteArray>;

const QString cpuinfo = QStringLiteral("proc/cpuinfo");
const QString deviceTree = QStringLiteral("proc/device-tree/model");

QString cpufreq(int processor, const char *file)
{
    return QStringLiteral("sys/devices/system/cpu/cpu%1/cpufreq/%2")
        .arg(QString::number(processor), QLatin1String(file));
}

void addIntelRows()
{
    const QByteArray desktop = "processor\t: 0\n"
                               "vendor_id\t: GenuineIntel\n"
                               "cpu family\t: 6\n"
                               "model\t\t: 60\n"
                               "model name\t: Intel(R) Core(TM) i7-4770 CPU @ 3.40GHz\n"
                               "cpu MHz\t\t: 3900.112\n"
                               "\n"
                               "processor\t: 1\n"
                               "model name\t: another one\n";
    const QString name = QStringLiteral("Intel(R) Core(TM) i7-4770 CPU @ 3.40GHz");
    QTest::newRow("Intel, clock in the name") << fileList{{cpuinfo, desktop}} << name << 3400;
    QTest::newRow("Intel, base frequency wins")
        << fileList{{cpuinfo, desktop},
                    {cpufreq(0, "base_frequency"), "3500000\n"},
                    {cpufreq(0, "cpuinfo_max_freq"), "3900000\n"}}
        << name << 3500;
    QTest::newRow("Intel, the name before the highest clock")
        << fileList{{cpuinfo, desktop}, {cpufreq(0, "cpuinfo_max_freq"), "3900000\n"}} << name
        << 3400;
    QTest::newRow("old Intel, clock without at sign")
        << fileList{{cpuinfo, "model name\t: Intel(R) Pentium(R) 4 CPU 2.80GHz\n"}}
        << QStringLiteral("Intel(R) Pentium(R) 4 CPU 2.80GHz") << 2800;
    QTest::newRow("very old Intel, MHz")
        << fileList{{cpuinfo, "model name\t: Mobile Intel(R) Processor 800MHz\n"}}
        << QStringLiteral("Mobile Intel(R) Processor 800MHz") << 800;
    QTest::newRow("units without a number")
        << fileList{{cpuinfo, "model name\t: Hz MHz  GHz and 1.5 GHz\n"}}
        << QStringLiteral("Hz MHz  GHz and 1.5 GHz") << 1500;
}

void addOtherRows()
{
    QTest::newRow("AMD") << fileList{{cpuinfo, "vendor_id\t: AuthenticAMD\n"
                                               "model name\t: AMD Ryzen 7 2700X Eight-Core "
                                               "Processor\n"
                                               "cpu MHz\t\t: 2056.351\n"},
                                     {cpufreq(0, "cpuinfo_max_freq"), "3700000\n"},
                                     {cpufreq(1, "cpuinfo_max_freq"), "3700000\n"}}
                         << QStringLiteral("AMD Ryzen 7 2700X Eight-Core Processor") << 3700;
    QTest::newRow("anonymous processor of a hypervisor")
        << fileList{{cpuinfo, "model name\t: AMD EPYC\ncpu MHz\t\t: 2249.998\n"}}
        << QStringLiteral("AMD EPYC") << 2250;
    QTest::newRow("Raspberry Pi 4")
        << fileList{{cpuinfo, "processor\t: 0\nBogoMIPS\t: 108.00\nFeatures\t: fp asimd\n"
                              "CPU part\t: 0xd08\n\nRevision\t: c03112\n"
                              "Model\t\t: not this one\n"},
                    {deviceTree, QByteArray("Raspberry Pi 4 Model B Rev 1.2\0", 31)},
                    {cpufreq(0, "cpuinfo_max_freq"), "1500000\n"}}
        << QStringLiteral("Raspberry Pi 4 Model B Rev 1.2") << 1500;
    QTest::newRow("phone with two kinds of cores")
        << fileList{{cpuinfo, "Processor\t: AArch64 Processor rev 14 (aarch64)\n"
                              "processor\t: 0\nCPU part\t: 0xd05\n"
                              "Hardware\t: Vendor SoC\n"},
                    {deviceTree, QByteArray("Vendor SoC phone\0", 17)},
                    {cpufreq(0, "cpuinfo_max_freq"), "1785600\n"},
                    {cpufreq(7, "cpuinfo_max_freq"), "2841600\n"}}
        << QStringLiteral("Vendor SoC phone") << 2842;
    QTest::newRow("name without a value")
        << fileList{{cpuinfo, "model name\t:\n"}, {deviceTree, "Board"}} << QStringLiteral("Board")
        << -1;
    QTest::newRow("nonsense") << fileList{{cpuinfo, "::::\n\0\xff\nmodel name\n"},
                                          {cpufreq(0, "base_frequency"), "fast\n"},
                                          {cpufreq(0, "cpuinfo_max_freq"), "-5\n"}}
                              << QString() << -1;
    QTest::newRow("empty files") << fileList{{cpuinfo, ""}, {deviceTree, ""}} << QString() << -1;
    QTest::newRow("no files") << fileList{} << QString() << -1;
}

} // namespace

Q_DECLARE_METATYPE(fileList)

class tst_processorInfo_linux : public QObject
{
    Q_OBJECT

private slots:
    void machines_data();
    void machines();
    void commaLocale();
    void thisMachine();
};

void tst_processorInfo_linux::machines_data()
{
    QTest::addColumn<fileList>("files");
    QTest::addColumn<QString>("name");  // null: no answer
    QTest::addColumn<int>("megahertz"); // -1: no answer
    addIntelRows();
    addOtherRows();
}

void tst_processorInfo_linux::machines()
{
    QFETCH(fileList, files);
    QFETCH(QString, name);
    QFETCH(int, megahertz);
    const QTemporaryDir root;
    for (auto file = files.cbegin(); file != files.cend(); ++file) {
        const QString path = root.filePath(file.key());
        QVERIFY(QDir().mkpath(QFileInfo(path).path()));
        QFile out(path);
        QVERIFY(out.open(QIODevice::WriteOnly));
        QCOMPARE(out.write(file.value()), file.value().size());
    }
    const processorInfo info = readProcessorInfo(root.path().toStdString());
    QCOMPARE(info.name.has_value(), !name.isNull());
    if (info.name)
        QCOMPARE(QString::fromStdString(*info.name), name);
    QCOMPARE(info.megahertz ? static_cast<int>(*info.megahertz) : -1, megahertz);
}

void tst_processorInfo_linux::commaLocale()
{
    const QTemporaryDir root;
    QVERIFY(QDir(root.path()).mkpath(QStringLiteral("proc")));
    QFile out(root.filePath(cpuinfo));
    QVERIFY(out.open(QIODevice::WriteOnly));
    out.write("model name : X @ 3.40GHz\n");
    out.close();
    if (!std::setlocale(LC_NUMERIC, "de_DE.UTF-8"))
        QSKIP("no locale with a decimal comma is installed");
    const processorInfo info = readProcessorInfo(root.path().toStdString());
    std::setlocale(LC_NUMERIC, "C");
    QCOMPARE(info.megahertz.value_or(0), 3400U);
}

void tst_processorInfo_linux::thisMachine()
{
    if (!QFile::exists(QStringLiteral("/proc/cpuinfo")))
        QSKIP("this machine has no /proc");
    readProcessorInfo(); // whatever it says, it must come back
}

QTEST_APPLESS_MAIN(tst_processorInfo_linux)
#include "tst_processorInfo_linux.moc"
