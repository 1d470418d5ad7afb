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
constexpr int mostRedirections = 5;
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

using Transfer = std::unique_ptr<CURL, decltype(&curl_easy_cleanup)>;

void limit(const Transfer& transfer, long milliseconds)
{
    const auto set = [&](CURLoption option, auto value) { curl_easy_setopt(transfer.get(), option, value); };
    set(CURLOPT_USERAGENT, userAgent);
    set(CURLOPT_PROTOCOLS_STR, "http,https");
    set(CURLOPT_FAILONERROR, 1L);
    set(CURLOPT_TIMEOUT_MS, milliseconds);
    set(CURLOPT_NOSIGNAL, 1L);
    // A resolver that hangs is left alone with its thread, which ends by the resolver's own limit.
    set(CURLOPT_QUICK_EXIT, 1L);
}

Text part(const Text& url, CURLUPart which)
{
    const std::unique_ptr<CURLU, decltype(&curl_url_cleanup)> parts(curl_url(), curl_url_cleanup);
    char* text = nullptr;
    if (curl_url_set(parts.get(), CURLUPART_URL, url.c_str(), 0) == CURLUE_OK)
        curl_url_get(parts.get(), which, &text, 0);
    const std::unique_ptr<char, decltype(&curl_free)> owned(text, curl_free);
    return text ? text : "";
}

// A server may have its pages elsewhere on its own host, and as well guarded: whoever speaks in its name
// shall reach no other computer through this one.
bool mayLeadTo(const Text& url, const Text& next)
{
    const Text host = part(url, CURLUPART_HOST);
    const Text scheme = part(next, CURLUPART_SCHEME);
    return !host.empty() && equalWithoutCase(host, part(next, CURLUPART_HOST)) &&
           (scheme == "https" || scheme == part(url, CURLUPART_SCHEME));
}

struct WebPage {
    Text text;
    Text next; // the address that it sends to
};

std::optional<WebPage> pageAt(const Text& url, Deadline deadline)
{
    const long left = millisecondsUntil(deadline);
    const Transfer transfer(left > 0 && isReady() ? curl_easy_init() : nullptr, curl_easy_cleanup);
    if (!transfer)
        return std::nullopt;
    WebPage page;
    limit(transfer, left);
    curl_easy_setopt(transfer.get(), CURLOPT_URL, url.c_str());
    curl_easy_setopt(transfer.get(), CURLOPT_WRITEFUNCTION, &keep);
    curl_easy_setopt(transfer.get(), CURLOPT_WRITEDATA, &page.text);
    if (curl_easy_perform(transfer.get()) != CURLE_OK)
        return std::nullopt;
    const char* next = nullptr;
    curl_easy_getinfo(transfer.get(), CURLINFO_REDIRECT_URL, &next);
    page.next = next ? next : "";
    return page;
}

std::optional<Text> downloaded(const Text& url, Deadline deadline)
{
    Text address = url;
    for (int redirections = 0; redirections <= mostRedirections; ++redirections) {
        auto page = pageAt(address, deadline);
        if (!page)
            return std::nullopt;
        if (page->next.empty())
            return std::move(page->text);
        if (!mayLeadTo(address, page->next))
            return std::nullopt;
        address = page->next;
    }
    return std::nullopt;
}

constexpr Web web{withFields, downloaded};

}

}

VELMORA_MODULE(web, disc::web);
