// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "data/benchXml.h"

#include <QBuffer>

/// Reads @p xml as a file is read, and appends what it holds to @p machines.
inline listEnd endOf(QByteArray xml, QVector<benchResults> &machines)
{
    QBuffer buffer(&xml);
    buffer.open(QIODevice::ReadOnly | QIODevice::Text);
    return readMachines(buffer, machines);
}

inline QVector<benchResults> machinesOf(const QByteArray &xml)
{
    QVector<benchResults> machines;
    endOf(xml, machines);
    return machines;
}

/// In the form of the built-in list.
inline const QByteArray twoMachines =
    "<Fennick>\r\n"
    "        <bench machineName=\"Lab &amp; Co\" os=\"linux\" cpu=\"Some CPU\" "
    "clock=\"3500000000\" threadCount=\"8\">\r\n"
    "                <test name=\"shellsort\" result=\"12.5\"/>\r\n"
    "                <test name=\"rotozoom 'linear (multicore)'\" result=\"1.5e+03\"/>\r\n"
    "        </bench>\r\n"
    "        <bench machineName=\"B\" os=\"android\" cpu=\"\" clock=\"0\" threadCount=\"4\">\r\n"
    "                <test name=\"colors \" result=\"7\"/>\r\n"
    "        </bench>\r\n"
    "</Fennick>\r\n";
