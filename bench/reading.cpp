// Measures reading an answer inside a process, and compares it with common XML parsers.

#include "store/Conversions.h"
#include "store/FastSpringSubscriptionParser.h"
#include "store/FastSpringUtilities.h"
#include "store/ServerDate.h"
#include "tests/support/LoopbackServer.h"
#include "tests/support/TestHome.h"

#include <cstdint>
#include <fstream>
#include <iterator>
#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <variant>

#include <benchmark/benchmark.h>
#include <curl/curl.h>
#include <expat.h>
#include <libxml/parser.h>
#include <libxml/tree.h>
#include <QXmlStreamReader>
#include <tinyxml2.h>

namespace {

using Record = store::FastSpringSubscription;

/// Returns one subscription record in the store service's form.
std::string subscription() {
    std::ifstream file(BENCH_SUBSCRIPTION, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

/// Returns an answer with one record if `size` is 0, otherwise one of at least `size` bytes with
/// many records.
std::string answerOf(std::size_t size) {
    const std::string head = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n";
    if (size == 0) {
        return head + subscription();
    }
    const std::string record = subscription();
    std::string answer = head + "<list>\n";
    while (answer.size() < size) {
        answer += record;
    }
    return answer + "</list>\n";
}

constexpr std::size_t kUsual = 0;
constexpr std::size_t kLarge = 1U << 20U; // the largest answer that the helper fetches
constexpr std::size_t kSizes[] = {1000, 10'000, 100'000, kLarge};

// ---- the other parsers ----

/// Stores one field like our parser, with our conversions, so only the XML parsers differ.
void storeField(Record& record, const std::string& name, const std::string& text) {
    using Property = std::variant<store::Text Record::*, store::Date Record::*,
                                  store::Number Record::*, bool Record::*>;
    static const std::map<std::string, Property> fields = {
        {"status", &Record::status},
        {"statuschanged", &Record::statusChangedDate},
        {"statusreason", &Record::statusReason},
        {"cancelable", &Record::isCancelable},
        {"reference", &Record::reference},
        {"test", &Record::isTest},
        {"firstname", &Record::customerFirstName},
        {"lastname", &Record::customerLastName},
        {"company", &Record::customerCompany},
        {"email", &Record::customerEmail},
        {"phonenumber", &Record::customerPhoneNumber},
        {"customerurl", &Record::customerURL},
        {"productname", &Record::productName},
        {"quantity", &Record::quantity},
        {"end", &Record::endDate},
    };
    std::string lowercased = name;
    store::lowercase(lowercased);
    const auto found = fields.find(lowercased);
    if (found == fields.end()) {
        return;
    }
    if (const auto* member = std::get_if<store::Text Record::*>(&found->second)) {
        record.** member = text;
    } else if (const auto* date = std::get_if<store::Date Record::*>(&found->second)) {
        record.** date = store::dateFromText(text);
    } else if (const auto* number = std::get_if<store::Number Record::*>(&found->second)) {
        record.** number = store::numberFromText(text);
    } else {
        record.*std::get<bool Record::*>(found->second) = store::flagFromText(text);
    }
}

std::shared_ptr<Record> readByQt(const std::string& answer) {
    std::shared_ptr<Record> record;
    QString text;
    QXmlStreamReader reader(
        QByteArray::fromRawData(answer.data(), static_cast<qsizetype>(answer.size())));
    while (!reader.atEnd()) {
        switch (reader.readNext()) {
        case QXmlStreamReader::StartElement:
            if (reader.name() == QLatin1String("subscription")) {
                record = std::make_shared<Record>();
            }
            text.clear();
            break;
        case QXmlStreamReader::Characters:
            text += reader.text();
            break;
        case QXmlStreamReader::EndElement:
            if (record) {
                storeField(*record, reader.name().toString().toStdString(), text.toStdString());
            }
            break;
        default:
            break;
        }
    }
    return record;
}

void fillFromTree(const xmlNode* parent, Record& record) {
    for (const xmlNode* node = parent->children; node != nullptr; node = node->next) {
        if (node->type != XML_ELEMENT_NODE) {
            continue;
        }
        fillFromTree(node, record);
        if (xmlFirstElementChild(const_cast<xmlNode*>(node)) == nullptr) {
            xmlChar* text = xmlNodeGetContent(node);
            storeField(record, reinterpret_cast<const char*>(node->name),
                       reinterpret_cast<const char*>(text));
            xmlFree(text);
        }
    }
}

std::shared_ptr<Record> readByLibxml2(const std::string& answer) {
    const auto* name = reinterpret_cast<const xmlChar*>("subscription");
    std::shared_ptr<Record> record;
    xmlDoc* document = xmlReadMemory(answer.data(), static_cast<int>(answer.size()), nullptr,
                                     nullptr, XML_PARSE_NONET);
    const xmlNode* root = xmlDocGetRootElement(document);
    const auto take = [&](const xmlNode* node) {
        record = std::make_shared<Record>();
        fillFromTree(node, *record);
    };
    if (xmlStrEqual(root->name, name) != 0) {
        take(root);
    }
    for (const xmlNode* node = root->children; node != nullptr; node = node->next) {
        if (node->type == XML_ELEMENT_NODE && xmlStrEqual(node->name, name) != 0) {
            take(node);
        }
    }
    xmlFreeDoc(document);
    return record;
}

void fillFromTree(const tinyxml2::XMLElement& parent, Record& record) {
    for (const auto* element = parent.FirstChildElement(); element != nullptr;
         element = element->NextSiblingElement()) {
        fillFromTree(*element, record);
        if (element->FirstChildElement() == nullptr) {
            storeField(record, element->Name(),
                       element->GetText() != nullptr ? element->GetText() : "");
        }
    }
}

std::shared_ptr<Record> readByTinyxml2(const std::string& answer) {
    std::shared_ptr<Record> record;
    tinyxml2::XMLDocument document;
    document.Parse(answer.data(), answer.size());
    const auto take = [&](const tinyxml2::XMLElement& element) {
        record = std::make_shared<Record>();
        fillFromTree(element, *record);
    };
    const auto* root = document.RootElement();
    if (std::string_view(root->Name()) == "subscription") {
        take(*root);
    }
    for (const auto* element = root->FirstChildElement("subscription"); element != nullptr;
         element = element->NextSiblingElement("subscription")) {
        take(*element);
    }
    return record;
}

std::shared_ptr<Record> readByBareExpat(const std::string& answer) {
    XML_Parser parser = XML_ParserCreate(nullptr);
    XML_SetElementHandler(
        parser, [](void*, const char*, const char**) {}, [](void*, const char*) {});
    XML_SetCharacterDataHandler(parser, [](void*, const char*, int) {});
    benchmark::DoNotOptimize(
        XML_Parse(parser, answer.data(), static_cast<int>(answer.size()), XML_TRUE));
    XML_ParserFree(parser);
    return nullptr;
}

std::shared_ptr<Record> readByUs(const std::string& answer) {
    return store::FastSpringSubscriptionParser(answer).parseSubscription();
}

using Reader = std::shared_ptr<Record> (*)(const std::string& answer);

void reading(benchmark::State& state, Reader read, std::size_t size) {
    const std::string answer = answerOf(size);
    const auto record = read(answer);
    if (read != readByBareExpat && (!record || record->quantity != 1U)) {
        state.SkipWithError("cannot read the record");
        return;
    }
    while (state.KeepRunning()) {
        benchmark::DoNotOptimize(read(answer));
    }
    state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(answer.size()));
}

// ---- a lookup on loopback ----

const test::LoopbackServer& server() {
    static const test::LoopbackServer server(test::httpReply(answerOf(kUsual)));
    test::setStorePort(server.port());
    return server;
}

void lookUp(benchmark::State& state) {
    server();
    while (state.KeepRunning()) {
        const auto record = store::FastSpringUtilities::subscriptionForStore("acme", "ABC");
        if (!record) {
            state.SkipWithError("the lookup returned without a record");
            return;
        }
    }
}

std::size_t append(char* bytes, std::size_t size, std::size_t count, void* body) {
    static_cast<std::string*>(body)->append(bytes, size * count);
    return size * count;
}

void bareLookUp(benchmark::State& state) {
    const std::string url = server().url("/fastspring.php?f=getsubscription&subscriptionRef=ABC");
    while (state.KeepRunning()) {
        std::string body;
        CURL* handle = curl_easy_init();
        curl_easy_setopt(handle, CURLOPT_URL, url.c_str());
        curl_easy_setopt(handle, CURLOPT_WRITEFUNCTION, append);
        curl_easy_setopt(handle, CURLOPT_WRITEDATA, &body);
        const bool failed = curl_easy_perform(handle) != CURLE_OK;
        curl_easy_cleanup(handle);
        readByBareExpat(body);
        if (failed) {
            state.SkipWithError("libcurl failed");
            return;
        }
    }
}

} // namespace

int main(int argumentCount, char** arguments) {
    const std::pair<const char*, Reader> readers[] = {
        {"ours", readByUs},         {"expat", readByBareExpat},   {"qt", readByQt},
        {"libxml2", readByLibxml2}, {"tinyxml2", readByTinyxml2},
    };
    for (const auto& [name, read] : readers) {
        const std::string reader = name;
        benchmark::RegisterBenchmark(("usual/" + reader).c_str(), reading, read, kUsual);
        benchmark::RegisterBenchmark(("large/" + reader).c_str(), reading, read, kLarge);
    }
    for (const std::size_t size : kSizes) {
        benchmark::RegisterBenchmark(("size/" + std::to_string(size)).c_str(), reading, readByUs,
                                     size);
    }
    // The runs of 100 and 200 lookups serve to count the system calls of 100.
    const std::pair<std::string, void (*)(benchmark::State&)> lookUps[] = {{"ours", lookUp},
                                                                           {"bare", bareLookUp}};
    for (const auto& [name, ask] : lookUps) {
        benchmark::RegisterBenchmark(("lookup/" + name).c_str(), ask)->UseRealTime();
        for (const int times : {100, 200}) {
            benchmark::RegisterBenchmark((std::string("calls/") + name).c_str(), ask)
                ->Iterations(times);
        }
    }
    benchmark::Initialize(&argumentCount, arguments);
    benchmark::RunSpecifiedBenchmarks();
}
