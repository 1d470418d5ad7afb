// SPDX-License-Identifier: GPL-3.0-or-later
#include "engines/tags/edited_tag.h"

#include "engines/tags/tag_file.h"
#include "files/file_to_open.h"
#include "files/moving_work.h"

#include <utility>

namespace tags
{

void EditedTag::open(const Text& path) { take(path, true); }

void EditedTag::openForReading(const Text& path) { take(path, false); }

void EditedTag::forget() { take("", false); }

void EditedTag::take(const Text& path, bool takesTag)
{
    path_ = path;
    takesTag_ = takesTag;
    isSet_ = false;
    isWritten_ = false;
    isUnread_ = false;
    tag_.reset();
}

void EditedTag::close()
{
    if (!std::exchange(isWritten_, false) && !isSet_)
        forget();
}

const Tag& EditedTag::fields() const
{
    if (!tag_) {
        const auto read = path_.empty() ? Tag() : files::answerOfFile<Tag>(path_, readTag);
        isUnread_ = !read;
        tag_ = read.value_or(Tag());
    }
    return *tag_;
}

Tag& EditedTag::change()
{
    fields();
    isSet_ = true;
    return *tag_;
}

Text EditedTag::write()
{
    const Tag wanted = fields();
    const bool wasRead = !isUnread_;
    take(path_, takesTag_);
    if (path_.empty())
        return "No MP3 file is open.";
    if (!takesTag_)
        return "The file is one of Velmora's own.";
    isWritten_ = true;
    if (!wasRead || !files::fileToOpen(path_))
        return files::noAnswer;
    const auto write = [path = path_, wanted, &notes = notes_](files::Steps& steps) {
        return writeTag(path, wanted, notes, [&steps] { steps.take(); });
    };
    return files::resultWhileMoving<Text>(files::patienceForWriting, "file " + path_, write)
        .value_or(files::noAnswer);
}

}
