#include <algorithm>
#include <cstring>
#include <optional>

#include <brevantis/asn1/asn1data/walk.h>
#include <brevantis/asn1/runtime/header.h>
#include <brevantis/asn1/runtime/object_identifier_coding.h>
#include <brevantis/asn1/runtime/status.h>

namespace asn1data {

namespace {

/// Reads a path text step by step, against the steps of the elements on the way to its end.
class PathText {
public:
    PathText(const char* text, const unsigned char* end) : text_(text), rest_(text), end_(end) {}

    /// Whether names and places follow each other as they do in a path.
    bool isWellFormed() const {
        const char* next = text_;
        while (*next != '\0') {
            if (*next == '[') {
                next = behindPlace(next + 1);
                if (next == nullptr) {
                    return false;
                }
                continue;
            }
            next += next != text_ && *next == '.' ? 1 : 0;
            const std::size_t letters = std::strcspn(next, ".[");
            if (letters == 0 || (next != text_ && next[-1] != '.')) {
                return false;
            }
            next += letters;
        }
        return true;
    }

    /// How far the steps to an element, which lies in the one that was entered last, agree with the
    /// text.
    /// @return what is left of the text behind them, null when they differ
    const char* behind(const WalkElement& element) { return behind(element, element.step); }

    /// The elements to come lie in this one.
    /// @param rest what is left of the text behind it
    void enter(const WalkElement& element, const char* rest) {
        entered_ = element.step;
        rest_ = rest;
    }

private:
    /// @return behind the bracket that closes an index or an identifier, null when it is neither
    static const char* behindPlace(const char* text) {
        for (;;) {
            const std::size_t digits = std::strspn(text, "0123456789");
            text += digits;
            if (digits == 0 || (*text != ']' && *text != '.')) {
                return nullptr;
            }
            if (*text++ == ']') {
                return text;
            }
        }
    }

    const char* behind(const WalkElement& element, const WalkStep* step) {
        if (step == entered_ || step->kind == StepKind::Message) {
            return rest_;
        }
        const char* rest = step->outer == entered_ ? rest_ : behind(element, step->outer);
        if (rest == nullptr || *rest == '\0') {
            // A path may end where an alternative or an object is still to be named.
            return rest != nullptr && sharesOctets(*step) ? rest : nullptr;
        }
        if (step->kind == StepKind::Index) {
            return behindIndex(element, *step, rest);
        }
        rest += rest != text_ && *rest == '.' ? 1 : 0;
        const bool addition = step->kind == StepKind::Addition;
        const char* name = addition ? "addition" : step->name;
        while (*name != '\0' && *name == *rest) {
            ++name;
            ++rest;
        }
        if (*name != '\0') {
            return nullptr;
        }
        if (addition) {
            return behindIndex(element, *step, rest);
        }
        return *rest == '\0' || *rest == '.' || *rest == '[' ? rest : nullptr;
    }

    static bool sharesOctets(const WalkStep& step) {
        return step.kind == StepKind::Alternative || step.kind == StepKind::Object;
    }

    const char* behindIndex(const WalkElement& element, const WalkStep& step, const char* text) {
        if (*text++ != '[') {
            return nullptr;
        }
        const char* const first = text;
        const unsigned long long index = readArc(text);
        if (*text == '.') {
            return &step == element.step && hasIdentifier(element, first) ? behindPlace(first)
                                                                          : nullptr;
        }
        return index == step.index ? text + 1 : nullptr;
    }

    /// Whether an element is a record that begins with an identifier.
    /// @param text the arcs, up to the bracket
    bool hasIdentifier(const WalkElement& element, const char* text) {
        const TypeDescription* const type = element.type;
        if (type == nullptr || type->shape != Shape::Sequence || type->elementCount == 0 ||
            type->elements[0].tagging != Tagging::Untagged ||
            type->elements[0].type->shape != Shape::ObjectIdentifier) {
            return false;
        }
        if (element.assembled) { // nothing in it is handed out
            return true;
        }
        const unsigned char* const contents = element.data + element.headerLength;
        if (differsAtItsEnd(contents, text)) {
            return false;
        }
        ASN1CTXT reader;
        rtInitReader(&reader, contents, static_cast<unsigned>(end_ - contents));
        ASN1OBJID identifier;
        if (xd_objid(&reader, &identifier, ASN1TagExplicit, 0) != ASN1S_SUCCESS) {
            return false;
        }
        for (unsigned count = 0; count != identifier.numids; ++text) {
            if (readArc(text) != identifier.subid[count++]) {
                return false;
            }
            if (*text == ']') {
                return count == identifier.numids;
            }
        }
        return false;
    }

    /// Whether an identifier, most of which differ from each other in their last arc, does so in
    /// the seven bits that end its octets.
    bool differsAtItsEnd(const unsigned char* contents, const char* text) {
        if (text != identifier_) {
            identifier_ = text;
            unsigned count = 1;
            for (last_ = readArc(text); *text == '.'; ++count) {
                last_ = readArc(++text);
            }
            comparable_ = count > 2; // the first two share their octets
        }
        const auto left = static_cast<std::size_t>(end_ - contents);
        return comparable_ && left > 2 && contents[0] == 6 && contents[1] < 0x80 &&
               contents[1] + std::size_t{1} < left &&
               ((contents[1 + contents[1]] ^ last_) & 0x7F) != 0;
    }

    /// Reads digits, and moves behind them. What 32 bits do not hold becomes what no arc and no
    /// index is.
    static unsigned long long readArc(const char*& text) {
        constexpr unsigned long long none = 1ULL << 32;
        unsigned long long number = 0;
        for (; *text >= '0' && *text <= '9'; ++text) {
            number = std::min(none, number * 10 + static_cast<unsigned>(*text - '0'));
        }
        return number;
    }

    const char* text_;
    const char* rest_;                  ///< behind the element that was entered last
    const WalkStep* entered_ = nullptr; ///< to it
    const unsigned char* end_;          ///< of the message
    // What was found out of an identifier in the text, and the text.
    const char* identifier_ = nullptr;
    unsigned long long last_ = 0;
    bool comparable_ = false;
};

/// One path on its way through a message.
struct Search {
    PathText path;
    ElementSpan* span;
    unsigned depth = 0; ///< of the elements that the next one of the path is among
    bool over = false;
};

/// Goes straight to the elements that paths name.
class Finder : public WalkVisitor {
public:
    enum : std::size_t { MaximumSearches = 16 };

    /// @param end behind the message
    explicit Finder(const unsigned char* end) : end_(end) {}

    void add(const char* path, ElementSpan& span) {
        span = ElementSpan{};
        if (path == nullptr || !PathText(path, end_).isWellFormed()) {
            span.status = ASN1S_INVALID_PARAMETER;
            return;
        }
        span.status = ASN1S_MISSING_ELEMENT;
        searches_[count_++].emplace(Search{PathText(path, end_), &span});
        ++open_;
    }
    bool isDone() const { return open_ == 0; }
    /// The message fails in front of what has not been found.
    void fail(const WalkResult& result) {
        forEach([&](Search& search) {
            search.span->status = result.status;
            search.span->failure = result.failure;
        });
    }

    WalkAction enter(const WalkElement& element) override {
        bool enters = false;
        forEach([&](Search& search) {
            const char* const rest = restOf(search, element);
            if (rest != nullptr && *rest == '\0') {
                found(search, element);
            } else if (rest != nullptr) {
                search.path.enter(element, rest);
                search.depth = element.depth + 1;
                enters = true;
            }
        });
        return isDone() ? WalkAction::Stop : enters ? WalkAction::Continue : WalkAction::Skip;
    }
    WalkAction leave(const WalkElement& element) override {
        forEach([&](Search& search) {
            if (search.depth > element.depth) { // its way is over without the last element
                close(search);
            }
        });
        return isDone() ? WalkAction::Stop : WalkAction::Continue;
    }
    WalkAction primitive(const WalkElement& element) override {
        forEach([&](Search& search) {
            const char* const rest = restOf(search, element);
            if (rest != nullptr && *rest == '\0') {
                found(search, element);
            }
        });
        return isDone() ? WalkAction::Stop : WalkAction::Continue;
    }

private:
    template <class Operation>
    void forEach(Operation operation) {
        for (std::size_t i = 0; i < count_; ++i) {
            if (!searches_[i]->over) {
                operation(*searches_[i]);
            }
        }
    }
    static const char* restOf(Search& search, const WalkElement& element) {
        return search.depth == element.depth ? search.path.behind(element) : nullptr;
    }
    void close(Search& search) {
        search.over = true;
        --open_;
    }
    void found(Search& search, const WalkElement& element) {
        close(search);
        ElementSpan& span = *search.span;
        if (element.assembled) {
            span.status = ASN1S_NOT_SUPPORTED;
            return;
        }
        const unsigned size = elementSize(element, end_);
        if (size == 0) {
            span.status = ASN1S_END_OF_BUFFER;
            return;
        }
        span.status = ASN1S_SUCCESS;
        span.data = element.data;
        span.size = size;
        span.offset = element.offset;
        span.contentOffset = element.offset + element.headerLength;
        span.contentLength = element.contentLength;
        span.type = element.type;
    }

    const unsigned char* end_;
    std::optional<Search> searches_[MaximumSearches];
    std::size_t count_ = 0;
    std::size_t open_ = 0;
};

} // namespace

void findElements(const TypeDescription& type, const unsigned char* message, std::size_t size,
                  const char* const* paths, ElementSpan* spans, std::size_t count) {
    for (std::size_t next = 0; next < count;) {
        Finder finder(message != nullptr ? message + size : nullptr);
        const std::size_t last = std::min<std::size_t>(count, next + Finder::MaximumSearches);
        for (; next < last; ++next) {
            finder.add(paths[next], spans[next]);
        }
        if (!finder.isDone()) {
            const WalkResult result = walk(type, message, size, finder);
            if (result.status != ASN1S_SUCCESS) {
                finder.fail(result);
            }
        }
    }
}

ElementSpan findElement(const TypeDescription& type, const unsigned char* message, std::size_t size,
                        const char* path) {
    ElementSpan span;
    findElements(type, message, size, &path, &span, 1);
    return span;
}

} // namespace asn1data
