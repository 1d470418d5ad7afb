// SPDX-License-Identifier: GPL-3.0-or-later
#include "desktop/within_time.h"

#include <future>
#include <thread>

bool withinTime(std::chrono::milliseconds limit, std::function<bool()> question)
{
    std::packaged_task<bool()> task(std::move(question));
    auto answer = task.get_future();
    std::thread(std::move(task)).detach();
    return answer.wait_for(limit) == std::future_status::ready && answer.get();
}
