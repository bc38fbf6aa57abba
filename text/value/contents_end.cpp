#include <brevantis/asn1/text/contents_end.h>

#include <limits>

#include <brevantis/asn1/text/message.h>
#include <brevantis/asn1/text/value.h>

namespace asn1text {

using asn1data::WalkElement;

namespace {

std::size_t contentsStart(const WalkElement& element) {
    return std::size_t{element.offset} + element.headerLength;
}

bool isDefinite(const WalkElement& element) {
    return element.contentLength != ASN1IndefiniteLength;
}

/// Where the contents end as the header tells.
std::size_t promisedEnd(const WalkElement& element) {
    return contentsStart(element) +
           (isDefinite(element) ? static_cast<unsigned>(element.contentLength) : 0);
}

/// Where what is in the element begins. Offsets in segments that have been put together count from
/// their start.
std::size_t insideStart(const WalkElement& element) {
    return element.segmented ? 0 : contentsStart(element);
}

/// Size of the typed value in an OCTET STRING with its end-of-contents; 0 if these are not there.
std::size_t typedSize(const WalkElement& element) {
    OctetStore store;
    return firstElementSize(valueOctets(element, std::numeric_limits<std::size_t>::max(), store));
}

} // namespace

void ContentsEnd::reach(const Reached& end) {
    // Open values are reported late, so the last element reported need not be the last one.
    if (!reached_.empty() && end.offset >= reached_.back().offset) {
        reached_.back() = end;
    }
}

void ContentsEnd::enter(const WalkElement& element) {
    reached_.push_back({insideStart(element), true});
}

void ContentsEnd::primitive(const WalkElement& element) {
    reach({promisedEnd(element), isDefinite(element)});
}

ContentsEnd::Gap ContentsEnd::leave(const WalkElement& element) {
    Reached inside = reached_.back();
    reached_.pop_back();
    const bool definite = isDefinite(element);
    if (element.encapsulates) {
        reach({promisedEnd(element), definite});
        if (!inside.known) {
            const std::size_t size = typedSize(element);
            inside = {insideStart(element) + size, size != 0};
        }
    } else {
        reach({inside.offset, inside.known && definite});
    }
    if (!inside.known || (!definite && !element.segmented)) {
        return {};
    }
    const std::size_t end = element.segmented ? element.value.octetCount : promisedEnd(element);
    const bool hides = element.encapsulates && end > inside.offset;
    return {static_cast<long long>(end) - static_cast<long long>(inside.offset), inside.offset,
            hides ? end - inside.offset : 0};
}

} // namespace asn1text
