#include "store/FastSpringUtilities.h"

#include "base/Fetch.h"
#include "base/Format.h"
#include "store/FastSpringOrderParser.h"
#include "store/FastSpringSubscriptionParser.h"
#include "store/ScriptURL.h"

#include <string_view>

namespace store {
namespace {

/// The whole answer to a request whose format takes the script URL and the reference.
std::optional<base::Data> answerTo(std::string_view format, const std::string& reference) {
    const auto url = base::URL::make(base::formatted(format, {scriptURL(), reference}));
    return url ? base::fetch(*url) : std::nullopt;
}

std::shared_ptr<FastSpringSubscription> requestSubscription(std::string_view format,
                                                            const std::string& reference) {
    const auto answer = answerTo(format, reference);
    return answer ? FastSpringSubscriptionParser(*answer).parseSubscription() : nullptr;
}

} // namespace

std::shared_ptr<FastSpringSubscription>
FastSpringUtilities::subscriptionForStore(const Text& /*store*/, const Text& reference) {
    return reference ? requestSubscription("%@?f=getsubscription&subscriptionRef=%@", *reference)
                     : nullptr;
}

bool FastSpringUtilities::cancelSubscriptionForStore(const Text& store, const Text& reference) {
    return store && reference &&
           requestSubscription("%@?f=deletesubscription&subscriptionRef=%@", *reference) != nullptr;
}

std::shared_ptr<FastSpringOrder> FastSpringUtilities::orderForStore(const Text& store,
                                                                    const Text& reference) {
    const auto answer =
        store && reference ? answerTo("%@?f=getorder&orderRef=%@", *reference) : std::nullopt;
    return answer ? FastSpringOrderParser(*answer).parseOrder() : nullptr;
}

} // namespace store
