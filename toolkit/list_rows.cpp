// SPDX-License-Identifier: GPL-3.0-or-later
#include "toolkit/list_rows.h"

#include "toolkit/qt_bridge.h"

#include <utility>

namespace
{

// No path is longer. A list with foreign line ends is a single row of megabytes, which would take seconds to
// draw.
constexpr std::size_t mostShown = 4096;

// A row is one line, also when its text holds line ends; the first row's height is that of all. Every font
// has this mark.
QString onOneLine(const Text& text)
{
    return shown(Text(firstCharacters(text, mostShown))).replace(u'\r', u'\u00B6').replace(u'\n', u'\u00B6');
}

}

namespace ctl
{

void ListRows::check(std::int32_t index, bool checked)
{
    checked_[static_cast<std::size_t>(index)] = checked;
    emit dataChanged(this->index(index), this->index(index), {Qt::CheckStateRole});
}

void ListRows::insert(std::int32_t index, Text text)
{
    beginInsertRows({}, index, index);
    texts_.insert(texts_.begin() + index, std::move(text));
    checked_.insert(checked_.begin() + index, false);
    changed();
    endInsertRows();
}

void ListRows::remove(std::int32_t index)
{
    beginRemoveRows({}, index, index);
    texts_.erase(texts_.begin() + index);
    checked_.erase(checked_.begin() + index);
    changed();
    endRemoveRows();
}

void ListRows::clear()
{
    beginResetModel();
    texts_ = {};
    checked_ = {};
    changed();
    endResetModel();
}

// One number for the whole process, so that no two contents of any list share it.
void ListRows::changed()
{
    static std::uint64_t last = 0;
    revision_ = ++last;
}

int ListRows::rowCount(const QModelIndex& parent) const { return parent.isValid() ? 0 : count(); }

QVariant ListRows::data(const QModelIndex& index, int role) const
{
    if (!index.isValid() || index.row() >= count())
        return {};
    if (role == Qt::DisplayRole)
        return onOneLine(text(index.row()));
    if (role == Qt::CheckStateRole && checks_)
        return isChecked(index.row()) ? Qt::Checked : Qt::Unchecked;
    return {};
}

bool ListRows::setData(const QModelIndex& index, const QVariant& value, int role)
{
    if (role != Qt::CheckStateRole || !checks_ || !index.isValid())
        return false;
    check(index.row(), value.toInt() == Qt::Checked);
    return true;
}

Qt::ItemFlags ListRows::flags(const QModelIndex&) const
{
    const Qt::ItemFlags flags = Qt::ItemIsEnabled | Qt::ItemIsSelectable;
    return checks_ ? flags | Qt::ItemIsUserCheckable : flags;
}

}
