// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "toolkit/control.h"

#include <cstddef>

class QLineEdit;
class QPlainTextEdit;

namespace ctl
{

// Text that the user can change, unless it is locked. What the program sets is kept byte for byte and shown
// whole, whatever the maximum length; only typing is bounded by it.
// Beside several lines a scroll bar always stands.
class TextBox final : public ControlOf<QWidget>
{
public:
    enum class Lines { one, several };

    TextBox(Container& container, const char* name, Place place, const Text& text = {},
            Lines lines = Lines::one);
    TextBox(Container& container, const char* name, Hidden, const Text& text = {});

    Event<> Change; // the text became another one, by typing or from code

    ::Text Text() const { return text_; }
    void setText(const ::Text& text);

    void setLocked(bool locked); // shown, selectable, not to be changed
    void setMaxLength(std::size_t characters);

    // A part of the text, counted in characters from 0, held to the text's ends; and what replaces it.
    void setSelStart(std::ptrdiff_t start);
    void setSelLength(std::size_t length);
    void setSelText(const ::Text& replacement);

private:
    void showText();
    void typed(const ::Text& text);

    ::Text text_;
    std::size_t selStart_ = 0;
    std::size_t selLength_ = 0;
    bool showing_ = false;
    QLineEdit* line_ = nullptr; // one of the two, unless it is hidden
    QPlainTextEdit* page_ = nullptr;
};

}
