// SPDX-License-Identifier: GPL-3.0-or-later
#include "toolkit/label.h"

#include "toolkit/label_text.h"
#include "toolkit/qt_bridge.h"
#include "toolkit/tip.h"

#include <QFontMetrics>
#include <QLabel>
#include <QPainter>
#include <QStyle>
#include <algorithm>

namespace
{

// How far type may be narrowed before a caption loses its end.
constexpr int narrowest = 85; // per cent
constexpr int air = 2;        // pixels between a caption and what stands beside it

QFont narrowed(const QFont& font, int wanted, int width)
{
    QFont narrow = font;
    narrow.setStretch(std::max(narrowest, width * 100 / wanted));
    return narrow;
}

// A caption that does not fit is narrowed a little, and then ends in an ellipsis; one that wraps is shortened
// elsewhere.
class LabelWidget final : public QLabel
{
public:
    LabelWidget() { setTextFormat(Qt::PlainText); }

    bool isWhole() const { return !wordWrap() || fitted(text(), fontMetrics(), size()).isWhole; }

protected:
    void paintEvent(QPaintEvent*) override
    {
        QPainter painter(this);
        if (wordWrap())
            return paintLines(painter);
        const int wanted = QFontMetrics(font()).horizontalAdvance(text());
        painter.setPen(palette().color(foregroundRole()));
        if (wanted <= width() - air)
            return painter.drawText(rect(), static_cast<int>(alignment()), text());
        painter.setFont(narrowed(font(), wanted, width() - air));
        painter.drawText(rect(), static_cast<int>(alignment()),
                         painter.fontMetrics().elidedText(text(), Qt::ElideRight, width()));
    }

private:
    void paintLines(QPainter& painter)
    {
        style()->drawItemText(&painter, rect(), static_cast<int>(alignment()) | Qt::TextWordWrap, palette(),
                              isEnabled(), fitted(text(), fontMetrics(), size()).lines, foregroundRole());
    }
};

// 20 twips to the point of type.
int typePixels(int points) { return pixelsOf(static_cast<Twips>(points) * 20); }

}

namespace ctl
{

Label::Label(Container& container, const char* name, Place place, const Text& caption) :
    Control(container, name, place, new LabelWidget)
{
    setCaption(caption);
}

Label::Label(Container& container, const char* name, Hidden, const Text& caption) :
    Control(container, name, hidden), caption_(caption)
{
}

void Label::setCaption(const Text& caption)
{
    caption_ = caption;
    if (auto* label = static_cast<QLabel*>(widget_))
        label->setText(shown(caption));
    settle();
}

// What does not fit is told elsewhere.
void Label::settle()
{
    auto* label = static_cast<LabelWidget*>(widget_);
    if (!label)
        return;
    const bool isWhole = label->isWhole();
    label->setToolTip(isWhole ? shown(ToolTipText()) : wholeTip(label->text()));
    label->setAccessibleDescription(isWhole ? QString() : label->text());
}

void Label::setTone(Tone tone)
{
    static_cast<QLabel*>(widget_)->setForegroundRole(tone == Tone::lit     ? QPalette::Link
                                                     : tone == Tone::quiet ? QPalette::PlaceholderText
                                                                           : QPalette::WindowText);
}

void Label::setCentered() { static_cast<QLabel*>(widget_)->setAlignment(Qt::AlignCenter); }

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
    auto* label = static_cast<QLabel*>(widget_);
    label->setWordWrap(wrap);
    label->setAlignment(wrap ? Qt::AlignLeft | Qt::AlignTop : Qt::AlignLeft | Qt::AlignVCenter);
    settle();
}

}
