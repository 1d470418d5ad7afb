// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "toolkit/control.h"

#include <memory>
#include <vector>

class QGroupBox;
class QTabWidget;

namespace ctl
{

// A captioned frame. It holds other controls, whose places are in its own twips.
class Frame final : public ControlOf<QGroupBox>, public Container
{
public:
    Frame(Container& container, const char* name, Place place, const Text& caption = {});

    Form& form() override { return Control::form(); }
    QWidget* page() override;
};

// Pages under tabs, counted from 0. "&" in a caption marks the access key, "&&" shows as one.
class TabControl final : public ControlOf<QTabWidget>
{
public:
    TabControl(Container& container, const char* name, Place place, const std::vector<Text>& captions);

    Container& page(std::size_t index) { return *pages_[index]; }

    int Tab() const;
    void setTab(int index);

private:
    class Page;

    std::vector<std::unique_ptr<Container>> pages_;
};

}
