// SPDX-License-Identifier: GPL-3.0-or-later
// How the text of a label that wraps is laid into its place. For the toolkit's own sources alone.
#pragma once

#include <QFontMetrics>
#include <QSize>
#include <QString>

// With a line's end in place of each run of twenty or more blanks: such a run was typed to break the line,
// and how many blanks that takes is another number in every font. Shorter runs are blanks.
QString brokenAtLongBlanks(const QString& text);

struct FittedText {
    QString lines;
    bool isWhole = true;
};

// The text as it is drawn in a place of that size. Where it does not fit, the path in it loses of its middle
// what it must, so that what is said of the path can be read.
FittedText fitted(const QString& text, const QFontMetrics& metrics, QSize place);
