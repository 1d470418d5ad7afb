// SPDX-License-Identifier: GPL-3.0-or-later
// Forces files to the disk behind the back of those who wrote and renamed them, in the order in which they
// came: nobody waits for a slow disk.
#pragma once

#include "files/descriptor.h"
#include "platform/worker.h"

#include <functional>

namespace files
{

class Forces
{
public:
    // `failed` hears, on a thread of its own, of a file that the disk did not take.
    using Failed = std::function<void(const Text& path)>;
    explicit Forces(Failed failed = [](const Text&) {});
    ~Forces(); // leaves to the system's own time what a disk has not taken soon

    // `file` stands under `path`. One that is written again before its turn is forced once.
    void add(const Text& path, const Descriptor& file);

    // Waits until the disk has all that was added.
    void finish() { worker_.finish(); }

private:
    struct Waiting;

    std::shared_ptr<Waiting> waiting_;
    Worker worker_{Worker::AtEnd::abandons};
};

}
