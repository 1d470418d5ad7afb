// The view behind a list box. For the toolkit's own sources alone.
#pragma once

#include "toolkit/list_box.h"

#include <QListView>

namespace ctl
{

// The list box alone says what is selected: the view shows it, and passes on what the user does.
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

    // Letters are the window's own; searching with them would stop at nothing useful, as all rows begin
    // alike.
    void keyboardSearch(const QString&) override {}

protected:
    QItemSelectionModel::SelectionFlags selectionCommand(const QModelIndex& index,
                                                         const QEvent* event) const override;
    void currentChanged(const QModelIndex& current, const QModelIndex& previous) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseDoubleClickEvent(QMouseEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void focusInEvent(QFocusEvent* event) override;
    void dragEnterEvent(QDragEnterEvent* event) override;
    void dragMoveEvent(QDragMoveEvent* event) override;
    void dropEvent(QDropEvent* event) override;

private:
    ListBox& list_;
    bool quiet_ = false;
};

}
