// SPDX-License-Identifier: GPL-3.0-or-later
#include "toolkit/label.h"

#include "toolkit/label_text.h"
#include "toolkit/qt_bridge.h"
#include "toolkit/tip.h"
#include "toolkit/type_size.h"

#include <QFontMetrics>
#include <QHelpEvent>
#include <QLabel>
#include <QPainter>
#include <QStyle>
#include <QToolTip>
#include <algorithm>

namespace
{

// How far type may be narrowed before a caption loses its end.
constexpr int narrowest = 85; // per cent
constexpr int air = 2;        // pixels between a caption and what stands beside it

qreal narrowness(int wanted, int width) { return std::max(narrowest / 100.0, qreal(width) / wanted); }

// 20 twips to the point of type.
int typePixels(int points) { return pixelsOf(static_cast<Twips>(points) * 20); }

}

namespace ctl
{

// Where the desktop asks for larger type, a caption takes as much of it as fits its place. One that does not
// fit then is narrowed a little, and ends in an ellipsis, with the whole in its tip; one that wraps is
// shortened elsewhere.
class LabelWidget final : public QLabel
{
public:
    LabelWidget() { setTextFormat(Qt::PlainText); }

    // One of a single line finds out when it is asked for its tip.
    bool isWhole() const { return !wordWrap() || fitted(text(), QFontMetrics(linesFont()), size()).isWhole; }

protected:
    bool event(QEvent* event) override
    {
        if (event->type() != QEvent::ToolTip || !toolTip().isEmpty() || wordWrap() || isWholeLine())
            return QLabel::event(event);
        QToolTip::showText(static_cast<QHelpEvent*>(event)->globalPos(), wholeTip(text()), this);
        return true;
    }

    void paintEvent(QPaintEvent*) override
    {
        QPainter painter(this);
        if (wordWrap())
            return paintLines(painter);
        painter.setPen(palette().color(foregroundRole()));
        const QFont type = lineFont();
        const int wanted = QFontMetrics(type).horizontalAdvance(text());
        painter.setFont(type);
        if (wanted <= room())
            return painter.drawText(place(), static_cast<int>(alignment()), text());
        // Asking for a narrow font instead would have every font of the system looked through.
        const qreal narrow = narrowness(wanted, room());
        painter.scale(narrow, 1);
        const QRectF wide(place().x() / narrow, place().y(), place().width() / narrow, place().height());
        painter.drawText(wide, static_cast<int>(alignment()),
                         QFontMetricsF(type).elidedText(text(), Qt::ElideRight, wide.width()));
    }

private:
    // A caption does not touch what stands at its right.
    QRect place() const
    {
        return alignment().testFlag(Qt::AlignRight) ? rect().adjusted(0, 0, -air - 1, 0) : rect();
    }

    int room() const { return place().width() - air; }

    bool isWholeLine() const
    {
        const int wanted = QFontMetrics(lineFont()).horizontalAdvance(text());
        return wanted <= room() || wanted * narrowness(wanted, room()) <= place().width();
    }

    QFont lineFont() const
    {
        return typeThatFits(font(), [this](const QFontMetrics& metrics) {
            return metrics.horizontalAdvance(text()) * narrowest <= room() * 100 &&
                   metrics.height() <= height();
        });
    }

    QFont linesFont() const
    {
        return typeThatFits(font(), [this](const QFontMetrics& metrics) {
            const auto lines = fitted(text(), metrics, size());
            return lines.isWhole &&
                   metrics.boundingRect(rect(), Qt::TextWordWrap, lines.lines).height() <= height();
        });
    }

    void paintLines(QPainter& painter)
    {
        painter.setFont(linesFont());
        style()->drawItemText(&painter, rect(), static_cast<int>(alignment()) | Qt::TextWordWrap, palette(),
                              isEnabled(), fitted(text(), painter.fontMetrics(), size()).lines,
                              foregroundRole());
    }
};

Label::Label(Container& container, const char* name, Place place, const Text& caption) :
    ControlOf(container, name, place, new LabelWidget)
{
    setCaption(caption);
}

Label::Label(Container& container, const char* name, Hidden, const Text& caption) :
    ControlOf(container, name, hidden), caption_(caption)
{
}

void Label::setCaption(const Text& caption)
{
    if (caption_ == caption)
        return;
    caption_ = caption;
    if (widget_)
        widget_->setText(shown(caption));
    settle();
}

// What does not fit is told elsewhere.
void Label::settle()
{
    if (!widget_)
        return;
    const bool isWhole = widget_->isWhole();
    widget_->setToolTip(isWhole ? shown(ToolTipText()) : wholeTip(widget_->text()));
    widget_->setAccessibleDescription(isWhole ? QString() : widget_->text());
}

void Label::setTone(Tone tone)
{
    widget_->setForegroundRole(tone == Tone::lit     ? QPalette::Link
                               : tone == Tone::quiet ? QPalette::PlaceholderText
                                                     : QPalette::WindowText);
}

void Label::setCentered() { widget_->setAlignment(Qt::AlignCenter); }

void Label::setAtRight() { widget_->setAlignment(Qt::AlignRight | Qt::AlignVCenter); }

void Label::setFontSize(int points)
{
    QFont font = widget_->font();
    font.setPixelSize(typePixels(points));
    widget_->setFont(font);
    settle();
}

void Label::setFontBold(bool bold)
{
    QFont font = widget_->font();
    font.setBold(bold);
    widget_->setFont(font);
    settle();
}

void Label::setWordWrap(bool wrap)
{
    widget_->setWordWrap(wrap);
    widget_->setAlignment(wrap ? Qt::AlignLeft | Qt::AlignTop : Qt::AlignLeft | Qt::AlignVCenter);
    settle();
}

}
