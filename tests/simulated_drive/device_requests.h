// SPDX-License-Identifier: GPL-3.0-or-later
// What the system answers on a drive's open device: its own requests, and the ways through to the commands
// (linux/cdrom.h, scsi/sg.h).
#pragma once

#include "tests/simulated_drive/mapped_drives.h"

namespace simulated
{

// As ioctl(2) does: -1 with the error's number, or the request's own result.
int answerRequest(const Opened& drive, unsigned long request, void* argument);

}
