// SPDX-License-Identifier: GPL-3.0-or-later
// The settings store in an SQLite file of its own. Several processes may use one file.
#pragma once

#include "desktop/settings_database.h"
#include "desktop/settings_forces.h"
#include "files/set_aside.h"
#include "files/trust.h"
#include "platform/complaint.h"
#include "platform/key_value_store.h"

#include <chrono>
#include <cstdint>
#include <functional>
#include <map>
#include <memory>

namespace desktop
{

// For one thread.
class SqliteStore final : public KeyValueStore
{
public:
    using Clock = std::chrono::steady_clock;

    // The file and its folder are made at the first use. A damaged file is set aside, its name with
    // ".damaged" behind it, and a new one begun. What the disk refuses is kept and offered again.
    // What another process saved is seen within a second.
    explicit SqliteStore(Text path, files::Trust::Now now = Clock::now) :
        path_(path), trust_(std::move(now)), forces_(std::move(path))
    {
    }

    Text GetSetting(const Text& application, const Text& section, const Text& key) override;
    void SaveSetting(const Text& application, const Text& section, const Text& key,
                     const Text& value) override;

private:
    using Outcome = SettingsDatabase::Outcome;
    using DatabaseCall = std::function<Outcome(SettingsDatabase&)>;

    Outcome open();
    Outcome attempt(const DatabaseCall& call);
    void close();
    void lookForOutsiders();
    Text stored(const SettingName& name);
    void leaveAlone();
    Text current(const SettingName& name);
    void cutLog();
    void forceLog();
    bool write(const SettingName& name, const Text& value);
    void writeRefused();

    Text path_;
    files::FileIdentity identity_;
    std::unique_ptr<SettingsDatabase> database_;
    files::Trust trust_;
    std::map<SettingName, Text> known_; // what the file held when it was last looked at, or was told since
    SettingsForces forces_;
    std::uint64_t writes_ = 0;
    std::uint64_t forcedWrites_ = 0;
    Complaint complaint_{"The settings cannot be kept for now"};
    std::map<SettingName, Text> refused_; // holds for this process until the disk takes it
    Clock::time_point nextOpen_{};
    Clock::time_point nextWrite_{};
};

}
