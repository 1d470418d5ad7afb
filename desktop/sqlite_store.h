// SPDX-License-Identifier: GPL-3.0-or-later
// The settings store in an SQLite file of its own. Several processes may use one file.
#pragma once

#include "desktop/settings_database.h"
#include "files/set_aside.h"
#include "platform/key_value_store.h"

#include <chrono>
#include <functional>
#include <map>
#include <memory>

namespace desktop
{

// For one thread.
class SqliteStore final : public KeyValueStore
{
public:
    // The file and its folder are made at the first use. A damaged file is set aside, its name with
    // ".damaged" behind it, and a new one begun. What the disk refuses is kept and offered again.
    explicit SqliteStore(Text path) : path_(std::move(path)) {}

    Text GetSetting(const Text& application, const Text& section, const Text& key) override;
    void SaveSetting(const Text& application, const Text& section, const Text& key,
                     const Text& value) override;

private:
    using Clock = std::chrono::steady_clock;
    using Outcome = SettingsDatabase::Outcome;
    using Call = std::function<Outcome(SettingsDatabase&)>;

    Outcome open();
    Outcome attempt(const Call& call);
    Text stored(const SettingName& name);
    void leaveAlone();
    Text current(const SettingName& name);
    bool write(const SettingName& name, const Text& value);
    void writeRefused();

    Text path_;
    files::FileIdentity identity_;
    std::unique_ptr<SettingsDatabase> database_;
    std::map<SettingName, Text> refused_; // holds for this process until the disk takes it
    Clock::time_point nextOpen_{};
    Clock::time_point nextWrite_{};
};

}
