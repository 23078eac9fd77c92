#include "base/Fetch.h"

#include "tests/support/LoopbackServer.h"
#include "tests/support/Measure.h"
#include "tests/support/Test.h"

#include <atomic>
#include <csignal>
#include <future>
#include <thread>

#include <dlfcn.h>
#include <netdb.h>
#include <sys/wait.h>
#include <unistd.h>

namespace {
std::atomic<bool> resolverWasAsked = false;
}

/// Replaces the system's resolver in this process, and delays the answer for one name.
extern "C" [[gnu::visibility("default")]] int
getaddrinfo(const char* node, const char* service, const addrinfo* hints, addrinfo** result) {
    if (node != nullptr && std::string_view(node) == "silent.invalid") {
        resolverWasAsked = true;
        std::this_thread::sleep_for(std::chrono::seconds(20));
        return EAI_AGAIN;
    }
    static const auto real =
        reinterpret_cast<decltype(&getaddrinfo)>(dlsym(RTLD_NEXT, "getaddrinfo"));
    return real(node, service, hints, result);
}

namespace base {
namespace {

using namespace std::chrono_literals;
using test::httpReply;
using test::LoopbackServer;
using test::Reply;

constexpr FetchLimits kShort{400ms, 800ms, 1000, 2000, 5};
const std::string kHead = "HTTP/1.1 200 OK\r\n";
constexpr auto kPatience = 8s; // above the limits under load, and below a transfer without limits

std::optional<Data> fetchFrom(const LoopbackServer& server, const FetchLimits& limits = kShort) {
    Fetched fetched = fetch(URL::make(server.url()).value(), limits);
    EXPECT_NE(fetched.data.has_value(), !fetched.failure.empty());
    return fetched.data;
}

struct Row {
    const char* what;
    Reply reply;
    std::optional<std::string> data = std::nullopt;
};

class Fetch : public testing::Test {
    test::TestHome home_;
};

TEST_F(Fetch, GivesTheBodyOrNothingWhateverTheServerDoes) {
    const Row rows[] = {
        {"a body", httpReply("<a/>"), "<a/>"},
        {"an empty body", httpReply(""), ""},
        {"a body that ends with the connection", {kHead + "\r\n<a/>"}, "<a/>"},
        {"a length too long", {kHead + "Content-Length: 9\r\n\r\n<a/>"}},
        {"a chunk that is cut", {kHead + "Transfer-Encoding: chunked\r\n\r\n9\r\n<a/>"}},
        {"a body one byte too large", httpReply(std::string(1001, 'x'))},
        {"and without its length", {kHead + "\r\n" + std::string(1001, 'x')}},
        {"headers too large", httpReply("", "200 OK", "X: " + std::string(2000, 'y') + "\r\n")},
        {"no HTTP", {"<a/>"}},
        {"a reset after what looks whole", {kHead + "\r\n<a/>", Reply::End::Reset}},
        {"an endless chunk extension",
         {kHead + "Transfer-Encoding: chunked\r\n\r\n1;" + std::string(100000, 'x'),
          Reply::End::Close, true}},
        {"silence in the body", {kHead + "Content-Length: 9\r\n\r\n<a/>", Reply::End::Silence}},
        {"a byte now and then, in the body",
         {httpReply(std::string(64, 'x')).bytes, Reply::End::Close, false, 10}},
        {"a redirect to a file",
         httpReply("<a/>", "302 Found", "Location: file:///etc/passwd\r\n")},
    };
    const auto memory = test::peakMemory();
    for (const auto& row : rows) {
        SCOPED_TRACE(row.what);
        const LoopbackServer server(row.reply);
        const auto start = std::chrono::steady_clock::now();
        EXPECT_EQ(fetchFrom(server), row.data);
        EXPECT_LT(std::chrono::steady_clock::now() - start, kPatience);
        EXPECT_TRUE(test::kIsSanitized || test::peakMemory() - memory < 16U << 20U);
    }
}

TEST_F(Fetch, NoticesAtOnceWhatIsTooLarge) {
    const FetchLimits limits;
    const auto memory = test::peakMemory();
    const Reply replies[] = {
        {kHead + "\r\n" + std::string(65536, 'x'), Reply::End::Close, true},
        {kHead + "X: " + std::string(70000, 'y') + "\r\n", Reply::End::Silence},
        {kHead + "Content-Length: 10737418240\r\n\r\n", Reply::End::Silence},
    };
    for (const auto& reply : replies) {
        const LoopbackServer server(reply);
        EXPECT_EQ(fetch(URL::make(server.url()).value(), limits).failure,
                  "The answer is too large");
    }
    const std::string largest(limits.body, 'x');
    EXPECT_TRUE(fetchFrom(LoopbackServer(httpReply(largest)), limits) == largest);
    EXPECT_TRUE(test::kIsSanitized || test::peakMemory() - memory < 16U << 20U);
}

TEST_F(Fetch, TakesAnAnswerThatArrivedWhileTheProcessWasStopped) {
    std::promise<pid_t> child;
    const LoopbackServer server([&, process = child.get_future().share()](auto& /*target*/) {
        kill(process.get(), SIGSTOP);
        return httpReply("<a/>");
    });
    const pid_t process = fork();
    if (process == 0) {
        _exit(fetchFrom(server) == "<a/>" ? 0 : 1);
    }
    child.set_value(process);
    std::this_thread::sleep_for(2 * kShort.whole);
    kill(process, SIGCONT);
    int status = -1;
    EXPECT_EQ(waitpid(process, &status, 0), process);
    EXPECT_EQ(status, 0);
}

TEST_F(Fetch, DoesNotWaitForASilentResolver) {
    const auto start = std::chrono::steady_clock::now();
    EXPECT_EQ(fetch(URL::make("http://silent.invalid/").value(), kShort).data, std::nullopt);
    EXPECT_LT(std::chrono::steady_clock::now() - start, kPatience);
    EXPECT_TRUE(resolverWasAsked);
}

TEST_F(Fetch, FollowsFiveRedirectsAndNoSixth) {
    const auto redirects = [](int count) {
        return [count](const std::string& target) {
            const int step = target == "/" ? 0 : std::stoi(target.substr(1));
            const auto next = "Location: /" + std::to_string(step + 1) + "\r\n";
            return step < count ? httpReply("", "301 Moved", next) : httpReply("there");
        };
    };
    EXPECT_EQ(fetchFrom(LoopbackServer(redirects(5))), "there");
    EXPECT_EQ(fetchFrom(LoopbackServer(redirects(6))), std::nullopt);
}

TEST_F(Fetch, SendsOnePlainRequestAndNoneTwiceWhenItsConnectionCloses) {
    const LoopbackServer server([](const std::string& target) {
        return target == "/" ? Reply{"HTTP/1.1 302 Found\r\nLocation: /cancel\r\n"
                                     "Content-Length: 0\r\n\r\n",
                                     Reply::End::NextRequest}
                             : Reply{""};
    });
    EXPECT_EQ(fetchFrom(server), std::nullopt);
    EXPECT_THAT(server.targets(), testing::ElementsAre("/", "/cancel"));
    EXPECT_THAT(server.heads()[0], testing::MatchesRegex("GET / HTTP/1.1\r\nHost: [^\n]*\n"
                                                         "Accept: [^\n]*\n\r\n"));
}

} // namespace
} // namespace base
