#include "store/FastSpringUtilities.h"

#include "store/FastSpringOrderParser.h"
#include "store/FastSpringSubscriptionParser.h"
#include "store/Request.h"

namespace store {
namespace {

std::shared_ptr<FastSpringSubscription> askForSubscription(Request request,
                                                           const std::string& reference) {
    const auto answer = ask(request, reference).data;
    return answer ? FastSpringSubscriptionParser(*answer).parseSubscription() : nullptr;
}

} // namespace

std::shared_ptr<FastSpringSubscription>
FastSpringUtilities::subscriptionForStore(const Text& /*store*/, const Text& reference) {
    return reference ? askForSubscription(Request::GetSubscription, *reference) : nullptr;
}

bool FastSpringUtilities::cancelSubscriptionForStore(const Text& store, const Text& reference) {
    return store && reference &&
           askForSubscription(Request::DeleteSubscription, *reference) != nullptr;
}

std::shared_ptr<FastSpringOrder> FastSpringUtilities::orderForStore(const Text& store,
                                                                    const Text& reference) {
    const auto answer = store && reference ? ask(Request::GetOrder, *reference).data : std::nullopt;
    return answer ? FastSpringOrderParser(*answer).parseOrder() : nullptr;
}

} // namespace store
