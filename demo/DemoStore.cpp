#include "demo/DemoStore.h"

#include "base/Timestamp.h"

#include <chrono>

#include <tinyxml2.h>

namespace demo {
namespace {

using Printer = tinyxml2::XMLPrinter;

void leaf(Printer& printer, const char* name, const std::string& text) {
    printer.OpenElement(name);
    printer.PushText(text.c_str());
    printer.CloseElement();
}

std::string errorAnswer(const std::string& message) {
    Printer printer;
    printer.PushHeader(false, true);
    printer.OpenElement("response");
    leaf(printer, "error", message);
    printer.CloseElement();
    return printer.CStr();
}

} // namespace

DemoStore::DemoStore() {
    subscriptions_ = {
        {"DEMO-1001", {"Ada", "Example", "ada@example.com"}},
        {"DEMO-1002", {"Bob", "Sample & Sons", "bob@example.com"}},
        {"DEMO-KEEP", {"Kim", "Keeper", "kim@example.com", false}},
    };
}

std::string DemoStore::answer(const std::string& reference, const Subscription& subscription,
                              const std::string& host) {
    Printer printer;
    printer.PushHeader(false, true);
    printer.OpenElement("subscription");
    leaf(printer, "status", subscription.status);
    leaf(printer, "statusChanged", subscription.statusChanged);
    leaf(printer, "statusReason", subscription.statusReason);
    leaf(printer, "cancelable", subscription.isCancelable ? "true" : "false");
    leaf(printer, "reference", reference);
    leaf(printer, "test", "true");
    printer.OpenElement("customer");
    leaf(printer, "firstName", subscription.firstName);
    leaf(printer, "lastName", subscription.lastName);
    leaf(printer, "company", "");
    leaf(printer, "email", subscription.email);
    leaf(printer, "phoneNumber", "+1 555 0100");
    printer.CloseElement();
    leaf(printer, "customerUrl", "http://" + host + "/account/" + reference);
    leaf(printer, "productName", "acme-studio");
    leaf(printer, "quantity", "1");
    leaf(printer, "end", "2027-03-15Z");
    printer.CloseElement();
    return printer.CStr();
}

std::string DemoStore::subscriptionAnswer(const std::string& reference,
                                          const std::string& host) const {
    const std::lock_guard lock(mutex_);
    const auto found = subscriptions_.find(reference);
    return found != subscriptions_.end() ? answer(reference, found->second, host)
                                         : errorAnswer("There is no subscription " + reference);
}

std::string DemoStore::cancelAnswer(const std::string& reference, const std::string& host) {
    const std::lock_guard lock(mutex_);
    const auto found = subscriptions_.find(reference);
    if (found == subscriptions_.end()) {
        return errorAnswer("There is no subscription " + reference);
    }
    Subscription& subscription = found->second;
    if (!subscription.isCancelable) {
        return errorAnswer("The subscription " + reference + " cannot be canceled here");
    }
    subscription.status = "canceled";
    subscription.statusReason = "canceled";
    subscription.statusChanged = base::timestampText(
        std::chrono::floor<std::chrono::seconds>(std::chrono::system_clock::now()));
    return answer(reference, subscription, host);
}

std::optional<std::string> DemoStore::accountPage(const std::string& reference) const {
    const std::lock_guard lock(mutex_);
    const auto found = subscriptions_.find(reference);
    if (found == subscriptions_.end()) {
        return std::nullopt;
    }
    const Subscription& subscription = found->second;
    Printer printer;
    printer.PushUnknown("DOCTYPE html");
    printer.OpenElement("html");
    printer.PushAttribute("lang", "en");
    printer.OpenElement("head");
    leaf(printer, "title", "Your account: " + reference);
    leaf(printer, "style", "body { font: 18px sans-serif; margin: 3em; color: #223 }");
    printer.CloseElement();
    printer.OpenElement("body");
    leaf(printer, "h1", "Your account");
    leaf(printer, "p", subscription.firstName + " " + subscription.lastName);
    leaf(printer, "p", "Subscription " + reference + ": " + subscription.status);
    leaf(printer, "p",
         subscription.isCancelable ? "You can cancel this subscription at any time."
                                   : "To cancel this subscription, write to support@example.com.");
    printer.CloseElement();
    printer.CloseElement();
    return printer.CStr();
}

} // namespace demo
