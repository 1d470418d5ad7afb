// SPDX-License-Identifier: GPL-3.0-or-later
// The look of a file dialog: columns that show their texts, and the places that music is found in.
#pragma once

#include "platform/text.h"

#include <QByteArray>
#include <QList>
#include <QUrl>

class QFileDialog;
class QHeaderView;

namespace desktop
{

// For as long as this lives, and no longer than the dialog: the window library keeps what its dialogs look
// like, and gives it to other programs' dialogs too.
class FileDialogLook
{
public:
    // `last` is the folder of the last choice, "" for none.
    FileDialogLook(QFileDialog& dialog, const Text& last);
    ~FileDialogLook();

    FileDialogLook(const FileDialogLook&) = delete;
    FileDialogLook& operator=(const FileDialogLook&) = delete;

private:
    QFileDialog& dialog_;
    QHeaderView* columns_;
    QByteArray columnsBefore_;
    QList<QUrl> placesBefore_;
};

// Where a dialog begins that remembers no folder: the music folder, or home where there is none.
Text firstFolder();

}
