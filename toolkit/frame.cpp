// SPDX-License-Identifier: GPL-3.0-or-later
#include "toolkit/frame.h"

#include "toolkit/form.h"
#include "toolkit/qt_bridge.h"

#include <QGroupBox>
#include <QTabWidget>

namespace ctl
{

Frame::Frame(Container& container, const char* name, Place place, const Text& caption) :
    ControlOf(container, name, place, new QGroupBox(shown(caption)))
{
    widget_->setAccessibleName(shown(caption)); // or it would be called by the frame around it
}

QWidget* Frame::page() { return widget_; }

class TabControl::Page final : public Container
{
public:
    Page(Form& form, QWidget* page) : form_(form), page_(page) {}

    Form& form() override { return form_; }
    QWidget* page() override { return page_; }

private:
    Form& form_;
    QWidget* page_;
};

TabControl::TabControl(Container& container, const char* name, Place place,
                       const std::vector<Text>& captions) :
    ControlOf(container, name, place, new QTabWidget)
{
    for (const auto& caption : captions) {
        auto* page = new QWidget;
        widget_->addTab(page, shown(caption));
        pages_.push_back(std::make_unique<Page>(form(), page));
    }
}

int TabControl::Tab() const { return widget_->currentIndex(); }

void TabControl::setTab(int index) { widget_->setCurrentIndex(index); }

}
