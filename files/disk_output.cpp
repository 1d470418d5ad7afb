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

// What a person saves must outlast a power cut, whoever wrote it. A file that may still change unnoticed is
// compared anew the next time.
void leaveStanding(StandingText& standing, std::uint64_t revision, const FileLeft& left)
{
    const std::uint64_t provable = standing.hasSettled() ? revision : 0;
    left(provable, standing.release(), revision == 0 ? DiskNeeds::force : DiskNeeds::nothing);
}

// Once a write has failed rows are missing: the old file stays, though the disk may have room again.
class OutputBeside final : public TextOutput
{
public:
    OutputBeside(std::unique_ptr<OutputFile> part, StandingText standing, FileLeft left) :
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
            leaveStanding(standing_, revision, left_);
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
                [&] { part_->append(bytesOf(std::exchange(pending_, {}))); });
        if (failed_)
            throw *failed_;
    }

    void replace(std::uint64_t revision)
    {
        putPending();
        part_->startForce();
        stampPrecisely(part_->file());
        part_->takePlace();
        left_(revision, part_->release(), DiskNeeds::force);
    }

    std::unique_ptr<OutputFile> part_;
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
            leaveStanding(standing_, revision, left_);
        else
            writeOver(revision);
    }

private:
    void writeOver(std::uint64_t revision)
    {
        const auto size = static_cast<off_t>(bytes_.size());
        makeRoom(size);
        const Descriptor& file = standing_.file();
        if (!writeAt(file, bytesOf(bytes_), 0))
            giveRoomBack(errno);
        if (ftruncate(file.number(), size) != 0 || !startForce(file))
            fail(errno);
        stampPrecisely(file);
        left_(revision, standing_.release(), DiskNeeds::force);
    }

    // Before the first old byte goes: a full disk then leaves the old file.
    void makeRoom(off_t size)
    {
        if (size <= oldSize_)
            return;
        if (const int error = posix_fallocate(standing_.file().number(), 0, size); error != 0)
            giveRoomBack(error);
    }

    // Behind what stands there would be zeros, which are no rows.
    [[noreturn]] void giveRoomBack(int systemError)
    {
        std::ignore = ftruncate(standing_.file().number(), oldSize_);
        fail(systemError);
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

    void write(std::string_view bytes) override
    {
        while (!bytes.empty()) {
            const ssize_t written = ::write(file_.number(), bytes.data(), bytes.size());
            if (written < 0 && errno != EINTR)
                fail(errno);
            bytes.remove_prefix(static_cast<std::size_t>(std::max<ssize_t>(written, 0)));
        }
    }
    void finish(std::uint64_t) override {}

private:
    Descriptor file_;
};

}

std::unique_ptr<TextOutput> outputBeside(std::unique_ptr<OutputFile> part, StandingText standing,
                                         FileLeft left)
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
