// SPDX-License-Identifier: GPL-3.0-or-later
#include "desktop/sqlite_store.h"

#include "files/folders.h"

namespace desktop
{

namespace
{

// A try may cost the window thread fifty milliseconds when another process holds the file.
constexpr std::chrono::seconds betweenTries{1};

// A megabyte: so much of it the next start reads in no time.
constexpr int longestLog = 1000;

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
SqliteStore::Outcome SqliteStore::attempt(const DatabaseCall& call)
{
    for (int tries = 0; tries < 2; ++tries) {
        Outcome outcome = open();
        if (outcome == Outcome::done)
            outcome = call(*database_);
        if (outcome != Outcome::damaged)
            return outcome;
        close();
        files::setAside(path_, identity_);
    }
    return Outcome::damaged;
}

void SqliteStore::close()
{
    database_.reset();
    known_.clear();
}

void SqliteStore::lookForOutsiders()
{
    if (trust_.holds())
        return;
    trust_.begin();
    if (!database_ || database_->hasChanged())
        known_.clear();
}

// A file that cannot even be read is left alone for a while.
Text SqliteStore::stored(const SettingName& name)
{
    lookForOutsiders();
    if (const auto known = known_.find(name); known != known_.end())
        return known->second;
    Text value;
    const Outcome outcome = attempt([&](SettingsDatabase& database) { return database.read(name, value); });
    if (outcome == Outcome::done)
        known_[name] = value;
    else
        leaveAlone();
    return value;
}

void SqliteStore::leaveAlone()
{
    if (Clock::now() >= nextOpen_)
        nextOpen_ = Clock::now() + betweenTries;
    close();
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
    cutLog();
    known_.erase(name);
    const Outcome outcome = attempt([&](SettingsDatabase& database) { return database.write(name, value); });
    if (outcome != Outcome::done) {
        nextWrite_ = Clock::now() + betweenTries;
        complaint_.failed(path_ + " takes nothing");
        return false;
    }
    complaint_.succeeded();
    known_[name] = value;
    ++writes_;
    forceLog();
    return true;
}

// Only what is on the disk whole may go. While somebody drags a window and the disk is slow, the log grows:
// its end is always newer than what was forced.
void SqliteStore::cutLog()
{
    if (database_ && forces_.hasEnded() && writes_ == forcedWrites_)
        database_->cutLog();
}

void SqliteStore::forceLog()
{
    if (!database_ || database_->logPages() < longestLog || forces_.isUnderWay())
        return;
    forcedWrites_ = writes_;
    forces_.begin();
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
