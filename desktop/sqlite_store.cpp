// SPDX-License-Identifier: GPL-3.0-or-later
#include "desktop/sqlite_store.h"

#include "files/folders.h"

namespace desktop
{

namespace
{

// A try may cost the window thread fifty milliseconds when another process holds the file.
constexpr std::chrono::seconds betweenTries{1};

}

SqliteStore::Outcome SqliteStore::open()
{
    if (database_)
        return Outcome::done;
    if (Clock::now() < nextOpen_)
        return Outcome::refused;
    files::makeFolders(files::folderOf(path_));
    identity_ = files::identityOf(path_);
    auto opened = std::make_unique<SettingsDatabase>(path_);
    const Outcome outcome = opened->outcome();
    if (outcome == Outcome::done)
        database_ = std::move(opened);
    return outcome;
}

// Twice at most: the second time on the file that took a damaged one's place.
SqliteStore::Outcome SqliteStore::attempt(const Call& call)
{
    for (int tries = 0; tries < 2; ++tries) {
        Outcome outcome = open();
        if (outcome == Outcome::done)
            outcome = call(*database_);
        if (outcome != Outcome::damaged)
            return outcome;
        database_.reset();
        files::setAside(path_, identity_);
    }
    return Outcome::damaged;
}

// A file that cannot even be read is left alone for a while.
Text SqliteStore::stored(const SettingName& name)
{
    Text value;
    const Outcome outcome = attempt([&](SettingsDatabase& database) { return database.read(name, value); });
    if (outcome != Outcome::done)
        leaveAlone();
    return value;
}

void SqliteStore::leaveAlone()
{
    if (Clock::now() >= nextOpen_)
        nextOpen_ = Clock::now() + betweenTries;
    database_.reset();
}

Text SqliteStore::current(const SettingName& name)
{
    const auto kept = refused_.find(name);
    return kept != refused_.end() ? kept->second : stored(name);
}

bool SqliteStore::write(const SettingName& name, const Text& value)
{
    if (Clock::now() < nextWrite_)
        return false;
    const Outcome outcome = attempt([&](SettingsDatabase& database) { return database.write(name, value); });
    if (outcome != Outcome::done)
        nextWrite_ = Clock::now() + betweenTries;
    return outcome == Outcome::done;
}

void SqliteStore::writeRefused()
{
    while (!refused_.empty() && write(refused_.begin()->first, refused_.begin()->second))
        refused_.erase(refused_.begin());
}

Text SqliteStore::GetSetting(const Text& application, const Text& section, const Text& key)
{
    return current({application, section, key});
}

void SqliteStore::SaveSetting(const Text& application, const Text& section, const Text& key,
                              const Text& value)
{
    const SettingName name{application, section, key};
    writeRefused();
    if (current(name) == value)
        return;
    if (write(name, value))
        refused_.erase(name);
    else
        refused_[name] = value;
}

}
