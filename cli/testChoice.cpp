// SPDX-License-Identifier: GPL-3.0-or-later
#include "cli/testChoice.h"

#include "tests/suiteFacts.h"

#include <QRegularExpression>

#include <algorithm>

namespace
{

QString indented(const QStringList &names)
{
    return QStringLiteral("  ") + names.join(QStringLiteral("\n  "));
}

template <typename Condition>
QStringList namesOf(const std::vector<listedTest> &tests, Condition isWanted)
{
    QStringList names;
    for (const listedTest &test : tests) {
        if (isWanted(test))
            names.append(test.name);
    }
    return names;
}

bool isPattern(const QString &text)
{
    return std::any_of(text.begin(), text.end(), [](QChar letter) {
        return letter == QLatin1Char('*') || letter == QLatin1Char('?')
               || letter == QLatin1Char('[');
    });
}

QStringList matchingPattern(const QString &pattern, const std::vector<listedTest> &tests)
{
    // A pattern is meant for paths, where no star stands for a slash; names are none.
    const auto withoutSlashes = [](QString text) {
        return text.replace(QLatin1Char('/'), QLatin1Char('|'));
    };
    const QRegularExpression expression(
        QRegularExpression::wildcardToRegularExpression(withoutSlashes(pattern)));
    if (!expression.isValid())
        return {};
    return namesOf(tests, [&](const listedTest &test) {
        return expression.match(withoutSlashes(test.name.simplified())).hasMatch();
    });
}

} // namespace

std::vector<listedTest> listedTests()
{
    std::vector<listedTest> tests;
    for (const testFacts &facts : suiteFacts()) {
        tests.push_back(
            {QString::fromLatin1(facts.name), facts.isMulticore(), facts.isInFullRuns()});
    }
    return tests;
}

outcome<QStringList> chosenTests(const QString &wanted, const std::vector<listedTest> &tests)
{
    const QString text = wanted.simplified();
    const auto fitting = [&](auto isWanted) {
        return namesOf(tests,
                       [&](const listedTest &test) { return isWanted(test.name.simplified()); });
    };
    const QStringList exact = fitting([&](const QString &name) { return name == text; });
    if (!exact.isEmpty())
        return exact.mid(0, 1);
    const bool isMulti = text == QLatin1String("multi");
    if (isMulti || text == QLatin1String("single")) {
        return namesOf(tests, [&](const listedTest &test) {
            return test.isInFullRuns && test.isMulticore == isMulti;
        });
    }
    QStringList names;
    if (isPattern(text)) {
        names = matchingPattern(text, tests);
        if (!names.isEmpty())
            return names;
    } else if (!text.isEmpty()) {
        names = fitting([&](const QString &name) { return name.startsWith(text); });
        if (names.isEmpty())
            names = fitting([&](const QString &name) { return name.contains(text); });
        if (names.size() == 1)
            return names;
    }
    if (!names.isEmpty()) {
        return failure(
            QStringLiteral("'%1' may be any of these tests:\n%2").arg(wanted, indented(names)));
    }
    const QString all = indented(namesOf(tests, [](const listedTest &) { return true; }));
    return failure(QStringLiteral("there is no test '%1'. The tests are:\n%2").arg(wanted, all));
}
