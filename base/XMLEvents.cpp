#include "base/XMLEvents.h"

#include "base/Handle.h"
#include "base/Iconv.h"

#include <algorithm>
#include <climits>
#include <cstddef>
#include <cstdlib>
#include <cstring>
#include <exception>
#include <functional>
#include <iterator>
#include <new>
#include <optional>
#include <random>
#include <string>

#include <expat.h>
#include <strings.h>

namespace base {
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

// Every element gets all defaults that are declared for its name: with 5,000 of them 1 MiB of
// elements took 1.7 s, with 64 it takes 35 ms (measured 2026-11-23). Answers of the store declare
// none.
constexpr int kMostDeclaredAttributes = 64;

constexpr const char* kUTF8 = "UTF-8";

// What a document may declare besides expat's own four. Not all that iconv knows, since it is the
// network that names it, and some of those cannot be described by a table of 256 characters.
constexpr const char* kEncodings[] = {
    "ISO-8859-2",   "ISO-8859-3",   "ISO-8859-4",   "ISO-8859-5",   "ISO-8859-6",
    "ISO-8859-7",   "ISO-8859-8",   "ISO-8859-9",   "ISO-8859-10",  "ISO-8859-11",
    "ISO-8859-13",  "ISO-8859-14",  "ISO-8859-15",  "ISO-8859-16",  "windows-1250",
    "windows-1251", "windows-1252", "windows-1253", "windows-1254", "windows-1255",
    "windows-1256", "windows-1257", "windows-1258", "KOI8-R",       "KOI8-U",
};

/// The memory of one session: expat asks for some thirty pieces, of which few are given back before
/// its end. A bump in a buffer serves them; what does not fit comes from the heap. A session within
/// a handler of another one on the same thread takes from the outer one's, which outlives it.
class Arena {
  public:
    Arena() {
        if (current == nullptr) {
            current = this;
        }
    }
    Arena(const Arena&) = delete;
    Arena& operator=(const Arena&) = delete;
    ~Arena() {
        if (current == this) {
            current = nullptr;
        }
    }

    static void* allocate(std::size_t size) noexcept {
        if (size > kBytes - std::min(current->used_ + sizeof(Piece), kBytes)) {
            return std::malloc(size);
        }
        auto* const piece = new (current->bytes_ + current->used_) Piece{size};
        current->used_ +=
            sizeof(Piece) + (size + sizeof(Piece) - 1) / sizeof(Piece) * sizeof(Piece);
        return piece + 1;
    }

    static void* reallocate(void* old, std::size_t size) noexcept {
        if (old == nullptr || !current->holds(old)) {
            return old == nullptr ? allocate(size) : std::realloc(old, size);
        }
        void* const memory = allocate(size);
        if (memory != nullptr) {
            std::memcpy(memory, old, std::min(size, (static_cast<Piece*>(old) - 1)->size));
        }
        return memory;
    }

    static void release(void* memory) noexcept {
        if (!current->holds(memory)) {
            std::free(memory);
        }
    }

  private:
    /// What stands before each piece.
    struct alignas(std::max_align_t) Piece {
        std::size_t size;
    };
    static constexpr std::size_t kBytes = std::size_t{16} * 1024;

    bool holds(const void* memory) const {
        return !std::less<>()(memory, static_cast<const void*>(bytes_)) &&
               std::less<>()(memory, static_cast<const void*>(bytes_ + kBytes));
    }

    static thread_local Arena* current;

    alignas(std::max_align_t) std::byte bytes_[kBytes];
    std::size_t used_ = 0;
};

thread_local Arena* Arena::current = nullptr;

/// Random once for the process: expat would ask the system for each parser.
unsigned long hashSalt() {
    static const unsigned long salt = [] {
        std::random_device source;
        return (static_cast<unsigned long>(source()) << 16U ^ source()) | 1U; // 0 stands for none
    }();
    return salt;
}

/// One session of expat over a document: passes its callbacks on to the delegate and keeps
/// exceptions from crossing the C library.
class Session {
  public:
    /// @param encoding the document's, or null for the one that it declares.
    Session(XMLEventDelegate& delegate, const char* encoding)
        : delegate_(delegate), handle_(XML_ParserCreate_MM(encoding, &kMemory, nullptr)) {
        if (!handle_) {
            throw std::bad_alloc();
        }
        XML_Parser parser = handle_.get();
        XML_SetUserData(parser, this);
        XML_SetHashSalt(parser, hashSalt());
        XML_SetElementHandler(parser, startElement, endElement);
        XML_SetCharacterDataHandler(parser, characters);
        XML_SetCdataSectionHandler(parser, startSection, endSection);
        XML_SetAttlistDeclHandler(parser, attributeDeclaration);
        XML_SetUnknownEncodingHandler(parser, unknownEncoding, this);
        XML_SetBillionLaughsAttackProtectionActivationThreshold(parser, kAmplificationThreshold);
        XML_SetBillionLaughsAttackProtectionMaximumAmplification(parser, kAmplificationFactor);
    }

    /// Whether the document is whole; none, with no event delivered, when it calls its UTF-8
    /// "utf8", which expat does not know.
    std::optional<bool> parse(std::string_view document) {
        const bool whole = feed(document);
        if (failure_) {
            std::rethrow_exception(failure_);
        }
        if (isCalledUTF8_) {
            return std::nullopt;
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

    static Session& self(void* context) { return *static_cast<Session*>(context); }

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
        Session& session = self(context);
        if (++session.depth_ > kDeepestNesting) {
            session.stop();
        }
        session.deliver(
            [=](auto& delegate) { delegate.didStartElement(name, XMLAttributes(attributes)); });
    }

    static void endElement(void* context, const char* name) {
        Session& session = self(context);
        --session.depth_;
        session.deliver([=](auto& delegate) { delegate.didEndElement(name); });
    }

    static void characters(void* context, const char* text, int length) {
        Session& session = self(context);
        if (!session.inSection_) {
            session.deliver([=](auto& delegate) {
                delegate.foundCharacters({text, static_cast<std::size_t>(length)});
            });
        }
    }

    static void attributeDeclaration(void* context, const char* /*element*/,
                                     const char* /*attribute*/, const char* /*type*/,
                                     const char* /*value*/, int /*isRequired*/) {
        Session& session = self(context);
        if (++session.declaredAttributes_ > kMostDeclaredAttributes) {
            session.stop();
        }
    }

    static void startSection(void* context) { self(context).inSection_ = true; }
    static void endSection(void* context) { self(context).inSection_ = false; }

    /// Describes a single-byte encoding by what iconv makes of each of its 256 bytes.
    static int unknownEncoding(void* context, const char* name, XML_Encoding* encoding) {
        const auto* const known =
            std::find_if(std::begin(kEncodings), std::end(kEncodings),
                         [=](const char* entry) { return strcasecmp(entry, name) == 0; });
        self(context).isCalledUTF8_ = strcasecmp(name, "utf8") == 0;
        if (known == std::end(kEncodings)) {
            return XML_STATUS_ERROR;
        }
        try {
            const Iconv conversion("UTF-32LE", *known);
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

    static constexpr XML_Memory_Handling_Suite kMemory{Arena::allocate, Arena::reallocate,
                                                       Arena::release};

    XMLEventDelegate& delegate_;
    Arena arena_; // before what is in it
    Handle<XML_ParserStruct, XML_ParserFree> handle_;
    std::exception_ptr failure_;
    int depth_ = 0;
    int declaredAttributes_ = 0;
    bool isCalledUTF8_ = false;
    bool inSection_ = false;
    bool stopped_ = false;
};

} // namespace

std::optional<std::string_view> XMLAttributes::value(std::string_view name) const {
    for (const char* const* pair = pairs_; *pair != nullptr; pair += 2) {
        if (*pair == name) {
            return pair[1];
        }
    }
    return std::nullopt;
}

bool parseXML(std::string_view document, XMLEventDelegate& delegate) {
    const auto whole = Session(delegate, nullptr).parse(document);
    return whole ? *whole : Session(delegate, kUTF8).parse(document).value_or(false);
}

} // namespace base
