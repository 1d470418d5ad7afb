// SPDX-License-Identifier: GPL-3.0-or-later
#include "support/list_hand.h"
#include "support/waiting.h"
#include "toolkit/list_box.h"
#include "toolkit/row_widths.h"
#include "toolkit/toolkit.h"

#include <QHelpEvent>
#include <QToolTip>
#include <ctime>
#include <doctest/doctest.h>

namespace
{

const Text longRow = "/music/" + Text(150, 'm') + "/the end.mp3";

struct WideForm final : Form {
    explicit WideForm(Toolkit& toolkit) : Form(toolkit, "WideForm", Border::fixed, {6000_tw, 3000_tw}) {}

    ctl::ListBox list{*this, "list", {0_tw, 0_tw, 5775_tw, 1815_tw}};
};

struct Shown {
    Toolkit toolkit{Toolkit::Timers::byHand};
    WideForm form{toolkit};
    ctl::ListBox& list = form.list;
    ListHand hand{form, form.list};
    QScrollBar& bar = *hand.view().horizontalScrollBar();

    explicit Shown(const std::vector<Text>& rows)
    {
        for (const auto& row : rows)
            list.AddItem(row);
        form.Show();
        settle();
    }

    void settle() { QCoreApplication::processEvents(); }

    // How far the row's end stands beyond the list's right edge when the bar is at its end.
    int beyond(int row)
    {
        bar.setValue(bar.maximum());
        const QFontMetrics metrics(hand.view().font());
        const int width = metrics.horizontalAdvance(QString::fromStdString(list.List(row)));
        return hand.view().visualRect(hand.view().model()->index(row, 0)).left() + width -
               hand.view().viewport()->width();
    }

    int wholeRows() const
    {
        const auto& view = hand.view();
        return view.viewport()->height() / view.visualRect(view.model()->index(0, 0)).height();
    }

    QString tipAt(int row)
    {
        QToolTip::hideText();
        CHECK(waitFor([] { return !QToolTip::isVisible(); }));
        const QPoint at = hand.middleOf(row);
        QHelpEvent event(QEvent::ToolTip, {20, at.y()},
                         hand.view().viewport()->mapToGlobal(QPoint(20, at.y())));
        QApplication::sendEvent(hand.view().viewport(), &event);
        return QToolTip::isVisible() ? QToolTip::text().remove(QChar(0x200B)) : QString();
    }
};

}

TEST_CASE("The bar reaches to the end of the widest row, wherever it stands")
{
    for (const std::size_t place : {0u, 1u, 2u}) {
        CAPTURE(place);
        std::vector<Text> rows(3, "/music/short.mp3");
        rows[place] = longRow;
        Shown s(rows);
        REQUIRE(s.bar.isVisible());
        CHECK(s.beyond(static_cast<int>(place)) <= 0);
        CHECK(s.hand.view().textElideMode() == Qt::ElideNone);
    }
}

TEST_CASE("The bar follows the rows that come and go")
{
    Shown s({"/music/short.mp3"});
    CHECK_FALSE(s.bar.isVisible());
    s.list.AddItem(longRow, 0);
    s.settle();
    REQUIRE(s.bar.isVisible());
    const int once = s.bar.maximum();
    s.list.AddItem(longRow + longRow, 0);
    s.settle();
    CHECK(s.bar.maximum() > once);
    s.list.RemoveItem(0);
    s.settle();
    CHECK(s.bar.maximum() == once);
    s.list.RemoveItem(0);
    s.settle();
    CHECK_FALSE(s.bar.isVisible());
    s.list.AddItem(longRow);
    s.settle();
    CHECK(s.bar.isVisible());
    s.list.Clear();
    s.settle();
    CHECK_FALSE(s.bar.isVisible());
}

TEST_CASE("Rows that the view looks at once more as they go are still known by their width")
{
    Shown s({"/music/short.mp3", "/music/other.mp3"});
    s.list.AddItem(longRow);
    s.list.setListIndex(2);
    s.list.RemoveItem(2);
    s.settle();
    CHECK_FALSE(s.bar.isVisible());
    s.list.AddItem(longRow);
    s.list.setListIndex(0);
    s.list.RemoveItem(0);
    s.settle();
    CHECK(s.bar.isVisible());
    CHECK(s.beyond(1) <= 0);
}

TEST_CASE("The bar takes no row away")
{
    Shown narrow(std::vector<Text>(50, "/music/short.mp3"));
    Shown wide(std::vector<Text>(50, longRow));
    REQUIRE_FALSE(narrow.bar.isVisible());
    REQUIRE(wide.bar.isVisible());
    CHECK(wide.wholeRows() == narrow.wholeRows());
    const auto& view = wide.hand.view();
    CHECK(view.visualRect(view.model()->index(0, 0)).height() >= QFontMetrics(view.font()).height());
}

TEST_CASE("A row is seen whole in whatever letters it is written")
{
    const Text words[] = {"\xD0\x9F\xD0\xB5\xD1\x81\xD0\xBD\xD1\x8F ", "\xE6\xAD\x8C\xE6\x9B\xB2 ",
                          "\xF0\x9F\x8E\xB5 ", "caf\xE9 ", "WAVE "};
    for (const auto& word : words) {
        CAPTURE(word);
        Text row = "/";
        for (int i = 0; i < 60; ++i)
            row += word;
        Shown s({row, "/short"});
        REQUIRE(s.bar.isVisible());
        CHECK(s.beyond(0) <= 0);
    }
}

TEST_CASE("A tip shows the row that does not fit, as it is")
{
    const Text marked = "/<b>" + longRow + "</b>";
    Shown s({"/music/short.mp3", longRow, marked});
    CHECK(s.tipAt(0).isEmpty());
    CHECK(s.tipAt(1).contains(QString::fromStdString(longRow)));
    CHECK(s.tipAt(2).contains("&lt;b&gt;"));
    QToolTip::hideText();
}

TEST_CASE("A selection moves up and down, and the place sideways stays where the user put it")
{
    Shown s(std::vector<Text>(50, longRow));
    s.bar.setValue(s.bar.maximum() / 2);
    const int place = s.bar.value();
    s.list.setListIndex(40);
    s.hand.key(Qt::Key_Down);
    CHECK(s.list.ListIndex() == 41);
    CHECK(s.bar.value() == place);
}

TEST_CASE("The arrow keys to the sides move the rows, and select nothing")
{
    Shown s({longRow});
    s.hand.key(Qt::Key_Right);
    CHECK(s.bar.value() > 0);
    s.hand.key(Qt::Key_Left);
    CHECK(s.bar.value() == 0);
    CHECK(s.list.ListIndex() == -1);
}

TEST_CASE("The widest row is known again when it goes")
{
    ctl::RowWidths widths(QApplication::font());
    for (int row = 0; row < 1000; ++row)
        widths.insert(row, "/music/" + QString::number(row) + ".mp3");
    widths.insert(500, QString(400, 'x'));
    const int widest = widths.of(500);
    CHECK(widths.widest() == widest);
    widths.remove(500, 500);
    CHECK(widths.widest() < widest);
    CHECK(widths.count() == 1000);
}

TEST_CASE("To know the widest of a hundred thousand rows at each new one costs no more than the rows do")
{
    const auto timeOf = [](bool asked) {
        ctl::RowWidths widths(QApplication::font());
        int widest = 0;
        const std::clock_t began = std::clock();
        for (int row = 0; row < 100'000; ++row) {
            widths.insert(row, "/music/" + QString::number(row) + ".mp3");
            if (asked)
                widest = std::max(widest, widths.widest());
        }
        CHECK((widest > 0) == asked);
        return std::clock() - began;
    };
    std::clock_t alone = timeOf(false);
    std::clock_t asked = timeOf(true);
    for (int tries = 0; tries < 10 && asked > 2 * alone;
         ++tries) { // other work on the machine costs time, too
        alone = std::max(alone, timeOf(false));
        asked = std::min(asked, timeOf(true));
    }
    CHECK(asked <= 2 * alone);
}
