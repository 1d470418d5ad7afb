#include "platform/toolkit/form.h"
#include "platform/toolkit/text_box.h"
#include "platform/toolkit/toolkit.h"

#include <QApplication>
#include <QClipboard>
#include <QKeyEvent>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <doctest/doctest.h>

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
    void backspace(const char* name)
    {
        QKeyEvent event(QEvent::KeyPress, Qt::Key_Backspace, Qt::NoModifier);
        QApplication::sendEvent(widget(name), &event);
    }
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
    boxes.backspace("line");
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
        {"over a part of what the program set too long", "abcdef", 1, 3, "xyzzy", "axyzef"},
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
