// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/trustNotes.h"

#include "data/runText.h"

#include <QCoreApplication>
#include <QStringList>

#include <algorithm>

namespace
{

QString tr(const char *text, int count = -1)
{
    return QCoreApplication::translate("trustNotes", text, nullptr, count);
}

QString lineAbout(const std::vector<disturbance> &warnings)
{
    if (warnings.empty())
        return {};
    const QString first = warningText(warnings.front());
    const auto others = static_cast<int>(warnings.size()) - 1;
    return others == 0 ? first : tr("%1 (and %2 more)").arg(first, QString::number(others));
}

} // namespace

trustNotes::trustNotes(std::function<doctorSubject()> look) : source(std::move(look)) {}

void trustNotes::beforeRun()
{
    latest.reset();
    unkept.clear();
    atStart(source());
}

void trustNotes::atStart(const doctorSubject &subject)
{
    warnings.clear();
    for (const disturbance &one : subject.disturbances) {
        if (one.how == disturbance::warning)
            warnings.push_back(one);
    }
}

void trustNotes::afterRun(const runRecord &run, const QString &trouble)
{
    latest = run;
    unkept = trouble;
}

QString trustNotes::line() const
{
    QStringList parts;
    if (!unkept.isEmpty())
        parts.append(unkept);
    if (latest)
        parts.append(verdictLine(*latest));
    if (!warnings.empty())
        parts.append(lineAbout(warnings));
    return parts.join(QStringLiteral(" – "));
}

QString trustNotes::page() const
{
    QString machine = doctorPage(source());
    if (!latest)
        return machine;
    return unkept + (unkept.isEmpty() ? QString() : QStringLiteral("\n\n")) + runText(*latest)
           + QLatin1Char('\n') + machine;
}
