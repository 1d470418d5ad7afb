// SPDX-License-Identifier: GPL-3.0-or-later
// A web server on the loopback interface, with the manners that a test gives it.
#pragma once

#include "files/descriptor.h"
#include "platform/text.h"

#include <arpa/inet.h>
#include <netinet/in.h>
#include <poll.h>
#include <sys/eventfd.h>
#include <sys/socket.h>

#include <atomic>
#include <functional>
#include <mutex>
#include <stdexcept>
#include <thread>
#include <vector>

class LoopbackServer
{
public:
    // The way back to one client.
    class Client
    {
    public:
        Client(int socket, int stopped) : socket_(socket), stopped_(stopped) {}

        // False when the client has hung up or the test is over.
        bool send(std::string_view bytes) const
        {
            return !isGone(0) && ::send(socket_, bytes.data(), bytes.size(), MSG_NOSIGNAL) >= 0;
        }

        // A page with that body, whole.
        void sendPage(std::string_view body, std::string_view status = "200 OK") const
        {
            send(Text("HTTP/1.1 ").append(status).append("\r\nConnection: close\r\n\r\n"));
            send(body);
        }

        void sendRedirection(const Text& address) const
        {
            send("HTTP/1.1 302 Found\r\nConnection: close\r\nContent-Length: 0\r\nLocation: " + address +
                 "\r\n\r\n");
        }

        // Whether it hangs up, or the test ends, within that time; -1 waits for ever.
        bool isGone(int milliseconds) const
        {
            pollfd events[] = {{socket_, POLLRDHUP, 0}, {stopped_, POLLIN, 0}};
            return poll(events, 2, milliseconds) > 0;
        }

        // What comes before the request's empty line, or as much as shows that it is no request.
        Text receivedHead() const
        {
            Text head;
            char byte = 0;
            while (!head.ends_with("\r\n\r\n") && (head.empty() || head[0] == 'G') && !isStopped() &&
                   recv(socket_, &byte, 1, 0) == 1)
                head += byte;
            return head;
        }

    private:
        bool isStopped() const
        {
            pollfd events[] = {{socket_, POLLIN, 0}, {stopped_, POLLIN, 0}};
            return poll(events, 2, -1) <= 0 || events[1].revents != 0;
        }

        int socket_, stopped_;
    };

    // Answers the request for `target` ("/path?fields"), on the server's own thread.
    using Manner = std::function<void(const Text& target, const Client& client)>;

    explicit LoopbackServer(Manner manner) : manner_(std::move(manner))
    {
        sockaddr_in address = {};
        address.sin_family = AF_INET;
        address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
        socklen_t size = sizeof address;
        if (bind(listener_.number(), reinterpret_cast<sockaddr*>(&address), size) != 0 ||
            listen(listener_.number(), 16) != 0)
            throw std::runtime_error("The loopback interface takes no server.");
        getsockname(listener_.number(), reinterpret_cast<sockaddr*>(&address), &size);
        port_ = ntohs(address.sin_port);
        thread_ = std::thread([this] { serve(); });
    }

    ~LoopbackServer()
    {
        eventfd_write(stopped_.number(), 1);
        thread_.join();
    }
    LoopbackServer(const LoopbackServer&) = delete;
    LoopbackServer& operator=(const LoopbackServer&) = delete;

    Text address(const Text& scheme = "http") const
    {
        return scheme + "://127.0.0.1:" + std::to_string(port_) + "/~cddb/cddb.cgi";
    }

    // The targets asked for so far.
    std::vector<Text> requests() const
    {
        const std::lock_guard lock(mutex_);
        return requests_;
    }

private:
    void serve()
    {
        pollfd events[] = {{listener_.number(), POLLIN, 0}, {stopped_.number(), POLLIN, 0}};
        while (poll(events, 2, -1) > 0 && events[1].revents == 0) {
            const files::Descriptor socket(accept(listener_.number(), nullptr, nullptr));
            answer(Client(socket.number(), stopped_.number()));
        }
    }

    void answer(const Client& client)
    {
        const Text head = client.receivedHead();
        const auto begin = head.find(' ') + 1;
        const Text target = head.starts_with("GET ") ? head.substr(begin, head.find(' ', begin) - begin) : "";
        if (target.empty())
            return;
        {
            const std::lock_guard lock(mutex_);
            requests_.push_back(target);
        }
        manner_(target, client);
    }

    const Manner manner_;
    files::Descriptor listener_{socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0)};
    files::Descriptor stopped_{eventfd(0, EFD_CLOEXEC)};
    int port_ = 0;
    mutable std::mutex mutex_;
    std::vector<Text> requests_;
    std::thread thread_;
};

// The value of a request's field, unescaped.
inline Text fieldOf(const Text& target, std::string_view name)
{
    const auto at = target.find(Text(name).append("="));
    if (at == Text::npos)
        return "";
    const Text escaped = target.substr(at + name.size() + 1, target.find('&', at) - at - name.size() - 1);
    Text value;
    for (std::size_t i = 0; i < escaped.size(); ++i) {
        const bool isCode = escaped[i] == '%' && i + 2 < escaped.size();
        value += isCode ? static_cast<char>(std::stoi(escaped.substr(i + 1, 2), nullptr, 16)) : escaped[i];
        i += isCode ? 2 : 0;
    }
    return value;
}
