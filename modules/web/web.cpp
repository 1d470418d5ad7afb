// SPDX-License-Identifier: GPL-3.0-or-later
#include "engines/disc/web.h"
#include "files/module_head.h"
#include "platform/version.h"

#include <curl/curl.h>
#include <memory>

namespace disc
{

namespace
{

constexpr std::size_t mostBytes = 1024 * 1024;
constexpr long mostRedirections = 5;
constexpr const char* userAgent = "Velmora/" VELMORA_VERSION;

// Begun with the first page, and never ended: a search that was left behind may still be at work.
bool isReady()
{
    static const bool isBegun = curl_global_init(CURL_GLOBAL_DEFAULT) == CURLE_OK;
    return isBegun;
}

std::size_t keep(const char* bytes, std::size_t, std::size_t count, void* page)
{
    auto& text = *static_cast<Text*>(page);
    if (text.size() + count > mostBytes)
        return 0;
    text.append(bytes, count);
    return count;
}

long millisecondsUntil(Deadline deadline)
{
    using namespace std::chrono;
    return static_cast<long>(duration_cast<milliseconds>(deadline - steady_clock::now()).count());
}

Text escaped(std::string_view value)
{
    const std::unique_ptr<char, decltype(&curl_free)> text(
        curl_easy_escape(nullptr, value.data(), static_cast<int>(value.size())), curl_free);
    return text ? text.get() : "";
}

Text withFields(const Text& address,
                std::initializer_list<std::pair<std::string_view, std::string_view>> fields)
{
    Text url = address;
    char separator = '?';
    for (const auto& [name, value] : fields) {
        url.append(1, separator).append(name).append("=").append(escaped(value));
        separator = '&';
    }
    return url;
}

std::optional<Text> downloaded(const Text& url, Deadline deadline)
{
    const long limit = millisecondsUntil(deadline);
    if (limit <= 0 || !isReady())
        return std::nullopt;
    const std::unique_ptr<CURL, decltype(&curl_easy_cleanup)> transfer(curl_easy_init(), curl_easy_cleanup);
    if (!transfer)
        return std::nullopt;
    Text page;
    const auto set = [&](CURLoption option, auto value) { curl_easy_setopt(transfer.get(), option, value); };
    set(CURLOPT_URL, url.c_str());
    set(CURLOPT_USERAGENT, userAgent);
    set(CURLOPT_PROTOCOLS_STR, "http,https");
    set(CURLOPT_FOLLOWLOCATION, 1L);
    set(CURLOPT_MAXREDIRS, mostRedirections);
    set(CURLOPT_FAILONERROR, 1L);
    set(CURLOPT_TIMEOUT_MS, limit);
    set(CURLOPT_NOSIGNAL, 1L);
    // A resolver that hangs is left alone with its thread, which ends by the resolver's own limit.
    set(CURLOPT_QUICK_EXIT, 1L);
    set(CURLOPT_WRITEFUNCTION, &keep);
    set(CURLOPT_WRITEDATA, &page);
    if (curl_easy_perform(transfer.get()) != CURLE_OK)
        return std::nullopt;
    return page;
}

constexpr Web web{withFields, downloaded};

}

}

VELMORA_MODULE(web, disc::web);
