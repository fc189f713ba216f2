// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QByteArray>
#include <QString>

class benchResults;

/// One upload as it is kept.
struct storedUpload {
    qint64 id = 0;
    QByteArray hash;      ///< SHA-256 of the content, in hex
    qint64 received = 0;  ///< milliseconds since 1970, by the server's clock
    QString state;        ///< received, published or withdrawn
    QString reason;       ///< why it was withdrawn
    QByteArray content;   ///< the machine in its canonical XML
    bool isEmpty = false; ///< whether all results are 0
};

/// A new upload of @p machine, received at @p now, in milliseconds since 1970. Equal results have
/// equal hashes.
storedUpload makeUpload(const benchResults &machine, qint64 now);

/// The machine that was uploaded.
benchResults uploadedMachine(const storedUpload &upload);
