// SPDX-License-Identifier: GPL-3.0-or-later
#include "engine/processorInfo.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <fstream>
#include <string_view>
#include <system_error>

namespace
{

namespace fs = std::filesystem;

std::string_view trimmed(std::string_view text)
{
    constexpr std::string_view blanks = " \t\r\n";
    const auto first = text.find_first_not_of(blanks);
    if (first == std::string_view::npos)
        return {};
    return text.substr(first, text.find_last_not_of(blanks) - first + 1);
}

std::optional<std::uint32_t> roundedMegahertz(double megahertz)
{
    if (!(megahertz >= 1.0) || megahertz > 1e6)
        return std::nullopt;
    return static_cast<std::uint32_t>(std::lround(megahertz));
}

/// The number at the start of @p text, whatever the locale; 0 if there is none.
double toNumber(std::string_view text)
{
    double number = 0;
    std::from_chars(text.data(), text.data() + text.size(), number);
    return number;
}

/// The value of the first line "key : value" with exactly this key and a value.
std::optional<std::string> cpuinfoValue(const fs::path &root, std::string_view key)
{
    std::ifstream file(root / "proc/cpuinfo");
    for (std::string line; std::getline(file, line);) {
        const auto colon = line.find(':');
        if (colon == std::string::npos || trimmed(std::string_view(line).substr(0, colon)) != key)
            continue;
        const auto value = trimmed(std::string_view(line).substr(colon + 1));
        if (!value.empty())
            return std::string(value);
    }
    return std::nullopt;
}

/// The board's name, which stands in the device tree with a zero at its end.
std::optional<std::string> deviceTreeModel(const fs::path &root)
{
    std::ifstream file(root / "proc/device-tree/model");
    std::string model;
    if (!std::getline(file, model, '\0') || trimmed(model).empty())
        return std::nullopt;
    return model;
}

/// The largest value, in MHz, of one cpufreq file over all processors: the cores of a phone or of a
/// hybrid processor differ, and the fastest of them give it its clock.
std::optional<std::uint32_t> cpufreqMegahertz(const fs::path &root, const char *fileName)
{
    double fastest = 0;
    std::error_code error;
    for (const auto &entry : fs::directory_iterator(root / "sys/devices/system/cpu", error)) {
        double kilohertz = 0;
        if (std::ifstream(entry.path() / "cpufreq" / fileName) >> kilohertz)
            fastest = std::max(fastest, kilohertz);
    }
    return roundedMegahertz(fastest * 1e-3);
}

/// The clock that some makers write into the name, such as "3.40GHz" or "800 MHz".
std::optional<std::uint32_t> megahertzInName(std::string_view name)
{
    for (auto unit = name.find("Hz"); unit != name.npos; unit = name.find("Hz", unit + 1)) {
        if (unit < 2 || (name[unit - 1] != 'G' && name[unit - 1] != 'M'))
            continue;
        const auto last = name.find_last_not_of(' ', unit - 2);
        if (last == name.npos)
            continue;
        const auto before = name.find_last_not_of("0123456789.", last);
        const auto first = before == name.npos ? 0 : before + 1;
        const double factor = name[unit - 1] == 'G' ? 1000.0 : 1.0;
        const auto megahertz = roundedMegahertz(toNumber(name.substr(first)) * factor);
        if (megahertz)
            return megahertz;
    }
    return std::nullopt;
}

/// The clock at this moment, the last resort.
std::optional<std::uint32_t> currentMegahertz(const fs::path &root)
{
    const auto text = cpuinfoValue(root, "cpu MHz");
    return text ? roundedMegahertz(toNumber(*text)) : std::nullopt;
}

} // namespace

processorInfo readProcessorInfo(const fs::path &root)
{
    processorInfo info;
    info.name = cpuinfoValue(root, "model name");
    if (!info.name)
        info.name = deviceTreeModel(root);

    info.megahertz = cpufreqMegahertz(root, "base_frequency");
    if (!info.megahertz)
        info.megahertz = megahertzInName(info.name.value_or(""));
    if (!info.megahertz)
        info.megahertz = cpufreqMegahertz(root, "cpuinfo_max_freq");
    if (!info.megahertz)
        info.megahertz = currentMegahertz(root);
    return info;
}
