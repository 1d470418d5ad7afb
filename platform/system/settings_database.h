// The settings table in its SQLite file. Every call says how it went; what to do about it is the caller's
// business.
#pragma once

#include "platform/text.h"

#include <atomic>
#include <compare>
#include <memory>
#include <thread>

struct sqlite3;
struct sqlite3_stmt;

struct SettingName {
    Text application;
    Text section;
    Text key;

    auto operator<=>(const SettingName&) const = default;
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
    ~SettingsDatabase();

    Outcome outcome() const { return outcome_; }

    Outcome read(const SettingName& name, Text& value); // "" for an absent one
    Outcome write(const SettingName& name, const Text& value);

private:
    struct Close {
        void operator()(sqlite3* connection) const;
        void operator()(sqlite3_stmt* statement) const;
    };
    using Connection = std::unique_ptr<sqlite3, Close>;
    using Statement = std::unique_ptr<sqlite3_stmt, Close>;

    Outcome open();
    static Connection connected(const Text& path, int& result);
    static int committed(void* database, sqlite3*, const char*, int pages);
    void moveLog();

    Text path_;
    Connection connection_;
    Statement read_;
    Statement write_;
    std::thread mover_;
    std::atomic<bool> moving_ = false;
    Outcome outcome_;
};
