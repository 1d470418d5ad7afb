// SPDX-License-Identifier: GPL-3.0-or-later
#include "engines/disc/download.h"
#include "platform/version.h"

#include <curl/curl.h>
#include <dlfcn.h>

#include <memory>

namespace disc
{

namespace
{

constexpr std::size_t mostBytes = 1024 * 1024;
constexpr long mostRedirections = 5;
constexpr const char* userAgent = "Velmora/" VELMORA_VERSION;

template <typename Function>
void find(void* library, Function*& function, const char* name)
{
    function = library ? reinterpret_cast<Function*>(dlsym(library, name)) : nullptr;
}

// The library, and the thirty that it brings, come when the first page is wanted: the program's start shall
// not pay for them.
struct Curl {
    Curl()
    {
        void* const library = dlopen("libcurl.so.4", RTLD_NOW | RTLD_LOCAL);
        decltype(curl_global_init)* start = nullptr;
        find(library, start, "curl_global_init");
        find(library, begin, "curl_easy_init");
        find(library, end, "curl_easy_cleanup");
        find(library, set, "curl_easy_setopt");
        find(library, perform, "curl_easy_perform");
        find(library, escape, "curl_easy_escape");
        find(library, release, "curl_free");
        isThere = start && begin && end && set && perform && escape && release &&
                  start(CURL_GLOBAL_DEFAULT) == CURLE_OK;
    }

    decltype(curl_easy_init)* begin = nullptr;
    decltype(curl_easy_cleanup)* end = nullptr;
    decltype(curl_easy_setopt)* set = nullptr;
    decltype(curl_easy_perform)* perform = nullptr;
    decltype(curl_easy_escape)* escape = nullptr;
    decltype(curl_free)* release = nullptr;
    bool isThere = false;
};

const Curl& curl()
{
    static const Curl library;
    return library;
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
    if (!curl().isThere)
        return {};
    const std::unique_ptr<char, decltype(curl_free)*> text(
        curl().escape(nullptr, value.data(), static_cast<int>(value.size())), curl().release);
    return text ? text.get() : "";
}

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
    if (limit <= 0 || !curl().isThere)
        return std::nullopt;
    const std::unique_ptr<CURL, decltype(curl_easy_cleanup)*> transfer(curl().begin(), curl().end);
    if (!transfer)
        return std::nullopt;
    Text page;
    const auto set = [&](CURLoption option, auto value) { curl().set(transfer.get(), option, value); };
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
    if (curl().perform(transfer.get()) != CURLE_OK)
        return std::nullopt;
    return page;
}

}
