// SPDX-License-Identifier: GPL-3.0-or-later
#include "tools/reference/coreFamilies.h"

#include <QStringList>

namespace reference
{

namespace
{

QVector<QString> names(const char *commaSeparated)
{
    return QString::fromLatin1(commaSeparated).split(QLatin1Char(',')).toVector();
}

} // namespace

const QVector<coreFamily> &coreFamilies()
{
    static const QVector<coreFamily> families = {
        {"Intel Core", names("Merom,Penryn,Nehalem,Westmere,Sandy Bridge,Ivy Bridge,Haswell,"
                             "Broadwell,Skylake,Kaby Lake,Coffee Lake,Comet Lake,Ice Lake,"
                             "Tiger Lake,Golden Cove,Raptor Cove,Redwood Cove")},
        {"Intel Rocket Lake", names("Ice Lake,Rocket Lake")},
        {"Intel Atom", names("Bonnell,Silvermont,Airmont,Goldmont,Goldmont Plus,Tremont,"
                             "Gracemont")},
        {"AMD Zen", names("Zen,Zen+,Zen 2,Zen 3,Zen 3+,Zen 4,Zen 5")},
        {"AMD K8, K10", names("K8,K10")},
        {"AMD Bulldozer line", names("Bulldozer,Piledriver,Steamroller,Excavator")},
        {"AMD Bobcat line", names("Bobcat,Jaguar")},
        {"ARM Cortex-A, big", names("Cortex-A9,Cortex-A15,Cortex-A57,Cortex-A72,Cortex-A73,"
                                    "Cortex-A75,Cortex-A76,Cortex-A77,Cortex-A78,Cortex-A710")},
        {"ARM Cortex-A, small", names("Cortex-A7,Cortex-A53,Cortex-A55")},
        {"ARM Cortex-X", names("Cortex-X1,Cortex-X2,Cortex-X3,Cortex-X4")},
        {"ARM Neoverse", names("Neoverse N1,Neoverse V1")},
        {"Qualcomm Krait, Kryo", names("Krait,Kryo")},
        {"Samsung Exynos M", names("Exynos M1,Exynos M3")},
    };
    return families;
}

} // namespace reference
