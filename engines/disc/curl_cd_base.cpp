// SPDX-License-Identifier: GPL-3.0-or-later
#include "engines/disc/curl_cd_base.h"

#include "engines/disc/cddb_answer.h"
#include "engines/disc/disc_id.h"
#include "engines/disc/title_cache.h"
#include "engines/disc/web.h"
#include "files/module.h"
#include "platform/failure.h"
#include "platform/mutex.h"
#include "platform/thread.h"
#include "platform/version.h"

#include <algorithm>
#include <atomic>
#include <system_error>

namespace disc
{

namespace
{

using std::chrono::milliseconds;
using std::chrono::steady_clock;

constexpr std::string_view protocolLevel = "6";
constexpr std::string_view client = "Velmora " VELMORA_VERSION;

// One word of a greeting, which blanks would make two.
Text word(std::string_view text, std::string_view otherwise)
{
    Text word(text.empty() ? otherwise : text);
    std::replace(word.begin(), word.end(), ' ', '_');
    return word;
}

// The words of "cddb hello": user, host, program, version.
Text greeting(std::string_view identity)
{
    const auto at = std::min(identity.rfind('@'), identity.size());
    const auto host = identity.substr(std::min(at + 1, identity.size()));
    return word(identity.substr(0, at), "anonymous") + ' ' +
           word(host, "localhost").append(" ").append(client);
}

// The service counts the tracks that there are, also where a disc begins with a later number.
DiscTitles placedOn(const DiscContents& disc, DiscTitles titles)
{
    for (std::size_t i = 0; i < disc.tracks.size() && i < titles.tracks.size(); ++i)
        if (disc.tracks[i].isMissing)
            titles.tracks.insert(titles.tracks.begin() + static_cast<std::ptrdiff_t>(i), Text());
    return titles;
}

// One lookup on its worker. The control waits for it as long as it may; whoever is last lets it go.
class TitleSearch
{
public:
    TitleSearch(const CddbAccess& access, const Text& identity, Deadline deadline, bool isServiceSilent) :
        disc_(access.disc), addresses_(access.addresses), cache_(access.cacheFolder, access.notes),
        silence_(access.silence), greeting_(greeting(identity)), deadline_(deadline),
        isServiceSilent_(isServiceSilent)
    {
    }

    void run()
    {
        const auto disc = disc_();
        if (disc.tracks.empty())
            return;
        const auto kept = cache_.answer(disc);
        const bool isKept = kept && taken(disc, *kept);
        const auto begin = steady_clock::now();
        const bool isHeard =
            askServers(disc, isKept && isServiceSilent_ ? std::min(deadline_, begin + silence_) : deadline_);
        isServiceSilent_ = !isHeard && (isServiceSilent_ || steady_clock::now() - begin >= silence_);
    }

    // The best that is known by now: kept ones until a server gives its word.
    DiscTitles titles() const
    {
        const Lock lock(mutex_);
        return titles_;
    }

    bool isServiceSilent() const { return isServiceSilent_; }

private:
    // A silent server takes no more than its share of the time from the next. Whether one gave its word.
    bool askServers(const DiscContents& disc, Deadline deadline)
    {
        auto left = static_cast<int>(addresses_.size());
        return std::ranges::any_of(addresses_, [&](const Text& address) {
            const auto now = steady_clock::now();
            return gaveItsWord(address, disc, now + (deadline - now) / left--);
        });
    }

    // Whether the server was heard to the end: that it does not know the disc is an answer too.
    bool gaveItsWord(const Text& address, const DiscContents& disc, Deadline deadline)
    {
        const auto page = ask(address, queryCommand(disc), deadline);
        const auto matches = page ? matchesIn(*page) : std::nullopt;
        if (!matches)
            return false;
        if (matches->empty())
            return take({});
        const CddbMatch& best = matches->front();
        const auto entry = ask(address, "cddb read " + best.category + ' ' + best.discId, deadline);
        if (!entry || !taken(disc, *entry))
            return false;
        cache_.keep(disc, *entry);
        return true;
    }

    bool taken(const DiscContents& disc, const Text& answer)
    {
        auto titles = titlesIn(answer);
        return titles && take(placedOn(disc, std::move(*titles)));
    }

    bool take(DiscTitles titles)
    {
        const Lock lock(mutex_);
        titles_ = std::move(titles);
        return true;
    }

    std::optional<Text> ask(const Text& address, const Text& command, Deadline deadline) const
    {
        const Web* const web = files::bound<Web>();
        if (web == nullptr)
            return std::nullopt;
        const Text url =
            web->withFields(address, {{"cmd", command}, {"hello", greeting_}, {"proto", protocolLevel}});
        return web->downloaded(url, deadline);
    }

    const std::function<DiscContents()> disc_;
    const std::vector<Text> addresses_;
    const TitleCache cache_;
    const milliseconds silence_;
    const Text greeting_;
    const Deadline deadline_;

    std::atomic<bool> isServiceSilent_;
    mutable Mutex mutex_;
    DiscTitles titles_ GUARDED_BY(mutex_);
};

class CurlCdBase final : public CdBase
{
public:
    explicit CurlCdBase(CddbAccess access) : access_(std::move(access)) {}

    void setContactIdentity(const Text& address) override { identity_ = address; }
    Text DefaultDevice() const override { return access_.firstDrive(); }
    void setDevice(const Text& device) override { device_ = device; }
    void setTimeLimit(std::int32_t limit) override { limit_ = milliseconds(limit); }

    void setCommand(const Text& word) override
    {
        if (!equalWithoutCase(word, "Open"))
            return;
        titles_ = {};
        if (device_.empty() || device_ != access_.firstDrive())
            throw Failure(Trouble::deviceUnavailable);
    }

    void Lookup() override
    {
        titles_ = {};
        const auto deadline = steady_clock::now() + limit_;
        if (!searching_.endsBy(deadline) || !begin(deadline))
            return;
        searching_.endsBy(deadline);
        titles_ = search_->titles();
    }

    Text DiscArtist() const override { return titles_.artist; }

    Text TrackTitle(std::int16_t track) const override
    {
        const auto index = static_cast<std::size_t>(track) - 1;
        return index < titles_.tracks.size() ? titles_.tracks[index] : "";
    }

private:
    bool begin(Deadline deadline)
    {
        try {
            const bool wasSilent = search_ && search_->isServiceSilent();
            search_ = nullptr;
            const auto search = std::make_shared<TitleSearch>(access_, identity_, deadline, wasSilent);
            searching_ = Thread([search] { search->run(); });
            search_ = search;
        } catch (const std::system_error&) { // no thread to be had
        }
        return search_ != nullptr;
    }

    const CddbAccess access_;
    Text identity_;
    Text device_;
    milliseconds limit_{0};
    DiscTitles titles_;
    std::shared_ptr<TitleSearch> search_;
    Thread searching_; // held up past its time it is waited for: another would only be held up behind it
};

}

std::unique_ptr<CdBase> makeCurlCdBase(CddbAccess access)
{
    return std::make_unique<CurlCdBase>(std::move(access));
}

}
