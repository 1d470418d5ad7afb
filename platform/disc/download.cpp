#include "platform/disc/download.h"

#include <curl/curl.h>

#include <memory>
#include <mutex>

namespace
{

constexpr std::size_t mostBytes = 1024 * 1024;
constexpr long mostRedirections = 5;
constexpr const char* userAgent = "Velmora/" VELMORA_VERSION;

void startCurl()
{
    static std::once_flag once;
    std::call_once(once, [] { curl_global_init(CURL_GLOBAL_DEFAULT); });
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
    const std::unique_ptr<char, void (*)(void*)> text(
        curl_easy_escape(nullptr, value.data(), static_cast<int>(value.size())), curl_free);
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
    startCurl();
    const std::unique_ptr<CURL, void (*)(CURL*)> transfer(curl_easy_init(), curl_easy_cleanup);
    const long limit = millisecondsUntil(deadline);
    if (!transfer || limit <= 0)
        return std::nullopt;
    Text page;
    CURL* const curl = transfer.get();
    curl_easy_setopt(curl, CURLOPT_URL, url.c_str());
    curl_easy_setopt(curl, CURLOPT_USERAGENT, userAgent);
    curl_easy_setopt(curl, CURLOPT_PROTOCOLS_STR, "http,https");
    curl_easy_setopt(curl, CURLOPT_FOLLOWLOCATION, 1L);
    curl_easy_setopt(curl, CURLOPT_MAXREDIRS, mostRedirections);
    curl_easy_setopt(curl, CURLOPT_FAILONERROR, 1L);
    curl_easy_setopt(curl, CURLOPT_TIMEOUT_MS, limit);
    curl_easy_setopt(curl, CURLOPT_NOSIGNAL, 1L);
    // A resolver that hangs is left alone with its thread, which ends by the resolver's own limit.
    curl_easy_setopt(curl, CURLOPT_QUICK_EXIT, 1L);
    curl_easy_setopt(curl, CURLOPT_WRITEFUNCTION, &keep);
    curl_easy_setopt(curl, CURLOPT_WRITEDATA, &page);
    if (curl_easy_perform(curl) != CURLE_OK)
        return std::nullopt;
    return page;
}
