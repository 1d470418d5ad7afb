#include "toolkit/buttons.h"

#include "platform/failure.h"
#include "toolkit/form.h"
#include "toolkit/qt_bridge.h"

#include <QApplication>
#include <QCheckBox>
#include <QPushButton>
#include <QRadioButton>
#include <QShortcut>
#include <QSignalBlocker>

namespace
{

// Enter presses the button that has the focus, if one has.
QPushButton& buttonFor(int key, QPushButton& otherwise)
{
    auto* focused = qobject_cast<QPushButton*>(QApplication::focusWidget());
    return focused && key != Qt::Key_Escape ? *focused : otherwise;
}

}

namespace ctl
{

CommandButton::CommandButton(Container& container, const char* name, Place place, const Text& caption,
                             Keys keys) :
    Control(container, name, place, new QPushButton(shown(caption)))
{
    auto* button = static_cast<QPushButton*>(widget_);
    QObject::connect(button, &QPushButton::clicked, [this] { fromOutside([this] { Click.raise(); }); });
    if (keys == Keys::none)
        return;
    // The window's own keys: they press the button from behind another tab as well.
    for (const int key : {Qt::Key_Return, Qt::Key_Enter, Qt::Key_Escape})
        QObject::connect(new QShortcut(key, form().page()), &QShortcut::activated, button,
                         [button, key] { buttonFor(key, *button).click(); });
}

OptionButton::OptionButton(Container& container, const char* name, Place place, const Text& caption) :
    Control(container, name, place, new QRadioButton(shown(caption)))
{
    QObject::connect(static_cast<QRadioButton*>(widget_), &QRadioButton::toggled, [this](bool on) {
        if (on)
            fromOutside([this] { Click.raise(); });
    });
}

bool OptionButton::Value() const { return static_cast<QRadioButton*>(widget_)->isChecked(); }

void OptionButton::setValue(bool value)
{
    auto* button = static_cast<QRadioButton*>(widget_);
    if (button->isChecked() == value)
        return;
    {
        const QSignalBlocker quiet(button);
        button->setAutoExclusive(value);
        button->setChecked(value);
        button->setAutoExclusive(true);
    }
    if (value)
        Click.raise();
}

CheckBox::CheckBox(Container& container, const char* name, Place place, const Text& caption,
                   const Text& toolTip) :
    Control(container, name, place, new QCheckBox(shown(caption)), toolTip)
{
    QObject::connect(static_cast<QCheckBox*>(widget_), &QCheckBox::toggled,
                     [this] { fromOutside([this] { Click.raise(); }); });
}

std::int16_t CheckBox::Value() const { return static_cast<QCheckBox*>(widget_)->isChecked() ? 1 : 0; }

void CheckBox::setValue(std::int16_t value)
{
    if (value != 0 && value != 1)
        throw failure(380);
    if (value == Value())
        return;
    {
        const QSignalBlocker quiet(widget_);
        static_cast<QCheckBox*>(widget_)->setChecked(value == 1);
    }
    Click.raise();
}

}
