#include <brevantis/asn1/text/elements.h>

#include <algorithm>
#include <climits>

#include <brevantis/asn1/asn1data/walk.h>
#include <brevantis/asn1/runtime/header.h>
#include <brevantis/asn1/text/message.h>

namespace asn1text {

namespace {

using asn1data::TypeDescription;

constexpr std::size_t EndOfContents = 2;
constexpr unsigned DeepestGuess = 64;
constexpr unsigned DeepestNesting = 200; // of elements that anybody looks at

bool isKnown(const PlainElement& element) {
    return element.tagClass == 0 && asn1data::universalTypeName(element.number) != nullptr;
}

/// Universal tags that are constructed in any encoding.
bool isAlwaysConstructed(unsigned number) {
    return number == 8 || number == 11 || number == 16 || number == 17 || number == 29;
}

/// Whether the contents of a primitive element of a built-in type are read as one.
bool reads(const TypeDescription& type, const PlainElement& element) {
    asn1data::WalkVisitor nothing;
    const asn1data::WalkResult result =
        asn1data::walk(type, element.octets.data(), element.octets.size(), nothing);
    return result.status == 0 && result.consumed == element.octets.size();
}

bool looksRight(const PlainElement& element, unsigned depth);

bool lookRight(Octets octets, unsigned depth) {
    while (!octets.empty()) {
        const std::optional<PlainElement> element = firstElement(octets);
        if (!element || !looksRight(*element, depth)) {
            return false;
        }
        octets = octets.subspan(element->octets.size());
    }
    return true;
}

bool looksRight(const PlainElement& element, unsigned depth) {
    const bool universal = element.tagClass == 0;
    if (depth == 0 || (universal && !isKnown(element)) || element.number > 1000) {
        return false;
    }
    if (element.constructed) {
        return lookRight(element.contents, depth - 1);
    }
    if (universal && isAlwaysConstructed(element.number)) {
        return false;
    }
    const TypeDescription* const type = builtinType(element);
    return type == nullptr || reads(*type, element);
}

bool elementsEnd(Octets octets, unsigned depth) {
    while (!octets.empty()) {
        const std::optional<PlainElement> element =
            depth != 0 ? firstElement(octets) : std::nullopt;
        if (!element || (element->constructed && !elementsEnd(element->contents, depth - 1))) {
            return false;
        }
        octets = octets.subspan(element->octets.size());
    }
    return true;
}

} // namespace

std::optional<PlainElement> firstElement(Octets octets) noexcept {
    ASN1Header header;
    const auto count = static_cast<unsigned>(std::min<std::size_t>(octets.size(), INT_MAX));
    if (octets.empty() || octets[0] == 0 || rtReadHeader(octets.data(), count, &header) != 0) {
        return std::nullopt;
    }
    const std::size_t size = firstElementSize(octets);
    if (size == 0) {
        return std::nullopt;
    }
    PlainElement element;
    element.octets = octets.first(size);
    element.header = header.size;
    element.indefinite = header.length == ASN1IndefiniteLength;
    element.contents =
        octets.subspan(header.size, size - header.size - (element.indefinite ? EndOfContents : 0));
    element.tagClass = octets[0] >> 6;
    element.number = header.tag & 0x1FFFFFFF;
    element.constructed = (octets[0] & 0x20) != 0;
    return element;
}

std::string tagText(const PlainElement& element) {
    constexpr const char* classes[] = {"UNIVERSAL ", "APPLICATION ", "", "PRIVATE "};
    if (isKnown(element)) {
        return asn1data::universalTypeName(element.number);
    }
    return "[" + (classes[element.tagClass] + std::to_string(element.number)) + "]";
}

const TypeDescription* builtinType(const PlainElement& element) noexcept {
    namespace builtin = asn1data::builtin;
    constexpr const TypeDescription* known[] = {
        &builtin::boolean,          &builtin::bigInteger,    &builtin::null,
        &builtin::objectIdentifier, &builtin::octetString,   &builtin::bitString,
        &builtin::utf8String,       &builtin::numericString, &builtin::printableString,
        &builtin::teletexString,    &builtin::ia5String,     &builtin::utcTime,
        &builtin::generalizedTime,  &builtin::visibleString, &builtin::generalString,
        &builtin::universalString,  &builtin::bmpString};
    for (const TypeDescription* const type : known) {
        if (!element.octets.empty() && type->tag == element.octets[0]) {
            return type;
        }
    }
    return nullptr;
}

bool areElements(Octets octets) noexcept {
    return elementsEnd(octets, DeepestNesting);
}

bool holdElements(Octets octets) noexcept {
    const std::optional<PlainElement> first = firstElement(octets);
    if (!first || !isKnown(*first) || first->octets.size() < 3) {
        return false;
    }
    // Several primitives in a row are chance.
    return (first->constructed || first->octets.size() == octets.size()) &&
           lookRight(octets, DeepestGuess);
}

} // namespace asn1text
