// SPDX-License-Identifier: GPL-3.0-or-later
// The tag fields of an engine, and the file that they come from and go to.
//
// A person saves in four steps: fields are set, the file is closed, the tag is written, the file is closed
// again. So a file that was closed is kept for as long as a saving is under way, and no longer: what is set
// after that belongs to no file, and must not reach one that the person does not see.
#pragma once

#include "engines/tags/tag.h"
#include "platform/part_notes.h"

#include <optional>

namespace tags
{

class EditedTag
{
public:
    // `notes` outlive a disk that does not answer.
    explicit EditedTag(PartNotes& notes) : notes_(notes) {}

    void open(const Text& path);           // its fields, and writing goes to it
    void openForReading(const Text& path); // its fields alone
    void forget();                         // empty fields, and writing goes nowhere

    // Forgets the file, unless fields were set since it was opened; the first closing after a writing leaves
    // it, too, with the fields that it has now.
    void close();

    const Tag& fields() const; // read when they are first asked for
    Tag& change();

    const Text& path() const { return path_; }

    // "" when the file says what the fields say, otherwise the reason in words.
    Text write();

private:
    void take(const Text& path, bool takesTag);

    PartNotes& notes_;
    Text path_;
    bool takesTag_ = false;
    bool isSet_ = false;
    bool isWritten_ = false;
    mutable bool isUnread_ = false; // the file did not answer: its fields are not known
    mutable std::optional<Tag> tag_;
};

}
