// SPDX-License-Identifier: GPL-3.0-or-later
// The rows of a list box, as the view wants them. For the toolkit's own sources alone.
#pragma once

#include "platform/text.h"

#include <QAbstractListModel>
#include <cstdint>
#include <vector>

namespace ctl
{

class ListRows final : public QAbstractListModel
{
public:
    explicit ListRows(bool checks) : checks_(checks) { changed(); }

    std::int32_t count() const { return static_cast<std::int32_t>(texts_.size()); }
    const Text& text(std::int32_t index) const { return texts_[static_cast<std::size_t>(index)]; }
    bool hasChecks() const { return checks_; }
    bool isChecked(std::int32_t index) const { return checked_[static_cast<std::size_t>(index)]; }
    void check(std::int32_t index, bool checked);

    void insert(std::int32_t index, Text text);
    void remove(std::int32_t index);
    void clear();

    std::uint64_t revision() const { return revision_; }

    int rowCount(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role) const override;
    bool setData(const QModelIndex& index, const QVariant& value, int role) override;
    Qt::ItemFlags flags(const QModelIndex& index) const override;

private:
    void changed();

    std::vector<Text> texts_; // a list may have a million rows: nothing is kept beside them
    std::vector<bool> checked_;
    std::uint64_t revision_ = 0;
    bool checks_;
};

}
