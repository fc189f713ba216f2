// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/logKeeper.h"

#include "ui/logColumns.h"

#include <QEvent>
#include <QFontDatabase>
#include <QScrollBar>
#include <QTextDocument>
#include <QTextEdit>

#include <algorithm>

namespace
{

/// The family that stands for the log's where that is missing. A family that is not known at all
/// may be replaced by one without columns.
void substituteFamily(const QFont &font)
{
    if (!QFont::substitutes(font.family()).isEmpty())
        return;
    QFont::insertSubstitutions(font.family(),
                               {QStringLiteral("Inconsolata"), QStringLiteral("DejaVu Sans Mono"),
                                QStringLiteral("Liberation Mono"),
                                QFontDatabase::systemFont(QFontDatabase::FixedFont).family()});
}

} // namespace

logKeeper::logKeeper(QTextEdit *ownBox) : QObject(ownBox), box(ownBox)
{
    substituteFamily(box->font());
    QFont font = box->font();
    font.setStyleHint(QFont::Monospace);
    box->setFont(font);
    fitColumns();
    box->installEventFilter(this);
    const QScrollBar *bar = box->verticalScrollBar();
    connect(bar, &QScrollBar::valueChanged, this, &logKeeper::noteValue);
    connect(bar, &QScrollBar::rangeChanged, this, [this](int, int maximum) { keepPlace(maximum); });
}

void logKeeper::noteValue(int value)
{
    if (isKeeping)
        return;
    wanted = value;
    // To make the cursor visible is enough for a text edit, and leaves the margin below out of
    // sight.
    const auto margin = static_cast<int>(box->document()->documentMargin());
    isAtEnd = value >= box->verticalScrollBar()->maximum() - margin;
}

void logKeeper::keepPlace(int maximum)
{
    // The scroll bar has its old value still, and brings it into the new range after this.
    isKeeping = true;
    box->verticalScrollBar()->setValue(isAtEnd ? maximum : std::min(wanted, maximum));
    isKeeping = false;
}

void logKeeper::fitColumns() const
{
    // The scroll bar comes and goes; the letters stay as they are.
    const int room = box->contentsRect().width() - box->verticalScrollBar()->sizeHint().width()
                     - static_cast<int>(2 * box->document()->documentMargin());
    const QFont font = logColumns::fitted(box->font(), logColumns::longestLine(), room);
    if (font.stretch() != box->font().stretch())
        box->setFont(font);
}

bool logKeeper::eventFilter(QObject *watched, QEvent *event)
{
    if (event->type() == QEvent::Resize)
        fitColumns();
    return QObject::eventFilter(watched, event);
}
