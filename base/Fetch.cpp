#include "base/Fetch.h"

#include "base/Handle.h"

#include <new>
#include <utility>

#include <curl/curl.h>

namespace base {
namespace {

constexpr const char* kProtocols = "http,https"; // also of redirects

struct Transfer {
    const FetchLimits& limits;
    Data body;
    std::size_t headerBytes = 0;
};

// libcurl's callbacks end the transfer by taking fewer bytes than they were given; no exception may
// pass through it.
std::size_t takeBody(char* bytes, std::size_t size, std::size_t count, void* context) noexcept {
    auto& transfer = *static_cast<Transfer*>(context);
    const std::size_t length = size * count;
    if (length > transfer.limits.body - transfer.body.size()) {
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
    return transfer.headerBytes <= transfer.limits.headers ? size * count : 0;
}

template <class Value>
bool set(CURL* handle, CURLoption option, Value value) {
    return curl_easy_setopt(handle, option, value) == CURLE_OK;
}

// Options that a library was built without are refused; the transfer does not start then, since
// each of them bounds what the network can do.
bool configure(CURL* handle, const URL& url, Transfer& transfer) {
    const FetchLimits& limits = transfer.limits;
    return set(handle, CURLOPT_URL, url.text().c_str()) &&
           set(handle, CURLOPT_PROTOCOLS_STR, kProtocols) &&
           set(handle, CURLOPT_FOLLOWLOCATION, 1L) &&
           set(handle, CURLOPT_MAXREDIRS, limits.redirects) &&
           set(handle, CURLOPT_HTTP09_ALLOWED, 0L) && set(handle, CURLOPT_NOSIGNAL, 1L) &&
           // On a kept connection that closes without an answer libcurl sends a request again: a
           // cancellation after a redirect would be sent twice.
           set(handle, CURLOPT_FORBID_REUSE, 1L) &&
           // A resolver that never answers must not hold the caller up when the time is over.
           set(handle, CURLOPT_QUICK_EXIT, 1L) &&
           set(handle, CURLOPT_CONNECTTIMEOUT_MS, static_cast<long>(limits.connect.count())) &&
           set(handle, CURLOPT_TIMEOUT_MS, static_cast<long>(limits.whole.count())) &&
           set(handle, CURLOPT_MAXFILESIZE_LARGE, static_cast<curl_off_t>(limits.body)) &&
           set(handle, CURLOPT_WRITEFUNCTION, takeBody) &&
           set(handle, CURLOPT_WRITEDATA, &transfer) &&
           set(handle, CURLOPT_HEADERFUNCTION, countHeader) &&
           set(handle, CURLOPT_HEADERDATA, &transfer);
}

} // namespace

Fetched fetch(const URL& url, const FetchLimits& limits) {
    static const bool ready = curl_global_init(CURL_GLOBAL_DEFAULT) == CURLE_OK;
    const Handle<CURL, curl_easy_cleanup> handle(ready ? curl_easy_init() : nullptr);
    Transfer transfer{limits, {}, 0};
    if (!handle || !configure(handle.get(), url, transfer)) {
        return {std::nullopt, curl_easy_strerror(CURLE_FAILED_INIT)};
    }
    char words[CURL_ERROR_SIZE] = "";
    set(handle.get(), CURLOPT_ERRORBUFFER, words);
    const CURLcode code = curl_easy_perform(handle.get());
    if (code != CURLE_OK) {
        return {std::nullopt, *words != '\0' ? words : curl_easy_strerror(code)};
    }
    return {std::move(transfer.body), {}};
}

} // namespace base
