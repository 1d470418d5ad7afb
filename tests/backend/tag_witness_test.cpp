// What an independent reader (ffprobe) says of the tags that are written.
#include "engines/tags/tag_file.h"

#include "tests/support/mp3_files.h"

#include <doctest/doctest.h>

#include <array>
#include <cstdio>
#include <memory>

namespace
{

const Text cyrillic = "\xD0\x9F\xD1\x80\xD0\xB8\xD0\xB2\xD0\xB5\xD1\x82 \xD0\xBC\xD0\xB8\xD1\x80";
const Text chinese = "\xE9\x9F\xB3\xE4\xB9\x90";
const Text note = "\xF0\x9F\x8E\xB5";

Text outputOf(const Text& command)
{
    const std::unique_ptr<FILE, int (*)(FILE*)> pipe(popen(command.c_str(), "r"), pclose);
    Text output;
    std::array<char, 4096> buffer;
    for (std::size_t got; pipe && (got = fread(buffer.data(), 1, buffer.size(), pipe.get())) > 0;)
        output.append(buffer.data(), got);
    return output;
}

// The fields as ffprobe prints them, one a line; its complaints about the file, if it has any, come with
// them.
class Witness
{
public:
    explicit Witness(const Text& path) :
        lines_('\n' + outputOf("ffprobe -v error -show_entries format_tags -of default=noprint_wrappers=1 '" +
                               path + "' 2>&1"))
    {
    }

    Text operator()(const Text& field) const
    {
        const Text begin = "\nTAG:" + field + "=";
        const auto at = lines_.find(begin);
        if (at == Text::npos)
            return "";
        return lines_.substr(at + begin.size(), lines_.find('\n', at + 1) - at - begin.size());
    }

private:
    Text lines_;
};

}

TEST_CASE("ffprobe reads what was written, in every version of ID3v2")
{
    const Tag tags[] = {
        {"Title", "Artist", "Album", "Comment", 1987, 17},
        {cyrillic, chinese, note, cyrillic, 2004, 79},
        {Text(60, 't'), "R&B", "<b>bold</b>", "100 % \"quoted\" 'text'", 1, 0},
        {"caf\xC3\xA9", "a\tb\x01", "", "", 0, -1},
    };
    const Text dates[] = {"1987", "2004", "0001", ""};
    const Text audio = mp3Frames(60);
    const TemporaryFolder folder;
    for (const int version : {2, 3, 4})
        for (std::size_t i = 0; i < std::size(tags); ++i) {
            const Tag& tag = tags[i];
            CAPTURE(version);
            CAPTURE(tag.title);
            const Text path = putSong(
                folder,
                v2Tag(version, v2Frame(version, version == 2 ? "TT2" : "TIT2", latin1Text("old"))) + audio);
            REQUIRE(writeTag(path, tag) == "");
            const Witness says(path);
            CHECK(says("title") == tag.title);
            CHECK(says("artist") == tag.artist);
            CHECK(says("album") == tag.album);
            CHECK(says("comment") == tag.comment);
            CHECK(says("date") == dates[i]);
        }
}

TEST_CASE("ffprobe reads ID3v1 alone, and a genre of 80 by the standard's name")
{
    const TemporaryFolder folder;
    const Text path = putSong(folder, mp3Frames(60));
    REQUIRE(writeTag(path, {"Title", "Artist", "Album", "Comment", 1987, 17}) == "");
    const Witness latin(path);
    CHECK(latin("title") == "Title");
    CHECK(latin("genre") == "Rock");
    CHECK(latin("date") == "1987");
    REQUIRE(writeTag(path, {cyrillic, "", "", " ", 0, 80}) == "");
    const Witness all(path);
    CHECK(all("title") == cyrillic);
    CHECK(all("genre") == "Folk");
    CHECK(all("comment") == " ");
}

TEST_CASE("ffprobe finds the sound after a writing as before")
{
    const TemporaryFolder folder;
    const Text path = putSong(folder, v2Tag(3, "") + mp3Frames(60));
    const auto sound = [&] {
        return outputOf("ffmpeg -v error -i '" + path + "' -map 0:a -c copy -f md5 - 2>&1");
    };
    const Text before = sound();
    REQUIRE(writeTag(path, {cyrillic, Text(5000, 'x'), "", "", 1987, 17}) == "");
    CHECK(before.substr(0, 4) == "MD5=");
    CHECK(sound() == before);
}
