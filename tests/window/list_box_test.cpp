// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/failure.h"
#include "support/failures.h"
#include "support/list_hand.h"
#include "toolkit/list_box.h"
#include "toolkit/toolkit.h"

#include <QDropEvent>
#include <QMimeData>
#include <doctest/doctest.h>

namespace
{

class ListForm final : public Form
{
public:
    explicit ListForm(Toolkit& toolkit) : Form(toolkit, "ListForm", Border::fixed, {6000_tw, 3000_tw})
    {
        list.Click.calls([this] { ++clicks; });
        list.DblClick.calls([this] { ++doubleClicks; });
        list.KeyDown.calls([this](std::int16_t code, std::int16_t shift) { keys.push_back({code, shift}); });
        list.OLEDragDrop.calls([this](const ctl::DroppedFiles& files) {
            ++drops;
            for (std::int32_t number = 1;; ++number)
                if (!succeeds([&] { dropped.push_back(files.item(number)); }))
                    break;
        });
        list.acceptFiles();
    }

    ctl::ListBox list{*this, "list", {0_tw, 0_tw, 3000_tw, 2400_tw}};
    ctl::ListBox checks{*this, "checks", {3000_tw, 0_tw, 3000_tw, 2400_tw}, ctl::ListBox::Style::checks};

    int clicks = 0, doubleClicks = 0, drops = 0;
    std::vector<std::pair<int, int>> keys;
    std::vector<Text> dropped;
};

// A shown window with `count` rows in each of its lists.
struct Shown {
    explicit Shown(int count)
    {
        for (int row = 0; row < count; ++row) {
            form.list.AddItem("/music/" + std::to_string(row));
            form.checks.AddItem("/music/" + std::to_string(row));
        }
        form.Show();
        QCoreApplication::processEvents();
    }

    Toolkit toolkit{Toolkit::Timers::byHand};
    ListForm form{toolkit};
    ctl::ListBox& list = form.list;
    ListHand hand{form, form.list};
};

}

TEST_CASE("A row that is removed leaves the selection as this table says")
{
    struct Case {
        Text what;
        int selected, removed, then;
    };
    const Case cases[] = {
        {"the selected row: nothing is selected", 2, 2, -1},
        {"the selected first row", 0, 0, -1},
        {"the selected last row", 4, 4, -1},
        {"a row above: the selection goes with its row", 2, 0, 1},
        {"a row below", 2, 3, 2},
        {"any row with nothing selected", -1, 2, -1},
    };
    for (const auto& c : cases) {
        CAPTURE(c.what);
        Shown window(5);
        window.list.setListIndex(c.selected);
        window.list.RemoveItem(c.removed);
        CHECK(window.list.ListIndex() == c.then);
        CHECK(window.hand.markedRow() == c.then);
        CHECK(window.list.ListCount() == 4);
    }
}

TEST_CASE("A row that is inserted leaves the selection as this table says")
{
    struct Case {
        Text what;
        int selected, at, then;
    };
    const Case cases[] = {
        {"above: the selection goes with its row", 2, 0, 3},
        {"at the selected row's place", 2, 2, 3},
        {"below", 2, 3, 2},
        {"with nothing selected", -1, 0, -1},
    };
    for (const auto& c : cases) {
        CAPTURE(c.what);
        Shown window(5);
        window.list.setListIndex(c.selected);
        window.list.AddItem("/new", c.at);
        CHECK(window.list.ListIndex() == c.then);
        CHECK(window.hand.markedRow() == c.then);
        CHECK(window.list.List(c.at) == "/new");
    }
}

TEST_CASE("Clearing selects nothing and raises nothing, also when rows follow")
{
    Shown window(5);
    window.list.setListIndex(1);
    window.form.clicks = 0;
    window.list.Clear();
    window.list.AddItem("/other");
    CHECK(window.list.ListIndex() == -1);
    CHECK(window.hand.markedRow() == -1);
    CHECK(window.form.clicks == 0);
}

TEST_CASE("Only a selection that really changes raises Click")
{
    Shown window(3);
    window.list.setListIndex(1);
    CHECK(window.form.clicks == 1);
    window.list.setListIndex(1);
    CHECK(window.form.clicks == 1);
    window.list.setListIndex(-1);
    CHECK(window.form.clicks == 2);
    CHECK(window.hand.markedRow() == -1);
}

TEST_CASE("Rows outside the list")
{
    Shown window(3);
    CHECK(failureOf([&] { window.list.setListIndex(3); }) == 380);
    CHECK(failureOf([&] { window.list.setListIndex(-2); }) == 380);
    CHECK(failureOf([&] { window.list.RemoveItem(3); }) == 5);
    CHECK(failureOf([&] { window.list.RemoveItem(-1); }) == 5);
    CHECK(failureOf([&] { window.list.AddItem("/x", 4); }) == 5);
    CHECK(failureOf([&] { window.list.setSelected(3, true); }) == 381);
    CHECK(window.list.List(3) == "");
    CHECK(window.list.List(-1) == "");
    CHECK(window.list.Text() == "");
    CHECK_FALSE(window.list.Selected(3));
    CHECK(window.list.ListCount() == 3);
    CHECK(window.list.ListIndex() == -1);
}

TEST_CASE("A row keeps its bytes, whatever they are")
{
    Shown window(0);
    const Text rows[] = {"", "caf\xE9.mp3", Text("nul\0byte", 8), "two\r\nlines", " blanks ", "&amp;"};
    for (const auto& row : rows)
        window.list.AddItem(row);
    for (int i = 0; i < 6; ++i)
        CHECK(window.list.List(i) == rows[i]);
}

TEST_CASE("A row with line ends in it is as high as any other")
{
    Shown window(0);
    window.list.AddItem("\r\n/a.mp3\n\n");
    window.list.AddItem("/b.mp3");
    CHECK(window.hand.view().sizeHintForRow(0) == window.hand.view().sizeHintForRow(1));
    CHECK(window.list.List(0) == "\r\n/a.mp3\n\n");
}

TEST_CASE("Of a row of megabytes the window draws no more than a path can hold")
{
    Shown window(0);
    const Text row = "\xC3\xA4" + Text(4 << 20, 'x');
    window.list.AddItem(row);
    const QString drawn = window.hand.view().model()->index(0, 0).data().toString();
    CHECK(drawn == u'\u00E4' + QString(4095, 'x'));
    CHECK(window.list.List(0) == row);
}

TEST_CASE("Getting the focus selects nothing")
{
    for (const auto reason : {Qt::TabFocusReason, Qt::ActiveWindowFocusReason, Qt::MouseFocusReason}) {
        Shown window(3);
        window.hand.takeFocus(reason);
        CHECK(window.list.ListIndex() == -1);
        CHECK(window.hand.markedRow() == -1);
        CHECK(window.form.clicks == 0);
        window.hand.key(Qt::Key_Down);
        CHECK(window.list.ListIndex() == 0);
    }
}

TEST_CASE("A click that brings the focus back takes the row under the pointer, wherever the selection is")
{
    Shown window(100);
    window.list.setListIndex(0);
    window.hand.view().verticalScrollBar()->setValue(50);
    const QPoint at = window.hand.middleOf(51);
    window.hand.takeFocus(Qt::MouseFocusReason);
    window.hand.click(at);
    CHECK(window.list.ListIndex() == 51);
}

TEST_CASE("A selection from code comes into view")
{
    Shown window(100);
    window.list.setListIndex(70);
    CHECK(window.hand.view().viewport()->rect().contains(window.hand.middleOf(70)));
}

TEST_CASE("The arrow keys and their like move the selection and raise Click")
{
    struct Case {
        Text key;
        int code, from, to;
        Qt::KeyboardModifiers held;
    };
    const Case cases[] = {
        {"Down", Qt::Key_Down, 2, 3, Qt::NoModifier},
        {"Up", Qt::Key_Up, 2, 1, Qt::NoModifier},
        {"Down with nothing selected", Qt::Key_Down, -1, 0, Qt::NoModifier},
        {"Home", Qt::Key_Home, 3, 0, Qt::NoModifier},
        {"End", Qt::Key_End, 3, 5, Qt::NoModifier},
        {"Down with Shift", Qt::Key_Down, 2, 3, Qt::ShiftModifier},
        {"Down with Control", Qt::Key_Down, 2, 3, Qt::ControlModifier},
    };
    for (const auto& c : cases) {
        CAPTURE(c.key);
        Shown window(6);
        window.list.setListIndex(c.from);
        window.form.clicks = 0;
        window.hand.key(c.code, {}, c.held);
        CHECK(window.list.ListIndex() == c.to);
        CHECK(window.hand.markedRow() == c.to);
        CHECK(window.form.clicks == 1);
    }
}

TEST_CASE("An arrow key at the list's end changes nothing and raises nothing")
{
    Shown window(3);
    window.list.setListIndex(2);
    window.form.clicks = 0;
    window.hand.key(Qt::Key_Down);
    CHECK(window.list.ListIndex() == 2);
    CHECK(window.form.clicks == 0);
}

TEST_CASE("Every key that a handler knows arrives with its code and its shift state")
{
    struct Case {
        Text key;
        int code;
        const char16_t* text;
        Qt::KeyboardModifiers held;
        quint32 scanCode;
        int arrives, shift;
    };
    constexpr int cyrillicGhe = 0x0413, cyrillicVe = 0x0412, greekDelta = 0x0394;
    const Case cases[] = {
        {"u", Qt::Key_U, u"u", Qt::NoModifier, 30, 85, 0},
        {"U", Qt::Key_U, u"U", Qt::ShiftModifier, 30, 85, 1},
        {"Control U", Qt::Key_U, u"\x15", Qt::ControlModifier, 30, 85, 2},
        {"d", Qt::Key_D, u"d", Qt::NoModifier, 40, 68, 0},
        {"D", Qt::Key_D, u"D", Qt::ShiftModifier, 40, 68, 1},
        {"Control D", Qt::Key_D, u"\x04", Qt::ControlModifier, 40, 68, 2},
        {"Alt D", Qt::Key_D, u"d", Qt::AltModifier, 40, 68, 4},
        {"Delete", Qt::Key_Delete, u"\x7f", Qt::NoModifier, 119, 46, 0},
        {"Delete on the number pad", Qt::Key_Delete, u"\x7f", Qt::KeypadModifier, 91, 46, 0},
        {"Shift Delete", Qt::Key_Delete, u"\x7f", Qt::ShiftModifier, 119, 46, 1},
        {"the place of U in a Cyrillic layout", cyrillicGhe, u"\u0433", Qt::NoModifier, 30, 85, 0},
        {"the same with Shift", cyrillicGhe, u"\u0413", Qt::ShiftModifier, 30, 85, 1},
        {"the place of D in a Cyrillic layout", cyrillicVe, u"\u0432", Qt::NoModifier, 40, 68, 0},
        {"the place of D in a Greek layout", greekDelta, u"\u03B4", Qt::NoModifier, 40, 68, 0},
        {"D where a Latin layout puts it elsewhere", Qt::Key_D, u"d", Qt::NoModifier, 43, 68, 0},
        {"another letter at the place of D", Qt::Key_E, u"e", Qt::NoModifier, 40, 69, 0},
    };
    for (const auto& c : cases) {
        CAPTURE(c.key);
        Shown window(3);
        window.hand.key(c.code, QString::fromUtf16(c.text), c.held, c.scanCode);
        REQUIRE(window.form.keys.size() == 1);
        CHECK(window.form.keys[0] == std::pair(c.arrives, c.shift));
    }
}

TEST_CASE("A letter outside the three rows of keys has no code")
{
    Shown window(3);
    window.hand.key(0x0401, QString::fromUtf16(u"\u0451"), Qt::NoModifier, 49);
    window.hand.key(Qt::Key_Odiaeresis, QString::fromUtf16(u"\u00F6"), Qt::NoModifier, 47);
    window.hand.key(Qt::Key_F2);
    CHECK(window.form.keys.empty());
}

TEST_CASE("Typed text searches no row")
{
    Shown window(0);
    for (const char* row : {"alpha", " blank", "beta", "/path", "1"})
        window.list.AddItem(row);
    window.list.setListIndex(0);
    window.form.clicks = 0;
    window.hand.key(Qt::Key_B, "b");
    window.hand.key(Qt::Key_Slash, "/");
    window.hand.key(Qt::Key_1, "1");
    window.hand.key(Qt::Key_Space, " ");
    window.hand.key(Qt::Key_Space, " ", Qt::ControlModifier);
    window.hand.key(Qt::Key_A, "\x01", Qt::ControlModifier);
    CHECK(window.form.doubleClicks == 0);
    window.hand.key(Qt::Key_Return, "\r");
    CHECK(window.list.ListIndex() == 0);
    CHECK(window.hand.markedRow() == 0);
    CHECK(window.form.clicks == 0);
    CHECK(window.form.doubleClicks == 1);
}

TEST_CASE("A click selects the row under it and raises Click each time")
{
    Shown window(4);
    window.hand.click(window.hand.middleOf(2));
    CHECK(window.list.ListIndex() == 2);
    CHECK(window.form.clicks == 1);
    window.hand.click(window.hand.middleOf(2));
    CHECK(window.form.clicks == 2);
    window.hand.click(window.hand.middleOf(2), Qt::ControlModifier);
    CHECK(window.list.ListIndex() == 2);
    CHECK(window.hand.markedRow() == 2);
    window.hand.click(window.hand.middleOf(0), Qt::ShiftModifier);
    CHECK(window.list.ListIndex() == 0);
    CHECK(window.hand.markedRow() == 0);
}

TEST_CASE("A click on the empty part keeps the selection and raises nothing")
{
    Shown window(4);
    window.list.setListIndex(1);
    window.form.clicks = 0;
    window.hand.click(window.hand.emptyPart());
    CHECK(window.list.ListIndex() == 1);
    CHECK(window.hand.markedRow() == 1);
    CHECK(window.form.clicks == 0);
}

TEST_CASE("A pressed pointer takes the selection along over the rows, and leaves it where they end")
{
    Shown window(4);
    window.hand.press(window.hand.middleOf(0));
    window.hand.move(window.hand.middleOf(2));
    CHECK(window.list.ListIndex() == 2);
    CHECK(window.hand.markedRow() == 2);
    window.hand.move(window.hand.emptyPart());
    window.hand.release(window.hand.emptyPart());
    CHECK(window.list.ListIndex() == 2);
    CHECK(window.hand.markedRow() == 2);
}

TEST_CASE("A double click counts on a row, on the empty part and on an empty list")
{
    Shown window(4);
    window.hand.doubleClick(window.hand.middleOf(3));
    CHECK(window.list.ListIndex() == 3);
    CHECK(window.form.doubleClicks == 1);
    window.hand.doubleClick(window.hand.emptyPart());
    CHECK(window.list.ListIndex() == 3);
    CHECK(window.form.doubleClicks == 2);
    window.list.Clear();
    window.hand.doubleClick(window.hand.emptyPart());
    CHECK(window.list.ListIndex() == -1);
    CHECK(window.form.doubleClicks == 3);
    window.hand.doubleClick(window.hand.emptyPart(), Qt::RightButton);
    CHECK(window.form.doubleClicks == 3);
}

TEST_CASE("The other buttons leave a list alone: pressed, drawn over the rows or pressed twice")
{
    for (const auto button : {Qt::RightButton, Qt::MiddleButton}) {
        Shown window(4);
        window.list.setListIndex(1);
        window.form.clicks = 0;
        window.hand.press(window.hand.middleOf(3), button);
        window.hand.move(window.hand.middleOf(2), button);
        window.hand.release(window.hand.middleOf(2), button);
        window.hand.doubleClick(window.hand.middleOf(0), button);
        CHECK(window.list.ListIndex() == 1);
        CHECK(window.hand.markedRow() == 1);
        CHECK(window.form.clicks == 0);
        CHECK(window.form.doubleClicks == 0);
    }
}

TEST_CASE("Another button during a click does not take the click's row away")
{
    Shown window(4);
    window.hand.press(window.hand.middleOf(2));
    window.hand.press(window.hand.middleOf(0), Qt::RightButton);
    window.hand.release(window.hand.middleOf(0), Qt::RightButton);
    window.hand.release(window.hand.middleOf(2));
    CHECK(window.list.ListIndex() == 2);
    CHECK(window.form.clicks == 1);
}

TEST_CASE("A failure in a handler that a key raised is nobody's, and reaches the end of the program")
{
    Shown window(1);
    int unhandled = 0;
    window.toolkit.unhandled = [&](const Failure& failure) { unhandled = failure.number; };
    window.list.KeyDown.calls([](std::int16_t, std::int16_t) { throw Failure(Trouble::deviceInputOutput); });
    window.hand.key(Qt::Key_U, "u");
    CHECK(unhandled == 57);
}

TEST_CASE("A list with check marks: a click on the mark checks, a click beside it only selects")
{
    Shown window(4);
    ctl::ListBox& checks = window.form.checks;
    ListHand hand(window.form, checks);
    CHECK_FALSE(checks.Selected(1));
    hand.click(hand.checkMarkOf(1));
    CHECK(checks.Selected(1));
    CHECK(checks.ListIndex() == 1);
    hand.click(hand.middleOf(2));
    CHECK_FALSE(checks.Selected(2));
    CHECK(checks.ListIndex() == 2);
    hand.click(hand.checkMarkOf(1));
    CHECK_FALSE(checks.Selected(1));
}

TEST_CASE("A list with check marks: only the left button checks and selects")
{
    Shown window(4);
    ctl::ListBox& checks = window.form.checks;
    ListHand hand(window.form, checks);
    for (const auto button : {Qt::RightButton, Qt::MiddleButton}) {
        hand.doubleClick(hand.checkMarkOf(1), button);
        CHECK_FALSE(checks.Selected(1));
        CHECK(checks.ListIndex() == -1);
    }
}

TEST_CASE("A list with check marks: the space bar checks the selected row")
{
    Shown window(4);
    ctl::ListBox& checks = window.form.checks;
    ListHand hand(window.form, checks);
    hand.key(Qt::Key_Down);
    hand.key(Qt::Key_Space, " ");
    CHECK(checks.Selected(0));
    CHECK_FALSE(checks.Selected(1));
    hand.key(Qt::Key_Space, " ");
    CHECK_FALSE(checks.Selected(0));
}

TEST_CASE("A list with check marks: the marks follow their rows, and code sets them")
{
    Shown window(4);
    ctl::ListBox& checks = window.form.checks;
    checks.setSelected(2, true);
    checks.RemoveItem(0);
    CHECK(checks.Selected(1));
    checks.AddItem("/new", 0);
    CHECK(checks.Selected(2));
    CHECK_FALSE(checks.Selected(0));
    checks.setSelected(2, false);
    CHECK_FALSE(checks.Selected(2));
    CHECK(checks.ListIndex() == -1);
}

namespace
{

struct Drop {
    bool taken;
    Qt::DropAction action;
};

// With Shift held the desktop proposes a move wherever one is offered.
Drop dropOn(const ListHand& hand, const QByteArray& addresses, Qt::DropActions offered)
{
    QMimeData data;
    if (!addresses.isEmpty())
        data.setData("text/uri-list", addresses);
    QDragEnterEvent enter({5, 5}, offered, &data, Qt::LeftButton, Qt::ShiftModifier);
    QApplication::sendEvent(hand.view().viewport(), &enter);
    QDropEvent drop({5, 5}, offered, &data, Qt::LeftButton, Qt::ShiftModifier);
    QApplication::sendEvent(hand.view().viewport(), &drop);
    return {drop.isAccepted(), drop.dropAction()};
}

}

TEST_CASE("Dropped files arrive in their order, each as the bytes of its path")
{
    struct Case {
        Text what;
        const char* addresses;
        std::vector<Text> paths;
    };
    const Case cases[] = {
        {"two files", "file:///music/a.wav\r\nfile:///music/b.wav\r\n", {"/music/a.wav", "/music/b.wav"}},
        {"a blank and a per cent sign", "file:///music/a%20b%25c.wav\r\n", {"/music/a b%c.wav"}},
        {"UTF-8", "file:///music/caf%C3%A9.wav\r\n", {"/music/caf\xC3\xA9.wav"}},
        {"UTF-8 that is not encoded", "file:///music/caf\xC3\xA9.wav\r\n", {"/music/caf\xC3\xA9.wav"}},
        {"bytes that are no UTF-8", "file:///music/caf%E9%FF.wav\r\n", {"/music/caf\xE9\xFF.wav"}},
        {"number sign and question mark", "file:///music/a%23b%3Fc.wav\r\n", {"/music/a#b?c.wav"}},
        {"with a host", "file://localhost/music/a.wav\r\n", {"/music/a.wav"}},
        {"an address that is no file", "https://example.org/a.wav\r\nfile:///b.wav\r\n", {"/b.wav"}},
        {"bare line feeds", "file:///a.wav\nfile:///b.wav", {"/a.wav", "/b.wav"}},
    };
    for (const auto& c : cases) {
        CAPTURE(c.what);
        Shown window(0);
        CHECK(dropOn(window.hand, c.addresses, Qt::CopyAction).taken);
        CHECK(window.form.dropped == c.paths);
    }
}

TEST_CASE("What is dragged over a list is asked for when it is dropped, and not before: its program may hang")
{
    struct AskedFor final : QMimeData {
        QVariant retrieveData(const QString& format, QMetaType type) const override
        {
            ++times;
            return QMimeData::retrieveData(format, type);
        }
        mutable int times = 0;
    };
    Shown window(0);
    AskedFor data;
    data.setData("text/uri-list", "file:///music/a.wav\r\n");
    QDragEnterEvent enter({5, 5}, Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
    QApplication::sendEvent(window.hand.view().viewport(), &enter);
    QDragMoveEvent move({6, 6}, Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
    QApplication::sendEvent(window.hand.view().viewport(), &move);
    CHECK(enter.isAccepted());
    CHECK(move.isAccepted());
    CHECK(data.times == 0);
    QDropEvent drop({6, 6}, Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
    QApplication::sendEvent(window.hand.view().viewport(), &drop);
    CHECK(data.times == 1);
    CHECK(window.form.dropped == std::vector<Text>{"/music/a.wav"});
}

TEST_CASE("A dropped address that is no path of a file here is left out")
{
    const QByteArray here = "file://" + QSysInfo::machineHostName().toUtf8() + "/here.wav\r\n";
    struct Case {
        Text what;
        QByteArray addresses;
        std::vector<Text> paths;
    };
    const Case cases[] = {
        {"another computer's file, of which there may be a namesake here",
         "file://elsewhere.example/music/a.wav\r\nfile:///b.wav\r\n",
         {"/b.wav"}},
        {"this computer's file, by its name", here, {"/here.wav"}},
        {"a path that begins nowhere", "file:music/a.wav\r\nfile:///b.wav\r\n", {"/b.wav"}},
        {"a NUL, behind which no file's name goes on",
         "file:///a.wav%00.txt\r\nfile:///b.wav\r\n",
         {"/b.wav"}},
        {"no path at all", "file://\r\nfile:///b.wav\r\n", {"/b.wav"}},
    };
    for (const auto& c : cases) {
        CAPTURE(c.what);
        Shown window(0);
        CHECK(dropOn(window.hand, c.addresses, Qt::CopyAction).taken);
        CHECK(window.form.dropped == c.paths);
    }
}

TEST_CASE("Dropped files are taken as copies, also when the other program would rather move them")
{
    Shown window(0);
    const Drop drop = dropOn(window.hand, "file:///a.wav\r\n", Qt::CopyAction | Qt::MoveAction);
    CHECK(drop.taken);
    CHECK(drop.action == Qt::CopyAction);
    CHECK(window.form.drops == 1);
}

TEST_CASE("What cannot be copied, or is no list of files, is not taken")
{
    Shown window(0);
    CHECK_FALSE(dropOn(window.hand, "file:///a.wav\r\n", Qt::MoveAction).taken);
    CHECK_FALSE(dropOn(window.hand, "", Qt::CopyAction).taken);
    CHECK_FALSE(dropOn(window.hand, "https://example.org/a.wav\r\n", Qt::CopyAction).taken);
    CHECK(window.form.drops == 0);
}

TEST_CASE("Each content of any list has a revision of its own")
{
    Shown one(2), other(2);
    CHECK(one.list.revision() != other.list.revision());
    const auto before = one.list.revision();
    one.list.AddItem("/new");
    CHECK(one.list.revision() != before);
    one.list.RemoveItem(2);
    CHECK(one.list.revision() != before);
    const auto again = one.list.revision();
    one.list.setListIndex(1);
    CHECK(one.list.revision() == again);
}
