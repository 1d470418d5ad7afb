// SPDX-License-Identifier: GPL-3.0-or-later
// The walk through a folder's entries, on the system's own.
#pragma once

#include "platform/directory_scan.h"

#include <map>
#include <memory>

namespace desktop
{

// For one thread. A link counts as what it leads to; one that leads nowhere is no entry.
// A walk waits two seconds at most for what it asks, so that no hung share holds the caller; what has not
// answered yet is not asked again.
class FolderScan final : public DirectoryScan
{
public:
    FolderScan();
    ~FolderScan() override;

    Handle FindFirstFile(const Text& pattern, FoundFile& found) override;
    bool FindNextFile(Handle scan, FoundFile& found) override;
    void FindClose(Handle scan) override;

private:
    class Walk;
    std::map<Handle, std::unique_ptr<Walk>> walks_;
    Handle last_ = 0;
};

}
