// SPDX-License-Identifier: GPL-3.0-or-later
#include "server/packedMachine.h"

#include "server/ceilings.h"

#include <QCryptographicHash>
#include <QDataStream>

namespace
{

/// A result is stored with the place of its test in this list.
const QStringList &testNames()
{
    static const QStringList names = resultCeilings().keys();
    return names;
}

} // namespace

QByteArray packedMachine(const benchResults &machine)
{
    QByteArray packed;
    QDataStream out(&packed, QIODevice::WriteOnly);
    out.setFloatingPointPrecision(QDataStream::SinglePrecision);
    out << machine.getCpu().toUtf8() << machine.getOs().toUtf8()
        << static_cast<qint32>(machine.getThreads()) << machine.getFrequency();
    const QMap<QString, benchResults::test> &tests = machine.getTests();
    for (auto test = tests.begin(); test != tests.end(); ++test) {
        const int place = testNames().indexOf(test.key());
        if (place >= 0)
            out << static_cast<quint8>(place) << test->value;
    }
    return packed;
}

benchResults unpackedMachine(const QByteArray &packed)
{
    QDataStream in(packed);
    in.setFloatingPointPrecision(QDataStream::SinglePrecision);
    QByteArray cpu;
    QByteArray os;
    qint32 threads = 0;
    float clock = 0;
    in >> cpu >> os >> threads >> clock;
    benchResults machine(QString(), QString::fromUtf8(os), QString::fromUtf8(cpu), clock, threads);
    QMap<QString, benchResults::test> &tests = machine.getTests();
    while (!in.atEnd()) {
        quint8 place = 0;
        float value = 0;
        in >> place >> value;
        // They come in the order of their names.
        if (in.status() == QDataStream::Ok && place < testNames().size())
            tests.insert(tests.cend(), testNames().at(place), benchResults::test(value));
    }
    return machine;
}

QString packingName()
{
    const QByteArray names = testNames().join(QLatin1Char('\n')).toUtf8();
    return QStringLiteral("1 %1").arg(QString::fromLatin1(
        QCryptographicHash::hash(names, QCryptographicHash::Sha256).toHex().left(16)));
}
