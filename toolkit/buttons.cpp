// SPDX-License-Identifier: GPL-3.0-or-later
#include "toolkit/buttons.h"

#include "platform/failure.h"
#include "toolkit/form.h"
#include "toolkit/form_widget.h"
#include "toolkit/qt_bridge.h"

#include <QApplication>
#include <QCheckBox>
#include <QFocusEvent>
#include <QKeyEvent>
#include <QPushButton>
#include <QRadioButton>
#include <QShortcut>
#include <QSignalBlocker>

namespace
{

bool isEnter(int key) { return key == Qt::Key_Return || key == Qt::Key_Enter; }

// Enter presses the button that has the focus, in every desktop's style, and once, however long it is held.
class PushButton final : public QPushButton
{
public:
    using QPushButton::QPushButton;

protected:
    void keyPressEvent(QKeyEvent* event) override
    {
        if (!isEnter(event->key()))
            QPushButton::keyPressEvent(event);
        else if (!event->isAutoRepeat())
            click();
    }
};

// Tab lands on the chosen one of a group, whichever was chosen when the group had the focus last.
class RadioButton final : public QRadioButton
{
public:
    using QRadioButton::QRadioButton;

protected:
    void focusInEvent(QFocusEvent* event) override
    {
        const bool byTab = event->reason() == Qt::TabFocusReason || event->reason() == Qt::BacktabFocusReason;
        auto* chosen = byTab ? chosenOfGroup() : nullptr;
        if (chosen && chosen != this)
            chosen->setFocus(event->reason());
        else
            QRadioButton::focusInEvent(event);
    }

private:
    QRadioButton* chosenOfGroup() const
    {
        for (auto* button : parentWidget()->findChildren<QRadioButton*>(Qt::FindDirectChildrenOnly))
            if (button->isChecked() && button->isEnabled())
                return button;
        return nullptr;
    }
};

// Enter presses the button that has the focus, if one has.
QPushButton& buttonFor(QPushButton& otherwise)
{
    auto* focused = qobject_cast<QPushButton*>(QApplication::focusWidget());
    return focused ? *focused : otherwise;
}

}

namespace ctl
{

CommandButton::CommandButton(Container& container, const char* name, Place place, const Text& caption,
                             Keys keys) :
    ControlOf(container, name, place, new PushButton(shown(caption)))
{
    QObject::connect(widget_, &QPushButton::clicked, [this] { fromOutside([this] { Click.raise(); }); });
    if (keys != Keys::none)
        static_cast<FormWidget*>(form().page())->cancelsWith(*widget_);
    if (keys != Keys::enterAndEscape)
        return;
    // The window's own keys: they press the button from behind another tab as well.
    for (const int key : {Qt::Key_Return, Qt::Key_Enter}) {
        auto* shortcut = new QShortcut(key, form().page());
        shortcut->setAutoRepeat(false);
        QObject::connect(shortcut, &QShortcut::activated, widget_, [this] { buttonFor(*widget_).click(); });
    }
}

OptionButton::OptionButton(Container& container, const char* name, Place place, const Text& caption) :
    ControlOf(container, name, place, new RadioButton(shown(caption)))
{
    QObject::connect(widget_, &QRadioButton::toggled, [this](bool on) {
        if (on)
            fromOutside([this] { Click.raise(); });
    });
}

bool OptionButton::Value() const { return widget_->isChecked(); }

void OptionButton::setValue(bool value)
{
    if (widget_->isChecked() == value)
        return;
    {
        const QSignalBlocker quiet(widget_);
        widget_->setAutoExclusive(value);
        widget_->setChecked(value);
        widget_->setAutoExclusive(true);
    }
    if (value)
        Click.raise();
}

CheckBox::CheckBox(Container& container, const char* name, Place place, const Text& caption,
                   const Text& toolTip) :
    ControlOf(container, name, place, new QCheckBox(shown(caption)), toolTip)
{
    QObject::connect(widget_, &QCheckBox::toggled, [this] { fromOutside([this] { Click.raise(); }); });
}

std::int16_t CheckBox::Value() const { return widget_->isChecked() ? 1 : 0; }

void CheckBox::setValue(std::int16_t value)
{
    if (value != 0 && value != 1)
        throw Failure(Trouble::invalidPropertyValue);
    if (value == Value())
        return;
    {
        const QSignalBlocker quiet(widget_);
        widget_->setChecked(value == 1);
    }
    Click.raise();
}

}
