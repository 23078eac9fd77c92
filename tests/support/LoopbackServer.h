#pragma once

#include <atomic>
#include <functional>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

namespace test {

/// What the server sends once it has read a request's head.
struct Reply {
    enum class End { Close, Reset, Silence, NextRequest };

    std::string bytes;           ///< sent as they are, a status line included
    End end = End::Close;        ///< what follows; silence lasts until the client goes, and
                                 ///< the next request comes on the same connection
    bool repeatsForever = false; ///< sends the bytes again and again until the client goes
    int pause = 0;               ///< milliseconds between two bytes; 0 sends all at once
};

/// A whole, well-behaved HTTP answer.
[[nodiscard]] Reply httpReply(const std::string& body, const std::string& status = "200 OK",
                              const std::string& headers = "");

/// A server on a free port of the loopback interface that sends what it is told to, byte for byte,
/// to one client after the other, each with a new connection.
class LoopbackServer {
  public:
    using Handler = std::function<Reply(const std::string& target)>;

    explicit LoopbackServer(Handler handler);
    explicit LoopbackServer(const Reply& reply);
    LoopbackServer(const LoopbackServer&) = delete;
    LoopbackServer& operator=(const LoopbackServer&) = delete;
    ~LoopbackServer();

    [[nodiscard]] int port() const { return port_; }
    [[nodiscard]] std::string url(const std::string& target = "/") const;
    /// The targets of the requests so far, and their whole heads.
    [[nodiscard]] std::vector<std::string> targets() const;
    [[nodiscard]] std::vector<std::string> heads() const;

  private:
    void serve();
    void answer(int client);

    Handler handler_;
    int listener_ = -1;
    int port_ = 0;
    std::atomic<int> client_ = -1;
    mutable std::mutex mutex_;
    std::vector<std::string> heads_;
    std::thread thread_;
};

} // namespace test
