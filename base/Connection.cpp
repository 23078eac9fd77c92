#include "base/Connection.h"

#include "base/Handle.h"

#include <algorithm>
#include <new>
#include <utility>

#include <curl/curl.h>

namespace base {
namespace {

using std::chrono::milliseconds;

constexpr const char* kProtocols = "http,https"; // also of redirects
constexpr milliseconds kLongestPause{100};       // between two checks of the time

struct Transfer {
    const FetchLimits& limits;
    Data body;
    std::size_t headerBytes = 0;
    bool isTooLarge = false; // the body or the headers
};

// The callbacks end a transfer by returning less than the given length, because exceptions must not
// cross libcurl.
std::size_t takeBody(char* bytes, std::size_t size, std::size_t count, void* context) noexcept {
    auto& transfer = *static_cast<Transfer*>(context);
    const std::size_t length = size * count;
    if (length > transfer.limits.body - transfer.body.size()) {
        transfer.isTooLarge = true;
        return 0;
    }
    try {
        transfer.body.append(bytes, length);
    } catch (const std::bad_alloc&) {
        return 0;
    }
    return length;
}

std::size_t countHeader(char* /*bytes*/, std::size_t size, std::size_t count,
                        void* context) noexcept {
    auto& transfer = *static_cast<Transfer*>(context);
    transfer.headerBytes += size * count;
    transfer.isTooLarge = transfer.headerBytes > transfer.limits.headers;
    return transfer.isTooLarge ? 0 : size * count;
}

template <class Value>
bool set(CURL* handle, CURLoption option, Value value) {
    return curl_easy_setopt(handle, option, value) == CURLE_OK;
}

// Sets all options. Returns false if the library was built without one of them. The transfer must
// then not start, because each option limits the network's influence.
bool configure(CURL* handle, const URL& url, Transfer& transfer) {
    const FetchLimits& limits = transfer.limits;
    return set(handle, CURLOPT_URL, url.text().c_str()) &&
           set(handle, CURLOPT_PROTOCOLS_STR, kProtocols) &&
           set(handle, CURLOPT_FOLLOWLOCATION, 1L) &&
           set(handle, CURLOPT_MAXREDIRS, limits.redirects) &&
           set(handle, CURLOPT_HTTP09_ALLOWED, 0L) && set(handle, CURLOPT_NOSIGNAL, 1L) &&
           // Return at the end of the time even if the name's resolver never answers.
           set(handle, CURLOPT_QUICK_EXIT, 1L) &&
           set(handle, CURLOPT_CONNECTTIMEOUT_MS, static_cast<long>(limits.connect.count())) &&
           set(handle, CURLOPT_MAXFILESIZE_LARGE, static_cast<curl_off_t>(limits.body)) &&
           set(handle, CURLOPT_WRITEFUNCTION, takeBody) &&
           set(handle, CURLOPT_WRITEDATA, &transfer) &&
           set(handle, CURLOPT_HEADERFUNCTION, countHeader) &&
           set(handle, CURLOPT_HEADERDATA, &transfer);
}

/// Runs a transfer to its end or until `time` is over. Time in which the process was stopped does
/// not count, because libcurl's own limit would drop an answer that arrived meanwhile.
CURLcode performWithin(milliseconds time, CURLM* transfers) {
    using Clock = std::chrono::steady_clock;
    auto left = std::chrono::duration_cast<Clock::duration>(time);
    int running = 1;
    while (left > Clock::duration::zero()) {
        const auto begin = Clock::now();
        if (curl_multi_perform(transfers, &running) != CURLM_OK) {
            return CURLE_OUT_OF_MEMORY;
        }
        if (running == 0) {
            int messages = 0;
            const CURLMsg* const message = curl_multi_info_read(transfers, &messages);
            return message != nullptr ? message->data.result : CURLE_OUT_OF_MEMORY;
        }
        curl_multi_poll(transfers, nullptr, 0, kLongestPause.count(), nullptr);
        left -= std::min<Clock::duration>(Clock::now() - begin, kLongestPause);
    }
    return CURLE_OPERATION_TIMEDOUT;
}

} // namespace

struct Connection::Handles {
    Handle<CURLM, curl_multi_cleanup> transfers; // contains the kept connections
    Handle<CURL, curl_easy_cleanup> transfer;
    long forbidsReuse = 1;
};

Connection::Connection(Reuse reuse) : handles_(std::make_unique<Handles>()) {
    static const bool ready = curl_global_init(CURL_GLOBAL_DEFAULT) == CURLE_OK;
    if (ready) {
        handles_->transfers.reset(curl_multi_init());
        handles_->transfer.reset(curl_easy_init());
    }
    handles_->forbidsReuse = reuse == Reuse::No ? 1 : 0;
}

Connection::~Connection() = default;

Fetched Connection::fetch(const URL& url, const FetchLimits& limits) {
    CURL* const handle = handles_->transfer.get();
    CURLM* const transfers = handles_->transfers.get();
    if (handle == nullptr || transfers == nullptr) {
        return {std::nullopt, curl_easy_strerror(CURLE_FAILED_INIT)};
    }
    curl_easy_reset(handle); // removes the last fetch's options
    Transfer transfer{limits, {}, 0, false};
    char reason[CURL_ERROR_SIZE] = "";
    if (!configure(handle, url, transfer) ||
        !set(handle, CURLOPT_FORBID_REUSE, handles_->forbidsReuse) ||
        !set(handle, CURLOPT_ERRORBUFFER, reason) ||
        curl_multi_add_handle(transfers, handle) != CURLM_OK) {
        return {std::nullopt, curl_easy_strerror(CURLE_FAILED_INIT)};
    }
    const CURLcode code = performWithin(limits.whole, transfers);
    curl_multi_remove_handle(transfers, handle);
    set(handle, CURLOPT_ERRORBUFFER, static_cast<char*>(nullptr)); // the buffer ends with this call
    if (transfer.isTooLarge || code == CURLE_FILESIZE_EXCEEDED) {
        return {std::nullopt, "The answer is too large"};
    }
    if (code != CURLE_OK) {
        return {std::nullopt, *reason != '\0' ? reason : curl_easy_strerror(code)};
    }
    long status = 0;
    curl_easy_getinfo(handle, CURLINFO_RESPONSE_CODE, &status);
    return {std::move(transfer.body), {}, static_cast<int>(status)};
}

} // namespace base
