// SPDX-License-Identifier: GPL-3.0-or-later
// The view behind a list box. For the toolkit's own sources alone.
#pragma once

#include "toolkit/list_box.h"
#include "toolkit/row_widths.h"

#include <QListView>

class QHelpEvent;

namespace ctl
{

// The list box alone says what is selected: the view shows it, and passes on what the user does. Rows are
// shown whole: the thin bar below reaches to the end of the widest, and a tip shows one that does not fit.
class ListView final : public QListView
{
public:
    explicit ListView(ListBox& list);

    // Changes the rows or the selection without taking it for the user's doing.
    template <typename Change>
    void quietly(Change&& change)
    {
        const bool before = std::exchange(quiet_, true);
        change();
        quiet_ = before;
    }

    void showSelection(std::int32_t index);

    // What a row takes: as wide as the widest, and no higher than leaves room for the bar below as many rows
    // as the list shows without it. `own` is what the row at `index` asks for.
    QSize rowSize(QSize own, const QModelIndex& index) const;

    void setModel(QAbstractItemModel* model) override;
    void scrollTo(const QModelIndex& index, ScrollHint hint = EnsureVisible) override;
    void reset() override;

    // Letters are the window's own; searching with them would stop at nothing useful, as all rows begin
    // alike.
    void keyboardSearch(const QString&) override {}

protected:
    QItemSelectionModel::SelectionFlags selectionCommand(const QModelIndex& index,
                                                         const QEvent* event) const override;
    void rowsInserted(const QModelIndex& parent, int first, int last) override;
    void rowsAboutToBeRemoved(const QModelIndex& parent, int first, int last) override;
    void changeEvent(QEvent* event) override;
    bool viewportEvent(QEvent* event) override;
    void currentChanged(const QModelIndex& current, const QModelIndex& previous) override;
    void selectionChanged(const QItemSelection& selected, const QItemSelection& deselected) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseDoubleClickEvent(QMouseEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void focusInEvent(QFocusEvent* event) override;
    void focusOutEvent(QFocusEvent* event) override;
    void showEvent(QShowEvent* event) override;
    void dragEnterEvent(QDragEnterEvent* event) override;
    void dragMoveEvent(QDragMoveEvent* event) override;
    void dropEvent(QDropEvent* event) override;

private:
    void colourBar();
    void measureAll();
    void measure(int first, int last);
    bool scrolledSideways(int key);
    bool showTip(const QHelpEvent& event);
    void takeSelection();
    void mark(const QModelIndex& row);

    ListBox& list_;
    RowWidths widths_;
    bool quiet_ = false;
};

}
