// SPDX-License-Identifier: GPL-3.0-or-later
#include "files/disk_output.h"

#include "platform/failure.h"

#include <fcntl.h>

#include <algorithm>
#include <cerrno>
#include <optional>
#include <tuple>
#include <utility>

namespace files
{

namespace
{

constexpr std::size_t pieceBytes = 1 << 16;

[[noreturn]] void fail(int systemError) { throw fileFailure(systemError); }

void writeAll(const Descriptor& file, std::string_view bytes)
{
    while (!bytes.empty()) {
        const ssize_t written = write(file.number(), bytes.data(), bytes.size());
        if (written < 0 && errno != EINTR)
            fail(errno);
        bytes.remove_prefix(static_cast<std::size_t>(std::max<ssize_t>(written, 0)));
    }
}

// Some file systems know no flush, and say so; that is no failure.
void flushToDisk(const Descriptor& file)
{
    if (fdatasync(file.number()) != 0 && errno != EINVAL && errno != ENOSYS)
        fail(errno);
}

// The disk begins, nobody waits. A file system on the network reports a full disk only when a file is closed.
void startFlush(const Descriptor& file)
{
    sync_file_range(file.number(), 0, 0, SYNC_FILE_RANGE_WRITE);
    if (const int twin = dup(file.number()); twin >= 0 && close(twin) != 0)
        fail(errno);
}

// A list that a person saves must outlast a power cut; the working copy is written with nearly every click,
// and a wait for the disk would be felt.
void settle(const Descriptor& file, std::uint64_t revision)
{
    if (revision == 0)
        flushToDisk(file);
    else
        startFlush(file);
    stampPrecisely(file);
}

// What a person saves must outlast a power cut, whoever wrote it. A file that may still change unnoticed is
// compared anew the next time.
void keepStanding(StandingText& standing, std::uint64_t revision, const FileLeft& left)
{
    if (revision == 0)
        flushToDisk(standing.file());
    const std::uint64_t provable = standing.hasSettled() ? revision : 0;
    left(provable, standing.release());
}

// Once a write has failed rows are missing: the old file stays, though the disk may have room again.
class OutputBeside final : public TextOutput
{
public:
    OutputBeside(std::unique_ptr<PartFile> part, StandingText standing, FileLeft left) :
        part_(std::move(part)), standing_(std::move(standing)), left_(std::move(left))
    {
    }

    void write(std::string_view bytes) override
    {
        pending_ += bytes;
        if (pending_.size() >= pieceBytes)
            writePending();
    }

    void finish(std::uint64_t revision) override
    {
        if (failed_)
            throw *failed_;
        standing_.compare(pending_);
        if (standing_.isSame())
            keepStanding(standing_, revision, left_);
        else
            replace(revision);
    }

private:
    void writePending()
    {
        standing_.compare(pending_);
        putPending();
    }

    void putPending()
    {
        if (failed_)
            throw *failed_;
        guarded([&](const Failure& failure) { failed_ = failure; },
                [&] { writeAll(part_->file(), std::exchange(pending_, {})); });
        if (failed_)
            throw *failed_;
    }

    void replace(std::uint64_t revision)
    {
        putPending();
        settle(part_->file(), revision);
        if (!part_->takePlace())
            fail(errno);
        left_(revision, part_->release());
    }

    std::unique_ptr<PartFile> part_;
    StandingText standing_;
    FileLeft left_;
    Text pending_;
    std::optional<Failure> failed_;
};

class FileInPlace final : public TextOutput
{
public:
    FileInPlace(const Text& path, Descriptor file, off_t oldSize, FileLeft left) :
        standing_(path, std::move(file)), oldSize_(oldSize), left_(std::move(left))
    {
    }

    void write(std::string_view bytes) override { bytes_ += bytes; }

    void finish(std::uint64_t revision) override
    {
        standing_.compare(bytes_);
        if (standing_.isSame())
            keepStanding(standing_, revision, left_);
        else
            writeOver(revision);
    }

private:
    void writeOver(std::uint64_t revision)
    {
        const auto size = static_cast<off_t>(bytes_.size());
        makeRoom(size);
        writeAll(standing_.file(), bytes_);
        if (ftruncate(standing_.file().number(), size) != 0)
            fail(errno);
        settle(standing_.file(), revision);
        left_(revision, standing_.release());
    }

    // Before the first old byte goes: a full disk then leaves the old file.
    void makeRoom(off_t size)
    {
        if (size <= oldSize_)
            return;
        if (const int error = posix_fallocate(standing_.file().number(), 0, size); error != 0) {
            std::ignore = ftruncate(standing_.file().number(), oldSize_);
            fail(error);
        }
    }

    StandingText standing_;
    off_t oldSize_;
    FileLeft left_;
    Text bytes_;
};

class DeviceOutput final : public TextOutput
{
public:
    explicit DeviceOutput(Descriptor file) : file_(std::move(file)) {}

    void write(std::string_view bytes) override { writeAll(file_, bytes); }
    void finish(std::uint64_t) override {}

private:
    Descriptor file_;
};

}

std::unique_ptr<TextOutput> outputBeside(std::unique_ptr<PartFile> part, StandingText standing, FileLeft left)
{
    return std::make_unique<OutputBeside>(std::move(part), std::move(standing), std::move(left));
}

std::unique_ptr<TextOutput> outputInPlace(const Text& path, Descriptor file, FileLeft left)
{
    struct stat status;
    if (fstat(file.number(), &status) != 0)
        fail(errno);
    if (!S_ISREG(status.st_mode))
        return std::make_unique<DeviceOutput>(std::move(file));
    return std::make_unique<FileInPlace>(path, std::move(file), status.st_size, std::move(left));
}

}
