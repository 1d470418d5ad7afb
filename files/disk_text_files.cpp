// SPDX-License-Identifier: GPL-3.0-or-later
#include "files/disk_text_files.h"

#include "files/disk_output.h"
#include "files/folders.h"
#include "platform/failure.h"
#include "platform/paths.h"

#include <fcntl.h>

#include <cerrno>

namespace files
{

namespace
{

// No list is larger; a film picked by mistake must not fill the memory.
constexpr off_t largestText = off_t{512} << 20;

// Nothing waits at a pipe that nobody serves.
constexpr int openFlags = O_CLOEXEC | O_NONBLOCK | O_NOCTTY;

[[noreturn]] void fail(int systemError) { throw fileFailure(systemError); }

// Where the bytes go. A name that no file can have, links in a ring, and a NUL, behind which the system sees
// nothing, are refused.
Text outputTarget(const Text& path)
{
    const Text target = path.find('\0') == Text::npos ? resolvedLinks(path) : Text();
    if (target.empty() || target.back() == pathSeparator)
        throw Failure(Trouble::pathOrFileAccess);
    return target;
}

// The file as it stands, untouched. Nothing when there is none.
Descriptor openExisting(const Text& target)
{
    Descriptor file(open(target.c_str(), O_RDWR | openFlags));
    if (!file && errno == EACCES)
        file = Descriptor(open(target.c_str(), O_WRONLY | openFlags));
    if (!file && errno != ENOENT)
        fail(errno);
    return file;
}

struct stat statusOf(const Descriptor& file)
{
    struct stat status;
    if (fstat(file.number(), &status) != 0)
        fail(errno);
    return status;
}

std::unique_ptr<TextOutput> replaceExisting(const Text& target, Descriptor file, PartNotes& notes,
                                            FileLeft left)
{
    const struct stat status = statusOf(file);
    if (!S_ISREG(status.st_mode))
        return outputInPlace(target, std::move(file), std::move(left));
    try {
        auto part = std::make_unique<OutputFile>(target, status, notes);
        return outputBeside(std::move(part), {target, std::move(file)}, std::move(left));
    } catch (const FolderRefuses&) {
        return outputInPlace(target, std::move(file), std::move(left));
    }
}

// A pipe or a device is no list.
Descriptor openForInput(const Text& path)
{
    Descriptor file(open(path.c_str(), O_RDONLY | openFlags));
    if (!file)
        throw errno == ENOTDIR ? Failure(Trouble::fileNotFound) : fileFailure(errno);
    const struct stat status = statusOf(file);
    if (!S_ISREG(status.st_mode) || status.st_size > largestText)
        throw Failure(Trouble::pathOrFileAccess);
    return file;
}

// What cannot be read has no length for the caller either: it would go on to read it.
void touch(const Descriptor& file)
{
    char first = 0;
    if (pread(file.number(), &first, 1, 0) < 0)
        fail(errno);
}

}

std::unique_ptr<TextOutput> DiskTextFiles::openForOutput(const Text& path)
{
    const Text target = outputTarget(path);
    FileLeft left = [this, path, target](std::uint64_t revision, Descriptor file, DiskNeeds needs) {
        if (needs == DiskNeeds::force)
            forces_.add(target, file);
        leave(path, revision, std::move(file));
    };
    Descriptor existing = openExisting(target);
    if (existing)
        return replaceExisting(target, std::move(existing), notes_, std::move(left));
    auto part = std::make_unique<OutputFile>(target, std::nullopt, notes_);
    return outputBeside(std::move(part), {}, std::move(left));
}

void DiskTextFiles::leave(const Text& path, std::uint64_t revision, Descriptor file)
{
    const Lock lock(mutex_);
    left_.erase(path);
    if (revision != 0)
        left_.emplace(path, LeftFile(revision, std::move(file), trust_));
}

bool DiskTextFiles::isOwn(const Text& path)
{
    const Lock lock(mutex_);
    return left_.contains(path);
}

bool DiskTextFiles::stillHolds(const Text& path, std::uint64_t revision)
{
    const Lock lock(mutex_);
    const auto found = left_.find(path);
    return found != left_.end() && found->second.holds(path, revision);
}

void DiskTextFiles::keepBackup(const Text& path, std::string_view bytes)
{
    const Text backup = path + ".bak";
    const bool kept = succeeds([&] {
        const auto output = openForOutput(backup);
        output->write(bytes);
        output->finish();
    });
    if (kept && !isOwn(path))
        earlierContentKept_(backup);
}

std::int64_t DiskTextFiles::length(const Text& path)
{
    struct stat status;
    if (stat(path.c_str(), &status) != 0)
        throw Failure(errno == EACCES ? Trouble::permissionDenied : Trouble::fileNotFound);
    if (!S_ISREG(status.st_mode))
        throw Failure(Trouble::fileNotFound);
    touch(openForInput(path));
    return status.st_size;
}

// A file that shrinks meanwhile gives what is left of it.
Text DiskTextFiles::readWhole(const Text& path)
{
    const Descriptor file = openForInput(path);
    Text bytes;
    bytes.reserve(static_cast<std::size_t>(statusOf(file).st_size));
    if (!readRest(file, bytes))
        fail(errno);
    return bytes;
}

}
