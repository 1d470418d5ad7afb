// SPDX-License-Identifier: GPL-3.0-or-later
#include "engines/codec/decode_file.h"
#include "engines/codec/encode_file.h"
#include "tests/support/child.h"
#include "tests/support/failures.h"
#include "tests/support/lame_alone.h"
#include "tests/support/small_disk.h"
#include "tests/support/temporary_folder.h"
#include "tests/support/wav_files.h"

#include <doctest/doctest.h>

#include <csignal>
#include <filesystem>
#include <functional>
#include <sys/resource.h>
#include <sys/stat.h>
#include <utility>

using namespace codec;

namespace
{

// Either conversion of one sound: they must fail alike.
struct Conversion {
    Text what;
    Text source;
    Text target;
    std::function<void(const Text& source, const Text& target, const Report& report)> run;
};

struct Place {
    TemporaryFolder folder;
    std::vector<Conversion> conversions;

    Place()
    {
        const Pcm pcm = music(44100 * 30);
        putPcmWav(folder / "a.wav", pcm);
        putFile(folder / "a.mp3", lameAlone(pcm, 128, 44100));
        conversions = {
            {"encoding", folder / "a.wav", "made.mp3",
             [](const Text& source, const Text& target, const Report& report) {
                 encodeFile(source, target, {}, 2, report);
             }},
            {"decoding in pieces", folder / "a.mp3", "made.wav",
             [](const Text& source, const Text& target, const Report& report) {
                 decodeFile(source, target, 2, report);
             }},
        };
        putFile(folder / "b.mp3", "x" + fileBytes(folder / "a.mp3"));
        conversions.push_back({"decoding from the start", folder / "b.mp3", "made.wav", conversions[1].run});
    }
};

int failureIn(const Conversion& conversion, const Text& target)
{
    return failureOf([&] { conversion.run(conversion.source, target, [](std::int32_t) {}); });
}

}

TEST_CASE("A folder that does not exist is no place for an output")
{
    Place place;
    const auto before = namesInFolder(place.folder.path());
    for (const auto& conversion : place.conversions) {
        CAPTURE(conversion.what);
        CHECK(failureIn(conversion, place.folder / ("missing/" + conversion.target)) == 76);
        CHECK(failureIn(conversion, "") != 0);
        CHECK(failureIn(conversion, place.folder.path()) == 75);
    }
    CHECK(namesInFolder(place.folder.path()) == before);
}

TEST_CASE("A folder that may not be written to is left alone")
{
    Place place;
    const Text closed = place.folder / "closed";
    std::filesystem::create_directory(closed);
    chmod(place.folder.path().c_str(), 0755);
    putFile(closed + "/made.mp3", "old");
    putFile(closed + "/made.wav", "old");
    chmod(closed.c_str(), 0555);
    Child user([&] {
        becomeNobody();
        for (const auto& conversion : place.conversions)
            endUnless(failureIn(conversion, closed + "/" + conversion.target) == 70, 1);
    });
    CHECK(user.wait() == 0);
    chmod(closed.c_str(), 0755);
    CHECK(namesInFolder(closed) == std::set<Text>{"made.mp3", "made.wav"});
    CHECK(fileBytes(closed + "/made.mp3") == "old");
}

TEST_CASE("A file that may not be written to is not replaced")
{
    Place place;
    const Text open = place.folder / "open";
    std::filesystem::create_directory(open);
    chmod(place.folder.path().c_str(), 0755);
    chmod(open.c_str(), 0777);
    for (const Text name : {"/made.mp3", "/made.wav"}) {
        putFile(open + name, "old");
        chmod((open + name).c_str(), 0444);
    }
    Child user([&] {
        becomeNobody();
        for (const auto& conversion : place.conversions)
            endUnless(failureIn(conversion, open + "/" + conversion.target) == 70, 1);
    });
    CHECK(user.wait() == 0);
    CHECK(fileBytes(open + "/made.mp3") == "old");
    CHECK(fileBytes(open + "/made.wav") == "old");
}

TEST_CASE("Where the disk is full nothing is left, and the old file stands")
{
    Place place;
    const Text disk = place.folder / "disk";
    const SmallDisk small(disk, 200);
    putFile(disk + "/made.mp3", "old");
    putFile(disk + "/made.wav", "old");
    for (const auto& conversion : place.conversions) {
        CAPTURE(conversion.what);
        CHECK(failureIn(conversion, disk + "/" + conversion.target) == 61);
        CHECK(namesInFolder(disk) == std::set<Text>{"made.mp3", "made.wav"});
        CHECK(fileBytes(disk + "/" + conversion.target) == "old");
    }
}

TEST_CASE("A limit on the size of files is a full disk, too")
{
    Place place;
    Child limited([&] {
        std::signal(SIGXFSZ, SIG_IGN);
        const rlimit limit{100000, 100000};
        endUnless(setrlimit(RLIMIT_FSIZE, &limit) == 0, 2);
        for (const auto& conversion : place.conversions)
            endUnless(failureIn(conversion, place.folder / conversion.target) == 61, 1);
    });
    CHECK(limited.wait() == 0);
    CHECK(namesInFolder(place.folder.path()) == std::set<Text>{"a.mp3", "a.wav", "b.mp3"});
}

TEST_CASE("One file cannot be source and target, by whatever names")
{
    Place place;
    for (const auto& conversion : place.conversions) {
        CAPTURE(conversion.what);
        const Text bytes = fileBytes(conversion.source);
        const Text soft = place.folder / "soft";
        const Text hard = place.folder / "hard";
        std::filesystem::create_symlink(conversion.source, soft);
        std::filesystem::create_hard_link(conversion.source, hard);
        for (const auto& target :
             {conversion.source, soft, hard,
              place.folder.path() + "/./" + conversion.source.substr(place.folder.path().size() + 1)})
            CHECK(failureIn(conversion, target) == 75);
        CHECK(fileBytes(conversion.source) == bytes);
        std::filesystem::remove(soft);
        std::filesystem::remove(hard);
    }
}

TEST_CASE("A source that vanishes is converted to its end; of one that shrinks nothing is made by halves")
{
    Place place;
    for (const auto& conversion : place.conversions) {
        CAPTURE(conversion.what);
        const Text target = place.folder / conversion.target;
        conversion.run(conversion.source, target, [](std::int32_t) {});
        const Text whole = fileBytes(target);
        std::filesystem::remove(target);

        const Text shrinking = place.folder / "shrinking";
        putFile(shrinking, fileBytes(conversion.source));
        const int number = failureOf([&] {
            conversion.run(shrinking, target,
                           [&](std::int32_t) { std::filesystem::resize_file(shrinking, 1000); });
        });
        CHECK((number == 0 || number == 57)); // 0: all was read before
        CHECK(fileBytes(target) == (number == 0 ? whole : ""));
        CHECK((number == 57 || conversion.what != "encoding"));
        std::filesystem::remove(target);

        const Text vanishing = place.folder / "vanishing";
        putFile(vanishing, fileBytes(conversion.source));
        conversion.run(vanishing, target, [&](std::int32_t) { std::filesystem::remove(vanishing); });
        CHECK(fileBytes(target) == whole);
        std::filesystem::remove(target);
    }
}

TEST_CASE("A source that becomes shorter while it is converted is told of in words")
{
    const Place place;
    for (const auto& conversion : place.conversions) {
        CAPTURE(conversion.what);
        const Text whole = fileBytes(conversion.source);
        bool isCut = false;
        Text words;
        try {
            conversion.run(conversion.source, place.folder / conversion.target, [&](std::int32_t) {
                if (!std::exchange(isCut, true))
                    std::filesystem::resize_file(conversion.source, 1000);
            });
        } catch (const Failure& failure) {
            words = failure.description;
        }
        CHECK(isCut);
        CHECK(words == "It could not be read to its end.");
        CHECK_FALSE(std::filesystem::exists(place.folder / conversion.target));
        putFile(conversion.source, whole);
    }
}
