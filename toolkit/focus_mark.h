// SPDX-License-Identifier: GPL-3.0-or-later
// The mark round the picture that the keys go to, and the order in which Tab goes round. For the toolkit's
// own sources alone.
#pragma once

#include <QFocusFrame>

namespace ctl
{

// It follows its picture, also while that moves, and lies round it; at the window's edge inside it.
class FocusMark final : public QFocusFrame
{
public:
    explicit FocusMark(QWidget& window);

protected:
    void paintEvent(QPaintEvent* event) override;
};

// As one reads: row by row, from left to right. What lies beside the first of a row is of that row.
void setReadingOrder(QWidget& window);

}
