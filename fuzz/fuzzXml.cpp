// SPDX-License-Identifier: GPL-3.0-or-later

// A list of machines from a file or from the network.

#include "data/benchXml.h"

#include <QXmlStreamWriter>

#include <cstdint>
#include <cstdlib>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    const QVector<benchResults> machines =
        readMachines(QByteArray(reinterpret_cast<const char *>(data), static_cast<int>(size)));
    QByteArray content;
    QXmlStreamWriter xml(&content);
    xml.writeStartElement(QStringLiteral("F"));
    for (const benchResults &machine : machines)
        writeMachine(xml, machine);
    xml.writeEndElement();
    // Whatever was read can be written and is read again, each machine with all of its results.
    const QVector<benchResults> again = readMachines(content);
    if (again.size() != machines.size())
        std::abort();
    for (int i = 0; i < machines.size(); ++i) {
        if (again.at(i).getTests().size() != machines.at(i).getTests().size())
            std::abort();
    }
    return 0;
}
