// SPDX-License-Identifier: GPL-3.0-or-later
#include "desktop/unforced_files.h"

#include "files/folders.h"
#include "platform/complaint.h"
#include "platform/shell.h"

namespace desktop
{

void tellUnforced(const Text& path, const Text& applicationFolder, Shell& shell)
{
    if (files::folderOf(path) == applicationFolder)
        Complaint("A file is not safe on the disk").failed(path);
    else
        shell.notify("A list may not be safe", path + " was written, but the disk reports an error. Save it "
                                                      "once more, or to another place.");
}

}
