// SPDX-License-Identifier: GPL-3.0-or-later
#include "files/block_writer.h"

#include "tests/support/failures.h"
#include "tests/support/files.h"
#include "tests/support/skip.h"
#include "tests/support/small_disk.h"
#include "tests/support/temporary_folder.h"

#include <doctest/doctest.h>

#include <fcntl.h>
#include <sys/mman.h>
#include <sys/resource.h>

#include <algorithm>
#include <cstring>
#include <optional>
#include <thread>

namespace
{

constexpr std::int64_t unit = files::BlockWriter::unitBytes;
constexpr std::int64_t block = files::BlockWriter::blockBytes;

// No two bytes of a unit's distance are alike, so that a misplaced one shows.
std::string pattern(std::int64_t count)
{
    std::string bytes(static_cast<std::size_t>(count), '\0');
    std::uint32_t state = 1;
    for (auto& byte : bytes) {
        state = state * 1664525 + 1013904223;
        byte = static_cast<char>(state >> 24);
    }
    return bytes;
}

std::span<const std::byte> part(const std::string& bytes, std::int64_t from, std::int64_t to)
{
    return std::as_bytes(std::span(bytes))
        .subspan(static_cast<std::size_t>(from), static_cast<std::size_t>(to - from));
}

// In steps of a frame of music.
void writeRun(files::BlockWriter& blocks, const std::string& bytes, std::int64_t from, std::int64_t to)
{
    files::BlockWriter::Run run(blocks, from);
    for (auto at = from; at < to; at += 4608)
        run.write(part(bytes, at, std::min(to, at + 4608)));
    CHECK(run.finish() == to);
}

// Bytes of the file that the system holds in memory.
std::int64_t cached(const Text& path, std::int64_t bytes)
{
    const files::Descriptor file(open(path.c_str(), O_RDONLY | O_CLOEXEC));
    const auto page = sysconf(_SC_PAGESIZE);
    std::vector<unsigned char> pages(static_cast<std::size_t>((bytes + page - 1) / page));
    void* map = mmap(nullptr, static_cast<std::size_t>(bytes), PROT_READ, MAP_SHARED, file.number(), 0);
    REQUIRE(map != MAP_FAILED);
    REQUIRE(mincore(map, static_cast<std::size_t>(bytes), pages.data()) == 0);
    munmap(map, static_cast<std::size_t>(bytes));
    return page * std::count_if(pages.begin(), pages.end(), [](unsigned char held) { return held & 1; });
}

// Some file systems take writes past the cache, and keep them there all the same.
bool passesCache(const Text& folder)
{
    files::OutputFile file(folder + "/probe", NoPartNotes::instance());
    const auto direct = file.openPastCache();
    const std::unique_ptr<void, decltype(&std::free)> memory(std::aligned_alloc(unit, unit), &std::free);
    std::memset(memory.get(), 0, unit);
    if (!direct || pwrite(direct.number(), memory.get(), unit, 0) != unit)
        return false;
    file.finish();
    return cached(folder + "/probe", unit) == 0;
}

// As on a machine where every file that may be open is open.
class NoMoreFiles
{
public:
    NoMoreFiles()
    {
        getrlimit(RLIMIT_NOFILE, &before_);
        const rlimit none{0, before_.rlim_max};
        setrlimit(RLIMIT_NOFILE, &none);
    }
    ~NoMoreFiles() { setrlimit(RLIMIT_NOFILE, &before_); }
    NoMoreFiles(const NoMoreFiles&) = delete;
    NoMoreFiles& operator=(const NoMoreFiles&) = delete;

private:
    rlimit before_{};
};

}

TEST_CASE("A run of any length at any place becomes its bytes of the file")
{
    const std::int64_t lengths[] = {0,     1,         unit - 1,  unit,         unit + 1,
                                    block, block + 1, 2 * block, 3 * block - 7};
    for (const std::int64_t begin : {std::int64_t{0}, std::int64_t{44}, unit - 1, unit, block + 1})
        for (const auto length : lengths) {
            CAPTURE(begin);
            CAPTURE(length);
            TemporaryFolder folder;
            files::OutputFile file(folder / "a.wav", NoPartNotes::instance());
            const auto bytes = pattern(begin + length);
            file.write(part(bytes, 0, begin), 0);
            files::BlockWriter blocks(file, 1);
            writeRun(blocks, bytes, begin, begin + length);
            blocks.finish();
            file.finish();
            CHECK(fileBytes(folder / "a.wav") == bytes);
        }
}

TEST_CASE("Runs of several threads meet without a gap")
{
    TemporaryFolder folder;
    files::OutputFile file(folder / "a.wav", NoPartNotes::instance());
    const auto bytes = pattern(12 * block + 12345);
    const auto size = static_cast<std::int64_t>(bytes.size());
    constexpr int threads = 4;
    {
        files::BlockWriter blocks(file, threads);
        std::vector<std::jthread> writers;
        for (std::int64_t i = 0; i < threads; ++i)
            writers.emplace_back(
                [&, i] { writeRun(blocks, bytes, size * i / threads, size * (i + 1) / threads); });
        writers.clear();
        blocks.finish();
    }
    file.finish();
    CHECK(fileBytes(folder / "a.wav") == bytes);
}

TEST_CASE("What was written does not fill the file cache")
{
    TemporaryFolder folder;
    if (!passesCache(folder.path())) {
        skipCase("this file system has no way past the cache");
        return;
    }
    files::OutputFile file(folder / "a.wav", NoPartNotes::instance());
    const auto bytes = pattern(10 * block);
    files::BlockWriter blocks(file, 1);
    writeRun(blocks, bytes, 44, 10 * block);
    blocks.finish();
    file.finish();
    CHECK(cached(folder / "a.wav", 10 * block) < block);
}

TEST_CASE("Without a way past the file cache everything goes through it")
{
    TemporaryFolder folder;
    files::OutputFile file(folder / "a.wav", NoPartNotes::instance());
    const auto bytes = pattern(10 * block + 5);
    {
        std::optional<NoMoreFiles> limit(std::in_place);
        REQUIRE_FALSE(file.openPastCache());
        files::BlockWriter blocks(file, 1);
        limit.reset();
        writeRun(blocks, bytes, 0, 10 * block + 5);
        blocks.finish();
    }
    file.finish();
    CHECK(fileBytes(folder / "a.wav") == bytes);
}

TEST_CASE("A full disk is told to whoever writes on or finishes, and a writer never waits for ever")
{
    TemporaryFolder folder;
    const SmallDisk disk(folder / "disk", 3 * block / 1024);
    files::OutputFile file(folder / "disk/a.wav", NoPartNotes::instance());
    const auto bytes = pattern(40 * block);
    files::BlockWriter blocks(file, 1);
    CHECK(failureOf([&] { writeRun(blocks, bytes, 0, 40 * block); }) == 61);
    CHECK(failureOf([&] { blocks.finish(); }) == 61);
}

TEST_CASE("A disk that becomes full with the last block is told by finishing")
{
    TemporaryFolder folder;
    const SmallDisk disk(folder / "disk", 4 * block / 1024 - 500);
    files::OutputFile file(folder / "disk/a.wav", NoPartNotes::instance());
    const auto bytes = pattern(4 * block);
    files::BlockWriter blocks(file, 1);
    writeRun(blocks, bytes, 0, 4 * block);
    CHECK(failureOf([&] { blocks.finish(); }) == 61);
}

TEST_CASE("Blocks that nobody finishes are left out")
{
    TemporaryFolder folder;
    {
        files::OutputFile file(folder / "a.wav", NoPartNotes::instance());
        const auto bytes = pattern(5 * block);
        files::BlockWriter blocks(file, 1);
        files::BlockWriter::Run run(blocks, 0);
        run.write(part(bytes, 0, 5 * block - 1));
    }
    CHECK(namesInFolder(folder.path()).empty());
}
