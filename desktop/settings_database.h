// SPDX-License-Identifier: GPL-3.0-or-later
// The settings table in its SQLite file. Every call says how it went; what to do then is the caller's.
#pragma once

#include "platform/text.h"

#include <memory>
#include <optional>
#include <tuple>

struct sqlite3;
struct sqlite3_stmt;

namespace desktop
{

struct SettingName {
    Text application;
    Text section;
    Text key;

    bool operator<(const SettingName& other) const
    {
        return std::tie(application, section, key) < std::tie(other.application, other.section, other.key);
    }
};

// For one thread.
class SettingsDatabase
{
public:
    enum class Outcome {
        done,
        refused, // for now: busy, full, read-only, forbidden
        damaged, // the file is no database, a damaged one, or one with another table
    };

    // Opens the file and makes its table; `outcome` says how that went.
    explicit SettingsDatabase(const Text& path);

    Outcome outcome() const { return outcome_; }

    Outcome read(const SettingName& name, Text& value); // "" for an absent one
    Outcome write(const SettingName& name, const Text& value);

    // Whether another connection may have written since this was asked last. Never false the first time.
    bool hasChanged();

    // How many pages the log held behind the last write: each write adds to it until it is cut off.
    int logPages() const { return logPages_; }

    // Empties the log, all of which is in the file and on the disk already. Never waits.
    void cutLog();

private:
    struct Close {
        void operator()(sqlite3* connection) const;
        void operator()(sqlite3_stmt* statement) const;
    };
    using Connection = std::unique_ptr<sqlite3, Close>;
    using Statement = std::unique_ptr<sqlite3_stmt, Close>;

    Outcome open(const Text& path);
    static int noteLog(void* database, sqlite3*, const char*, int pages);

    Connection connection_;
    Statement read_;
    Statement write_;
    Statement version_;
    std::optional<int> seenVersion_;
    int logPages_ = 0;
    Outcome outcome_;
};

}
