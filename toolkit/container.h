// SPDX-License-Identifier: GPL-3.0-or-later
// What can hold controls: a form, a frame, a page of a tab control.
#pragma once

class Form;
class QWidget;

namespace ctl
{

class Container
{
public:
    virtual ~Container() = default;

    virtual Form& form() = 0;
    virtual QWidget* page() = 0;
};

}
