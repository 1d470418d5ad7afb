// SPDX-License-Identifier: GPL-3.0-or-later
#include "toolkit/form.h"
#include "toolkit/text_box.h"
#include "toolkit/toolkit.h"

#include <QApplication>
#include <QClipboard>
#include <QKeyEvent>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <doctest/doctest.h>
#include <vector>

namespace
{

class BoxForm final : public Form
{
public:
    explicit BoxForm(Toolkit& toolkit) : Form(toolkit, "BoxForm", Border::fixed, {6000_tw, 3000_tw})
    {
        for (auto* box : {&line, &lines})
            box->Change.calls([this] { ++changes; });
    }

    ctl::TextBox line{*this, "line", {0_tw, 0_tw, 3000_tw, 300_tw}};
    ctl::TextBox lines{*this, "lines", {0_tw, 300_tw, 3000_tw, 1500_tw}, "", ctl::TextBox::Lines::several};
    int changes = 0;
};

struct Boxes {
    Toolkit toolkit{Toolkit::Timers::byHand};
    BoxForm form{toolkit};
    ctl::TextBox& line = form.line;
    ctl::TextBox& lines = form.lines;

    QWidget* widget(const char* name) { return form.page()->findChild<QWidget*>(name); }

    void type(const char* name, const QString& text)
    {
        for (const QChar letter : text) {
            QKeyEvent event(QEvent::KeyPress, letter.unicode(), Qt::NoModifier, QString(letter));
            QApplication::sendEvent(widget(name), &event);
        }
    }
    void press(const char* name, int key, Qt::KeyboardModifiers held = Qt::NoModifier)
    {
        QKeyEvent event(QEvent::KeyPress, key, held);
        QApplication::sendEvent(widget(name), &event);
    }
    void undo() { press("line", Qt::Key_Z, Qt::ControlModifier); }
    void redo() { press("line", Qt::Key_Z, Qt::ControlModifier | Qt::ShiftModifier); }
    QLineEdit& edit() { return *static_cast<QLineEdit*>(widget("line")); }
};

}

TEST_CASE("What the program sets is kept byte for byte, whatever can be shown of it")
{
    for (const Text& text :
         {Text("caf\xE9"), Text("a\0b", 3), Text("two\r\nlines"), Text("  blanks  "), Text("<b>&x")}) {
        Boxes boxes;
        boxes.line.setText(text);
        boxes.lines.setText(text);
        CHECK(boxes.line.Text() == text);
        CHECK(boxes.lines.Text() == text);
    }
}

TEST_CASE("Only a text that becomes another one raises Change, from code as by typing")
{
    Boxes boxes;
    boxes.line.setText("");
    CHECK(boxes.form.changes == 0);
    boxes.line.setText("a");
    boxes.line.setText("a");
    CHECK(boxes.form.changes == 1);
    boxes.edit().end(false);
    boxes.type("line", "bc");
    CHECK(boxes.line.Text() == "abc");
    CHECK(boxes.form.changes == 3);
    boxes.lines.setText("one");
    CHECK(boxes.form.changes == 4);
    boxes.type("lines", "x");
    CHECK(boxes.lines.Text() == "xone");
    CHECK(boxes.form.changes == 5);
}

TEST_CASE("A locked box takes nothing from the keys and everything from the program")
{
    Boxes boxes;
    for (auto* box : {&boxes.line, &boxes.lines}) {
        box->setLocked(true);
        box->setText("set");
    }
    boxes.type("line", "x");
    boxes.type("lines", "x");
    CHECK(boxes.line.Text() == "set");
    CHECK(boxes.lines.Text() == "set");
    boxes.line.setLocked(false);
    boxes.type("line", "x");
    CHECK(boxes.line.Text() == "xset");
}

TEST_CASE("Tab passes over a locked line, and comes to a locked page, which the keys scroll")
{
    Boxes boxes;
    for (auto* box : {&boxes.line, &boxes.lines})
        box->setLocked(true);
    const auto takesTab = [&](const char* name) {
        return (boxes.form.page()->findChild<QWidget*>(name)->focusPolicy() & Qt::TabFocus) != 0;
    };
    CHECK_FALSE(takesTab("line"));
    CHECK(takesTab("lines"));
    boxes.line.setLocked(false);
    CHECK(takesTab("line"));
}

TEST_CASE("A maximum length bounds the keys in characters, and the program not at all")
{
    Boxes boxes;
    boxes.line.setMaxLength(4);
    boxes.type("line", QString::fromUtf8("caf\xC3\xA9s"));
    CHECK(boxes.line.Text() == "caf\xC3\xA9");
    boxes.line.setText("longer than that");
    CHECK(boxes.line.Text() == "longer than that");
    CHECK(boxes.edit().text() == "longer than that");
    boxes.edit().end(false);
    boxes.type("line", "x");
    CHECK(boxes.line.Text() == "longer than that");
    boxes.press("line", Qt::Key_Backspace);
    CHECK(boxes.line.Text() == "longer than tha");
}

TEST_CASE("Of a pasted text a bounded box takes what there is room for, where the cursor stands")
{
    struct Case {
        Text what;
        Text before;
        int cursor, selected;
        Text pasted, after;
    };
    const Case cases[] = {
        {"into an empty box", "", 0, 0, "abcdef", "abcd"},
        {"into the middle", "xy", 1, 0, "abc", "xaby"},
        {"over a selection", "wxyz", 1, 2, "abc", "wabz"},
        {"into a full box", "wxyz", 2, 0, "abc", "wxyz"},
        {"characters of several bytes", "", 0, 0, "\xF0\x9F\x8E\xB5\xC3\xA9\xE2\x82\xACxy",
         "\xF0\x9F\x8E\xB5\xC3\xA9\xE2\x82\xACx"},
        {"over a part of what the program set too long", "abcdef", 1, 3, "xyzzy", "axef"},
        {"over a part of it that begins alike", "abcdef", 1, 3, "bzzzz", "abef"},
        {"over all of it", "abcdef", 0, 6, "uvwxyz", "uvwx"},
        {"over too little of it", "abcdef", 2, 2, "xy", "abcdef"},
        {"over too little of it, which begins alike", "aaaaaa", 2, 1, "a", "aaaaaa"},
    };
    for (const auto& c : cases) {
        CAPTURE(c.what);
        Boxes boxes;
        boxes.line.setMaxLength(4);
        boxes.line.setText(c.before);
        boxes.edit().setCursorPosition(c.cursor);
        boxes.edit().setSelection(c.cursor, c.selected);
        QApplication::clipboard()->setText(QString::fromUtf8(c.pasted.c_str()));
        boxes.edit().paste();
        CHECK(boxes.line.Text() == c.after);
        CHECK(boxes.edit().text().toStdString() == c.after);
    }
}

TEST_CASE("A key over a selection that leaves no room changes nothing, and deleting it always works")
{
    for (const char* letter : {"x", "a"}) {
        Boxes boxes;
        boxes.line.setMaxLength(4);
        boxes.line.setText("aaaaaaaa");
        boxes.edit().setSelection(1, 3);
        boxes.form.changes = 0;
        boxes.type("line", letter);
        CHECK(boxes.edit().text() == "aaaaaaaa");
        CHECK(boxes.edit().selectedText() == "aaa");
        CHECK(boxes.form.changes == 0);
        boxes.press("line", Qt::Key_Delete);
        CHECK(boxes.line.Text() == "aaaaa");
        boxes.type("line", letter);
        CHECK(boxes.line.Text() == "aaaaa");
    }
}

TEST_CASE("A text that is too long comes back by undo as it stood, and typing stays bounded afterwards")
{
    struct Case {
        Text what;
        int cursor, selected, key;
        Text then;
    };
    const Case cases[] = {
        {"Backspace at the end", 8, 0, Qt::Key_Backspace, "abcdefg"},
        {"Backspace in the middle", 5, 0, Qt::Key_Backspace, "abcdfgh"},
        {"Delete in the middle", 3, 0, Qt::Key_Delete, "abcefgh"},
        {"Delete at the start", 0, 0, Qt::Key_Delete, "bcdefgh"},
        {"Delete of a selection", 2, 3, Qt::Key_Delete, "abfgh"},
        {"Delete of all but what fits", 1, 5, Qt::Key_Delete, "agh"},
    };
    for (const auto& c : cases) {
        CAPTURE(c.what);
        Boxes boxes;
        boxes.line.setMaxLength(4);
        boxes.line.setText("abcdefgh");
        boxes.edit().setCursorPosition(c.cursor);
        boxes.edit().setSelection(c.cursor, c.selected);
        boxes.press("line", c.key);
        CHECK(boxes.line.Text() == c.then);
        boxes.undo();
        CHECK(boxes.line.Text() == "abcdefgh");
        CHECK(boxes.edit().text() == "abcdefgh");
        boxes.redo();
        CHECK(boxes.line.Text() == c.then);
        boxes.undo();
        boxes.edit().end(false);
        boxes.type("line", "xyz");
        CHECK(boxes.line.Text() == "abcdefgh");
    }
}

TEST_CASE("What was taken back is done again whatever is selected by then")
{
    Boxes boxes;
    boxes.line.setMaxLength(4);
    boxes.line.setText("abcdefgh");
    boxes.edit().end(false);
    boxes.press("line", Qt::Key_Backspace);
    boxes.undo();
    boxes.edit().setSelection(0, 5);
    boxes.redo();
    CHECK(boxes.line.Text() == "abcdefg");
    boxes.edit().end(false);
    boxes.type("line", "xyz");
    CHECK(boxes.line.Text() == "abcdefg");
}

TEST_CASE("After a refused key, too, what is taken back is done again")
{
    Boxes boxes;
    boxes.line.setMaxLength(4);
    boxes.line.setText("abcdefgh");
    boxes.edit().setCursorPosition(5);
    boxes.press("line", Qt::Key_Backspace);
    boxes.press("line", Qt::Key_Delete);
    boxes.undo();
    boxes.type("line", "x");
    boxes.undo();
    CHECK(boxes.line.Text() == "abcdefgh");
    boxes.edit().selectAll();
    boxes.redo();
    CHECK(boxes.line.Text() == "abcdfgh");
}

TEST_CASE("Undo and redo walk through a shortened text and what was typed when it had room")
{
    Boxes boxes;
    boxes.line.setMaxLength(4);
    boxes.line.setText("abcdef");
    const auto walk = [&](auto&& step) {
        std::vector<Text> texts;
        for (Text before = "none"; before != boxes.line.Text(); step()) {
            before = boxes.line.Text();
            texts.push_back(before);
        }
        return texts;
    };
    boxes.edit().end(false);
    for (int i = 0; i < 3; ++i)
        boxes.press("line", Qt::Key_Backspace);
    boxes.edit().home(false);
    boxes.press("line", Qt::Key_Delete);
    boxes.type("line", "xyz");
    CHECK(boxes.line.Text() == "xybc");
    CHECK(walk([&] { boxes.undo(); }) == std::vector<Text>{"xybc", "bc", "abc", "abcdef"});
    CHECK(walk([&] { boxes.redo(); }) == std::vector<Text>{"abcdef", "abc", "bc", "xybc"});
}

TEST_CASE("A key after a redo works on what the user sees selected: nothing")
{
    Boxes boxes;
    boxes.line.setText("abcdef");
    boxes.edit().end(false);
    boxes.press("line", Qt::Key_Left, Qt::ShiftModifier);
    boxes.press("line", Qt::Key_Delete);
    boxes.undo();
    boxes.redo();
    CHECK(boxes.line.Text() == "abcde");
    CHECK_FALSE(boxes.edit().hasSelectedText());
    boxes.type("line", "x");
    CHECK(boxes.line.Text() == "abcdex");
}

TEST_CASE("A key after a redo writes at the end of what stands there")
{
    Boxes boxes;
    boxes.line.setText("abc");
    boxes.edit().selectAll();
    boxes.press("line", Qt::Key_Delete);
    QApplication::clipboard()->setText("xyz");
    boxes.edit().paste();
    boxes.undo();
    boxes.undo();
    CHECK(boxes.line.Text() == "abc");
    boxes.redo();
    CHECK(boxes.line.Text().empty());
    boxes.type("line", "q");
    CHECK(boxes.line.Text() == "q");
}

TEST_CASE("What was cut out of a text that is too long is pasted back only as far as there is room")
{
    Boxes boxes;
    boxes.line.setMaxLength(4);
    boxes.line.setText("abcdef");
    boxes.edit().selectAll();
    boxes.press("line", Qt::Key_X, Qt::ControlModifier);
    CHECK(boxes.line.Text().empty());
    boxes.press("line", Qt::Key_V, Qt::ControlModifier);
    CHECK(boxes.line.Text() == "abcd");
}

TEST_CASE("The program's text is shown whole over a selection, too, and stays when the box is left")
{
    Boxes boxes;
    boxes.line.setMaxLength(4);
    boxes.line.setText("abcdef");
    boxes.edit().selectAll();
    boxes.line.setText("uvwxyz");
    CHECK(boxes.edit().text() == "uvwxyz");
    boxes.edit().selectAll();
    boxes.press("line", Qt::Key_Return);
    QFocusEvent left(QEvent::FocusOut, Qt::ActiveWindowFocusReason);
    QApplication::sendEvent(&boxes.edit(), &left);
    CHECK(boxes.edit().text() == "uvwxyz");
}

TEST_CASE("A selected part is counted in characters, held to the text's ends and replaced")
{
    struct Case {
        Text what;
        Text before;
        std::ptrdiff_t start;
        std::size_t length;
        Text replacement, after;
    };
    const Case cases[] = {
        {"nothing in the middle: inserted", "abc", 1, 0, "X", "aXbc"},
        {"two characters", "abcd", 1, 2, "X", "aXd"},
        {"past the end", "abc", 9, 9, "X", "abcX"},
        {"longer than the rest", "abc", 2, 9, "X", "abX"},
        {"before the start", "abc", -3, 1, "X", "Xbc"},
        {"a character of two bytes", "a\xC3\xA9z", 1, 1, "X", "aXz"},
        {"a byte that is no text", "a\xE9z", 1, 1, "X", "aXz"},
        {"by nothing", "abc", 0, 3, "", ""},
    };
    for (const auto& c : cases) {
        CAPTURE(c.what);
        Boxes boxes;
        boxes.line.setText(c.before);
        boxes.line.setSelStart(c.start);
        boxes.line.setSelLength(c.length);
        boxes.line.setSelText(c.replacement);
        CHECK(boxes.line.Text() == c.after);
    }
}
