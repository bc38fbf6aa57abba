#include "contents_end.h"

namespace derview {

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

} // namespace

void ContentsEnd::reach(const Reached& end) {
    // Open values are reported late, so the last element reported need not be the last one.
    if (!reached_.empty() && end.offset >= reached_.back().offset) {
        reached_.back() = end;
    }
}

void ContentsEnd::enter(const WalkElement& element) {
    // Offsets in segments that have been put together count from their start.
    reached_.push_back({element.segmented ? 0 : contentsStart(element), true});
}

void ContentsEnd::primitive(const WalkElement& element) {
    reach({promisedEnd(element), isDefinite(element)});
}

ContentsEnd::Gap ContentsEnd::leave(const WalkElement& element) {
    const Reached inside = reached_.back();
    reached_.pop_back();
    const bool definite = isDefinite(element);
    if (element.encapsulates) {
        reach({promisedEnd(element), definite});
    } else {
        reach({inside.offset, inside.known && definite});
    }
    if (!inside.known || (!definite && !element.segmented)) {
        return {};
    }
    const std::size_t end = element.segmented ? element.value.octetCount : promisedEnd(element);
    return {static_cast<long long>(end) - static_cast<long long>(inside.offset), inside.offset};
}

} // namespace derview
