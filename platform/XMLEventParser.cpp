#include "platform/XMLEventParser.h"

#include "platform/Iconv.h"

#include <climits>
#include <cstddef>
#include <exception>
#include <memory>
#include <new>
#include <string>

#include <expat.h>

namespace platform {
namespace {

// Expat's own threshold, 8 MiB, would let a body of 1 MiB grow eightfold before it is looked at,
// and its own factor, 100, would let it grow to 100 MiB then. Answers of the store declare no
// entities.
constexpr unsigned long long kAmplificationThreshold = 256ULL * 1024;
constexpr float kAmplificationFactor = 4;

// Documents up to this size are parsed in one go, which is faster by a tenth (measured 2026-11-22);
// answers from the network are never larger.
constexpr std::size_t kWhole = std::size_t{16} << 20U;
constexpr std::size_t kParts = 32;

using Handle = std::unique_ptr<XML_ParserStruct, decltype(&XML_ParserFree)>;

/// One run of expat over a document: passes its callbacks on to the delegate and keeps exceptions
/// from crossing the C library.
class Run {
  public:
    explicit Run(XMLEventParserDelegate& delegate)
        : delegate_(delegate), handle_(XML_ParserCreate(nullptr), XML_ParserFree) {
        if (!handle_) {
            throw std::bad_alloc();
        }
        XML_Parser parser = handle_.get();
        XML_SetUserData(parser, this);
        XML_SetElementHandler(parser, startElement, endElement);
        XML_SetCharacterDataHandler(parser, characters);
        XML_SetCdataSectionHandler(parser, startSection, endSection);
        XML_SetUnknownEncodingHandler(parser, unknownEncoding, nullptr);
        XML_SetBillionLaughsAttackProtectionActivationThreshold(parser, kAmplificationThreshold);
        XML_SetBillionLaughsAttackProtectionMaximumAmplification(parser, kAmplificationFactor);
    }

    bool parse(std::string_view document) {
        const bool whole = feed(document);
        if (failure_) {
            std::rethrow_exception(failure_);
        }
        if (!whole) {
            delegate_.parseErrorOccurred();
        }
        return whole;
    }

  private:
    /// Hands the document to expat: at once, or a large one in parts, because expat copies what it
    /// is given. The parts grow with the document, since it reads a tag that spans several anew
    /// each time.
    bool feed(std::string_view document) {
        const std::size_t part =
            document.size() <= kWhole ? document.size() : document.size() / kParts;
        while (document.size() > part) {
            if (!feed(document.substr(0, part), XML_FALSE)) {
                return false;
            }
            document.remove_prefix(part);
        }
        return feed(document, XML_TRUE);
    }

    bool feed(std::string_view part, int isFinal) {
        return part.size() <= INT_MAX &&
               XML_Parse(handle_.get(), part.data(), static_cast<int>(part.size()), isFinal) ==
                   XML_STATUS_OK;
    }

    static Run& self(void* context) { return *static_cast<Run*>(context); }

    /// Expat may deliver one more event after it was told to stop; that one is dropped.
    template <class Event>
    void deliver(Event event) noexcept {
        if (stopped_) {
            return;
        }
        try {
            event(delegate_);
        } catch (...) {
            failure_ = std::current_exception();
            stop();
        }
    }

    void stop() {
        stopped_ = true;
        XML_StopParser(handle_.get(), XML_FALSE);
    }

    static void startElement(void* context, const char* name, const char** attributes) {
        Run& run = self(context);
        if (++run.depth_ > XMLEventParser::kDeepestNesting) {
            run.stop();
        }
        run.deliver(
            [=](auto& delegate) { delegate.didStartElement(name, XMLAttributes(attributes)); });
    }

    static void endElement(void* context, const char* name) {
        Run& run = self(context);
        --run.depth_;
        run.deliver([=](auto& delegate) { delegate.didEndElement(name); });
    }

    static void characters(void* context, const char* text, int length) {
        Run& run = self(context);
        if (!run.inSection_) {
            run.deliver([=](auto& delegate) {
                delegate.foundCharacters({text, static_cast<std::size_t>(length)});
            });
        }
    }

    static void startSection(void* context) { self(context).inSection_ = true; }
    static void endSection(void* context) { self(context).inSection_ = false; }

    /// Describes a single-byte encoding by what iconv makes of each of its 256 bytes.
    static int unknownEncoding(void* /*context*/, const char* name, XML_Encoding* encoding) {
        try {
            const Iconv conversion("UTF-32LE", name);
            if (!conversion.isValid()) {
                return XML_STATUS_ERROR;
            }
            for (unsigned byte = 0; byte < 256; ++byte) {
                const char character = static_cast<char>(byte);
                const auto point = conversion.convert({&character, 1});
                encoding->map[byte] = point ? codePoint(*point) : -1;
            }
        } catch (const std::bad_alloc&) {
            return XML_STATUS_ERROR;
        }
        encoding->data = nullptr;
        encoding->convert = nullptr;
        encoding->release = nullptr;
        return XML_STATUS_OK;
    }

    static int codePoint(std::string_view utf32) {
        if (utf32.size() != 4) {
            return -1;
        }
        const auto byte = [&](std::size_t at) { return static_cast<unsigned char>(utf32[at]); };
        return byte(0) | byte(1) << 8 | byte(2) << 16;
    }

    XMLEventParserDelegate& delegate_;
    Handle handle_;
    std::exception_ptr failure_;
    int depth_ = 0;
    bool inSection_ = false;
    bool stopped_ = false;
};

} // namespace

bool XMLEventParser::parse(XMLEventParserDelegate& delegate) const {
    return Run(delegate).parse(document_);
}

} // namespace platform
