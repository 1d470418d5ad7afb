// SPDX-License-Identifier: GPL-3.0-or-later
// Pages from the web, within limits: a module that is bound when the first one is wanted.
#pragma once

#include "platform/text.h"

#include <chrono>
#include <initializer_list>
#include <optional>
#include <utility>

namespace disc
{

using Deadline = std::chrono::steady_clock::time_point;

struct Web {
    static constexpr const char* module = "web";

    // `address` with the fields behind it, each value escaped.
    Text (*withFields)(const Text& address,
                       std::initializer_list<std::pair<std::string_view, std::string_view>> fields);

    // The page's bytes. Nothing when it cannot be had whole before `deadline`, name resolution included, or
    // is larger than a page of text ever is. Redirections are followed on the same host, never from HTTPS to
    // plain HTTP. For worker threads: it waits.
    std::optional<Text> (*downloaded)(const Text& url, Deadline deadline);
};

}
