// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "engine/outcome.h"

#include <QByteArray>
#include <QString>

class benchResults;

/// One upload as it is kept.
struct storedUpload {
    qint64 id = 0;
    QByteArray hash;      ///< SHA-256 of the content, in hex; see uploadHash
    qint64 received = 0;  ///< milliseconds since 1970, by the server's clock
    QString state;        ///< received, published, withdrawn or held
    QString reason;       ///< why it was withdrawn or is held
    QByteArray content;   ///< the machine in its canonical XML
    bool isEmpty = false; ///< whether all results are 0
    QByteArray source;    ///< a token of where it came from; empty if that is not known
    QByteArray network;   ///< of a new one, for its token; not stored. See networkOf
    QString group;        ///< what uploads of one machine have in common; empty if it never counts
};

/// Whether @p state is one that an upload can have.
bool isUploadState(const QString &state);

/// The hash of an upload with this @p content.
QByteArray uploadHash(const QByteArray &content);

/// Whether @p machine can be right and has a name that is published; else why it is held.
outcome<void> checkCredible(const benchResults &machine);

/// A new upload of @p machine, received at @p now, in milliseconds since 1970. Equal results have
/// equal hashes. @p source is a token of where it came from. What cannot be right, or has a name
/// that is not published, is held.
storedUpload makeUpload(const benchResults &machine, qint64 now, const QByteArray &source = {});

/// The machine that was uploaded.
benchResults uploadedMachine(const storedUpload &upload);
