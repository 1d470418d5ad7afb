// SPDX-License-Identifier: GPL-3.0-or-later
// What independent readers (ffprobe, mutagen, TagLib) say of the tags that are written.
#include "engines/tags/tag_file.h"

#include "tests/support/mp3_files.h"
#include "tests/support/tool.h"

#include <doctest/doctest.h>

#include <array>
#include <cstdio>
#include <memory>

#include <id3v2tag.h>
#include <mpegfile.h>

using namespace tags;

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

// The fields, one a line.
Text mutagenSays(const Text& path)
{
    const ToolResult said = runTool({"/usr/bin/python3", "-c",
                                     "import sys; from mutagen.id3 import ID3; tag = ID3(sys.argv[1]);"
                                     "[print(\" / \".join(str(v) for v in tag[name].text))"
                                     " for name in (\"TIT2\", \"TPE1\", \"TALB\") if name in tag]",
                                     path});
    REQUIRE(said.status == 0);
    return said.words;
}

Text taglibSays(const Text& path)
{
    TagLib::MPEG::File file(path.c_str());
    const auto* tag = file.ID3v2Tag();
    REQUIRE(tag);
    return (tag->title() + "\n" + tag->artist() + "\n" + tag->album() + "\n").to8Bit(true);
}

}

TEST_CASE("Tags of unusual form are read as other readers do, and others read what was written into them")
{
    const auto frames = [](int version) {
        const auto text = [&](const Text& id, const Text& value) {
            return v2Frame(version, id, latin1Text(value));
        };
        return text("TIT2", "Old") + text("TPE1", "Artist") + text("TALB", "Album");
    };
    const Text extended3 = bigEndian(6, 4) + Text(2, '\0') + bigEndian(50, 4);
    const Text checksum3 = bigEndian(10, 4) + Text("\x80\0", 2) + bigEndian(50, 4) + "CRC!";
    const Text checksum4 = syncSafe(12) + Text("\1\x20\5", 3) + Text(5, '\0');
    const Text footer = "3DI" + Text("\4\0\x10", 3) + syncSafe(frames(4).size());
    struct Case {
        const char* what;
        Text head;
        bool isForTagLib = true;  // not the extended header of 2.3, nor the last frame before a footer
        bool isForFfprobe = true; // not a text with bytes between that unsynchronisation has put there
    };
    const Case cases[] = {
        {"no extended header, as announced, 2.3", v2Tag(3, frames(3), 50, 0x40)},
        {"no extended header, as announced, 2.4", v2Tag(4, frames(4), 50, 0x40)},
        {"an extended header, 2.3", v2Tag(3, extended3 + frames(3), 50, 0x40), false},
        {"a checksum, 2.3", v2Tag(3, checksum3 + frames(3), 50, 0x40), false},
        {"a checksum, 2.4", v2Tag(4, checksum4 + frames(4), 50, 0x40)},
        {"a footer", v2Tag(4, frames(4), 0, 0x10) + footer, false},
        {"unsynchronisation, 2.3", v2Tag(3, frames(3), 50, 0x80), true, false},
        {"unsynchronisation, 2.4", v2Tag(4, frames(4), 50, 0x80)},
    };
    const TemporaryFolder folder;
    for (const auto& c : cases) {
        CAPTURE(c.what);
        const Text path = putSong(folder, c.head + mp3Frames(60));
        const Tag tag = readTag(path);
        CHECK(tag.title + "\n" + tag.artist + "\n" + tag.album + "\n" == mutagenSays(path));
        for (const Text& title : {Text("New"), cyrillic + Text(100, 'x')}) {
            REQUIRE(writeTag(path, {title, "Artist", "Album", "", 0, -1}) == "");
            const Text all = title + "\nArtist\nAlbum\n";
            CHECK(mutagenSays(path) == all);
            if (c.isForFfprobe)
                CHECK(Witness(path)("title") == title);
            if (c.isForTagLib)
                CHECK(taglibSays(path) == all);
        }
    }
}

TEST_CASE("A genre without a number is still told by others after a saving")
{
    const TemporaryFolder folder;
    const Text path = putSong(folder, v2Tag(4, v2Frame(4, "TCON", utf8Text("Heavy Metal")), 50) +
                                          mp3Frames(60) + v1Tag({"Old"}));
    REQUIRE(writeTag(path, {"New", "", "", " ", 0, 80}) == "");
    CHECK(Witness(path)("genre") == "Heavy Metal");
    TagLib::MPEG::File file(path.c_str());
    CHECK(file.ID3v2Tag()->genre() == "Heavy Metal");
    CHECK(file.tag()->genre() == "Heavy Metal");
}

TEST_CASE("ffprobe reads what was written, in every version of ID3v2")
{
    const Tag tags[] = {
        {"Title", "Artist", "Album", "Comment", 1987, 17},
        {cyrillic, chinese, note, cyrillic, 2004, 79},
        {Text(60, 't'), "R&B", "<b>bold</b>", "100 % \"quoted\" 'text'", 1, 0},
        {"caf\xC3\xA9", "a  b", "", "", 0, -1},
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
