// SPDX-License-Identifier: GPL-3.0-or-later
#include "server/rules/listBounds.h"

#include "data/benchXml.h"
#include "data/estimate.h"
#include "server/rules/groupRules.h"

#include <QMultiHash>
#include <QSet>
#include <QXmlStreamWriter>

#include <algorithm>
#include <iterator>
#include <numeric>
#include <tuple>

namespace
{

/// The bytes of a list besides those of its machines.
qint64 frameSize()
{
    static const qint64 size = [] {
        const benchResults machine;
        return 2 * listXml({machine}).size() - listXml({machine, machine}).size();
    }();
    return size;
}

/// The bytes that @p machine adds to a list.
qint64 sizeOf(const benchResults &machine)
{
    return listXml({machine}).size() - frameSize();
}

/// The indexes of @p candidates, whoever is to stay first in front.
std::vector<int> byMerit(const QVector<listCandidate> &candidates)
{
    std::vector<int> order(static_cast<std::size_t>(candidates.size()));
    std::iota(order.begin(), order.end(), 0);
    const auto merit = [&candidates](int index) {
        const listCandidate &one = candidates.at(index);
        return std::make_tuple(-one.sources, one.first, groupKey(one.machine));
    };
    std::vector<std::tuple<int, qint64, QString>> merits;
    merits.reserve(order.size());
    std::transform(order.begin(), order.end(), std::back_inserter(merits), merit);
    std::sort(order.begin(), order.end(), [&merits](int left, int right) {
        return merits[static_cast<std::size_t>(left)] < merits[static_cast<std::size_t>(right)];
    });
    return order;
}

/// A list that grows within its bounds.
class growingList
{
public:
    explicit growingList(const QVector<benchResults> &builtIn) : machines(builtIn)
    {
        for (const benchResults &machine : builtIn) {
            bytes += sizeOf(machine);
            if (isEstimate(machine.getName()))
                estimates.insert(groupKey(machine), machine);
        }
        count = builtIn.size();
    }

    /// Takes @p machine in place of the modelled ones of its group, if there is room.
    bool take(const benchResults &machine)
    {
        const QString key = groupKey(machine);
        qint64 bytesThen = bytes + sizeOf(machine);
        int countThen = count + 1;
        const QList<benchResults> models = estimates.values(key);
        for (const benchResults &model : models) {
            bytesThen -= sizeOf(model);
            --countThen;
        }
        if (bytesThen > boundedList::mostBytes || countThen > boundedList::mostMachines)
            return false;
        bytes = bytesThen;
        count = countThen;
        estimates.remove(key);
        measured.insert(key);
        return true;
    }

    /// The built-in machines that have not given way.
    QVector<benchResults> builtIn() const
    {
        QVector<benchResults> stay;
        std::copy_if(machines.begin(), machines.end(), std::back_inserter(stay),
                     [this](const benchResults &machine) {
                         return !isEstimate(machine.getName())
                                || !measured.contains(groupKey(machine));
                     });
        return stay;
    }

private:
    const QVector<benchResults> machines;
    QMultiHash<QString, benchResults> estimates;
    QSet<QString> measured;
    qint64 bytes = frameSize();
    int count = 0;
};

} // namespace

boundedList boundedListOf(const QVector<benchResults> &builtIn,
                          const QVector<listCandidate> &candidates)
{
    growingList growing(builtIn);
    std::vector<bool> stays(static_cast<std::size_t>(candidates.size()));
    for (const int index : byMerit(candidates))
        stays[static_cast<std::size_t>(index)] = growing.take(candidates.at(index).machine);
    boundedList list;
    list.machines = growing.builtIn();
    for (int i = 0; i < candidates.size(); ++i) {
        QVector<benchResults> &side =
            stays[static_cast<std::size_t>(i)] ? list.machines : list.leftOut;
        side.append(candidates.at(i).machine);
    }
    return list;
}

QByteArray listXml(const QVector<benchResults> &machines)
{
    QByteArray content;
    QXmlStreamWriter xml(&content);
    xml.setAutoFormatting(true);
    xml.writeStartDocument();
    xml.writeStartElement(QStringLiteral("Fennick"));
    for (const benchResults &machine : machines)
        writeMachine(xml, machine);
    xml.writeEndDocument();
    return content;
}
