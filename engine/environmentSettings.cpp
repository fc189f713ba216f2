// SPDX-License-Identifier: GPL-3.0-or-later
#include "engine/environmentSettings.h"

#include <QStringList>

#include <algorithm>

namespace
{

enum matching { wholeName, beginning };

struct setting {
    const char *name;
    matching how;
};

/// The GNU library reads OMP_ and GOMP_, that of LLVM OMP_ and KMP_.
constexpr setting settings[] = {
    {"OMP_", beginning},    {"GOMP_", beginning},          {"KMP_", beginning},
    {"MALLOC_", beginning}, {"GLIBC_TUNABLES", wholeName}, {"LD_PRELOAD", wholeName},
};

constexpr int longestName = 64;
constexpr int longestValue = 200;
constexpr int mostSettings = 64;

bool isWord(const QString &name)
{
    return std::all_of(name.begin(), name.end(), [](QChar c) {
        return c == QLatin1Char('_') || (c.unicode() < 128 && c.isLetterOrNumber());
    });
}

bool movesNumbers(const QString &name)
{
    return std::any_of(std::begin(settings), std::end(settings), [&](const setting &one) {
        const QLatin1String known(one.name);
        return one.how == wholeName ? name == known : name.startsWith(known);
    });
}

} // namespace

QMap<QString, QString> environmentSettings(const QProcessEnvironment &environment)
{
    QMap<QString, QString> found;
    QStringList names = environment.keys();
    names.sort();
    for (const QString &name : qAsConst(names)) {
        const QString value = environment.value(name);
        if (found.size() == mostSettings || value.isEmpty() || name.size() > longestName
            || !movesNumbers(name) || !isWord(name))
            continue;
        found.insert(name, value.left(longestValue));
    }
    return found;
}
