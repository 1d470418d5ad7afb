// SPDX-License-Identifier: GPL-3.0-or-later
#include "toolkit/row_widths.h"

#include <algorithm>
#include <cmath>

namespace ctl
{

void RowWidths::insert(int row, const QString& text)
{
    const int width = widthOf(text);
    widths_.insert(widths_.begin() + row, width);
    if (widest_ >= 0)
        widest_ = std::max(widest_, width);
}

void RowWidths::remove(int first, int last)
{
    const auto begin = widths_.begin() + first;
    const auto end = widths_.begin() + last + 1;
    if (std::find(begin, end, widest_) != end)
        widest_ = -1;
    widths_.erase(begin, end);
}

void RowWidths::clear()
{
    widths_.clear();
    widest_ = 0;
}

int RowWidths::widest() const
{
    if (widest_ < 0)
        widest_ = widths_.empty() ? 0 : *std::max_element(widths_.begin(), widths_.end());
    return widest_;
}

int RowWidths::widthOf(const QString& text)
{
    float width = 0;
    for (qsizetype i = 0; i < text.size(); ++i) {
        const bool isPair = text[i].isHighSurrogate() && i + 1 < text.size();
        width += advance(isPair ? QChar::surrogateToUcs4(text[i], text[i + 1]) : text[i].unicode());
        i += isPair ? 1 : 0;
    }
    return static_cast<int>(std::ceil(width));
}

float RowWidths::advance(char32_t character)
{
    const auto measured = [&] {
        return static_cast<float>(metrics_.horizontalAdvance(QString::fromUcs4(&character, 1)));
    };
    if (character < ascii_.size()) {
        float& known = ascii_[character];
        return known == unknown ? known = measured() : known;
    }
    const auto known = others_.constFind(character);
    return known != others_.constEnd() ? *known : *others_.insert(character, measured());
}

}
