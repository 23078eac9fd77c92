#include "tools/Report.h"

#include "store/Conversions.h"
#include "store/FastSpringOrderParser.h"
#include "store/FastSpringSubscriptionParser.h"
#include "tools/RecordJSON.h"

#include <chrono>
#include <exception>
#include <stdexcept>
#include <utility>

namespace tools {
namespace {

using nlohmann::ordered_json;

constexpr int kFirstErrorStatus = 400;                    // of HTTP
constexpr std::string_view kHTMLStart = "<!doctype html"; // in any letter case
constexpr const char* kLookUp =
    ". It may have been canceled: look the subscription up before canceling again";

struct Failure {
    std::string reason;
    std::string message;
};

struct Parsed {
    ordered_json record; ///< null if absent
    std::optional<Failure> failure;
    bool isHTML = false;
    bool isMalformed = false;
};

/// Returns true if an answer begins like an HTML page that is not XML.
bool isHTMLDocument(std::string_view answer) {
    std::string start(answer.substr(0, kHTMLStart.size()));
    store::lowercase(start);
    return start == kHTMLStart;
}

/// Parses an answer. The two failures of parsers are results here.
template <class Parser, class Operation>
Parsed parsedBy(Operation operation, std::string_view answer) {
    Parser parser(answer);
    Parsed result;
    try {
        if (const auto record = (parser.*operation)()) {
            result.record = recordJSON(*record);
        }
    } catch (const std::out_of_range& failure) {
        result.failure = {"out_of_range", failure.what()};
    } catch (const std::invalid_argument& failure) {
        result.failure = {"invalid_argument", failure.what()};
    }
    result.isMalformed = parser.isParsingError;
    result.isHTML = parser.isHTMLServerError || (result.isMalformed && isHTMLDocument(answer));
    return result;
}

Parsed parsed(std::string_view answer, RecordKind kind) {
    return kind == RecordKind::Order
               ? parsedBy<store::FastSpringOrderParser>(&store::FastSpringOrderParser::parseOrder,
                                                        answer)
               : parsedBy<store::FastSpringSubscriptionParser>(
                     &store::FastSpringSubscriptionParser::parseSubscription, answer);
}

/// Returns the reason why an answer is not the store service's, or std::nullopt if it is.
std::optional<Failure> failureOf(const Parsed& parsed, int httpStatus) {
    const bool hasRecord = !parsed.record.is_null();
    if (parsed.failure) {
        return parsed.failure;
    }
    if ((!hasRecord || parsed.isHTML) && httpStatus >= kFirstErrorStatus) {
        const std::string status = std::to_string(httpStatus);
        return Failure{"http_" + status, "the answer has the HTTP status " + status};
    }
    if (parsed.isHTML) {
        return Failure{"html", "the answer is an HTML page"};
    }
    if (!hasRecord && parsed.isMalformed) {
        return Failure{"malformed", "the answer is not well-formed XML and contains no record"};
    }
    return std::nullopt;
}

store::Request requestOf(const CommandLine& line) {
    return line.command == Command::Order ? store::Request::GetOrder
           : line.isLookup()              ? store::Request::GetSubscription
                                          : store::Request::DeleteSubscription;
}

Report unsent(const store::Answer& answer) {
    const std::string message = answer.address + " is not a valid URL. Nothing was sent";
    return {{{"result", "invalid"}, {"message", message}}, ExitStatus::Usage, {message}, {}};
}

Report unreachable(const store::Answer& answer) {
    return {{{"result", "unreachable"}, {"record", nullptr}, {"message", answer.failure}},
            ExitStatus::Unreachable,
            {answer.address + ": " + answer.failure},
            {}};
}

/// Turns a lookup's report into a cancellation's.
void makeCancellation(Report& report) {
    ordered_json& object = report.object;
    if (report.status == ExitStatus::Record || report.status == ExitStatus::None) {
        object["result"] = report.status == ExitStatus::Record ? "confirmed" : "refused";
        object.erase("record");
    } else if (report.status != ExitStatus::Usage) {
        object["message"] = object["message"].get<std::string>() + kLookUp;
        report.messages.back() += kLookUp;
    }
}

std::string traceOf(const store::Answer& answer, std::chrono::steady_clock::duration time) {
    const auto taken = std::chrono::duration_cast<std::chrono::milliseconds>(time).count();
    return "GET " + answer.address + ": " +
           (answer.data ? "HTTP status " + std::to_string(answer.status) + ", " +
                              std::to_string(answer.data->size()) + " bytes"
                        : "no answer") +
           " after " + std::to_string(taken) + " ms";
}

} // namespace

Report reportOf(std::string_view answer, RecordKind kind, const std::string& name,
                std::optional<int> httpStatus) {
    Parsed parsed = tools::parsed(answer, kind);
    Report report{{{"result", "record"}}, ExitStatus::Record, {}, {}};
    ordered_json& object = report.object;
    if (httpStatus) {
        object["httpStatus"] = *httpStatus;
    }
    if (const auto failure = failureOf(parsed, httpStatus.value_or(0))) {
        report.status = ExitStatus::Failure;
        report.messages.push_back(name + ": " + failure->message);
        object["result"] = "failure";
        object["reason"] = failure->reason;
        object["message"] = failure->message;
        return report;
    }
    if (parsed.record.is_null()) {
        report.status = ExitStatus::None;
        object["result"] = "none";
    } else if (parsed.isMalformed) {
        report.messages.push_back(name + ": the answer is malformed or cut off, and the record "
                                         "contains only the part before that");
        object["isParsingError"] = true;
    }
    object["record"] = std::move(parsed.record);
    return report;
}

Report ask(const CommandLine& line, const std::string& reference, const store::Fetcher& fetcher) {
    const auto start = std::chrono::steady_clock::now();
    const store::Answer answer =
        store::ask(requestOf(line), reference, limits(line.timeout), fetcher);
    const auto end = std::chrono::steady_clock::now();
    const RecordKind kind =
        line.command == Command::Order ? RecordKind::Order : RecordKind::Subscription;
    Report report = !answer.isSent ? unsent(answer)
                    : !answer.data ? unreachable(answer)
                                   : reportOf(*answer.data, kind, answer.address, answer.status);
    if (!line.isLookup()) {
        makeCancellation(report);
    }
    if (line.isVerbose && answer.isSent) {
        report.messages.insert(report.messages.begin(), traceOf(answer, end - start));
    }
    if (line.isRaw) {
        report.raw = answer.data.value_or(base::Data());
    }
    return report;
}

} // namespace tools
