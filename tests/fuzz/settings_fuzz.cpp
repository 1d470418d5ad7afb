// SPDX-License-Identifier: GPL-3.0-or-later
// Any bytes as the settings' database and its log: what is saved is had at once, and the next start has it or
// what the file said before.
//
// An input is two bytes for the length of the database, then both files.
#include "desktop/sqlite_store.h"
#include "tests/fuzz/input.h"

namespace
{

Text settingIn(desktop::SqliteStore& store) { return store.GetSetting("Velmora", "Encoder", "Bitrate"); }

void putDatabase(const Text& path, std::string_view input)
{
    const auto length = static_cast<std::size_t>(static_cast<unsigned char>(input[0]) << 8 |
                                                 static_cast<unsigned char>(input[1]));
    putFile(path, input.substr(2, length));
    if (input.size() > length + 2)
        putFile(path + "-wal", input.substr(2 + length));
}

}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size)
{
    if (size < 2)
        return 0;
    for (const auto& entry : std::filesystem::directory_iterator(memory().path()))
        std::filesystem::remove_all(entry);
    const Text path = memory() / "settings.sqlite";
    putDatabase(path, asText(bytes, size));
    Text before;
    {
        desktop::SqliteStore store(path);
        before = settingIn(store);
        store.SaveSetting("Velmora", "Encoder", "Bitrate", "128000");
        require(settingIn(store) == "128000");
    }
    desktop::SqliteStore next(path);
    const Text after = settingIn(next);
    require(after == "128000" || after == before, "the next start has neither the one nor the other");
    return 0;
}
