// SPDX-License-Identifier: GPL-3.0-or-later
// A window. Its controls are members of the class that derives from it; its handlers are wired to its events.
#pragma once

#include "platform/event.h"
#include "platform/text.h"
#include "platform/twips.h"
#include "toolkit/container.h"

#include <cstdint>
#include <memory>

class FormWidget;
class Toolkit;

namespace ctl
{
class Image;
}

class Form : public ctl::Container
{
public:
    enum class Border {
        none,
        fixed,
        dialog, // framed too, and without minimise and maximise: it can be closed, not lost
    };
    enum State : std::int16_t { normal = 0, minimized = 1 };

    // `name` is the window's name in the program and that of its background picture in the skin, if there is
    // one.
    Form(Toolkit& toolkit, const char* name, Border border, Extent client);
    ~Form() override;

    Form(const Form&) = delete;
    Form& operator=(const Form&) = delete;

    Event<> Load;       // before anything else happens with the window
    Event<> Activate;   // the window became the one that the user works in
    Event<> Deactivate; // another window did
    Event<> Unload;
    Event<> Terminate;

    const char* Name() const { return name_; }
    Text Caption() const;
    void setCaption(const Text& caption);

    // Windows stand on whole pixels: what is set is rounded, and reads back so at once.
    Twips Left() const;
    Twips Top() const;
    void setLeft(Twips left);
    void setTop(Twips top);
    Twips Width() const;
    Twips Height() const;

    // What is set reads back at once. It never shows a hidden window, raises it or gives it the focus.
    State WindowState() const;
    void setWindowState(State state);

    bool Visible() const;
    void Show(); // raises a window that is visible already, and brings back a minimised one
    void Hide();

    // The window follows the pointer until the button is released.
    void dragWithPointer();

    // Where no pointer can reach the window, it moves onto the nearest screen. For an act of the user's that
    // asks for it; shows nothing and raises nothing.
    void bringWithinReach();

    // The window manager has put the window elsewhere twice when it was asked for this place.
    bool isKeptFrom(Twips left, Twips top) const;

    // F10, the Menu key and Alt alone press this image.
    void setMenuImage(ctl::Image& image);

    Toolkit& toolkit() const { return toolkit_; }
    Form& form() override { return *this; }
    QWidget* page() override;

protected:
    // The window manager asks the window to close.
    virtual void closeRequested() { Hide(); }

private:
    friend class FormWidget;

    Toolkit& toolkit_;
    const char* name_;
    std::unique_ptr<FormWidget> widget_;
};
