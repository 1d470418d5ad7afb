#include "platform/codec/part_file.h"

#include "platform/failure.h"
#include "platform/paths.h"

#include <cerrno>
#include <climits>
#include <cstdio>
#include <cstdlib>
#include <fcntl.h>
#include <memory>
#include <sys/stat.h>
#include <unistd.h>

namespace codec
{

namespace
{

Text folderOf(const Text& path)
{
    const auto separator = path.rfind(pathSeparator);
    if (separator == Text::npos)
        return ".";
    return path.substr(0, separator + 1);
}

// Written through, as plain output would be: the link stays a link. A dangling one becomes the file itself.
Text withoutLink(const Text& path)
{
    const std::unique_ptr<char, decltype(&std::free)> resolved(::realpath(path.c_str(), nullptr), &std::free);
    return resolved ? Text(resolved.get()) : path;
}

// Renaming over a device, a pipe or a file that may not be written would succeed where writing to it must
// not.
void refuseUnlessWritable(const Text& target)
{
    struct stat status;
    if (::stat(target.c_str(), &status) != 0)
        return;
    if (!S_ISREG(status.st_mode))
        throw failure(75);
    if (::faccessat(AT_FDCWD, target.c_str(), W_OK, AT_EACCESS) != 0)
        throw failure(70);
}

// "TITLE.PROCESS-NUMBER.part", the title cut where the name would be too long for the file system.
Text partName(const Text& target, int number)
{
    const Text ending = "." + std::to_string(::getpid()) + "-" + std::to_string(number) + ".part";
    std::string_view title = fileTitle(target);
    while (title.size() + ending.size() > NAME_MAX)
        title = withoutLastCharacter(title);
    return folderOf(target).append(title).append(ending);
}

void keepMode(int descriptor, const Text& target)
{
    struct stat status;
    if (::stat(target.c_str(), &status) == 0)
        ::fchmod(descriptor, status.st_mode & 0777);
}

// A large block sets out for the disk at once, so that `finish` has little left to wait for.
void startWriting(int descriptor, std::size_t count, std::int64_t at)
{
#ifdef SYNC_FILE_RANGE_WRITE
    constexpr std::size_t large = 1 << 18;
    if (count >= large)
        ::sync_file_range(descriptor, at, static_cast<off_t>(count), SYNC_FILE_RANGE_WRITE);
#endif
}

// The new name survives a power cut only when its folder is on the disk. Some file systems cannot do it; the
// file itself is safe by then.
void syncFolder(const Text& folder)
{
    const int descriptor = ::open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (descriptor < 0)
        return;
    ::fsync(descriptor);
    ::close(descriptor);
}

}

PartFile::PartFile(const Text& target, PartNotes& notes) : target_(withoutLink(target)), notes_(notes)
{
    refuseUnlessWritable(target_);
    create();
    keepMode(descriptor_, target_);
}

PartFile::~PartFile()
{
    if (descriptor_ < 0)
        return;
    ::close(descriptor_);
    remove();
}

void PartFile::create()
{
    for (int number = 1; descriptor_ < 0; ++number) {
        part_ = partName(target_, number);
        notes_.note(part_);
        descriptor_ = ::open(part_.c_str(), O_RDWR | O_CREAT | O_EXCL | O_CLOEXEC, 0666);
        if (descriptor_ >= 0)
            return;
        const int error = errno;
        notes_.done(part_);
        if (error != EEXIST)
            throw error == ENOENT ? failure(76) : fileFailure(error);
    }
}

void PartFile::remove()
{
    ::unlink(part_.c_str());
    notes_.done(part_);
}

void PartFile::write(const void* bytes, std::size_t count, std::int64_t at)
{
    auto from = static_cast<const char*>(bytes);
    while (count > 0) {
        const auto written = ::pwrite(descriptor_, from, count, at);
        if (written < 0 && errno == EINTR)
            continue;
        if (written < 0)
            throw fileFailure(errno);
        startWriting(descriptor_, static_cast<std::size_t>(written), at);
        from += written;
        at += written;
        count -= static_cast<std::size_t>(written);
    }
}

void PartFile::finish()
{
    if (::fsync(descriptor_) != 0)
        throw fileFailure(errno);
    if (::rename(part_.c_str(), target_.c_str()) != 0)
        throw fileFailure(errno);
    ::close(descriptor_);
    descriptor_ = -1;
    notes_.done(part_);
    syncFolder(folderOf(target_));
}

bool isSameFile(const Text& one, const Text& other)
{
    struct stat first;
    struct stat second;
    if (::stat(one.c_str(), &first) != 0 || ::stat(other.c_str(), &second) != 0)
        return false;
    return first.st_dev == second.st_dev && first.st_ino == second.st_ino;
}

}
