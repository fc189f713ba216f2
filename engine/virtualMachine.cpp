// SPDX-License-Identifier: GPL-3.0-or-later
#include "engine/virtualMachine.h"

#include "engine/systemFile.h"

#include <algorithm>

namespace
{

namespace fs = std::filesystem;

/// What the firmware of a virtual machine gives for its maker and model: the beginning of each, and
/// "" for any.
struct virtualBoard {
    const char *vendor;
    const char *product;
    const char *kind;
};

constexpr virtualBoard virtualBoards[] = {
    {"VMware", "", "VMware"},
    {"innotek GmbH", "", "VirtualBox"},
    {"", "VirtualBox", "VirtualBox"},
    {"Microsoft Corporation", "Virtual Machine", "Hyper-V"},
    {"Xen", "", "Xen"},
    {"Parallels", "", "Parallels"},
    {"BHYVE", "", "bhyve"},
    {"Apple Inc.", "Apple Virtualization", "Apple Virtualization"},
    {"Google", "Google Compute Engine", "Google Compute Engine"},
    {"Amazon EC2", "", "Amazon EC2"},
    {"DigitalOcean", "Droplet", "DigitalOcean"},
    {"OpenStack", "", "OpenStack"},
    {"", "OpenStack", "OpenStack"},
    {"QEMU", "", "QEMU"},
    {"Bochs", "", "Bochs"},
    {"", "KVM", "KVM"},
};

std::optional<std::string> kindOfBoard(const fs::path &root)
{
    const fs::path board = root / "sys/class/dmi/id";
    const std::string vendor = systemFile::line(board / "sys_vendor").value_or("");
    const std::string product = systemFile::line(board / "product_name").value_or("");
    // The same maker rents out whole machines, too.
    if (product.find(".metal") != product.npos)
        return std::nullopt;
    for (const virtualBoard &one : virtualBoards) {
        if (vendor.starts_with(one.vendor) && product.starts_with(one.product))
            return one.kind;
    }
    return std::nullopt;
}

/// What a hypervisor adds to the device tree of a board, such as "linux,kvm".
std::optional<std::string> kindOfDeviceTree(const fs::path &root)
{
    const fs::path tree = root / "proc/device-tree";
    const auto first = [](const std::string &text) { return text.substr(0, text.find('\0')); };
    const std::string hypervisor = first(systemFile::head(tree / "hypervisor/compatible", 128));
    if (hypervisor.starts_with("linux,kvm"))
        return "KVM";
    if (hypervisor.starts_with("xen,"))
        return "Xen";
    if (hypervisor.starts_with("vmware"))
        return "VMware";
    if (!hypervisor.empty())
        return "unknown";
    if (first(systemFile::head(tree / "compatible", 128)) == "linux,dummy-virt")
        return "QEMU";
    return std::nullopt;
}

/// Whether the first processor has the mark that hypervisors set on x86.
bool hasHypervisorFlag(const fs::path &root)
{
    const std::string processors = systemFile::head(root / "proc/cpuinfo", 16384);
    const auto flags = processors.find("\nflags");
    if (flags == processors.npos)
        return false;
    const auto end = processors.find('\n', flags + 1);
    const std::string line = processors.substr(flags, end - flags) + ' ';
    return line.find(" hypervisor ") != line.npos;
}

} // namespace

std::optional<std::string> readVirtualMachine(const fs::path &root)
{
    if (auto kind = kindOfBoard(root))
        return kind;
    if (auto kind = kindOfDeviceTree(root))
        return kind;
    if (const auto type = systemFile::line(root / "sys/hypervisor/type"))
        return *type == "xen" ? "Xen" : *type;
    if (hasHypervisorFlag(root))
        return "unknown";
    return std::nullopt;
}
