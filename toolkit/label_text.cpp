// SPDX-License-Identifier: GPL-3.0-or-later
#include "toolkit/label_text.h"

#include <QRegularExpression>

namespace
{

struct TextRange {
    qsizetype from;
    qsizetype to;
};

// The last extension that belongs to a word: names have points and blanks in them, and the reason behind the
// path may speak of ".wav" files. Else the first one.
qsizetype endOfExtension(const QString& text, qsizetype from)
{
    static const QRegularExpression inWord("(?<=\\S)\\.\\w{1,5}(?!\\S)");
    static const QRegularExpression any("\\.\\w{1,5}(?!\\S)");
    QRegularExpressionMatch found;
    if (text.lastIndexOf(inWord, -1, &found) > from)
        return found.capturedEnd();
    found = any.match(text, from);
    return found.hasMatch() ? found.capturedEnd() : -1;
}

// From the first separator to the end of the last name: behind its extension, and else at the next blank.
TextRange pathIn(const QString& text)
{
    const qsizetype from = text.indexOf('/');
    if (from < 0)
        return {0, 0};
    const qsizetype name = text.lastIndexOf('/');
    if (const qsizetype end = endOfExtension(text, name); end >= 0)
        return {from, end};
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

QString shortened(const QString& text, TextRange stretch, qsizetype kept)
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
    const TextRange path = pathIn(lines);
    if (path.from == path.to || fits(breakable(lines), metrics, place))
        return {breakable(lines)};
    const qsizetype length = path.to - path.from;
    qsizetype kept = 0;
    for (qsizetype step = length; step > 0; step /= 2)
        if (kept + step < length && fits(breakable(shortened(lines, path, kept + step)), metrics, place))
            kept += step;
    return {breakable(shortened(lines, path, kept)), false};
}
