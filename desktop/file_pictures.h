// SPDX-License-Identifier: GPL-3.0-or-later
// The pictures and the kinds of files in the file dialog, from their names alone.
#pragma once

class QAbstractFileIconProvider;

namespace desktop
{

// One for all dialogs, for ever: threads that look at folders outlive their dialogs. No file is opened for
// it; a file that does not answer would hold the window.
QAbstractFileIconProvider& filePictures();

}
