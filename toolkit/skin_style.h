// SPDX-License-Identifier: GPL-3.0-or-later
// What boxes, dialogs and framed windows look like: the window library's style, in the skin's line. For the
// toolkit's own sources and for who dresses the application.
#pragma once

#include <QProxyStyle>

class SkinStyle final : public QProxyStyle
{
public:
    SkinStyle();

    int styleHint(StyleHint hint, const QStyleOption* option, const QWidget* widget,
                  QStyleHintReturn* data) const override;
    QIcon standardIcon(StandardPixmap picture, const QStyleOption* option,
                       const QWidget* widget) const override;
    QPixmap standardPixmap(StandardPixmap picture, const QStyleOption* option,
                           const QWidget* widget) const override;

    QPixmap generatedIconPixmap(QIcon::Mode mode, const QPixmap& pixmap,
                                const QStyleOption* option) const override;

    // A group's frame and its caption are of one piece: the caption stands in the frame's upper line.
    QRect subControlRect(ComplexControl control, const QStyleOptionComplex* option, SubControl part,
                         const QWidget* widget) const override;
    void drawComplexControl(ComplexControl control, const QStyleOptionComplex* option, QPainter* painter,
                            const QWidget* widget) const override;

    void drawControl(ControlElement element, const QStyleOption* option, QPainter* painter,
                     const QWidget* widget) const override;
    void drawPrimitive(PrimitiveElement element, const QStyleOption* option, QPainter* painter,
                       const QWidget* widget) const override;

    // Type that is larger than a place has room for becomes smaller there.
    void drawItemText(QPainter* painter, const QRect& rect, int flags, const QPalette& palette, bool enabled,
                      const QString& text, QPalette::ColorRole role) const override;
};
