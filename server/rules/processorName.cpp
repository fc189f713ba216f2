// SPDX-License-Identifier: GPL-3.0-or-later
#include "server/rules/processorName.h"

#include "server/uploadCheck.h"

#include <QRegularExpression>

#include <unicode/localpointer.h>
#include <unicode/uchar.h>
#include <unicode/uscript.h>
#include <unicode/uspoof.h>

#include <algorithm>
#include <memory>
#include <string>

namespace
{

/// Normal form KC would make a bare "TM" of the one sign and leave the other.
QString normalised(QString name)
{
    name.replace(QChar(0x00AE), QLatin1String("(R)"));
    name.replace(QChar(0x2122), QLatin1String("(TM)"));
    return name.normalized(QString::NormalizationForm_KC).simplified();
}

QString folded(const QString &name)
{
    return name.toCaseFolded().normalized(QString::NormalizationForm_KC);
}

bool isAscii(const QString &text)
{
    return std::all_of(text.begin(), text.end(), [](QChar c) { return c.unicode() < 0x80; });
}

bool isInvisible(uint c)
{
    if (c < 0x80)
        return c < ' ' || c == 0x7F;
    switch (QChar::category(c)) {
    case QChar::Other_Control:
    case QChar::Other_Format:
    case QChar::Separator_Line:
    case QChar::Separator_Paragraph:
        return true;
    default:
        return u_hasBinaryProperty(static_cast<UChar32>(c), UCHAR_DEFAULT_IGNORABLE_CODE_POINT);
    }
}

/// Whether @p c belongs into a name in normal form. Marks that go with letters of any script, and
/// could not be joined with theirs, are decoration.
bool isPlain(uint c)
{
    if (c < 0x80)
        return c >= ' ' && c != '<' && c != '>' && c != 0x7F;
    UErrorCode error = U_ZERO_ERROR;
    const bool isOfNoScript =
        uscript_getScript(static_cast<UChar32>(c), &error) == USCRIPT_INHERITED;
    return QChar::isLetter(c) || (QChar::isMark(c) && !isOfNoScript);
}

/// Unicode's knowledge of which letters look alike and which script they are of: the library that
/// keeps it up to date, since Qt has no table of the former. Many threads may ask it.
class lookalikes
{
public:
    static const lookalikes &instance()
    {
        static const lookalikes one;
        return one;
    }

    bool isOfOneScript(const QString &text) const
    {
        UErrorCode error = U_ZERO_ERROR;
        const std::u16string name = text.toStdU16String();
        const int found = uspoof_check2(checker.getAlias(), name.data(),
                                        static_cast<int32_t>(name.size()), nullptr, &error);
        return U_SUCCESS(error) && found == 0;
    }

    /// The one text for all that look like @p text. Empty if it cannot be found out.
    QString skeleton(const QString &text) const
    {
        UErrorCode error = U_ZERO_ERROR;
        const std::u16string from = text.toStdU16String();
        std::u16string to(from.size() * 20 + 16, u'\0'); // no character becomes more than 18
        const int length = uspoof_getSkeleton(checker.getAlias(), 0, from.data(),
                                              static_cast<int32_t>(from.size()), to.data(),
                                              static_cast<int32_t>(to.size()), &error);
        return U_SUCCESS(error) ? QString::fromUtf16(to.data(), length) : QString();
    }

private:
    lookalikes()
    {
        UErrorCode error = U_ZERO_ERROR;
        checker.adoptInstead(uspoof_open(&error));
        uspoof_setRestrictionLevel(checker.getAlias(), USPOOF_SINGLE_SCRIPT_RESTRICTIVE);
        uspoof_setChecks(checker.getAlias(), USPOOF_RESTRICTION_LEVEL, &error);
    }

    icu::LocalUSpoofCheckerPointer checker;
};

/// What is left of @p text of letters and brackets where look-alikes, marks and case do not count.
QString bones(const QString &text)
{
    QString letters = lookalikes::instance().skeleton(text).toLower();
    if (!isAscii(text)) // a capital may have been what it looks like
        letters = lookalikes::instance().skeleton(letters).toLower();
    QString left;
    for (const QChar c : qAsConst(letters)) {
        if (c.isLetter() || QStringLiteral("()[]{}").contains(c))
            left.append(c);
    }
    return left;
}

/// Whether @p name holds a word that the programs use for something else. Outside of ASCII, small
/// and capital letters have different look-alikes, so both are tried.
bool hasReservedWord(const QString &name)
{
    static const QString unknown = bones(QStringLiteral("unknown"));
    static const QRegularExpression estimate(
        QStringLiteral("[(\\[{]%1[)\\]}]").arg(bones(QStringLiteral("est"))));
    const auto isReserved = [](const QString &text) {
        return text.contains(unknown) || text.contains(estimate);
    };
    return isReserved(bones(name.toLower()))
           || (!isAscii(name) && isReserved(bones(name.toUpper())));
}

} // namespace

outcome<QString> publishedProcessorName(const QString &name)
{
    const QVector<uint> given = name.toUcs4();
    const QString wanted = normalised(name);
    const QVector<uint> characters = wanted.toUcs4();
    if (std::any_of(given.begin(), given.end(), isInvisible)
        || !std::all_of(characters.begin(), characters.end(), isPlain)) {
        return failure(
            QStringLiteral("the name of a processor has letters, digits and plain signs, "
                           "no invisible characters and no < or >"));
    }
    if (wanted.size() > maximumNameLength)
        return failure(QStringLiteral("the processor's name is too long"));
    if (processorKey(name).isEmpty())
        return failure(QStringLiteral("the processor has no name"));
    if (!isAscii(wanted)
        && (!lookalikes::instance().isOfOneScript(wanted)
            || isAscii(lookalikes::instance().skeleton(wanted)))) {
        return failure(
            QStringLiteral("the letters of a processor's name must be of one script, and must not "
                           "pass for others"));
    }
    if (hasReservedWord(wanted)) {
        return failure(QStringLiteral("\"unknown\" and \"(est.)\" are no part of a processor's "
                                      "name"));
    }
    return wanted;
}

QString processorKey(const QString &name)
{
    static const QRegularExpression clock(QStringLiteral("@.*"),
                                          QRegularExpression::DotMatchesEverythingOption);
    static const QRegularExpression noise(
        QStringLiteral("\\((r|tm)\\)|(?<![^\\s)])cpu(?![^\\s(])"));
    return folded(normalised(name)).remove(clock).replace(noise, QStringLiteral(" ")).simplified();
}
