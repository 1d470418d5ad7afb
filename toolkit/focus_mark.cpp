// SPDX-License-Identifier: GPL-3.0-or-later
#include "toolkit/focus_mark.h"

#include <QPainter>
#include <QProxyStyle>
#include <algorithm>
#include <vector>

namespace
{

constexpr int margin = 3; // pixels between a picture and the outer edge of its mark

class MarkStyle final : public QProxyStyle
{
public:
    using QProxyStyle::QProxyStyle;

    int pixelMetric(PixelMetric metric, const QStyleOption* option, const QWidget* widget) const override
    {
        if (metric == PM_FocusFrameHMargin || metric == PM_FocusFrameVMargin)
            return margin;
        return QProxyStyle::pixelMetric(metric, option, widget);
    }

    int styleHint(StyleHint hint, const QStyleOption* option, const QWidget* widget,
                  QStyleHintReturn* data) const override
    {
        if (hint == SH_FocusFrame_AboveWidget)
            return 1;
        return hint == SH_FocusFrame_Mask ? 0 : QProxyStyle::styleHint(hint, option, widget, data);
    }
};

bool takesTab(const QWidget& widget) { return (widget.focusPolicy() & Qt::TabFocus) != 0; }

std::vector<QWidget*> stopsOf(const QWidget& window)
{
    std::vector<QWidget*> stops;
    for (auto* child : window.findChildren<QWidget*>(Qt::FindDirectChildrenOnly))
        if (takesTab(*child))
            stops.push_back(child);
    return stops;
}

}

namespace ctl
{

FocusMark::FocusMark(QWidget& window) : QFocusFrame(&window)
{
    auto* style = new MarkStyle;
    style->setParent(this);
    setStyle(style);
}

void FocusMark::paintEvent(QPaintEvent*)
{
    const QRect seen = rect() & parentWidget()->rect().translated(-pos());
    const QRectF ring = QRectF(seen).adjusted(1, 1, -1, -1);
    const QColor accent = palette().color(QPalette::Link);
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(QPen(QColor(accent.red(), accent.green(), accent.blue(), 70), 2));
    painter.drawRoundedRect(ring, 4, 4);
    painter.setPen(QPen(accent, 1.25));
    painter.drawRoundedRect(ring, 4, 4);
}

void setReadingOrder(QWidget& window)
{
    auto stops = stopsOf(window);
    const auto above = [](QWidget* a, QWidget* b) { return a->y() < b->y(); };
    const auto leftOf = [](QWidget* a, QWidget* b) { return a->x() < b->x(); };
    std::stable_sort(stops.begin(), stops.end(), above);
    for (auto row = stops.begin(); row != stops.end();) {
        const int bottom = (*row)->geometry().bottom();
        const auto next = std::find_if(row, stops.end(), [=](QWidget* stop) { return stop->y() > bottom; });
        std::stable_sort(row, next, leftOf);
        row = next;
    }
    for (std::size_t i = 1; i < stops.size(); ++i)
        QWidget::setTabOrder(stops[i - 1], stops[i]);
}

}
