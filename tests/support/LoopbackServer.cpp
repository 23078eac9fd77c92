#include "tests/support/LoopbackServer.h"

#include <algorithm>
#include <chrono>
#include <stdexcept>

#include <arpa/inet.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

namespace test {
namespace {

/// Sends the bytes. Stops if the client closes or the server shuts the connection down.
bool sendAll(int client, std::string_view bytes, int pause) {
    while (!bytes.empty()) {
        const auto sent = ::send(client, bytes.data(), pause > 0 ? 1 : bytes.size(), MSG_NOSIGNAL);
        if (sent <= 0) {
            return false;
        }
        bytes.remove_prefix(static_cast<std::size_t>(sent));
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
    ::shutdown(listener_, SHUT_RDWR); // ends accept(). The next call ends the client's connection.
    ::shutdown(client_, SHUT_RDWR);
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

void LoopbackServer::serve() {
    for (int client = 0; (client = ::accept4(listener_, nullptr, nullptr, SOCK_CLOEXEC)) >= 0;) {
        client_ = client;
        answer(client);
        client_ = -1;
        ::close(client);
    }
}

void LoopbackServer::answer(int client) {
    std::string head;
    char bytes[4096];
    while (head.find("\r\n\r\n") == std::string::npos) {
        const ssize_t got = ::recv(client, bytes, sizeof bytes, 0);
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
    while (sendAll(client, reply.bytes, reply.pause) && reply.repeatsForever) {
    }
    if (reply.end == Reply::End::Reset) {
        const linger hard{1, 0};
        ::setsockopt(client, SOL_SOCKET, SO_LINGER, &hard, sizeof hard);
    } else if (reply.end == Reply::End::Silence) {
        ::recv(client, bytes, sizeof bytes, 0);
    } else if (reply.end == Reply::End::NextRequest) {
        answer(client);
    }
}

} // namespace test
