#pragma once

#include <atomic>
#include <functional>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

namespace test {

/// The server's reply to a request.
struct Reply {
    enum class End { Close, Reset, Silence, NextRequest };

    std::string bytes;           ///< Sent unchanged, with the status line.
    End end = End::Close;        ///< The end after the bytes. Silence lasts until the client
                                 ///< closes. NextRequest keeps the connection.
    bool repeatsForever = false; ///< Repeat the bytes until the client closes.
    int pause = 0;               ///< Milliseconds between two bytes, or 0 to send all at once.
};

/// Returns a complete and valid HTTP answer.
[[nodiscard]] Reply httpReply(const std::string& body, const std::string& status = "200 OK",
                              const std::string& headers = "");

/// A server on a free port of the loopback interface. Serves one client after the other, each with
/// a new connection, and sends the given replies byte for byte.
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
    /// Return the targets of the requests so far, and their whole heads.
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
