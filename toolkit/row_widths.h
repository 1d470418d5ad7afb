// SPDX-License-Identifier: GPL-3.0-or-later
// How wide the rows of a list are. For the toolkit's own sources alone.
#pragma once

#include <QFontMetricsF>
#include <QHash>
#include <array>
#include <vector>

namespace ctl
{

// Adds up the widths of single characters, each measured once: a hundred thousand rows are known in the time
// that drawing some hundreds would take. Pairs that stand closer make a row narrower than it says, never
// wider.
class RowWidths
{
public:
    explicit RowWidths(const QFont& font) : metrics_(font) { ascii_.fill(unknown); }

    void insert(int row, const QString& text);
    void remove(int first, int last);
    void clear();

    int count() const { return static_cast<int>(widths_.size()); }
    int of(int row) const { return widths_[static_cast<std::size_t>(row)]; } // pixels
    int widest() const;                                                      // 0 without rows

private:
    static constexpr float unknown = -1;

    int widthOf(const QString& text);
    float advance(char32_t character);

    QFontMetricsF metrics_;
    std::array<float, 128> ascii_;
    QHash<char32_t, float> others_;
    std::vector<int> widths_;
    mutable int widest_ = 0; // -1: the widest row has gone
};

}
