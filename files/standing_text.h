// SPDX-License-Identifier: GPL-3.0-or-later
// A text file that stands already, compared with what is being written in its place: equal content is not
// written again, whoever wrote it.
#pragma once

#include "files/descriptor.h"
#include "platform/text.h"

#include <sys/types.h>

#include <string_view>

namespace files
{

class StandingText
{
public:
    StandingText() = default; // none stands

    // `file` stands under `path`. One that is not open for reading counts as different.
    StandingText(Text path, Descriptor file);

    // The next of what is written.
    void compare(std::string_view piece);

    // True when the file, still under its name, holds all that was written and nothing more.
    bool isSame() const;

    // So long unchanged that a later change shows in its time. The system stamps all changes within one of
    // its ticks alike.
    bool hasSettled() const;

    const Descriptor& file() const { return file_; }
    Descriptor release() { return std::move(file_); }

private:
    Text path_;
    Descriptor file_;
    off_t compared_ = 0;
    bool same_ = false;
};

}
