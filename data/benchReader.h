// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "engine/benchResults.h"

#include <QString>
#include <QVector>

#include <optional>

class QStringRef;
class QXmlStreamAttributes;
class QXmlStreamReader;

/// At most this many machines, and results of one machine, are read. A file of the maximum size has
/// room for no more machines than that with the results of a full run.
constexpr int maximumMachines = 16 * 1024;
constexpr int maximumResults = 1000;

/// Names of machines, systems, processors and tests are cut to this many UTF-16 code units, or to
/// one less where a character would be torn.
constexpr int maximumTextLength = 256;

/// What is wrong with an element of a list of machines.
struct benchFault {
    enum kind {
        // A lenient reader passes over these:
        documentType,     ///< or a reference to an entity
        otherElement,     ///< one that is unknown, or has no business where it is
        missingAttribute, ///< which reads as empty or 0
        invalidNumber,    ///< read as far as the toolkit makes sense of it, else as 0
        repeatedResult,   ///< which replaces the earlier one
        // These end every reading:
        declarations, ///< of entities or attributes
        tooDeep,
        tooManyAttributes,
        tooManyMachines, ///< a machine that is left out
        tooManyResults   ///< a result that is left out
    };

    /// One sentence for whoever made the file, without an end of line.
    QString sentence() const;

    kind what = otherElement;
    QString name;  ///< of the element, the attribute or the test
    QString value; ///< what should be a number; what lacks an attribute
};

/// The one reader of <bench> elements and the <test> elements in them: turns the tokens of an XML
/// stream into records and reports what is wrong with them. What follows from a fault is the
/// caller's decision: a list is read as far as it makes sense, all of an upload must be right.
class benchReader
{
public:
    /// Appends machines to @p list, which is not owned. Machines that it holds already do not
    /// count.
    explicit benchReader(QVector<benchResults> &list) : machines(list), firstMachine(list.size()) {}

    /// Takes the token at which @p xml stands, and returns the first fault in it. Whatever the
    /// fault, what can be read of the element has been read.
    ///
    /// The root may have any other name. Callers with elements of their own around the machines
    /// keep both tags of those to themselves.
    std::optional<benchFault> take(const QXmlStreamReader &xml);

    /// Whether a <bench> is open.
    bool isInMachine() const { return machineDepth > 0; }

private:
    std::optional<benchFault> readElement(const QStringRef &name,
                                          const QXmlStreamAttributes &attributes);
    std::optional<benchFault> readMachine(const QXmlStreamAttributes &attributes);
    std::optional<benchFault> readResult(const QXmlStreamAttributes &attributes);

    QVector<benchResults> &machines;
    int firstMachine;
    int depth = 0;
    int machineDepth = 0; ///< of the open <bench>, else 0
};
