#include "store/Request.h"

#include "base/Format.h"
#include "base/URL.h"
#include "store/ScriptURL.h"

namespace store {
namespace {

/// Returns a request's URL as a format for the script's URL and the reference.
std::string_view formatOf(Request request) {
    switch (request) {
    case Request::GetSubscription:
        return "%@?f=getsubscription&subscriptionRef=%@";
    case Request::DeleteSubscription:
        return "%@?f=deletesubscription&subscriptionRef=%@";
    case Request::GetOrder:
        break;
    }
    return "%@?f=getorder&orderRef=%@";
}

} // namespace

Answer ask(Request request, const std::string& reference, const base::FetchLimits& limits,
           const Fetcher& fetcher) {
    Answer answer;
    answer.address = base::formatted(formatOf(request), {scriptURL(), reference});
    if (const auto url = base::URL::make(answer.address)) {
        base::Fetched fetched = fetcher(*url, limits);
        answer.isSent = true;
        answer.data = std::move(fetched.data);
        answer.failure = std::move(fetched.failure);
        answer.status = fetched.status;
    }
    return answer;
}

} // namespace store
