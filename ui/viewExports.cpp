// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/viewExports.h"

#include "data/wholeFile.h"
#include "ui/chartPicture.h"

#include <QAction>
#include <QApplication>
#include <QClipboard>
#include <QFileDialog>
#include <QMessageBox>

viewExports::viewExports(QWidget *ownWindow, source from, bool isTextFirst)
    : QObject(ownWindow),
      window(ownWindow),
      content(std::move(from))
{
    QAction *saving = add(QStringLiteral("actionSave"), tr("&Save chart..."), &viewExports::save);
    QAction *picture = add(QStringLiteral("actionCopyPicture"), tr("Copy &picture of the chart"),
                           &viewExports::copyPicture);
    QAction *table =
        add(QStringLiteral("actionCopyTable"), tr("Copy as &table"), &viewExports::copyTable);
    QAction *text = add(QStringLiteral("actionCopyResults"), tr("&Copy results as text"),
                        &viewExports::copyResults);
    saving->setShortcut(QKeySequence::Save);
    (isTextFirst ? text : picture)->setShortcut(QKeySequence::Copy);
    table->setShortcut(QKeySequence(QStringLiteral("Ctrl+Shift+C")));
}

QString viewExports::menuSheet()
{
    return QStringLiteral(
        "QMenu { color: black; background-color: #f0f0f0; border: 1px solid #404040; }"
        "QMenu::item:selected { color: white; background-color: #1f4e8c; }"
        "QMenu::separator { height: 1px; background-color: #808080; }");
}

QAction *viewExports::add(const QString &name, const QString &text, void (viewExports::*slot)())
{
    auto *action = new QAction(text, this);
    action->setObjectName(name);
    connect(action, &QAction::triggered, this, slot);
    all.append(action);
    return action;
}

void viewExports::save()
{
    if (content.chart().isEmpty()) {
        QMessageBox::information(window, tr("nothing to save"), tr("There is no chart to save."));
        return;
    }
    QFileDialog dialog(window, tr("save chart"));
    dialog.setAcceptMode(QFileDialog::AcceptSave);
    dialog.setNameFilters({tr("Pictures (*.png)"), tr("Drawings (*.svg)")});
    dialog.setDefaultSuffix(QStringLiteral("png"));
    connect(&dialog, &QFileDialog::filterSelected, &dialog, [&dialog](const QString &filter) {
        dialog.setDefaultSuffix(filter.contains(QLatin1String("svg")) ? QStringLiteral("svg")
                                                                      : QStringLiteral("png"));
    });
    if (dialog.exec() == QDialog::Accepted && !dialog.selectedFiles().isEmpty())
        saveTo(dialog.selectedFiles().constFirst());
}

void viewExports::saveTo(const QString &path)
{
    constexpr qreal sharpness = 2; // a picture may be printed, or shown on a finer screen
    const chartPicture picture(content.chart(), content.chartSize(), content.fontSize);
    const bool isDrawing = path.endsWith(QLatin1String(".svg"), Qt::CaseInsensitive);
    if (!isDrawing && !path.endsWith(QLatin1String(".png"), Qt::CaseInsensitive)) {
        QMessageBox::warning(window, tr("not saved"),
                             tr("'%1' is not saved: the name must end in .png or .svg").arg(path));
        return;
    }
    const QByteArray bytes = isDrawing ? picture.svg() : picture.png(sharpness);
    if (bytes.isEmpty()) {
        QMessageBox::warning(window, tr("not saved"),
                             tr("'%1' is not saved: there is no memory for it").arg(path));
        return;
    }
    if (const outcome<void> written = writeWholeFile(path, bytes); !written)
        QMessageBox::warning(window, tr("not saved"), written.error());
}

void viewExports::copyPicture()
{
    const chartContent chart = content.chart();
    if (chart.isEmpty())
        return;
    const QImage image = chartPicture(chart, content.chartSize(), content.fontSize)
                             .image(window->devicePixelRatioF());
    if (!image.isNull())
        QApplication::clipboard()->setImage(image);
}

void viewExports::copyTable()
{
    QApplication::clipboard()->setText(content.table());
}

void viewExports::copyResults()
{
    QApplication::clipboard()->setText(content.resultText());
}
