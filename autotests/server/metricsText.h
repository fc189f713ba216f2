// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QMap>
#include <QRegularExpression>
#include <QSet>
#include <QStringList>

/// A strict reader of Prometheus' text format: each family has its HELP and its TYPE, once and in
/// this order, before its samples; buckets are cumulative, and the last one is the count.
class metricsText
{
public:
    explicit metricsText(const QByteArray &text)
    {
        if (!text.endsWith('\n'))
            fail(QStringLiteral("no end of line"), QString());
        const QStringList lines =
            QString::fromUtf8(text).split(QLatin1Char('\n'), Qt::SkipEmptyParts);
        for (const QString &line : lines) {
            if (line.startsWith(QStringLiteral("# HELP ")))
                takeHelp(line);
            else if (line.startsWith(QStringLiteral("# TYPE ")))
                takeType(line);
            else
                takeSample(line);
        }
        if (latest != counts || closed.size() != counts.size())
            fail(QStringLiteral("a histogram's last bucket is not its count"), QString());
    }

    /// What is wrong with the text, empty if nothing is.
    QString error;
    QMap<QString, double> samples; ///< by name and labels, as they are written
    QMap<QString, QString> types;  ///< by family
    QMap<QString, QString> labels; ///< all values of a label, as "name=value"

    /// 0 if there is none, as Prometheus sees it.
    double operator[](const char *name) const { return samples.value(QString::fromLatin1(name)); }
    bool has(const char *name) const { return samples.contains(QString::fromLatin1(name)); }
    /// The samples whose names begin like this and which are not zero, each "name value".
    QStringList nonZero(const char *beginning) const
    {
        QStringList found;
        for (auto sample = samples.begin(); sample != samples.end(); ++sample) {
            if (sample.key().startsWith(QLatin1String(beginning)) && sample.value() != 0)
                found.append(QStringLiteral("%1 %2").arg(sample.key()).arg(sample.value()));
        }
        return found;
    }

private:
    void fail(const QString &what, const QString &where)
    {
        if (error.isEmpty())
            error = what + QStringLiteral(": ") + where;
    }
    void takeHelp(const QString &line)
    {
        const QStringList words = line.split(QLatin1Char(' '));
        family = words.value(2);
        hasType = false;
        if (words.size() < 4 || types.contains(family))
            fail(QStringLiteral("HELP"), line);
    }
    void takeType(const QString &line)
    {
        static const QStringList known = {QStringLiteral("counter"), QStringLiteral("gauge"),
                                          QStringLiteral("histogram")};
        const QStringList words = line.split(QLatin1Char(' '));
        if (words.size() != 4 || words.value(2) != family || hasType || !known.contains(words[3]))
            fail(QStringLiteral("TYPE"), line);
        hasType = true;
        types.insert(family, words.value(3));
    }
    void takeSample(const QString &line)
    {
        static const QRegularExpression form(QRegularExpression::anchoredPattern(
            QStringLiteral("([a-z_]+)(?:\\{([^{}]*)\\})? ([0-9.e+-]+|\\+Inf)")));
        const auto match = form.match(line);
        const QString name = match.captured(1);
        bool isNumber = false;
        const double value = match.captured(3).toDouble(&isNumber);
        if (!match.hasMatch() || !isNumber || !hasType)
            return fail(QStringLiteral("sample"), line);
        const QString key = line.left(line.lastIndexOf(QLatin1Char(' ')));
        if (samples.contains(key))
            fail(QStringLiteral("twice"), line);
        samples.insert(key, value);
        const QStringList own = takeLabels(match.captured(2), line);
        if (types.value(family) == QStringLiteral("histogram"))
            takeHistogram(name.mid(family.size()), own, value, line);
        else if (name != family)
            fail(QStringLiteral("of no family"), line);
        if (types.value(family) == QStringLiteral("counter")
            && !name.endsWith(QStringLiteral("_total")))
            fail(QStringLiteral("a counter's name"), line);
    }
    QStringList takeLabels(const QString &text, const QString &line)
    {
        static const QRegularExpression form(QRegularExpression::anchoredPattern(
            QStringLiteral("([a-z]+)=\"([A-Za-z0-9_ .+'-]+)\"")));
        const QStringList all = text.split(QLatin1Char(','), Qt::SkipEmptyParts);
        for (const QString &label : all) {
            const auto match = form.match(label);
            if (!match.hasMatch())
                fail(QStringLiteral("label"), line);
            const QString pair = match.captured(1) + QLatin1Char('=') + match.captured(2);
            labels.insert(pair, match.captured(2));
        }
        return all;
    }
    void takeHistogram(const QString &part, QStringList own, double value, const QString &line)
    {
        const QStringList bounds = own.filter(QStringLiteral("le=\""));
        for (const QString &bound : bounds)
            own.removeAll(bound);
        const QString key = family + own.join(QLatin1Char(','));
        if (part == QStringLiteral("_count")) {
            counts.insert(key, value);
        } else if (part == QStringLiteral("_bucket") && bounds.size() == 1) {
            if (value < latest.value(key) || closed.contains(key))
                fail(QStringLiteral("not cumulative"), line);
            latest.insert(key, value);
            if (bounds.first() == QStringLiteral("le=\"+Inf\""))
                closed.insert(key);
        } else if (part != QStringLiteral("_sum")) {
            fail(QStringLiteral("of no histogram"), line);
        }
    }

    QString family;
    bool hasType = false;
    QMap<QString, double> counts; ///< of histograms
    QMap<QString, double> latest; ///< the last bucket that was seen
    QSet<QString> closed;         ///< histograms whose last bucket has come
};
