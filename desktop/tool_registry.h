// SPDX-License-Identifier: GPL-3.0-or-later
// A registry with one entry: where the desktop's information tool is.
#pragma once

#include "platform/registry.h"

namespace desktop
{

class ToolRegistry final : public Registry
{
public:
    // `searchPath` lists folders as PATH does. The tool is looked for when its key is opened.
    explicit ToolRegistry(Text searchPath) : searchPath_(std::move(searchPath)) {}

    std::int32_t RegOpenKeyEx(std::uint32_t root, const Text& name, std::uint32_t access, Key& key) override;
    std::int32_t RegQueryValueEx(Key key, const Text& valueName, std::uint32_t& type, Text& buffer,
                                 std::uint32_t& size) override;
    std::int32_t RegCloseKey(Key key) override;

private:
    Text searchPath_;
    Text tool_; // as the open key's value gives it
};

}
