// SPDX-License-Identifier: GPL-3.0-or-later
#include "toolkit/list_box.h"

#include "platform/failure.h"
#include "toolkit/list_rows.h"
#include "toolkit/list_view.h"

namespace ctl
{

const Text& DroppedFiles::item(std::int32_t number) const
{
    if (number < 1 || static_cast<std::size_t>(number) > paths_.size())
        throw Failure(Trouble::subscriptOutOfRange);
    return paths_[static_cast<std::size_t>(number) - 1];
}

ListBox::ListBox(Container& container, const char* name, Place place, Style style) :
    ControlOf(container, name, place, new ListView(*this)),
    rows_(std::make_unique<ListRows>(style == Style::checks))
{
    widget_->setModel(rows_.get());
}

ListBox::ListBox(Container& container, const char* name, Hidden) :
    ControlOf(container, name, hidden), rows_(std::make_unique<ListRows>(false))
{
}

ListBox::~ListBox()
{
    if (widget_)
        widget_->setModel(nullptr);
}

void ListBox::AddItem(::Text text) { AddItem(std::move(text), ListCount()); }

void ListBox::AddItem(::Text text, std::int32_t index)
{
    if (index < 0 || index > ListCount())
        throw Failure(Trouble::invalidCall);
    change([&] { rows_->insert(index, std::move(text)); }, listIndex_ >= index ? listIndex_ + 1 : listIndex_);
}

void ListBox::RemoveItem(std::int32_t index)
{
    if (!holds(index))
        throw Failure(Trouble::invalidCall);
    const std::int32_t kept = listIndex_ > index ? listIndex_ - 1 : listIndex_;
    change([&] { rows_->remove(index); }, listIndex_ == index ? -1 : kept);
}

void ListBox::Clear()
{
    change([&] { rows_->clear(); }, -1);
}

// The view would choose another row by itself; it shows what the list box says.
template <typename Change>
void ListBox::change(Change&& change, std::int32_t selected)
{
    const bool moved = selected != listIndex_;
    listIndex_ = selected;
    if (!widget_) {
        change();
        return;
    }
    widget_->quietly(change);
    if (moved)
        widget_->showSelection(selected);
}

std::int32_t ListBox::ListCount() const { return rows_->count(); }

::Text ListBox::List(std::int32_t index) const { return holds(index) ? rows_->text(index) : ::Text(); }

::Text ListBox::Text() const { return List(listIndex_); }

void ListBox::setListIndex(std::int32_t index)
{
    if (index < -1 || index >= ListCount())
        throw Failure(Trouble::invalidPropertyValue);
    if (std::exchange(listIndex_, index) == index)
        return;
    if (widget_)
        widget_->showSelection(index);
    Click.raise();
}

void ListBox::chosen(std::int32_t index)
{
    listIndex_ = index;
    widget_->showSelection(index);
    fromOutside([this] { Click.raise(); });
}

bool ListBox::Selected(std::int32_t index) const
{
    if (!holds(index))
        return false;
    return rows_->hasChecks() ? rows_->isChecked(index) : index == listIndex_;
}

void ListBox::setSelected(std::int32_t index, bool selected)
{
    if (!holds(index))
        throw Failure(Trouble::invalidPropertyArrayIndex);
    if (rows_->hasChecks())
        rows_->check(index, selected);
    else if (selected)
        setListIndex(index);
    else if (index == listIndex_)
        setListIndex(-1);
}

void ListBox::acceptFiles()
{
    widget_->setAcceptDrops(true);
    widget_->setDragDropMode(QAbstractItemView::DropOnly);
}

std::uint64_t ListBox::revision() const { return rows_->revision(); }

}
