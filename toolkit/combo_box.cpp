// SPDX-License-Identifier: GPL-3.0-or-later
#include "toolkit/combo_box.h"

#include "platform/failure.h"
#include "toolkit/drop_down.h"
#include "toolkit/qt_bridge.h"

#include <QSignalBlocker>

namespace ctl
{

ComboBox::ComboBox(Container& container, const char* name, Place place) :
    ControlOf(container, name, place, new DropDown)
{
    QObject::connect(widget_, &QComboBox::currentIndexChanged,
                     [this] { fromOutside([this] { Click.raise(); }); });
}

// The first row is not chosen by itself.
void ComboBox::AddItem(const Text& text)
{
    const QSignalBlocker quiet(widget_);
    const int before = widget_->currentIndex();
    widget_->addItem(shown(text));
    widget_->setCurrentIndex(before);
}

std::int32_t ComboBox::ListCount() const { return widget_->count(); }

std::int32_t ComboBox::ListIndex() const { return widget_->currentIndex(); }

void ComboBox::setListIndex(std::int32_t index)
{
    if (index < -1 || index >= ListCount())
        throw Failure(Trouble::invalidPropertyValue);
    if (index == ListIndex())
        return;
    {
        const QSignalBlocker quiet(widget_);
        widget_->setCurrentIndex(index);
    }
    Click.raise();
}

}
