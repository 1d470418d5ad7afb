// SPDX-License-Identifier: GPL-3.0-or-later
#include "files/forces.h"

#include "files/folders.h"
#include "platform/mutex.h"

#include <fcntl.h>

#include <deque>

namespace files
{

struct Forces::Waiting {
    explicit Waiting(Failed whatFailed) : failed(std::move(whatFailed)) {}

    struct Written {
        Text path;
        Descriptor file;
    };

    void add(const Text& path, Descriptor file)
    {
        const Lock lock(mutex);
        std::erase_if(files, [&](const Written& each) { return each.path == path; });
        files.push_back({path, std::move(file)});
    }

    Written next()
    {
        const Lock lock(mutex);
        if (files.empty())
            return {{}, Descriptor()};
        Written first = std::move(files.front());
        files.pop_front();
        return first;
    }

    void forceNext()
    {
        const Written first = next();
        if (!first.file)
            return;
        if (force(first.file))
            syncFolder(folderOf(first.path));
        else
            failed(first.path);
    }

    const Failed failed;
    Mutex mutex;
    std::deque<Written> files GUARDED_BY(mutex);
};

Forces::Forces(Failed failed) : waiting_(std::make_shared<Waiting>(std::move(failed))) {}

Forces::~Forces() = default;

void Forces::add(const Text& path, const Descriptor& file)
{
    waiting_->add(path, Descriptor(fcntl(file.number(), F_DUPFD_CLOEXEC, 0)));
    worker_.add([waiting = waiting_](const std::stop_token&) { waiting->forceNext(); });
}

}
