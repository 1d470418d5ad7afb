// SPDX-License-Identifier: GPL-3.0-or-later
#include "toolkit/text_box.h"

#include "toolkit/qt_bridge.h"
#include "toolkit/tip.h"

#include <QHelpEvent>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QToolTip>
#include <QValidator>
#include <algorithm>

namespace
{

// Takes of what is typed or pasted as much as the bound leaves room for. A box that the program filled past
// it can be shortened, and what the user takes back or does again comes as it was: the line edit cannot
// refuse that.
class LengthBound final : public QValidator
{
public:
    LengthBound(QLineEdit& line, const ctl::TextBox& box, std::size_t characters) :
        QValidator(&line), line_(line), box_(box), bound_(characters)
    {
        note();
        connect(&line, &QLineEdit::textChanged, this, &LengthBound::note);
        connect(&line, &QLineEdit::selectionChanged, this, &LengthBound::note);
        connect(&line, &QLineEdit::inputRejected, this, [this] { latest_ = shown(box_.Text()); });
    }

    // The new text stands before the cursor, so that is where its end is cut.
    State validate(QString& text, int& cursor) const override
    {
        const QString before = shown(box_.Text());
        if (line_.isRedoAvailable() || text == latest_ || text == before)
            return Acceptable;
        const std::size_t length = count(text);
        if (length <= std::max(bound_, unselected_))
            return Acceptable;
        const Text head = bytesOf(text.left(cursor));
        const std::size_t excess = length - bound_;
        if (unselected_ >= bound_ || characterCount(head) < excess)
            return Invalid;
        const QString kept = shown(Text(firstCharacters(head, characterCount(head) - excess)));
        text = kept + text.mid(cursor);
        cursor = static_cast<int>(kept.size());
        return text == before ? Invalid : Acceptable;
    }

private:
    static std::size_t count(const QString& text) { return characterCount(bytesOf(text)); }

    // While a change is judged, the line edit has already forgotten what it replaces.
    void note()
    {
        unselected_ = count(line_.text()) - count(line_.selectedText());
        if (!line_.isRedoAvailable())
            latest_ = line_.text();
    }

    const QLineEdit& line_;
    const ctl::TextBox& box_; // still with the text before a change of the user's
    std::size_t bound_;
    std::size_t unselected_ = 0; // characters that typing leaves in place
    QString latest_;             // where doing again ends
};

// A redo can leave the line edit with a selection from before the text's start or a cursor past its end,
// where the next key would then delete or write.
void holdToText(QLineEdit& line)
{
    if (line.selectionStart() < 0)
        line.deselect();
    if (line.cursorPosition() > line.text().size())
        line.end(false);
}

// The byte at which a character begins.
std::size_t byteOf(std::string_view text, std::size_t character)
{
    return firstCharacters(text, character).size();
}

// A text that is longer than its box is its own tip, unless the box has another.
class LineEdit final : public QLineEdit
{
protected:
    bool event(QEvent* event) override
    {
        if (event->type() != QEvent::ToolTip || !toolTip().isEmpty() || isWhole())
            return QLineEdit::event(event);
        QToolTip::showText(static_cast<QHelpEvent*>(event)->globalPos(), wholeTip(text()), this);
        return true;
    }

private:
    bool isWhole() const
    {
        constexpr int beside = 8; // pixels that the frame and its margins take
        return fontMetrics().horizontalAdvance(text()) <= width() - beside;
    }
};

QWidget* boxOf(ctl::TextBox::Lines lines)
{
    if (lines == ctl::TextBox::Lines::one)
        return new LineEdit;
    auto* page = new QPlainTextEdit;
    page->setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOn);
    return page;
}

}

namespace ctl
{

TextBox::TextBox(Container& container, const char* name, Place place, const ::Text& text, Lines lines) :
    ControlOf(container, name, place, boxOf(lines)), text_(text), line_(qobject_cast<QLineEdit*>(widget_)),
    page_(qobject_cast<QPlainTextEdit*>(widget_))
{
    showText();
    if (line_) {
        QObject::connect(line_, &QLineEdit::textEdited, [this](const QString& now) { typed(bytesOf(now)); });
        QObject::connect(line_, &QLineEdit::textChanged, [this] { holdToText(*line_); });
        return;
    }
    QObject::connect(page_, &QPlainTextEdit::textChanged, [this] {
        if (!showing_)
            typed(bytesOf(page_->toPlainText()));
    });
}

TextBox::TextBox(Container& container, const char* name, Hidden, const ::Text& text) :
    ControlOf(container, name, hidden), text_(text)
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
    if (line_) {
        line_->setText(shown(text_));
        line_->setCursorPosition(0);
    }
    if (page_)
        page_->setPlainText(shown(text_));
    showing_ = false;
}

void TextBox::typed(const ::Text& text)
{
    text_ = text;
    fromOutside([this] { Change.raise(); });
}

// A line that cannot be changed does not take the keys first; a page needs them to be read to its end.
void TextBox::setLocked(bool locked)
{
    widget_->setFocusPolicy(locked && line_ ? Qt::ClickFocus : Qt::StrongFocus);
    if (line_)
        line_->setReadOnly(locked);
    if (page_)
        page_->setReadOnly(locked);
}

void TextBox::setMaxLength(std::size_t characters)
{
    if (line_)
        line_->setValidator(new LengthBound(*line_, *this, characters));
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
