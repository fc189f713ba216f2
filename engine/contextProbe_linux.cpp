// SPDX-License-Identifier: GPL-3.0-or-later
#include "engine/contextProbe.h"

#include "engine/environmentSettings.h"
#include "engine/systemFile.h"
#include "engine/virtualMachine.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <set>
#include <unistd.h>

namespace
{

namespace fs = std::filesystem;

std::optional<QString> asText(const std::optional<std::string> &text)
{
    return text ? std::make_optional(QString::fromStdString(*text)) : std::nullopt;
}

/// What a file of cpufreq says, which may differ from core to core: all of it, joined by commas.
std::optional<QString> cpufreqWords(const fs::path &root, const char *fileName)
{
    std::set<std::string> words;
    systemFile::forEach(root / "sys/devices/system/cpu", "cpu", [&](const fs::path &processor) {
        if (const auto word = systemFile::line(processor / "cpufreq" / fileName))
            words.insert(*word);
    });
    QStringList list;
    for (const std::string &word : words)
        list.append(QString::fromStdString(word));
    return list.isEmpty() ? std::nullopt : std::make_optional(list.join(QStringLiteral(", ")));
}

std::optional<bool> readSwitch(const fs::path &file)
{
    const auto value = systemFile::number(file);
    const bool isSwitch = value && (*value == 0 || *value == 1);
    return isSwitch ? std::make_optional(*value == 1) : std::nullopt;
}

std::optional<bool> readBoost(const fs::path &root)
{
    const fs::path processors = root / "sys/devices/system/cpu";
    if (const auto isOff = readSwitch(processors / "intel_pstate/no_turbo"))
        return !*isOff;
    return readSwitch(processors / "cpufreq/boost");
}

/// What the machine is fed by. Batteries of mice and the like have the scope of a device.
std::optional<machineContext::powerSource> readPower(const fs::path &root)
{
    bool hasBattery = false;
    bool isDischarging = false;
    bool hasMains = false;
    bool isPluggedIn = false;
    systemFile::forEach(root / "sys/class/power_supply", "", [&](const fs::path &supply) {
        const auto type = systemFile::line(supply / "type");
        if (systemFile::line(supply / "scope") == "Device")
            return;
        if (type == "Battery") {
            const auto status = systemFile::line(supply / "status");
            hasBattery = hasBattery || status;
            isDischarging = isDischarging || status == "Discharging";
        } else if (type == "Mains" || type == "USB") { // laptops are charged through either
            const auto isOnline = readSwitch(supply / "online");
            hasMains = hasMains || isOnline;
            isPluggedIn = isPluggedIn || isOnline.value_or(false);
        }
    });
    if (isDischarging || (hasBattery && hasMains && !isPluggedIn))
        return machineContext::battery;
    return isPluggedIn ? std::make_optional(machineContext::mains) : std::nullopt;
}

std::optional<QString> readKernel(const fs::path &root)
{
    const auto name = systemFile::line(root / "proc/sys/kernel/ostype");
    const auto release = systemFile::line(root / "proc/sys/kernel/osrelease");
    return name && release ? asText(*name + ' ' + *release) : std::nullopt;
}

/// The word in brackets, which is the chosen one.
std::optional<QString> readHugePages(const fs::path &root)
{
    const std::string words =
        systemFile::line(root / "sys/kernel/mm/transparent_hugepage/enabled").value_or("");
    const auto open = words.find('[');
    const auto close = words.find(']', open == words.npos ? words.size() : open);
    return close == words.npos || close == open + 1
               ? std::nullopt
               : asText(words.substr(open + 1, close - open - 1));
}

/// The degrees Celsius in a file of thousandths. Sensors without an answer say 0, or what no
/// processor runs at.
std::optional<double> readDegrees(const fs::path &file)
{
    const auto thousandths = systemFile::number(file);
    return thousandths && *thousandths > 0 && *thousandths <= 130'000
               ? std::make_optional(static_cast<double>(*thousandths) / 1000)
               : std::nullopt;
}

void keepHottest(std::optional<double> &hottest, const std::optional<double> &degrees)
{
    if (degrees)
        hottest = std::max(hottest.value_or(0), *degrees);
}

/// The hottest sensor of a chip in @p monitor. "Tctl" is what the fan is controlled by, up to 27
/// degrees above the processor's own "Tdie".
std::optional<double> temperatureOf(const fs::path &monitor)
{
    std::optional<double> hottest;
    std::optional<double> die;
    systemFile::forEach(monitor, "temp", [&](const fs::path &file) {
        std::string name = file.filename().string();
        const auto suffix = name.find("_input");
        if (suffix == name.npos)
            return;
        const auto degrees = readDegrees(file);
        keepHottest(hottest, degrees);
        const auto label = systemFile::line(monitor / name.replace(suffix, name.npos, "_label"));
        if (label == "Tdie")
            keepHottest(die, degrees);
    });
    return die ? die : hottest;
}

std::optional<double> readTemperature(const fs::path &root)
{
    constexpr const char *chips[] = {"coretemp", "k10temp", "zenpower", "cpu_thermal"};
    std::optional<double> hottest;
    systemFile::forEach(root / "sys/class/hwmon", "hwmon", [&](const fs::path &monitor) {
        const auto name = systemFile::line(monitor / "name");
        if (std::find(std::begin(chips), std::end(chips), name) != std::end(chips))
            keepHottest(hottest, temperatureOf(monitor));
    });
    if (hottest)
        return hottest;
    systemFile::forEach(root / "sys/class/thermal", "thermal_zone", [&](const fs::path &zone) {
        const std::string type = systemFile::line(zone / "type").value_or("");
        if (type == "x86_pkg_temp" || type.starts_with("cpu"))
            keepHottest(hottest, readDegrees(zone / "temp"));
    });
    return hottest;
}

std::optional<double> readLoadAverage(const fs::path &root)
{
    const std::string text = systemFile::line(root / "proc/loadavg").value_or("");
    const std::size_t length = text.find(' ');
    if (length == text.npos)
        return std::nullopt;
    double load = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + length, load);
    const bool isLoad =
        error == std::errc() && end == text.data() + length && load >= 0 && std::isfinite(load);
    return isLoad ? std::make_optional(load) : std::nullopt;
}

} // namespace

std::optional<qint64> contextSources::systemPageSize()
{
    const long size = sysconf(_SC_PAGESIZE);
    return size > 0 ? std::make_optional<qint64>(size) : std::nullopt;
}

machineContext readMachineContext(const contextSources &sources)
{
    machineContext context;
    context.governor = cpufreqWords(sources.root, "scaling_governor");
    context.frequencyDriver = cpufreqWords(sources.root, "scaling_driver");
    context.boost = readBoost(sources.root);
    context.power = readPower(sources.root);
    context.virtualMachine = asText(readVirtualMachine(sources.root));
    context.kernel = readKernel(sources.root);
    context.pageSize = sources.pageSize;
    context.hugePages = readHugePages(sources.root);
    context.environment = environmentSettings(sources.environment);
    return context;
}

machineMoment readMachineMoment(const fs::path &root)
{
    return {readLoadAverage(root), readTemperature(root)};
}
