// A file in the making. It stands beside its target under a name of its own until `finish`; without `finish`
// nothing is left behind, and what stood under the target's name stands there still.
#pragma once

#include "platform/part_notes.h"
#include "platform/text.h"

#include <cstddef>
#include <cstdint>

namespace codec
{

class PartFile
{
public:
    PartFile(const Text& target, PartNotes& notes); // fails with 61, 70, 75 or 76
    ~PartFile();
    PartFile(const PartFile&) = delete;
    PartFile& operator=(const PartFile&) = delete;

    // From any thread. Fails with 57 or 61.
    void write(const void* bytes, std::size_t count, std::int64_t at);

    // Everything written is on the disk, under the target's name. Fails with 57, 61, 70 or 75.
    void finish();

private:
    void create();
    void remove();

    Text target_; // without a symbolic link at its end
    PartNotes& notes_;
    Text part_;
    int descriptor_ = -1;
};

// True when both names lead to one file, also through links.
bool isSameFile(const Text& one, const Text& other);

}
