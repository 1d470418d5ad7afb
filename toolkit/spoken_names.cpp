// SPDX-License-Identifier: GPL-3.0-or-later
#include "toolkit/spoken_names.h"

#include "toolkit/accessibility.h"
#include "toolkit/control.h"
#include "toolkit/form.h"

#include <QTabBar>
#include <QTabWidget>

namespace ctl
{

void setSpokenNames(Form& form, std::initializer_list<SpokenName> names)
{
    for (const auto& [control, name] : names) {
        auto* widget = form.page()->findChild<QWidget*>(control.Name());
        widget->setAccessibleName(name);
        widget->setProperty(hasSpokenName, true);
        if (auto* tabs = qobject_cast<QTabWidget*>(widget))
            tabs->tabBar()->setAccessibleName(name);
    }
}

}
