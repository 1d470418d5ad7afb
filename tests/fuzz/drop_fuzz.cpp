// SPDX-License-Identifier: GPL-3.0-or-later
// Whatever another program drops on a list: what arrives is paths of files here, from the root on.
//
// An input is a byte for the kind of data and what the other program allows, then the data.
#include "platform/failure.h"
#include "tests/fuzz/window.h"
#include "toolkit/form.h"
#include "toolkit/list_box.h"
#include "toolkit/toolkit.h"

#include <QAbstractItemView>
#include <QDropEvent>
#include <QMimeData>

namespace
{

constexpr const char* kinds[] = {"text/uri-list", "text/plain", "text/x-moz-url", "application/octet-stream"};

class Target final : public Form
{
public:
    explicit Target(Toolkit& toolkit) : Form(toolkit, "Target", Border::fixed, {6000_tw, 3000_tw})
    {
        list.OLEDragDrop.calls([this](const ctl::DroppedFiles& files) {
            for (std::int32_t number = 1; succeeds([&] { dropped.push_back(files.item(number)); });)
                ++number;
        });
        list.acceptFiles();
    }

    ctl::ListBox list{*this, "list", {0_tw, 0_tw, 3000_tw, 2400_tw}};
    std::vector<Text> dropped;
};

struct Window {
    QApplication& application = offScreen();
    Toolkit toolkit{Toolkit::Timers::byHand};
    Target target{toolkit};
    QWidget& place = *target.page()->findChild<QAbstractItemView*>("list")->viewport();
};

bool isTaken(const QMimeData& data, Qt::DropActions offered, QWidget& place)
{
    QDragEnterEvent enter({5, 5}, offered, &data, Qt::LeftButton, Qt::NoModifier);
    QApplication::sendEvent(&place, &enter);
    QDropEvent drop({5, 5}, offered, &data, Qt::LeftButton, Qt::NoModifier);
    QApplication::sendEvent(&place, &drop);
    require(!drop.isAccepted() || drop.dropAction() == Qt::CopyAction, "it is not taken as a copy");
    return drop.isAccepted();
}

}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size)
{
    static auto* const window = new Window;
    if (size < 1)
        return 0;
    QMimeData data;
    data.setData(kinds[bytes[0] & 3],
                 {reinterpret_cast<const char*>(bytes + 1), static_cast<qsizetype>(size - 1)});
    const auto offered = Qt::DropActions(Qt::DropAction((bytes[0] >> 2 & 7) ^ 1));
    window->target.dropped.clear();
    require(isTaken(data, offered, window->place) == !window->target.dropped.empty());
    for (const Text& path : window->target.dropped)
        require(path.starts_with('/') && path.find('\0') == Text::npos, "this is no path");
    return 0;
}
