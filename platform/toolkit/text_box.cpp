#include "platform/toolkit/text_box.h"

#include "platform/toolkit/qt_bridge.h"

#include <QLineEdit>
#include <QPlainTextEdit>
#include <QValidator>
#include <algorithm>

namespace
{

// Takes of what is typed or pasted as much as there is room for. A box that the program filled past its bound
// can still be shortened.
class LengthBound final : public QValidator
{
public:
    LengthBound(QObject* owner, const ctl::TextBox& box, std::size_t characters) :
        QValidator(owner), box_(box), bound_(characters)
    {
    }

    // The new text stands before the cursor, so that is where its end is cut.
    State validate(QString& text, int& cursor) const override
    {
        const std::size_t length = characterCount(bytesOf(text));
        const std::size_t room = std::max(bound_, characterCount(box_.Text()));
        if (length <= room)
            return Acceptable;
        const Text head = bytesOf(text.left(cursor));
        if (characterCount(head) < length - room)
            return Invalid;
        const QString kept = shown(Text(firstCharacters(head, characterCount(head) - (length - room))));
        text = kept + text.mid(cursor);
        cursor = static_cast<int>(kept.size());
        return text == shown(box_.Text()) ? Invalid : Acceptable;
    }

private:
    const ctl::TextBox& box_; // still with the text before the change
    std::size_t bound_;
};

// The byte at which a character begins.
std::size_t byteOf(std::string_view text, std::size_t character)
{
    return firstCharacters(text, character).size();
}

QWidget* boxOf(ctl::TextBox::Lines lines)
{
    return lines == ctl::TextBox::Lines::one ? static_cast<QWidget*>(new QLineEdit) : new QPlainTextEdit;
}

}

namespace ctl
{

TextBox::TextBox(Container& container, const char* name, Place place, const ::Text& text, Lines lines) :
    Control(container, name, place, boxOf(lines)), text_(text), lines_(lines)
{
    showText();
    if (auto* line = qobject_cast<QLineEdit*>(widget_))
        QObject::connect(line, &QLineEdit::textEdited, [this](const QString& now) { typed(bytesOf(now)); });
    if (auto* page = qobject_cast<QPlainTextEdit*>(widget_))
        QObject::connect(page, &QPlainTextEdit::textChanged, [this, page] {
            if (!showing_)
                typed(bytesOf(page->toPlainText()));
        });
}

TextBox::TextBox(Container& container, const char* name, Hidden, const ::Text& text) :
    Control(container, name, hidden), text_(text)
{
}

void TextBox::setText(const ::Text& text)
{
    if (text == text_)
        return;
    text_ = text;
    showText();
    Change.raise();
}

void TextBox::showText()
{
    showing_ = true;
    if (auto* line = qobject_cast<QLineEdit*>(widget_)) {
        line->setText(shown(text_));
        line->setCursorPosition(0);
    }
    if (auto* page = qobject_cast<QPlainTextEdit*>(widget_))
        page->setPlainText(shown(text_));
    showing_ = false;
}

void TextBox::typed(const ::Text& text)
{
    text_ = text;
    fromOutside([this] { Change.raise(); });
}

// What cannot be changed does not take the keys first.
void TextBox::setLocked(bool locked)
{
    widget_->setFocusPolicy(locked ? Qt::ClickFocus : Qt::StrongFocus);
    if (auto* line = qobject_cast<QLineEdit*>(widget_))
        line->setReadOnly(locked);
    if (auto* page = qobject_cast<QPlainTextEdit*>(widget_))
        page->setReadOnly(locked);
}

void TextBox::setMaxLength(std::size_t characters)
{
    if (auto* line = qobject_cast<QLineEdit*>(widget_))
        line->setValidator(new LengthBound(line, *this, characters));
}

void TextBox::setSelStart(std::ptrdiff_t start)
{
    selStart_ = std::min(static_cast<std::size_t>(std::max<std::ptrdiff_t>(start, 0)), characterCount(text_));
    selLength_ = 0;
}

void TextBox::setSelLength(std::size_t length)
{
    selLength_ = std::min(length, characterCount(text_) - selStart_);
}

void TextBox::setSelText(const ::Text& replacement)
{
    const std::size_t from = byteOf(text_, selStart_);
    const std::size_t to = byteOf(text_, selStart_ + selLength_);
    setText(::Text(text_).replace(from, to - from, replacement));
}

}
