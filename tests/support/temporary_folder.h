// A folder of a test's own, removed with everything in it.
#pragma once

#include "platform/text.h"

#include <cstdlib>
#include <filesystem>

class TemporaryFolder
{
public:
    TemporaryFolder() { path_ = mkdtemp(path_.data()); }
    ~TemporaryFolder()
    {
        std::error_code ignored;
        std::filesystem::remove_all(path_, ignored);
    }
    TemporaryFolder(const TemporaryFolder&) = delete;
    TemporaryFolder& operator=(const TemporaryFolder&) = delete;

    const Text& path() const { return path_; }
    Text operator/(std::string_view name) const { return Text(path_).append("/").append(name); }

private:
    Text path_ = "/tmp/velmora-test-XXXXXX";
};
