// SPDX-License-Identifier: GPL-3.0-or-later
// The pictures and the kinds of files in the file dialog, from their names alone.
#pragma once

#include <QString>

class QAbstractFileIconProvider;

namespace desktop
{

// One for all dialogs, for ever: threads that look at folders outlive their dialogs. No file is opened for
// it; a file that does not answer would hold the window.
QAbstractFileIconProvider& filePictures();

// While it lives, files that this thread asks about are taken for some of this name: a descriptor has no name
// of its own.
class PicturedAs
{
public:
    explicit PicturedAs(const QString& name);
    ~PicturedAs();
    PicturedAs(const PicturedAs&) = delete;
    PicturedAs& operator=(const PicturedAs&) = delete;
};

}
