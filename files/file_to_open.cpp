// SPDX-License-Identifier: GPL-3.0-or-later
#include "files/file_to_open.h"

#include "files/descriptor.h"
#include "files/folders.h"
#include "platform/paths.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>

namespace files
{

namespace
{

bool isMissing(const Text& path)
{
    struct stat status;
    return stat(path.c_str(), &status) != 0 && errno == ENOENT;
}

Text inOtherLetters(const Text& path)
{
    const Text folder = path.substr(0, path.size() - fileTitle(path).size());
    for (const Text& name : namesIn(folder.empty() ? "." : folder))
        if (equalWithoutCase(name, fileTitle(path)) && !isMissing(folder + name))
            return folder + name;
    return path;
}

// What a share says of a file from memory says nothing of its server: the first byte does.
void touch(const Text& path)
{
    if (!isFile(path))
        return;
    const Descriptor file(open(path.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC));
    char first = 0;
    if (file)
        (void)!pread(file.number(), &first, 1, 0);
}

}

Text fileMeantBy(const Text& path) { return !path.empty() && isMissing(path) ? inOtherLetters(path) : path; }

std::optional<Text> fileToOpen(const Text& path)
{
    if (path.empty())
        return path;
    return answerOfFile<Text>(path, [](const Text& file) {
        touch(file);
        return file;
    });
}

}
