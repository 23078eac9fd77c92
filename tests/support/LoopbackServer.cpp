#include "tests/support/LoopbackServer.h"

#include <algorithm>
#include <chrono>
#include <stdexcept>

#include <arpa/inet.h>
#include <netinet/in.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

namespace test {
namespace {

constexpr int kPollInterval = 20; // milliseconds until a stop is noticed

bool sendAll(int client, std::string_view bytes) {
    while (!bytes.empty()) {
        const ssize_t sent = ::send(client, bytes.data(), bytes.size(), MSG_NOSIGNAL);
        if (sent <= 0) {
            return false;
        }
        bytes.remove_prefix(static_cast<std::size_t>(sent));
    }
    return true;
}

bool sendSlowly(int client, std::string_view bytes, int pause, const std::atomic<bool>& stopping) {
    for (std::size_t at = 0; at < bytes.size() && !stopping; ++at) {
        if (!sendAll(client, bytes.substr(at, 1))) {
            return false;
        }
        std::this_thread::sleep_for(std::chrono::milliseconds(pause));
    }
    return true;
}

std::string targetOf(const std::string& head) {
    const auto start = head.find(' ') + 1;
    return head.substr(start, head.find(' ', start) - start);
}

} // namespace

Reply httpReply(const std::string& body, const std::string& status, const std::string& headers) {
    return {"HTTP/1.1 " + status + "\r\nContent-Length: " + std::to_string(body.size()) +
            "\r\nConnection: close\r\n" + headers + "\r\n" + body};
}

LoopbackServer::LoopbackServer(Handler handler) : handler_(std::move(handler)) {
    listener_ = ::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    socklen_t length = sizeof address;
    auto* const generic = reinterpret_cast<sockaddr*>(&address);
    if (::bind(listener_, generic, length) != 0 || ::listen(listener_, 16) != 0 ||
        ::getsockname(listener_, generic, &length) != 0) {
        throw std::runtime_error("no loopback port");
    }
    port_ = ntohs(address.sin_port);
    thread_ = std::thread([this] { serve(); });
}

LoopbackServer::LoopbackServer(const Reply& reply)
    : LoopbackServer([reply](const std::string& /*target*/) { return reply; }) {}

LoopbackServer::~LoopbackServer() {
    stopping_ = true;
    thread_.join();
    ::close(listener_);
}

std::string LoopbackServer::url(const std::string& target) const {
    return "http://127.0.0.1:" + std::to_string(port_) + target;
}

std::vector<std::string> LoopbackServer::targets() const {
    std::vector<std::string> result = heads();
    std::transform(result.begin(), result.end(), result.begin(), targetOf);
    return result;
}

std::vector<std::string> LoopbackServer::heads() const {
    const std::lock_guard lock(mutex_);
    return heads_;
}

bool LoopbackServer::isReadable(int descriptor) const {
    pollfd entry{descriptor, POLLIN, 0};
    while (!stopping_) {
        if (::poll(&entry, 1, kPollInterval) > 0) {
            return true;
        }
    }
    return false;
}

void LoopbackServer::serve() {
    while (isReadable(listener_)) {
        const int client = ::accept4(listener_, nullptr, nullptr, SOCK_CLOEXEC);
        if (client >= 0) {
            answer(client);
            ::close(client);
        }
    }
}

void LoopbackServer::answer(int client) {
    std::string head;
    char bytes[4096];
    while (head.find("\r\n\r\n") == std::string::npos) {
        const ssize_t got = isReadable(client) ? ::recv(client, bytes, sizeof bytes, 0) : 0;
        if (got <= 0) {
            return;
        }
        head.append(bytes, static_cast<std::size_t>(got));
    }
    {
        const std::lock_guard lock(mutex_);
        heads_.push_back(head);
    }
    const Reply reply = handler_(targetOf(head));
    bool connected = reply.pause > 0 ? sendSlowly(client, reply.bytes, reply.pause, stopping_)
                                     : sendAll(client, reply.bytes);
    while (connected && reply.repeatsForever && !stopping_) {
        connected = sendAll(client, reply.bytes);
    }
    if (reply.end == Reply::End::Reset) {
        const linger hard{1, 0};
        ::setsockopt(client, SOL_SOCKET, SO_LINGER, &hard, sizeof hard);
    } else if (reply.end == Reply::End::Silence) {
        static_cast<void>(isReadable(client));
    } else if (reply.end == Reply::End::NextRequest) {
        answer(client);
    }
}

} // namespace test
