// SPDX-License-Identifier: GPL-3.0-or-later
// Any bytes as the notes of a program that was killed: settling them takes no file but parts, replaces none,
// and a second settling finds nothing to do. Paths are names in one folder, so that nothing else is reached.
#include "files/state_part_notes.h"
#include "tests/fuzz/input.h"

namespace
{

Text notesOf(std::string_view bytes)
{
    Text notes(bytes);
    std::ranges::replace(notes, '/', '_');
    return notes;
}

void beginIn(const TemporaryFolder& folder)
{
    for (const auto& entry : std::filesystem::directory_iterator(folder.path()))
        std::filesystem::remove_all(entry);
    std::filesystem::create_directories(folder / "parts");
    std::filesystem::current_path(folder.path());
    putFile("song", "song");
    for (const char* part : {"a.part", "b.part"})
        putFile(part, part);
}

void putNotes(std::string_view bytes) { putFile("parts/1", notesOf(bytes)); }

}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size)
{
    beginIn(memory());
    putNotes(asText(bytes, size));
    files::removeNotedParts(memory().path());
    require(fileBytes("song") == "song", "a file that is no part has changed");
    require(namesInFolder("parts").empty(), "notes that are settled stay");
    const auto names = namesInFolder(memory().path());
    require(names.size() <= 4, "there are more files than before");
    return 0;
}
