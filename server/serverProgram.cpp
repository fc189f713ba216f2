// SPDX-License-Identifier: GPL-3.0-or-later
#include "server/serverProgram.h"

#include "server/operatorCommands.h"
#include "server/serverCommand.h"
#include "server/serving.h"

#include <QStandardPaths>

exitCode runServerProgram(const QStringList &arguments)
{
    const QString directory = QStandardPaths::writableLocation(QStandardPaths::AppDataLocation);
    const parsed<serverCommand> command =
        parseServerCommand(arguments, directory + QStringLiteral("/results.sqlite"));
    if (!command)
        return sayInClosing(command.error());
    return command->wanted == serverCommand::serve ? runServer(*command)
                                                   : runOperatorCommand(*command);
}
