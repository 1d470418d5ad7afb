// SPDX-License-Identifier: GPL-3.0-or-later
#include "engines/disc/curl_cd_base.h"

#include "engines/disc/disc_id.h"
#include "tests/support/failures.h"
#include "tests/support/files.h"
#include "tests/support/loopback_server.h"
#include "tests/support/temporary_folder.h"
#include "tests/support/timing.h"

#include <doctest/doctest.h>

#include <dlfcn.h>
#include <netdb.h>

#include <algorithm>
#include <chrono>
#include <condition_variable>
#include <limits>

namespace
{

using std::chrono::milliseconds;
using std::chrono::steady_clock;

constexpr const char* nameWithoutAnswer = "no-answer.invalid";

// A gate that a test holds shut: whoever comes to it waits.
class Gate
{
public:
    void open()
    {
        const std::lock_guard lock(mutex_);
        isOpen_ = true;
        changed_.notify_all();
    }
    void pass()
    {
        std::unique_lock lock(mutex_);
        ++waiting_;
        changed_.notify_all();
        changed_.wait(lock, [this] { return isOpen_; });
        --waiting_;
        changed_.notify_all();
    }
    int waiting() const
    {
        const std::lock_guard lock(mutex_);
        return waiting_;
    }
    void waitUntilEmpty()
    {
        std::unique_lock lock(mutex_);
        changed_.wait(lock, [this] { return waiting_ == 0; });
    }

private:
    mutable std::mutex mutex_;
    std::condition_variable changed_;
    bool isOpen_ = false;
    int waiting_ = 0;
};

Gate* resolverGate = nullptr;

const disc::DiscContents theDisc{{{true, 0, 28465}, {true, 28465, 22412}, {true, 50877, 24808}}, 75685};
const Text id = disc::discId(theDisc);
constexpr const char* exact = "200 rock 920ef00b Some Band / Some Disc\r\n";
constexpr const char* entry = "210 rock 920ef00b CD database entry follows (until terminating `.')\r\n"
                              "# xmcd\r\nDISCID=920ef00b\r\nDTITLE=Some Band / Some Disc\r\n"
                              "TTITLE0=First\r\nTTITLE1=Sec\r\nTTITLE1=ond\r\n.\r\n";

// Answers every query and every read with the same two pages.
LoopbackServer::Manner pages(Text query, Text read)
{
    return [query, read](const Text& target, const LoopbackServer::Client& client) {
        client.sendPage(fieldOf(target, "cmd").starts_with("cddb query") ? query : read);
    };
}

LoopbackServer::Manner silent()
{
    return [](const Text&, const LoopbackServer::Client& client) { client.isGone(-1); };
}

// The control on servers of the test's own. A search that was left behind still asks for the disc.
struct Titles {
    TemporaryFolder folder;
    const std::shared_ptr<disc::DiscContents> inserted = std::make_shared<disc::DiscContents>(theDisc);
    Text drive = "Drive (/dev/sr0)";
    std::unique_ptr<CdBase> control;

    explicit Titles(std::vector<Text> addresses, milliseconds silence = milliseconds(3000))
    {
        control = disc::makeCurlCdBase({.addresses = std::move(addresses),
                                        .cacheFolder = folder / "cache/cddb",
                                        .silence = silence,
                                        .firstDrive = [this] { return drive; },
                                        .disc = [contents = inserted] { return *contents; }});
        control->setContactIdentity("ann@host.test");
    }

    CdBase& lookedUp(int limit = 20000)
    {
        control->setDevice(control->DefaultDevice());
        control->setTimeLimit(limit);
        control->setCommand("Open");
        control->Lookup();
        return *control;
    }
};

// A service that can change its ways between two lookups.
struct ServiceOfMoods {
    enum Mood { answers, forgets, hangsUp, isSilent };
    std::atomic<Mood> mood = answers;
    LoopbackServer server{[this](const Text& target, const LoopbackServer::Client& client) {
        if (mood == forgets)
            client.sendPage("202 No match\r\n");
        if (mood == isSilent)
            client.isGone(-1);
        if (mood == answers)
            client.sendPage(fieldOf(target, "cmd").starts_with("cddb query") ? exact : entry);
    }};
};

milliseconds timeOf(const std::function<void()>& step)
{
    const auto begin = steady_clock::now();
    step();
    return std::chrono::duration_cast<milliseconds>(steady_clock::now() - begin);
}

// An address on which nothing listens.
Text refusedAddress(const Text& scheme)
{
    return LoopbackServer([](const Text&, const LoopbackServer::Client&) {}).address(scheme);
}

}

// The name resolution of everything in this process: one name's answer waits for a test.
extern "C" int getaddrinfo(const char* name, const char* service, const addrinfo* hints, addrinfo** result)
{
    if (name && Text(name) == nameWithoutAnswer) {
        resolverGate->pass();
        return EAI_AGAIN;
    }
    static const auto next = reinterpret_cast<decltype(&getaddrinfo)>(dlsym(RTLD_NEXT, "getaddrinfo"));
    return next(name, service, hints, result);
}

TEST_CASE("A lookup fetches the disc's titles")
{
    LoopbackServer server(pages(exact, entry));
    Titles titles({server.address()});
    const CdBase& found = titles.lookedUp();
    CHECK(found.DiscArtist() == "Some Band");
    CHECK(found.TrackTitle(1) == "First");
    CHECK(found.TrackTitle(2) == "Second");
    CHECK(found.TrackTitle(3) == "");
    CHECK(found.TrackTitle(0) == "");
    CHECK(found.TrackTitle(-1) == "");
    CHECK(found.TrackTitle(32767) == "");
}

TEST_CASE("The server is told the disc, the user, the program and the protocol level")
{
    LoopbackServer server(pages(exact, entry));
    Titles titles({server.address()});
    titles.lookedUp();
    const auto requests = server.requests();
    REQUIRE(requests.size() == 2);
    CHECK(fieldOf(requests[0], "cmd") == disc::queryCommand(theDisc));
    CHECK(fieldOf(requests[1], "cmd") == "cddb read rock 920ef00b");
    for (const Text& request : requests) {
        CHECK(request.starts_with("/~cddb/cddb.cgi?"));
        CHECK(fieldOf(request, "hello") == "ann host.test Velmora 2.0.3");
        CHECK(fieldOf(request, "proto") == "6");
    }
}

TEST_CASE("The greeting keeps its four words whatever the identity")
{
    struct Case {
        const char* identity;
        const char* hello;
    };
    const Case cases[] = {
        {"ann", "ann localhost Velmora 2.0.3"},
        {"ann@", "ann localhost Velmora 2.0.3"},
        {"@host", "anonymous host Velmora 2.0.3"},
        {"", "anonymous localhost Velmora 2.0.3"},
        {"ann lee@my host", "ann_lee my_host Velmora 2.0.3"},
        {"a&proto=1@b#c", "a&proto=1 b#c Velmora 2.0.3"},
    };
    LoopbackServer server(pages("202 No match\r\n", ""));
    Titles titles({server.address()});
    for (const auto& c : cases) {
        CAPTURE(c.identity);
        titles.control->setContactIdentity(c.identity);
        titles.lookedUp();
        CHECK(fieldOf(server.requests().back(), "hello") == c.hello);
    }
}

TEST_CASE("The identity tells nobody's login and no computer's name")
{
    LoopbackServer server(pages(exact, entry));
    Titles titles({server.address()});
    titles.control->setContactIdentity(Text(disc::nobody));
    titles.lookedUp();
    REQUIRE(server.requests().size() == 2);
    for (const Text& request : server.requests())
        CHECK(fieldOf(request, "hello") == "anonymous localhost Velmora 2.0.3");
}

TEST_CASE("Nobody is asked over plain HTTP whose address does not say so")
{
    for (const Text& address : disc::CddbAccess().addresses)
        CHECK(address.starts_with("https://"));
}

TEST_CASE("Of several matches the first is read")
{
    for (const char* code : {"210", "211"}) {
        CAPTURE(code);
        LoopbackServer server(pages(
            Text(code) + " list follows\r\nmisc 920ef00c A / B\r\nrock 920ef00b C / D\r\n.\r\n", entry));
        Titles titles({server.address()});
        CHECK(titles.lookedUp().TrackTitle(1) == "First");
        CHECK(fieldOf(server.requests().at(1), "cmd") == "cddb read misc 920ef00c");
    }
}

TEST_CASE("Titles that are not UTF-8 are Latin-1")
{
    LoopbackServer server(
        pages(exact, "210 rock x\r\nDTITLE=Bj\xF6rk / Caf\xE9\r\nTTITLE0=J\xC3\xB3ga\r\n.\r\n"));
    Titles titles({server.address()});
    CHECK(titles.lookedUp().DiscArtist() == "Bj\xC3\xB6rk");
    CHECK(titles.control->TrackTitle(1) == "J\xC3\xB3ga");
}

TEST_CASE("On a disc of various artists a track's title stays whole")
{
    LoopbackServer server(
        pages(exact, "210 misc x\r\nDTITLE=Various / Hits / Two\r\nTTITLE0=X / Y\r\n.\r\n"));
    Titles titles({server.address()});
    CHECK(titles.lookedUp().DiscArtist() == "Various");
    CHECK(titles.control->TrackTitle(1) == "X / Y");
}

TEST_CASE("Every lookup asks, and what the service says now is what counts")
{
    std::atomic<const char*> title = "First";
    LoopbackServer server([&](const Text& target, const LoopbackServer::Client& client) {
        const bool isQuery = fieldOf(target, "cmd").starts_with("cddb query");
        client.sendPage(isQuery
                            ? Text(exact)
                            : Text("210 rock x\r\nDTITLE=A / B\r\nTTITLE0=") + title.load() + "\r\n.\r\n");
    });
    Titles titles({server.address()});
    CHECK(titles.lookedUp().TrackTitle(1) == "First");
    title = "Corrected";
    CHECK(titles.lookedUp().TrackTitle(1) == "Corrected");
    CHECK(server.requests().size() == 4);
    CHECK(namesInFolder(titles.folder / "cache/cddb") == std::set<Text>{id});
}

TEST_CASE("A disc that the service has forgotten has no titles")
{
    ServiceOfMoods service;
    Titles titles({service.server.address()});
    titles.lookedUp();
    service.mood = ServiceOfMoods::forgets;
    CHECK(titles.lookedUp().TrackTitle(1) == "");
}

TEST_CASE("Where the service gives no answer the last one serves")
{
    ServiceOfMoods service;
    Titles titles({service.server.address()});
    titles.lookedUp();
    service.mood = ServiceOfMoods::hangsUp;

    SUBCASE("at the next opening")
    {
        CHECK(titles.lookedUp().TrackTitle(2) == "Second");
        CHECK(titles.control->DiscArtist() == "Some Band");
        CHECK(service.server.requests().size() == 3);
    }
    SUBCASE("in the next run of the program")
    {
        Titles next({service.server.address()});
        std::filesystem::create_directories(next.folder / "cache");
        std::filesystem::copy(titles.folder / "cache", next.folder / "cache",
                              std::filesystem::copy_options::recursive);
        CHECK(next.lookedUp().TrackTitle(2) == "Second");
    }
    SUBCASE("but not for another disc with the same id")
    {
        titles.inserted->tracks[1].start += 1;
        REQUIRE(disc::discId(*titles.inserted) == disc::discId(theDisc));
        CHECK(titles.lookedUp().TrackTitle(2) == "");
    }
    SUBCASE("but not when it is cut short")
    {
        const Text path = titles.folder / "cache/cddb/" + id;
        putFile(path, fileBytes(path).substr(0, fileBytes(path).size() - 4));
        CHECK(titles.lookedUp().TrackTitle(2) == "");
    }
}

TEST_CASE("A service that stays silent is waited for once, and asked all the same")
{
    ServiceOfMoods service;
    Titles titles({service.server.address()}, milliseconds(500));
    titles.lookedUp();
    service.mood = ServiceOfMoods::isSilent;
    CHECK(timeOf([&] { CHECK(titles.lookedUp(4000).TrackTitle(2) == "Second"); }) >= milliseconds(3900));
    for (int opening = 0; opening < 2; ++opening)
        CHECK(timeOf([&] { CHECK(titles.lookedUp(4000).TrackTitle(2) == "Second"); }) < milliseconds(3000));
    CHECK(service.server.requests().size() == 5);

    SUBCASE("a disc without a kept answer is waited for as before")
    {
        titles.inserted->leadOut += 75;
        CHECK(timeOf([&] { CHECK(titles.lookedUp(1000).TrackTitle(1) == ""); }) >= milliseconds(900));
    }
    SUBCASE("when it speaks again it counts again")
    {
        service.mood = ServiceOfMoods::forgets;
        for (int tries = 0; tries < 20 && titles.lookedUp(20000).TrackTitle(2) != ""; ++tries)
            continue; // it was too slow for half a second
        CHECK(titles.control->TrackTitle(2) == "");
        service.mood = ServiceOfMoods::isSilent;
        CHECK(timeOf([&] { titles.lookedUp(1000); }) >= milliseconds(900));
    }
}

TEST_CASE("On a disc that begins with track 4 the first title is that of track 4")
{
    LoopbackServer server(pages(exact, entry));
    Titles titles({server.address()});
    titles.inserted->tracks.insert(titles.inserted->tracks.begin(), 3, {false, 0, 0, true});
    const CdBase& found = titles.lookedUp();
    CHECK(found.TrackTitle(1) == "");
    CHECK(found.TrackTitle(3) == "");
    CHECK(found.TrackTitle(4) == "First");
    CHECK(found.TrackTitle(5) == "Second");
    CHECK(fieldOf(server.requests().at(0), "cmd") == disc::queryCommand(theDisc));
}

TEST_CASE("A disc that is not known is asked for at every opening, and of one server")
{
    LoopbackServer server(pages("202 No match\r\n", ""));
    LoopbackServer second(pages(exact, entry));
    Titles titles({server.address(), second.address()});
    CHECK(titles.lookedUp().DiscArtist() == "");
    CHECK(titles.lookedUp().TrackTitle(1) == "");
    CHECK(server.requests().size() == 2);
    CHECK(second.requests().empty());
}

TEST_CASE("A cache that cannot be written costs nothing but another request")
{
    LoopbackServer server(pages(exact, entry));
    Titles titles({server.address()});
    putFile(titles.folder / "cache", "a file stands where the folder would");
    CHECK(titles.lookedUp().TrackTitle(1) == "First");
    CHECK(titles.lookedUp().TrackTitle(1) == "First");
    CHECK(server.requests().size() == 4);
}

TEST_CASE("Where the first address gives no answer the second is asked")
{
    LoopbackServer good(pages(exact, entry));
    struct Case {
        const char* what;
        LoopbackServer::Manner first;
        const char* scheme;
    };
    const Case cases[] = {
        {"no handshake of HTTPS", pages(exact, entry), "https"},
        {"half an entry", pages(exact, Text(entry).substr(0, 120)), "http"},
        {"garbage", pages("\x16\x03\x01 garbage", "\xFF\xFE"), "http"},
        {"a sign-in page", pages("<html>Sign in</html>", ""), "http"},
        {"an empty page", pages("", ""), "http"},
        {"a server error",
         [](const Text&, const LoopbackServer::Client& client) { client.sendPage(exact, "503 Unavailable"); },
         "http"},
        {"a length that is not kept",
         [](const Text&, const LoopbackServer::Client& client) {
             client.send(Text("HTTP/1.1 200 OK\r\nContent-Length: 500\r\n\r\n") + exact);
         },
         "http"},
        {"no word of HTTP", [](const Text&, const LoopbackServer::Client& client) { client.send("hello?"); },
         "http"},
        {"hanging up at once", [](const Text&, const LoopbackServer::Client&) {}, "http"},
        {"going round in circles",
         [](const Text&, const LoopbackServer::Client& client) { client.sendRedirection("/~cddb/cddb.cgi"); },
         "http"},
        {"sending elsewhere than the web",
         [](const Text&, const LoopbackServer::Client& client) {
             client.sendRedirection("file:///etc/passwd");
         },
         "http"},
    };
    for (const auto& c : cases) {
        CAPTURE(c.what);
        LoopbackServer first(c.first);
        Titles titles({first.address(c.scheme), good.address()});
        CHECK(titles.lookedUp().TrackTitle(1) == "First");
        Titles alone({first.address(c.scheme)});
        CHECK(alone.lookedUp().TrackTitle(1) == "");
        CHECK_FALSE(std::filesystem::exists(alone.folder / "cache/cddb/" + id));
    }
    Titles refused({refusedAddress("https"), good.address()});
    CHECK(refused.lookedUp().TrackTitle(1) == "First");
}

TEST_CASE("Redirections are followed")
{
    LoopbackServer good(pages(exact, entry));
    LoopbackServer moved([&](const Text& target, const LoopbackServer::Client& client) {
        client.sendRedirection(good.address() + target.substr(target.find('?')));
    });
    Titles titles({moved.address()});
    CHECK(titles.lookedUp().TrackTitle(1) == "First");
    CHECK(good.requests().size() == 2);
}

TEST_CASE("A server reaches no other computer through this one")
{
    LoopbackServer other(pages(exact, entry));
    const Text elsewhere = Text(other.address()).replace(7, 9, "127.0.0.2");
    for (const Text& address : {elsewhere, Text(other.address()).replace(7, 9, "localhost"),
                                Text(elsewhere).insert(7, "127.0.0.1@"), Text("ftp://127.0.0.1/"),
                                Text("gopher://127.0.0.1:70/"), Text("file://127.0.0.1/etc/passwd")}) {
        CAPTURE(address);
        LoopbackServer server([&](const Text& target, const LoopbackServer::Client& client) {
            client.sendRedirection(address + target.substr(target.find('?')));
        });
        Titles titles({server.address()});
        CHECK(titles.lookedUp().TrackTitle(1) == "");
        CHECK(server.requests().size() == 1);
    }
    CHECK(other.requests().empty());
}

TEST_CASE("A head that never ends is not read to its end, either")
{
    std::atomic<std::size_t> sent = 0;
    LoopbackServer server([&](const Text&, const LoopbackServer::Client& client) {
        client.send("HTTP/1.1 200 OK\r\n");
        const Text piece = "X-More: " + Text(10000, 'x') + "\r\n";
        while (sent < 30'000'000 && client.send(piece))
            sent += piece.size();
    });
    Titles titles({server.address()});
    CHECK(titles.lookedUp(3000).TrackTitle(1) == "");
    CHECK(sent < 9'000'000);
}

TEST_CASE("An answer of ten million bytes is not read to its end")
{
    std::atomic<std::size_t> sent = 0;
    LoopbackServer server([&](const Text&, const LoopbackServer::Client& client) {
        client.send("HTTP/1.1 200 OK\r\n\r\n");
        const Text piece(10000, 'x');
        while (sent < 10'000'000 && client.send(piece))
            sent += piece.size();
    });
    Titles titles({server.address()});
    CHECK(titles.lookedUp().TrackTitle(1) == "");
    CHECK(sent < 9'000'000);
}

namespace
{

constexpr int limit = 600;

// Whether a lookup of that limit takes hardly longer, and leaves what it has to: `lookUp` makes its servers,
// and says that. A busy machine may hold up a single one, but not every one.
bool endsInTime(int timeLimit, const std::function<bool()>& lookUp)
{
    const double bearable = timeLimit + 200;
    const double best = atBest(bearable, [&] {
        bool isRight = false;
        const auto took = timeOf([&] { isRight = lookUp(); });
        return isRight ? static_cast<double>(took.count()) : std::numeric_limits<double>::infinity();
    });
    return best < bearable;
}

// Whether it finds nothing, and each of the servers is asked that often.
bool findsNothing(const std::vector<const LoopbackServer*>& servers, std::size_t requests,
                  int timeLimit = limit)
{
    std::vector<Text> addresses;
    for (const auto* server : servers)
        addresses.push_back(server->address());
    Titles titles(addresses);
    titles.lookedUp(timeLimit);
    CHECK(titles.control->DiscArtist() == "");
    CHECK(titles.control->TrackTitle(1) == "");
    return std::ranges::all_of(servers,
                               [&](const auto* server) { return server->requests().size() == requests; });
}

}

TEST_CASE("A lookup ends within its time limit whatever holds it up")
{
    SUBCASE("a server that says nothing")
    {
        CHECK(endsInTime(limit, [] {
            const LoopbackServer server(silent());
            return findsNothing({&server}, 1);
        }));
    }
    SUBCASE("two servers that say nothing")
    {
        CHECK(endsInTime(limit, [] {
            const LoopbackServer first(silent()), second(silent());
            return findsNothing({&first, &second}, 1);
        }));
    }
    SUBCASE("a slow server that knows the disc and then says nothing")
    {
        CHECK(endsInTime(3 * limit, [] {
            const LoopbackServer server([](const Text& target, const LoopbackServer::Client& client) {
                const bool isQuery = fieldOf(target, "cmd").starts_with("cddb query");
                if (!client.isGone(isQuery ? 2 * limit : -1))
                    client.sendPage(exact);
            });
            return findsNothing({&server}, 2, 3 * limit);
        }));
    }
    SUBCASE("a server that drips")
    {
        CHECK(endsInTime(limit, [] {
            const LoopbackServer server([](const Text&, const LoopbackServer::Client& client) {
                client.send("HTTP/1.1 200 OK\r\n\r\n");
                while (client.send("x"))
                    client.isGone(10);
            });
            return findsNothing({&server}, 1);
        }));
    }
    SUBCASE("a server that gives half a line a second")
    {
        CHECK(endsInTime(limit, [] {
            const LoopbackServer server([](const Text&, const LoopbackServer::Client& client) {
                const Text page = Text("HTTP/1.1 200 OK\r\n\r\n") + exact;
                for (std::size_t at = 0; at < page.size() && client.send(page.substr(at, 12)); at += 12)
                    client.isGone(1000);
            });
            return findsNothing({&server}, 1);
        }));
    }
    SUBCASE("a name that nobody resolves")
    {
        CHECK(endsInTime(limit, [] {
            Gate gate;
            resolverGate = &gate;
            Titles titles({Text("http://") + nameWithoutAnswer + "/cddb.cgi"});
            titles.lookedUp(limit);
            CHECK(titles.control->TrackTitle(1) == "");
            const bool isHeldUp = gate.waiting() == 1;
            gate.open();
            gate.waitUntilEmpty();
            return isHeldUp;
        }));
    }
    SUBCASE("no time at all")
    {
        const LoopbackServer server(pages(exact, entry));
        Titles titles({server.address()});
        for (const int none : {0, -1, -30000}) {
            titles.lookedUp(none);
            CHECK(titles.control->DiscArtist() == "");
        }
        CHECK(server.requests().empty());
    }
}

TEST_CASE("Without a network there are no titles, and nobody waits for them")
{
    Gate gate;
    gate.open();
    resolverGate = &gate;
    Titles titles({Text("https://") + nameWithoutAnswer + "/cddb.cgi",
                   Text("http://") + nameWithoutAnswer + "/cddb.cgi", refusedAddress("http")});
    CHECK(timeOf([&] { titles.lookedUp(30000); }) < milliseconds(10000));
    CHECK(titles.control->DiscArtist() == "");
    CHECK(titles.control->TrackTitle(1) == "");
}

TEST_CASE("A silent server leaves time for the next")
{
    LoopbackServer mute(silent());
    LoopbackServer good(pages(exact, entry));
    Titles titles({mute.address(), good.address()});
    CHECK(titles.lookedUp(4000).TrackTitle(1) == "First");
}

TEST_CASE("A drive that hangs holds up no lookup past its limit, and no second search is begun behind it")
{
    const auto gate = std::make_shared<Gate>();
    LoopbackServer server(pages(exact, entry));
    TemporaryFolder folder;
    const auto control = disc::makeCurlCdBase({.addresses = {server.address()},
                                               .cacheFolder = folder / "cache",
                                               .firstDrive = [] { return "drive"; },
                                               .disc =
                                                   [gate] {
                                                       gate->pass();
                                                       return theDisc;
                                                   }});
    control->setTimeLimit(100);
    for (int i = 0; i < 3; ++i)
        CHECK(atBest(300, [&] { return timeOf([&] { control->Lookup(); }).count(); }) < 300);
    CHECK(gate->waiting() == 1);
    CHECK(control->DiscArtist() == "");
    gate->open();
    control->setTimeLimit(20000);
    control->Lookup();
    CHECK(control->DiscArtist() == "Some Band");
}

TEST_CASE("A lookup without a disc asks nobody")
{
    LoopbackServer server(pages(exact, entry));
    Titles titles({server.address()});
    *titles.inserted = {};
    CHECK(titles.lookedUp().DiscArtist() == "");
    CHECK(server.requests().empty());
}

TEST_CASE("Open clears earlier titles and asks nobody")
{
    LoopbackServer server(pages(exact, entry));
    Titles titles({server.address()});
    titles.lookedUp();
    REQUIRE(titles.control->DiscArtist() == "Some Band");
    titles.control->setCommand("Open");
    CHECK(titles.control->DiscArtist() == "");
    CHECK(titles.control->TrackTitle(1) == "");
    CHECK(server.requests().size() == 2);
}

TEST_CASE("Open needs the reader's first drive and no disc")
{
    LoopbackServer server(pages(exact, entry));
    Titles titles({server.address()});
    const auto open = [&] { titles.control->setCommand("Open"); };
    *titles.inserted = {};
    CHECK(failureOf(open) == 68);
    titles.control->setDevice("another drive");
    CHECK(failureOf(open) == 68);
    titles.control->setDevice(titles.control->DefaultDevice());
    CHECK(failureOf(open) == 0);
    titles.drive = "";
    CHECK(failureOf(open) == 68);
    titles.control->setDevice(titles.control->DefaultDevice());
    CHECK(failureOf(open) == 68);
}

TEST_CASE("A lookup that finds nothing leaves no earlier titles")
{
    LoopbackServer server(pages(exact, entry));
    Titles titles({server.address()});
    titles.lookedUp();
    *titles.inserted = {};
    titles.control->Lookup();
    CHECK(titles.control->DiscArtist() == "");
    CHECK(titles.control->TrackTitle(1) == "");
}
