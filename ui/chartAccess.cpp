// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/chartAccess.h"

#include "ui/legendScrollView.h"

#include <QAccessible>
#include <QAccessibleWidget>
#include <QCoreApplication>

#include <map>

namespace
{

constexpr int columns = 2;

QString translated(const char *text)
{
    return QCoreApplication::translate("chartAccess", text);
}

class chartTable;

/// One cell: the name of a bar, or its value with the unit.
class chartCell : public QAccessibleInterface, public QAccessibleTableCellInterface
{
public:
    chartCell(chartTable *ownTable, int ownIndex) : owner(ownTable), index(ownIndex) {}

    bool isValid() const override;
    QObject *object() const override { return nullptr; }
    QAccessibleInterface *childAt(int, int) const override { return nullptr; }
    QAccessibleInterface *parent() const override;
    QAccessibleInterface *child(int) const override { return nullptr; }
    int childCount() const override { return 0; }
    int indexOfChild(const QAccessibleInterface *) const override { return -1; }
    QString text(QAccessible::Text kind) const override;
    void setText(QAccessible::Text, const QString &) override {}
    QRect rect() const override;
    QAccessible::Role role() const override { return QAccessible::Cell; }
    QAccessible::State state() const override;
    void *interface_cast(QAccessible::InterfaceType type) override;

    bool isSelected() const override { return false; }
    QList<QAccessibleInterface *> columnHeaderCells() const override { return {}; }
    QList<QAccessibleInterface *> rowHeaderCells() const override { return {}; }
    int columnIndex() const override { return index % columns; }
    int rowIndex() const override { return index / columns; }
    int columnExtent() const override { return 1; }
    int rowExtent() const override { return 1; }
    QAccessibleInterface *table() const override { return parent(); }

private:
    chartTable *owner;
    int index;
};

class chartTable : public QAccessibleWidget, public QAccessibleTableInterface
{
public:
    explicit chartTable(legendScrollView *ownView)
        : QAccessibleWidget(ownView, QAccessible::Table),
          view(ownView)
    {
    }
    chartTable(const chartTable &) = delete;
    chartTable &operator=(const chartTable &) = delete;
    ~chartTable() override
    {
        for (const auto &cell : cells)
            QAccessible::deleteAccessibleInterface(cell.second);
    }

    const legendScrollView &chart() const { return *view; }

    int childCount() const override { return rowCount() * columns; }
    QAccessibleInterface *child(int index) const override
    {
        return cellAt(index / columns, index % columns);
    }
    int indexOfChild(const QAccessibleInterface *child) const override
    {
        for (const auto &[index, id] : cells) {
            if (QAccessible::accessibleInterface(id) == child)
                return index;
        }
        return -1;
    }
    void *interface_cast(QAccessible::InterfaceType type) override
    {
        if (type == QAccessible::TableInterface)
            return static_cast<QAccessibleTableInterface *>(this);
        return QAccessibleWidget::interface_cast(type);
    }

    QAccessibleInterface *caption() const override { return nullptr; }
    QAccessibleInterface *summary() const override { return nullptr; }
    /// Cells are made when they are asked for.
    QAccessibleInterface *cellAt(int row, int column) const override
    {
        if (row < 0 || row >= rowCount() || column < 0 || column >= columns)
            return nullptr;
        const int index = row * columns + column;
        auto found = cells.find(index);
        if (found == cells.end()) {
            auto *cell = new chartCell(const_cast<chartTable *>(this), index);
            found = cells.emplace(index, QAccessible::registerAccessibleInterface(cell)).first;
        }
        return QAccessible::accessibleInterface(found->second);
    }
    int selectedCellCount() const override { return 0; }
    QList<QAccessibleInterface *> selectedCells() const override { return {}; }
    QString columnDescription(int column) const override
    {
        return column == 0 ? translated("machine") : view->table().axisTitle;
    }
    QString rowDescription(int row) const override { return view->table().bars.value(row).label; }
    int selectedColumnCount() const override { return 0; }
    int selectedRowCount() const override { return 0; }
    int columnCount() const override { return columns; }
    int rowCount() const override { return view->table().bars.size(); }
    QList<int> selectedColumns() const override { return {}; }
    QList<int> selectedRows() const override { return {}; }
    bool isColumnSelected(int) const override { return false; }
    bool isRowSelected(int) const override { return false; }
    bool selectRow(int) override { return false; }
    bool selectColumn(int) override { return false; }
    bool unselectRow(int) override { return false; }
    bool unselectColumn(int) override { return false; }
    void modelChange(QAccessibleTableModelChangeEvent *) override {}

private:
    legendScrollView *view;
    mutable std::map<int, QAccessible::Id> cells;
};

bool chartCell::isValid() const
{
    return owner->isValid() && index < owner->childCount();
}

QAccessibleInterface *chartCell::parent() const
{
    return owner;
}

QString chartCell::text(QAccessible::Text kind) const
{
    const chartContent &content = owner->chart().table();
    if (kind != QAccessible::Name || rowIndex() >= content.bars.size())
        return {};
    const chartBar &bar = content.bars.at(rowIndex());
    if (columnIndex() == 0)
        return bar.label;
    return bar.isResult ? QStringLiteral("%1 %2").arg(QString::number(bar.value), content.unit)
                        : translated("no result");
}

QRect chartCell::rect() const
{
    const QPoint place = owner->chart().placeOf(rowIndex());
    return {place, QSize(1, 1)};
}

QAccessible::State chartCell::state() const
{
    QAccessible::State state;
    state.readOnly = true;
    state.focusable = true;
    return state;
}

void *chartCell::interface_cast(QAccessible::InterfaceType type)
{
    if (type == QAccessible::TableCellInterface)
        return static_cast<QAccessibleTableCellInterface *>(this);
    return nullptr;
}

QAccessibleInterface *make(const QString &, QObject *object)
{
    auto *view = qobject_cast<legendScrollView *>(object);
    return view ? new chartTable(view) : nullptr;
}

} // namespace

void chartAccess::install()
{
    QAccessible::installFactory(make); // which is there once only, however often
}

void chartAccess::announce(legendScrollView *view, int index)
{
    if (!QAccessible::isActive())
        return;
    QAccessibleEvent event(view, QAccessible::Focus);
    event.setChild(index * columns);
    QAccessible::updateAccessibility(&event);
}
