#include <cstring>

#include <brevantis/asn1/asn1data/walk.h>
#include <brevantis/asn1/runtime/status.h>

namespace asn1data {

namespace {

/// Reads a path text step by step, against the steps of an element.
class PathText {
public:
    explicit PathText(const char* text) : text_(text) {}

    /// Whether names and places follow each other as they do in a path.
    bool isWellFormed() const {
        const char* next = text_;
        while (*next != '\0') {
            if (*next == '[') {
                const std::size_t digits = std::strspn(next + 1, "0123456789");
                if (digits == 0 || next[digits + 1] != ']') {
                    return false;
                }
                next += digits + 2;
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

    /// How far the steps to an element agree with the text.
    /// @return what is left of the text behind them, null when they differ
    const char* behind(const WalkStep* step) const {
        if (step->kind == StepKind::Message) {
            return text_;
        }
        const char* rest = behind(step->outer);
        if (rest == nullptr || *rest == '\0') {
            // A path may end where an alternative or an object is still to be named.
            return rest != nullptr && sharesOctets(*step) ? rest : nullptr;
        }
        const bool indexed = step->kind == StepKind::Index || step->kind == StepKind::Addition;
        if (step->kind != StepKind::Index) {
            rest += rest != text_ && *rest == '.' ? 1 : 0;
            const char* const name = step->kind == StepKind::Addition ? "addition" : step->name;
            const std::size_t length = std::strlen(name);
            if (std::strncmp(rest, name, length) != 0) {
                return nullptr;
            }
            rest += length;
        }
        rest = indexed ? behindIndex(rest, step->index) : rest;
        return rest != nullptr && std::strchr(".[", *rest) != nullptr ? rest : nullptr;
    }

private:
    static bool sharesOctets(const WalkStep& step) {
        return step.kind == StepKind::Alternative || step.kind == StepKind::Object;
    }
    static const char* behindIndex(const char* text, unsigned wanted) {
        if (*text != '[') {
            return nullptr;
        }
        unsigned long long index = 0;
        for (++text; *text != ']'; ++text) {
            index = index > wanted ? index : index * 10 + static_cast<unsigned>(*text - '0');
        }
        return index == wanted ? text + 1 : nullptr;
    }

    const char* text_;
};

class Finder : public WalkVisitor {
public:
    Finder(const char* path, const unsigned char* end, ElementSpan& span)
        : path_(path), end_(end), span_(span) {}

    WalkAction enter(const WalkElement& element) override {
        const char* const rest = path_.behind(element.step);
        if (rest == nullptr) {
            return WalkAction::Skip;
        }
        return *rest == '\0' ? found(element) : WalkAction::Continue;
    }
    WalkAction leave(const WalkElement& /*element*/) override {
        // What was on the way to the element is over without it.
        return WalkAction::Stop;
    }
    WalkAction primitive(const WalkElement& element) override {
        const char* const rest = path_.behind(element.step);
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
    if (path == nullptr || !PathText(path).isWellFormed()) {
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
