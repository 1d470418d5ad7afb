// SPDX-License-Identifier: GPL-3.0-or-later
#include "toolkit/label_text.h"

#include <QRegularExpression>

namespace
{

struct Stretch {
    qsizetype from;
    qsizetype to;
};

// From the first separator to the end of the last name: behind its extension, for names have blanks in them,
// and else at the next blank.
Stretch pathIn(const QString& text)
{
    static const QRegularExpression extension("\\.\\w{1,5}(?=\\s)");
    const qsizetype from = text.indexOf('/');
    if (from < 0)
        return {0, 0};
    const qsizetype name = text.lastIndexOf('/');
    if (const auto found = extension.match(text, name); found.hasMatch())
        return {from, found.capturedEnd()};
    const qsizetype blank = text.indexOf(' ', name);
    return {from, blank < 0 ? text.size() : blank};
}

// A path can be broken behind each separator.
QString breakable(QString text) { return text.replace(u'/', QStringLiteral("/\u200B")); }

bool fits(const QString& text, const QFontMetrics& metrics, QSize place)
{
    const QRect room({0, 0}, place);
    return room.contains(metrics.boundingRect(room, Qt::TextWordWrap, text));
}

QString shortened(const QString& text, Stretch stretch, qsizetype kept)
{
    const qsizetype before = (kept + 1) / 2;
    return text.left(stretch.from + before) + u'\u2026' + text.mid(stretch.to - (kept - before));
}

}

QString brokenAtLongBlanks(const QString& text)
{
    static const QRegularExpression blanks(" {20,}");
    return QString(text).replace(blanks, "\n");
}

FittedText fitted(const QString& text, const QFontMetrics& metrics, QSize place)
{
    const QString lines = brokenAtLongBlanks(text);
    if (fits(lines, metrics, place))
        return {lines};
    const Stretch path = pathIn(lines);
    if (path.from == path.to || fits(breakable(lines), metrics, place))
        return {breakable(lines)};
    const qsizetype length = path.to - path.from;
    qsizetype kept = 0;
    for (qsizetype step = length; step > 0; step /= 2)
        if (kept + step < length && fits(breakable(shortened(lines, path, kept + step)), metrics, place))
            kept += step;
    return {breakable(shortened(lines, path, kept)), false};
}
