// SPDX-License-Identifier: GPL-3.0-or-later
#include "desktop/settings_database.h"

#include <sqlite3.h>

#include <chrono>
#include <utility>

namespace desktop
{

namespace
{

using Outcome = SettingsDatabase::Outcome;

// The window thread waits here when another copy of the program writes at the same moment.
constexpr int longestWaitMs = 50;

// A kill loses nothing that was written; only a power cut asks for a force, and no write of the window thread
// waits for one: see `SettingsForces`. Pages are small because each write adds one to a log of up to a
// thousand, which the next start reads. A write that finds all of a long log brought over begins it anew, and
// gives back what lies behind that megabyte.
constexpr const char* preparation = "PRAGMA synchronous = OFF;"
                                    "PRAGMA page_size = 1024;"
                                    "PRAGMA journal_mode = WAL;"
                                    "PRAGMA journal_size_limit = 1048576;"
                                    "CREATE TABLE IF NOT EXISTS settings ("
                                    " application TEXT, section TEXT, key TEXT, value TEXT,"
                                    " PRIMARY KEY (application, section, key)) WITHOUT ROWID;";

constexpr const char* reading =
    "SELECT value FROM settings WHERE application = ? AND section = ? AND key = ?";
constexpr const char* writing =
    "INSERT OR REPLACE INTO settings (application, section, key, value) VALUES (?, ?, ?, ?)";
constexpr const char* askingVersion = "PRAGMA data_version";

Outcome outcomeOf(int result)
{
    switch (result & 0xFF) {
    case SQLITE_OK:
    case SQLITE_ROW:
    case SQLITE_DONE:
        return Outcome::done;
    case SQLITE_NOTADB:
    case SQLITE_CORRUPT:
    case SQLITE_ERROR: // no such column: somebody else's table
        return Outcome::damaged;
    default:
        return Outcome::refused;
    }
}

// A view in the table's place could ask without end, and a trigger undo what is saved: a table is all that is
// wanted of the file.
void refuseQuestions(sqlite3* connection)
{
    for (const int kind : {SQLITE_DBCONFIG_ENABLE_VIEW, SQLITE_DBCONFIG_ENABLE_TRIGGER})
        sqlite3_db_config(connection, kind, 0, nullptr);
}

// Two processes that begin one file together get in each other's way, and SQLite does not wait then.
int prepare(sqlite3* connection)
{
    const auto limit = std::chrono::steady_clock::now() + std::chrono::milliseconds(longestWaitMs);
    int result = SQLITE_BUSY;
    while (result == SQLITE_BUSY && std::chrono::steady_clock::now() < limit) {
        result = sqlite3_exec(connection, preparation, nullptr, nullptr, nullptr);
        if (result == SQLITE_BUSY)
            sqlite3_sleep(1);
    }
    return result;
}

// The bytes are only borrowed: every statement runs and ends before its caller's names do.
void bind(sqlite3_stmt* statement, int index, const Text& text)
{
    sqlite3_bind_text(statement, index, text.data(), static_cast<int>(text.size()), SQLITE_STATIC);
}

void bind(sqlite3_stmt* statement, const SettingName& name)
{
    bind(statement, 1, name.application);
    bind(statement, 2, name.section);
    bind(statement, 3, name.key);
}

// As text: a database that somebody made may keep it in another encoding.
Text column(sqlite3_stmt* statement)
{
    const auto* bytes = reinterpret_cast<const char*>(sqlite3_column_text(statement, 0));
    return {bytes ? bytes : "", static_cast<std::size_t>(sqlite3_column_bytes(statement, 0))};
}

}

void SettingsDatabase::Close::operator()(sqlite3* connection) const { sqlite3_close(connection); }
void SettingsDatabase::Close::operator()(sqlite3_stmt* statement) const { sqlite3_finalize(statement); }

SettingsDatabase::SettingsDatabase(const Text& path) : outcome_(open(path)) {}

SettingsDatabase::Outcome SettingsDatabase::open(const Text& path)
{
    constexpr int flags = SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE | SQLITE_OPEN_NOMUTEX;
    sqlite3* connection = nullptr;
    int result = sqlite3_open_v2(path.c_str(), &connection, flags, nullptr);
    connection_.reset(connection);
    sqlite3_busy_timeout(connection, longestWaitMs);
    refuseQuestions(connection);
    if (result == SQLITE_OK)
        result = prepare(connection);
    sqlite3_wal_hook(connection, &noteLog, this);
    for (auto [text, statement] :
         {std::pair(reading, &read_), std::pair(writing, &write_), std::pair(askingVersion, &version_)}) {
        sqlite3_stmt* prepared = nullptr;
        if (result == SQLITE_OK)
            result = sqlite3_prepare_v2(connection, text, -1, &prepared, nullptr);
        statement->reset(prepared);
    }
    return outcomeOf(result);
}

// In the place of the library's own, which would bring the log over on this thread.
int SettingsDatabase::noteLog(void* database, sqlite3*, const char*, int pages)
{
    static_cast<SettingsDatabase*>(database)->logPages_ = pages;
    return SQLITE_OK;
}

SettingsDatabase::Outcome SettingsDatabase::read(const SettingName& name, Text& value)
{
    bind(read_.get(), name);
    const int result = sqlite3_step(read_.get());
    if (result == SQLITE_ROW)
        value = column(read_.get());
    sqlite3_reset(read_.get());
    return outcomeOf(result);
}

SettingsDatabase::Outcome SettingsDatabase::write(const SettingName& name, const Text& value)
{
    bind(write_.get(), name);
    bind(write_.get(), 4, value);
    const int result = sqlite3_step(write_.get());
    sqlite3_reset(write_.get());
    return outcomeOf(result);
}

bool SettingsDatabase::hasChanged()
{
    std::optional<int> version;
    if (sqlite3_step(version_.get()) == SQLITE_ROW)
        version = sqlite3_column_int(version_.get(), 0);
    sqlite3_reset(version_.get());
    return std::exchange(seenVersion_, version) != version || !version;
}

void SettingsDatabase::cutLog()
{
    sqlite3* connection = connection_.get();
    sqlite3_busy_timeout(connection, 0);
    sqlite3_wal_checkpoint_v2(connection, nullptr, SQLITE_CHECKPOINT_TRUNCATE, nullptr, nullptr);
    sqlite3_busy_timeout(connection, longestWaitMs);
}

}
