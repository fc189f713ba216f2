// SPDX-License-Identifier: GPL-3.0-or-later
#include "server/uploadCommands.h"

#include "server/serverCommand.h"

namespace
{

exitCode failed(const QString &reason)
{
    return complain(serverProgramName(), reason);
}

exitCode succeeded(const QString &text)
{
    writeText(text, stdout);
    return exitSuccess;
}

/// What has become of uploads.
QString participle(moderation::action wanted)
{
    switch (wanted) {
    case moderation::action::withdraw:
        return QStringLiteral("withdrawn");
    case moderation::action::restore:
        return QStringLiteral("restored");
    case moderation::action::accept:
        return QStringLiteral("accepted");
    case moderation::action::forget:
        break;
    }
    return QStringLiteral("forgotten");
}

QString consequence(moderation::action wanted)
{
    switch (wanted) {
    case moderation::action::withdraw:
        return QStringLiteral("; the next version will be without it");
    case moderation::action::restore:
    case moderation::action::accept:
        return QStringLiteral("; it counts from the next version on");
    case moderation::action::forget:
        break;
    }
    return QStringLiteral("; its results stay");
}

/// Of one upload that was named by its number.
exitCode sayAboutOne(moderation::action wanted, qint64 id, const moderation::report &report,
                     bool isDryRun)
{
    if (!report.refused.isEmpty()) {
        return failed(QStringLiteral("upload %1 cannot be accepted: its processor has a name that "
                                     "is not published")
                          .arg(id));
    }
    if (report.changed.isEmpty()) {
        return failed(QStringLiteral("there is no upload %1 that could be %2")
                          .arg(QString::number(id), participle(wanted)));
    }
    return succeeded(
        isDryRun
            ? QStringLiteral("Upload %1 would be %2\n").arg(QString::number(id), participle(wanted))
            : QStringLiteral("Upload %1 is %2%3\n")
                  .arg(QString::number(id), participle(wanted), consequence(wanted)));
}

} // namespace

exitCode listUploads(resultStore &store, const operatorRequest &request)
{
    writeText(listingStart(request.form), stdout);
    bool isFirst = true;
    const outcome<void> done =
        forEachUpload(store, request.filter, [&](const storedUpload &upload) {
            writeText(listingOf(upload, request.form, isFirst), stdout);
            isFirst = false;
        });
    if (!done)
        return failed(QStringLiteral("the list is not complete: %1").arg(done.error()));
    writeText(listingEnd(request.form), stdout);
    return exitSuccess;
}

exitCode moderateUploads(resultStore &store, moderation::action wanted,
                         const operatorRequest &request, bool isDryRun)
{
    const auto report = moderation::apply(store, wanted, request.filter, request.reason, isDryRun);
    const QString word = participle(wanted);
    if (!report)
        return failed(QStringLiteral("not everything was %1: %2").arg(word, report.error()));
    if (request.filter.id > 0)
        return sayAboutOne(wanted, request.filter.id, *report, isDryRun);
    QString text = QStringLiteral("%1 uploads %2 %3")
                       .arg(QString::number(report->changed.size()),
                            isDryRun ? QStringLiteral("would be") : QStringLiteral("are"), word);
    if (!report->changed.isEmpty())
        text += QStringLiteral(": ") + moderation::numbersText(report->changed);
    text += QLatin1Char('\n');
    if (!report->refused.isEmpty()) {
        text += QStringLiteral("Not accepted, because their processors' names are not published: "
                               "%1\n")
                    .arg(moderation::numbersText(report->refused));
    }
    return succeeded(text);
}
