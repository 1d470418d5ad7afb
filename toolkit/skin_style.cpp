// SPDX-License-Identifier: GPL-3.0-or-later
#include "toolkit/skin_style.h"

#include "toolkit/tone.h"
#include "toolkit/type_size.h"

#include <QFrame>
#include <QIcon>
#include <QPainter>
#include <QStyleOption>
#include <algorithm>

namespace
{

struct Picture {
    QStyle::StandardPixmap what;
    const char* name;
};

// clang-format off
constexpr Picture pictures[] = {
    {QStyle::SP_MessageBoxWarning,       "box_exclamation"}, {QStyle::SP_MessageBoxCritical, "box_critical"},
    {QStyle::SP_MessageBoxInformation,   "box_information"}, {QStyle::SP_MessageBoxQuestion, "box_question"},
    {QStyle::SP_ArrowBack,               "go_back"},         {QStyle::SP_FileDialogBack,     "go_back"},
    {QStyle::SP_ArrowForward,            "go_forward"},      {QStyle::SP_FileDialogToParent, "go_up"},
    {QStyle::SP_FileDialogNewFolder,     "folder_new"},      {QStyle::SP_FileDialogListView, "view_list"},
    {QStyle::SP_FileDialogDetailedView,  "view_details"},    {QStyle::SP_DirHomeIcon,        "home"},
    {QStyle::SP_DirIcon,                 "folder"},          {QStyle::SP_DirClosedIcon,      "folder"},
    {QStyle::SP_DirOpenIcon,             "folder"},          {QStyle::SP_DirLinkIcon,        "folder"},
    {QStyle::SP_FileIcon,                "file"},            {QStyle::SP_FileLinkIcon,       "file"},
    {QStyle::SP_ComputerIcon,            "computer"},        {QStyle::SP_DesktopIcon,        "computer"},
    {QStyle::SP_DriveHDIcon,             "drive"},           {QStyle::SP_DriveNetIcon,       "drive"},
    {QStyle::SP_DriveCDIcon,             "drive"},
};
// clang-format on

const char* nameOf(QStyle::StandardPixmap what)
{
    for (const auto& picture : pictures)
        if (picture.what == what)
            return picture.name;
    return nullptr;
}

constexpr int captionAt = 10;  // pixels from the frame's left
constexpr int captionAir = 4;  // between the caption and the line that it stands in
constexpr qreal roundness = 4; // of a frame's corners

QColor lineColour() { return {255, 255, 255, lineStrength() + 14}; }

// The caption stands in the line alone: the ground runs on under it.
void drawGroupFrame(QPainter& painter, const QRect& frame, const QRect& caption)
{
    const QRectF outline = QRectF(frame).adjusted(0.5, 0.5, -0.5, -0.5);
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    painter.setBrush(QColor(0, 0, 0, 22));
    painter.drawRoundedRect(outline, roundness, roundness);
    if (!caption.isEmpty())
        painter.setClipRegion(QRegion(frame) - caption.adjusted(-captionAir, 0, captionAir, 0));
    painter.setPen(QPen(lineColour(), 1));
    painter.setBrush(Qt::NoBrush);
    painter.drawRoundedRect(outline, roundness, roundness);
    painter.restore();
}

void drawGroup(const QProxyStyle& style, const QStyleOptionGroupBox& group, QPainter& painter,
               const QWidget* widget)
{
    const QRect caption = style.subControlRect(QStyle::CC_GroupBox, &group, QStyle::SC_GroupBoxLabel, widget);
    drawGroupFrame(painter,
                   style.subControlRect(QStyle::CC_GroupBox, &group, QStyle::SC_GroupBoxFrame, widget),
                   caption);
    if (!caption.isEmpty())
        style.drawItemText(&painter, caption, Qt::AlignVCenter | Qt::AlignLeft | Qt::TextShowMnemonic,
                           group.palette, group.state.testFlag(QStyle::State_Enabled), group.text,
                           QPalette::WindowText);
}

QRect partOfGroup(const QStyleOptionGroupBox& group, QStyle::SubControl part)
{
    const bool hasCaption = !group.text.isEmpty();
    const QSize text = group.fontMetrics.size(Qt::TextShowMnemonic, group.text);
    const int room = std::max(0, group.rect.width() - 2 * captionAt);
    const QRect caption(group.rect.left() + captionAt, group.rect.top(), std::min(text.width() + 2, room),
                        text.height());
    if (part == QStyle::SC_GroupBoxLabel)
        return hasCaption ? caption : QRect();
    const QRect frame = hasCaption ? group.rect.adjusted(0, caption.height() / 2, 0, 0) : group.rect;
    return part == QStyle::SC_GroupBoxFrame ? frame : frame.adjusted(1, caption.height() / 2 + 1, -1, -1);
}

// A tab says that the pointer is on it, and which one has the keys.
void drawTabState(const QStyleOption& tab, QPainter& painter)
{
    const bool isInFront = tab.state.testFlag(QStyle::State_Selected);
    const bool isHovered = tab.state.testFlag(QStyle::State_MouseOver) && !isInFront;
    if (isHovered)
        painter.fillRect(tab.rect.adjusted(2, 3, -2, -1), QColor(255, 255, 255, 16));
    if (!isInFront && !isHovered)
        return;
    const QColor accent = tab.palette.color(QPalette::Link);
    const bool hasKeys = tab.state.testFlag(QStyle::State_HasFocus);
    const QRect mark(tab.rect.left() + 4, tab.rect.top() + 1, tab.rect.width() - 8, hasKeys ? 3 : 2);
    painter.fillRect(mark, QColor(accent.red(), accent.green(), accent.blue(), isInFront ? 255 : 110));
}

// A line between parts of a window is no louder than a frame.
bool isRule(const QStyleOption* option)
{
    const auto* frame = qstyleoption_cast<const QStyleOptionFrame*>(option);
    return frame && frame->frameShape == QFrame::HLine;
}

void outline(QPainter& painter, const QRect& rect, bool isRound)
{
    painter.save();
    painter.setPen(lineColour());
    painter.setBrush(Qt::NoBrush);
    if (isRound) {
        painter.setRenderHint(QPainter::Antialiasing);
        painter.drawEllipse(QRectF(rect).adjusted(0.5, 0.5, -0.5, -0.5));
    } else {
        painter.drawRect(rect.adjusted(0, 0, -1, -1));
    }
    painter.restore();
}

bool framesText(QStyle::PrimitiveElement element)
{
    return element == QStyle::PE_FrameLineEdit || element == QStyle::PE_Frame ||
           element == QStyle::PE_PanelButtonCommand || element == QStyle::PE_IndicatorCheckBox ||
           element == QStyle::PE_IndicatorRadioButton;
}

}

SkinStyle::SkinStyle() : QProxyStyle("Fusion") {}

int SkinStyle::styleHint(StyleHint hint, const QStyleOption* option, const QWidget* widget,
                         QStyleHintReturn* data) const
{
    return hint == SH_DialogButtonBox_ButtonsHaveIcons ? 0
                                                       : QProxyStyle::styleHint(hint, option, widget, data);
}

QIcon SkinStyle::standardIcon(StandardPixmap picture, const QStyleOption* option, const QWidget* widget) const
{
    const char* name = nameOf(picture);
    return name ? QIcon(QString(":/skin/%1.svg").arg(name))
                : QProxyStyle::standardIcon(picture, option, widget);
}

QPixmap SkinStyle::standardPixmap(StandardPixmap picture, const QStyleOption* option,
                                  const QWidget* widget) const
{
    constexpr QSize usual(24, 24);
    return nameOf(picture) ? standardIcon(picture, option, widget).pixmap(usual)
                           : QProxyStyle::standardPixmap(picture, option, widget);
}

// Where a row is selected, the ground has the pictures' own colour.
QPixmap SkinStyle::generatedIconPixmap(QIcon::Mode mode, const QPixmap& pixmap,
                                       const QStyleOption* option) const
{
    if (mode != QIcon::Selected)
        return QProxyStyle::generatedIconPixmap(mode, pixmap, option);
    QPixmap plain = pixmap;
    QPainter painter(&plain);
    painter.setCompositionMode(QPainter::CompositionMode_SourceIn);
    painter.fillRect(plain.rect(), option->palette.color(QPalette::HighlightedText));
    return plain;
}

QRect SkinStyle::subControlRect(ComplexControl control, const QStyleOptionComplex* option, SubControl part,
                                const QWidget* widget) const
{
    const auto* group = qstyleoption_cast<const QStyleOptionGroupBox*>(option);
    if (control == CC_GroupBox && group)
        return partOfGroup(*group, part);
    return QProxyStyle::subControlRect(control, option, part, widget);
}

void SkinStyle::drawComplexControl(ComplexControl control, const QStyleOptionComplex* option,
                                   QPainter* painter, const QWidget* widget) const
{
    const auto* group = qstyleoption_cast<const QStyleOptionGroupBox*>(option);
    if (control == CC_GroupBox && group)
        drawGroup(*this, *group, *painter, widget);
    else
        QProxyStyle::drawComplexControl(control, option, painter, widget);
}

void SkinStyle::drawControl(ControlElement element, const QStyleOption* option, QPainter* painter,
                            const QWidget* widget) const
{
    if (element == CE_ShapedFrame && isRule(option))
        return painter->fillRect(
            QRect(option->rect.left(), option->rect.center().y(), option->rect.width(), 1), lineColour());
    QProxyStyle::drawControl(element, option, painter, widget);
    if (element == CE_TabBarTabShape)
        drawTabState(*option, *painter);
    if (element == CE_ProgressBarGroove && tone() == DesktopTone::highContrast)
        outline(*painter, option->rect, false);
}

// In the tone of high contrast a line says where a field or a button ends.
void SkinStyle::drawPrimitive(PrimitiveElement element, const QStyleOption* option, QPainter* painter,
                              const QWidget* widget) const
{
    QProxyStyle::drawPrimitive(element, option, painter, widget);
    if (tone() == DesktopTone::usual || !framesText(element))
        return;
    outline(*painter, option->rect, element == PE_IndicatorRadioButton);
}

void SkinStyle::drawItemText(QPainter* painter, const QRect& rect, int flags, const QPalette& palette,
                             bool enabled, const QString& text, QPalette::ColorRole role) const
{
    const QFont before = painter->font();
    painter->setFont(typeThatFits(before, [&](const QFontMetrics& metrics) {
        return metrics.boundingRect(rect, flags, text).width() <= rect.width();
    }));
    QProxyStyle::drawItemText(painter, rect, flags, palette, enabled, text, role);
    painter->setFont(before);
}
