// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/textPage.h"

#include "ui/readableSheet.h"

#include <QDialogButtonBox>
#include <QFontDatabase>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QScreen>
#include <QVBoxLayout>

namespace
{

/// The system's font of fixed width is not always one, so known ones come first.
QFont columnFont()
{
    const QFont system = QFontDatabase::systemFont(QFontDatabase::FixedFont);
    QFont font = system;
    font.setFamilies({QStringLiteral("Consolas"), QStringLiteral("DejaVu Sans Mono"),
                      QStringLiteral("Liberation Mono"), system.family()});
    font.setStyleHint(QFont::Monospace);
    return font;
}

/// Room for most pages, but never more than the screen has.
QSize roomFor(const QPlainTextEdit &text)
{
    constexpr int columns = 88; // 80 and the bar beside them
    constexpr int lines = 32;
    const QFontMetrics metrics = text.fontMetrics();
    const QSize wanted(columns * metrics.horizontalAdvance(QLatin1Char('0')),
                       lines * metrics.lineSpacing());
    return wanted.boundedTo(text.screen()->availableSize() * 4 / 5);
}

} // namespace

textPage::textPage(const QString &title, const QString &text, QWidget *parent) : QDialog(parent)
{
    setAttribute(Qt::WA_DeleteOnClose);
    setWindowTitle(title);
    setStyleSheet(readablePageSheet());
    auto *page = new QPlainTextEdit(text, this);
    page->setReadOnly(true);
    page->setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
    page->setFont(columnFont());
    page->setLineWrapMode(QPlainTextEdit::NoWrap);
    page->setAccessibleName(title);
    auto *buttons = new QDialogButtonBox(QDialogButtonBox::Close, this);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::close);
    auto *layout = new QVBoxLayout(this);
    layout->addWidget(page);
    layout->addWidget(buttons);
    resize(roomFor(*page));
}
