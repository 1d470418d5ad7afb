// SPDX-License-Identifier: GPL-3.0-or-later
#include "desktop/file_dialog_look.h"

#include "toolkit/folder_listing.h"
#include "toolkit/qt_bridge.h"

#include <QDir>
#include <QFileDialog>
#include <QHeaderView>
#include <QStandardPaths>
#include <QTreeView>

namespace desktop
{

namespace
{

// Rows that are asked how wide they are: a folder may hold thousands.
constexpr int askedRows = 200;

Text musicFolder() { return bytesOf(QStandardPaths::writableLocation(QStandardPaths::MusicLocation)); }

QHeaderView* columnsOf(const QFileDialog& dialog)
{
    const auto* details = dialog.findChild<QTreeView*>("treeView");
    return details ? details->header() : nullptr;
}

// The name takes what the others leave, which are as wide as their texts.
void fitColumns(QHeaderView& columns)
{
    columns.setResizeContentsPrecision(askedRows);
    for (int column = 0; column < columns.count(); ++column)
        columns.setSectionResizeMode(column,
                                     column == 0 ? QHeaderView::Stretch : QHeaderView::ResizeToContents);
}

QList<QUrl> places(const Text& last)
{
    QList<QUrl> urls{QUrl("file:")};
    for (const Text& folder : {listing::homeFolder(), musicFolder(), last}) {
        const QUrl url = QUrl::fromLocalFile(QDir::cleanPath(shown(folder)));
        if (!folder.empty() && !urls.contains(url) && listing::isFolder(folder))
            urls << url;
    }
    return urls;
}

}

FileDialogLook::FileDialogLook(QFileDialog& dialog, const Text& last) :
    dialog_(dialog), columns_(columnsOf(dialog)), placesBefore_(dialog.sidebarUrls())
{
    dialog_.setSidebarUrls(places(last));
    if (!columns_)
        return;
    columnsBefore_ = columns_->saveState();
    fitColumns(*columns_);
}

FileDialogLook::~FileDialogLook()
{
    dialog_.setSidebarUrls(placesBefore_);
    if (columns_)
        columns_->restoreState(columnsBefore_);
}

Text firstFolder()
{
    const Text music = musicFolder();
    return listing::isFolder(music) ? music : listing::homeFolder();
}

}
