// SPDX-License-Identifier: GPL-3.0-or-later
// The three lists that lead a user to files: drives, directories, files. Paths are the system's own bytes.
#pragma once

#include "platform/drives.h"
#include "toolkit/control.h"

#include <cstdint>
#include <vector>

class QComboBox;
class QListWidget;

namespace ctl
{

// The drives, looked for anew whenever the list drops down, and while it stands open. It starts on the drive
// of the program's defaults. A choice by hand of the drive that is named already is a Change, too: it leads
// back to the drive's root. One of a drive that has gone, or does not answer, changes nothing.
class DriveListBox final : public ControlOf<QComboBox>
{
public:
    DriveListBox(Container& container, const char* name, Place place, Drives& drives);

    Event<> Change; // a drive was chosen by the user, or another one from code

    const Text& Drive() const { return drive_; }
    void setDrive(const Text& drive); // fails with 68 for a drive that is not there

private:
    friend class DriveBox;

    void fill();
    void choose(const Text& drive);
    bool offers(const Text& drive) const;

    Drives& drives_;
    std::vector<::Drive> shown_;
    Text drive_;
};

// The directory that is current, those above it, and its subfolders. A double click or Enter goes to one.
// It starts on the user's home folder. Subfolders that take longer than 200 ms to read appear later.
class DirListBox final : public ControlOf<QListWidget>
{
public:
    DirListBox(Container& container, const char* name, Place place);

    Event<> Change; // another directory became current, by the user or from code

    const Text& Path() const { return path_; }
    void setPath(const Text& path); // fails with 76 for what is no directory, or does not answer

private:
    void fill();
    void show(const std::vector<Text>& subfolders);
    void goTo(int row);

    Text path_;
    std::vector<Text> rows_;
};

// The files of a directory whose names match a pattern without regard to case, sorted. Several can be
// selected. Files that take longer than 200 ms to read appear later.
class FileListBox final : public ControlOf<QListWidget>
{
public:
    FileListBox(Container& container, const char* name, Place place, const Text& pattern);

    const Text& Path() const { return path_; }
    void setPath(const Text& path); // reads the directory; fails with 76 as that of a directory list

    std::int32_t ListCount() const { return static_cast<std::int32_t>(files_.size()); }
    Text List(std::int32_t index) const; // "" outside the list

    bool Selected(std::int32_t index) const;             // false outside the list
    void setSelected(std::int32_t index, bool selected); // fails with 381 outside the list

private:
    void fill();
    void show(const std::vector<Text>& files);
    bool holds(std::int32_t index) const { return index >= 0 && index < ListCount(); }

    Text path_;
    Text pattern_;
    std::vector<Text> files_;
};

}
