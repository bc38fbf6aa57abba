#include <algorithm>
#include <cstring>

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
    const char* behind(const WalkElement& element) const { return behind(element, element.step); }

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

    const char* behind(const WalkElement& element, const WalkStep* step) const {
        if (step == entered_ || step->kind == StepKind::Message) {
            return rest_;
        }
        const char* rest = behind(element, step->outer);
        if (rest == nullptr || *rest == '\0') {
            // A path may end where an alternative or an object is still to be named.
            return rest != nullptr && sharesOctets(*step) ? rest : nullptr;
        }
        if (step->kind == StepKind::Index) {
            return behindIndex(element, *step, rest);
        }
        rest += rest != text_ && *rest == '.' ? 1 : 0;
        const bool addition = step->kind == StepKind::Addition;
        const char* const name = addition ? "addition" : step->name;
        const std::size_t length = std::strlen(name);
        if (std::strncmp(rest, name, length) != 0) {
            return nullptr;
        }
        rest += length;
        if (addition) {
            return behindIndex(element, *step, rest);
        }
        return *rest == '\0' || *rest == '.' || *rest == '[' ? rest : nullptr;
    }

    static bool sharesOctets(const WalkStep& step) {
        return step.kind == StepKind::Alternative || step.kind == StepKind::Object;
    }

    const char* behindIndex(const WalkElement& element, const WalkStep& step,
                            const char* text) const {
        if (*text++ != '[') {
            return nullptr;
        }
        const std::size_t digits = std::strspn(text, "0123456789");
        if (text[digits] == '.') {
            return &step == element.step && hasIdentifier(element, text) ? behindPlace(text)
                                                                         : nullptr;
        }
        return readArc(text) == step.index ? text + 1 : nullptr;
    }

    /// Whether an element is a record that begins with an identifier.
    /// @param text the arcs, up to the bracket
    bool hasIdentifier(const WalkElement& element, const char* text) const {
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
};

/// Goes straight to the element that a path names.
class Finder : public WalkVisitor {
public:
    Finder(const char* path, const unsigned char* end, ElementSpan& span)
        : path_(path, end), end_(end), span_(span) {}

    WalkAction enter(const WalkElement& element) override {
        const char* const rest = path_.behind(element);
        if (rest == nullptr) {
            return WalkAction::Skip;
        }
        if (*rest == '\0') {
            return found(element);
        }
        path_.enter(element, rest);
        return WalkAction::Continue;
    }
    WalkAction leave(const WalkElement& /*element*/) override {
        // What was on the way to the element is over without it.
        return WalkAction::Stop;
    }
    WalkAction primitive(const WalkElement& element) override {
        const char* const rest = path_.behind(element);
        return rest != nullptr && *rest == '\0' ? found(element) : WalkAction::Continue;
    }

private:
    WalkAction found(const WalkElement& element) {
        if (element.assembled) {
            span_.status = ASN1S_NOT_SUPPORTED;
            return WalkAction::Stop;
        }
        const unsigned size = elementSize(element, end_);
        if (size == 0) {
            span_.status = ASN1S_END_OF_BUFFER;
            return WalkAction::Stop;
        }
        span_.status = ASN1S_SUCCESS;
        span_.data = element.data;
        span_.size = size;
        span_.offset = element.offset;
        span_.contentOffset = element.offset + element.headerLength;
        span_.contentLength = element.contentLength;
        span_.type = element.type;
        return WalkAction::Stop;
    }

    PathText path_;
    const unsigned char* end_;
    ElementSpan& span_;
};

} // namespace

ElementSpan findElement(const TypeDescription& type, const unsigned char* message, std::size_t size,
                        const char* path) {
    ElementSpan span{};
    if (path == nullptr || !PathText(path, nullptr).isWellFormed()) {
        span.status = ASN1S_INVALID_PARAMETER;
        return span;
    }
    span.status = ASN1S_MISSING_ELEMENT;
    Finder finder(path, message != nullptr ? message + size : nullptr, span);
    const WalkResult result = walk(type, message, size, finder);
    if (result.status != ASN1S_SUCCESS) {
        span.status = result.status;
        span.failure = result.failure;
    }
    return span;
}

} // namespace asn1data
