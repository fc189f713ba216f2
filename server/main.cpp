// SPDX-License-Identifier: GPL-3.0-or-later
#include "server/serverProgram.h"

#include <QCoreApplication>

int main(int argc, char **argv)
{
    const QCoreApplication app(argc, argv);
    QCoreApplication::setApplicationName(QStringLiteral("fennick-server"));
    return runServerProgram(QCoreApplication::arguments());
}
