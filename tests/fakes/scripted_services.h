// SPDX-License-Identifier: GPL-3.0-or-later
// Services whose answers a test writes down beforehand.
#pragma once

#include "fakes/call_log.h"
#include "platform/directory_scan.h"
#include "platform/drives.h"
#include "platform/failure.h"
#include "platform/key_value_store.h"
#include "platform/message_boxes.h"
#include "platform/numbers.h"
#include "platform/open_save_dialog.h"
#include "platform/paths.h"
#include "platform/popup_menu.h"
#include "platform/profile_file.h"
#include "platform/pump.h"
#include "platform/registry.h"
#include "platform/shell.h"
#include "platform/text_files.h"

#include <cstring>
#include <deque>
#include <functional>
#include <map>
#include <optional>
#include <stdexcept>

// A wait that no step of the script ends: what a test of an endless wait expects.
struct StillWaiting : std::runtime_error {
    StillWaiting() : std::runtime_error("the script of the pump has ended and the program still waits") {}
};

// The window thread stands still for good.
struct StandsStill : std::runtime_error {
    StandsStill() : std::runtime_error("the window thread stands still") {}
};

// Each turn runs the next step of the script.
class ScriptedPump final : public Pump
{
public:
    explicit ScriptedPump(CallLog& log) : log_(log) {}
    ~ScriptedPump() override;

    std::deque<std::function<void()>> steps;

    void turn() override
    {
        log_.add("Pump.turn");
        if (steps.empty())
            throw StillWaiting();
        const auto step = steps.front();
        steps.pop_front();
        if (step)
            step();
    }
    void standStill() override { throw StandsStill(); }

private:
    CallLog& log_;
};

class ScriptedMessageBoxes final : public MessageBoxes
{
public:
    ~ScriptedMessageBoxes() override;

    struct Box {
        Text text;
        Text title;
        Icon icon;
        Buttons buttons;
    };

    explicit ScriptedMessageBoxes(CallLog& log) : log_(log) {}

    std::vector<Box> shown;
    std::deque<Answer> answers; // when they run out, the box's first button
    std::function<void()> onShow;

    Answer show(const Text& text, const Text& title, Icon icon, Buttons buttons) override
    {
        log_.add("MessageBox." + title);
        shown.push_back({text, title, icon, buttons});
        if (onShow)
            onShow();
        if (answers.empty())
            return buttons == Buttons::yesNo ? Answer::yes : Answer::ok;
        const auto answer = answers.front();
        answers.pop_front();
        return answer;
    }

private:
    CallLog& log_;
};

class ScriptedDialog final : public OpenSaveDialog
{
public:
    ~ScriptedDialog() override;

    // What the user does in the next dialog: without a path he cancels.
    struct Choice {
        std::vector<Text> paths;
        std::int16_t filterIndex = 0;
    };

    ScriptedDialog(CallLog& log, Text name) : log_(log), name_(std::move(name)) {}

    std::deque<Choice> choices; // when they run out, he cancels
    std::function<void()> onShow;
    std::optional<int> prepareFails; // the failure of the next `setFlags`
    Text title, filter, initialName = "unset";
    std::int32_t flags = 0;
    std::int16_t filterIndex = 0;
    bool cancelError = true;
    std::vector<Text> paths;

    void setDialogTitle(const Text& v) override { say("DialogTitle = " + (title = v)); }
    void setCancelError(bool v) override
    {
        say((cancelError = v) ? "CancelError = True" : "CancelError = False");
    }
    void setFilter(const Text& v) override { say("Filter = " + (filter = v)); }
    void setInitialName(const Text& v) override { say("InitialName = " + (initialName = v)); }
    std::int16_t FilterIndex() const override { return filterIndex; }
    void setFilterIndex(std::int16_t v) override { filterIndex = v; }
    void setFlags(std::int32_t v) override
    {
        say("Flags = " + textOf(flags = v));
        if (prepareFails)
            throw Failure(Trouble(*prepareFails));
    }
    void ShowOpen() override { show("ShowOpen"); }
    void ShowSave() override { show("ShowSave"); }
    Text FileName() const override { return paths.empty() ? Text() : paths.front(); }
    Text FileTitle() const override { return Text(fileTitle(FileName())); }
    void GetFileList(Text& folder, std::vector<Text>& names, std::int32_t& count) const override
    {
        if (fileListFails)
            throw Failure(Trouble(*fileListFails));
        const Text& first = paths.front();
        folder = listFolder.value_or(first.substr(0, first.rfind(pathSeparator)));
        names.assign(1, "");
        for (const auto& path : paths)
            names.emplace_back(namesWithFolder ? path : Text(fileTitle(path)));
        count = static_cast<std::int32_t>(paths.size());
    }
    bool namesWithFolder = false;
    std::optional<Text> listFolder; // in place of the first path's own
    std::optional<int> fileListFails;

private:
    void say(const Text& call) const { log_.add(name_ + "." + call); }

    void show(const Text& how)
    {
        say(how);
        if (onShow)
            onShow();
        paths.clear();
        if (choices.empty() || choices.front().paths.empty()) {
            if (!choices.empty())
                choices.pop_front();
            if (cancelError)
                throw Failure(Trouble::cancelled);
            return;
        }
        paths = choices.front().paths;
        if (choices.front().filterIndex != 0)
            filterIndex = choices.front().filterIndex;
        choices.pop_front();
    }

    CallLog& log_;
    Text name_;
};

class ScriptedMenu final : public PopupMenu
{
public:
    ~ScriptedMenu() override;

    struct Item {
        Text caption;
        std::int32_t parent;
        Text key;
        Text helpText;
        std::int32_t itemData;
        std::int32_t iconIndex;
        bool checked;
        bool enabled;
    };

    ScriptedMenu(CallLog& log, Text name) : log_(log), name_(std::move(name)) {}

    std::vector<Item> items;

    void hWndOwner(Form&) override { say("hWndOwner"); }
    void Clear() override
    {
        say("Clear");
        items.clear();
    }
    std::int32_t AddItem(const Text& caption, const Text& helpText, std::int32_t itemData,
                         std::int32_t parent, std::int32_t iconIndex, bool checked, bool enabled,
                         const Text& key) override
    {
        items.push_back({caption, parent, key, helpText, itemData, iconIndex, checked, enabled});
        return static_cast<std::int32_t>(items.size());
    }
    void Store(const Text& tree) override { say("Store(" + tree + ")"); }
    void Restore(const Text& tree) override { say("Restore(" + tree + ")"); }
    std::int32_t ShowPopupMenu(std::int32_t x, std::int32_t y, std::int32_t left, std::int32_t top,
                               std::int32_t right, std::int32_t bottom, bool flag) override
    {
        Text call = "ShowPopupMenu(";
        for (const auto number : {x, y, left, top, right, bottom})
            call += textOf(number) + ", ";
        say(call + (flag ? "True)" : "False)"));
        return 0;
    }

    void choose(std::int32_t item) { Click.raise(item); }

private:
    void say(const Text& call) const { log_.add(name_ + "." + call); }

    CallLog& log_;
    Text name_;
};

class StoreInMemory final : public KeyValueStore
{
public:
    explicit StoreInMemory(CallLog& log) : log_(log) {}
    ~StoreInMemory() override;

    std::map<std::pair<Text, Text>, Text> values;
    std::vector<Text> reads; // "section/key"

    Text GetSetting(const Text&, const Text& section, const Text& key) override
    {
        reads.push_back(section + "/" + key);
        const auto value = values.find({section, key});
        return value == values.end() ? Text() : value->second;
    }
    void SaveSetting(const Text&, const Text& section, const Text& key, const Text& value) override
    {
        log_.add("Store." + section + "/" + key + " = " + value);
        values[{section, key}] = value;
    }

private:
    CallLog& log_;
};

class ProfileInMemory final : public ProfileFile
{
public:
    explicit ProfileInMemory(CallLog& log) : log_(log) {}
    ~ProfileInMemory() override;

    std::map<Text, Text> values; // "file|section|key"
    bool readOnly = false;

    std::size_t read(const Text& section, const Text& key, const Text& fallback, char* buffer,
                     std::size_t size, const Text& file) override
    {
        log_.add("Profile.read " + key);
        const auto value = values.find(file + "|" + section + "|" + key);
        Text text = value == values.end() ? fallback : value->second;
        text.resize(std::min(text.size(), size - 1));
        std::memcpy(buffer, text.c_str(), text.size() + 1);
        return text.size();
    }
    bool write(const Text& section, const Text& key, const Text& value, const Text& file) override
    {
        log_.add("Profile.write " + key + " = " + value);
        if (!readOnly)
            values[file + "|" + section + "|" + key] = value;
        return !readOnly;
    }

private:
    CallLog& log_;
};

class ScriptedScan final : public DirectoryScan
{
public:
    explicit ScriptedScan(CallLog& log) : log_(log) {}
    ~ScriptedScan() override;

    std::map<Text, std::vector<FoundFile>> folders; // by the pattern that finds them

    Handle FindFirstFile(const Text& pattern, FoundFile& found) override
    {
        log_.add("Scan.FindFirstFile(" + pattern + ")");
        const auto folder = folders.find(pattern);
        if (folder == folders.end() || folder->second.empty())
            return invalid;
        left_.assign(folder->second.begin(), folder->second.end());
        FindNextFile(1, found);
        return 1;
    }
    bool FindNextFile(Handle, FoundFile& found) override
    {
        if (left_.empty())
            return false;
        found = left_.front();
        left_.pop_front();
        return true;
    }
    void FindClose(Handle) override { log_.add("Scan.FindClose"); }

private:
    CallLog& log_;
    std::deque<FoundFile> left_;
};

class FilesInMemory final : public TextFiles
{
public:
    explicit FilesInMemory(CallLog& log) : log_(log) {}
    ~FilesInMemory() override;

    std::map<Text, Text> files;
    std::map<Text, int> failures;       // the failure of opening a path for output, or of reading it
    std::map<Text, int> outputFailures; // of opening for output alone
    std::optional<int> writeFails;
    std::function<void(std::string_view)> onWrite;
    bool measures = true; // false: the length of an unreadable file cannot be told either

    std::unique_ptr<TextOutput> openForOutput(const Text& path) override
    {
        log_.add("Files.open " + path);
        for (const auto* refused : {&failures, &outputFailures})
            if (const auto fails = refused->find(path); fails != refused->end())
                throw Failure(Trouble(fails->second));
        return std::make_unique<Output>(*this, path);
    }
    bool stillHolds(const Text& path, std::uint64_t revision) override
    {
        const auto held = revisions_.find(path);
        return held != revisions_.end() && held->second == std::pair(revision, files[path]);
    }
    void keepBackup(const Text& path, std::string_view bytes) override { files[path + ".bak"] = bytes; }
    std::int64_t length(const Text& path) override
    {
        if (!files.contains(path) || (failures.contains(path) && !measures))
            throw Failure(Trouble::fileNotFound);
        return static_cast<std::int64_t>(files[path].size());
    }
    Text readWhole(const Text& path) override
    {
        if (const auto fails = failures.find(path); fails != failures.end())
            throw Failure(Trouble(fails->second));
        if (!files.contains(path))
            throw Failure(Trouble::fileNotFound);
        return files[path];
    }

private:
    class Output final : public TextOutput
    {
    public:
        Output(FilesInMemory& files, Text path) : files_(files), path_(std::move(path)) {}
        void write(std::string_view bytes) override
        {
            if (files_.onWrite)
                files_.onWrite(bytes);
            if (files_.writeFails) {
                failed_ = true;
                throw Failure(Trouble(*files_.writeFails));
            }
            text_ += bytes;
        }
        void finish(std::uint64_t revision) override
        {
            if (failed_)
                throw Failure(Trouble::deviceInputOutput);
            files_.files[path_] = text_;
            files_.revisions_[path_] = {revision, text_};
        }

    private:
        FilesInMemory& files_;
        Text path_;
        Text text_;
        bool failed_ = false;
    };

    CallLog& log_;
    std::map<Text, std::pair<std::uint64_t, Text>> revisions_;
};

class ScriptedDrives final : public Drives
{
public:
    ~ScriptedDrives() override;

    std::vector<Drive> drives{{"/", "System"}, {"/home/user", "Home"}, {"/media/stick", "Stick"}};

    std::vector<Drive> all() override { return drives; }
};

class ScriptedRegistry final : public Registry
{
public:
    ~ScriptedRegistry() override;

    struct Value {
        std::uint32_t type;
        Text bytes;
    };
    std::map<Text, std::map<Text, Value>> keys;
    std::vector<Text> calls;

    std::int32_t RegOpenKeyEx(std::uint32_t root, const Text& name, std::uint32_t access, Key& key) override
    {
        calls.push_back("open " + std::to_string(root) + " " + name + " " + std::to_string(access));
        const auto found = keys.find(name);
        key = found == keys.end() ? 0 : 1 + std::distance(keys.begin(), found);
        return found == keys.end() ? 2 : 0;
    }
    std::int32_t RegQueryValueEx(Key key, const Text& valueName, std::uint32_t& type, Text& buffer,
                                 std::uint32_t& size) override
    {
        const auto& values = std::next(keys.begin(), key - 1)->second;
        const auto value = values.find(valueName);
        if (value == values.end())
            return 2;
        type = value->second.type;
        buffer.replace(0, value->second.bytes.size(), value->second.bytes);
        size = static_cast<std::uint32_t>(value->second.bytes.size());
        return 0;
    }
    std::int32_t RegCloseKey(Key key) override
    {
        calls.push_back("close " + std::to_string(key));
        return 0;
    }
};

class RecordingShell final : public Shell
{
public:
    ~RecordingShell() override;

    std::vector<Text> started;
    std::vector<Text> told;
    bool fails = false;

    void startProgram(const Text& path) override
    {
        if (fails)
            throw Failure(Trouble::fileNotFound);
        started.push_back(path);
    }
    void notify(const Text& title, const Text& message) override { told.push_back(title + ": " + message); }
};
