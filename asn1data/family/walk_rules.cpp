#include <brevantis/asn1/asn1data/walk_rules.h>

#include <algorithm>
#include <cstring>

#include <brevantis/asn1/runtime/big_integer.h>
#include <brevantis/asn1/runtime/element_walk.h>

#include "octets.h"

namespace asn1data {

using family::contentsOf;
using family::isRaw;
using family::Octets;
using family::readHeader;

namespace {

bool isDefinite(const WalkElement& element) {
    return element.contentLength != ASN1IndefiniteLength;
}

std::size_t contentsStart(const WalkElement& element) {
    return std::size_t{element.offset} + element.headerLength;
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
    const std::size_t count = element.value.octetCount;
    std::vector<unsigned char> joined;
    const unsigned char* octets = element.value.octets;
    if (element.segmented) {
        joined.resize(count);
        copyOctets(element, joined.data(), count);
        octets = joined.data();
    }
    ASN1CTXT reader;
    rtInitReader(&reader, octets, static_cast<unsigned>(count));
    return octets != nullptr && xd_NextElement(&reader) == ASN1S_SUCCESS ? reader.buffer.byteIndex
                                                                         : 0;
}

/// Whether one encoding comes behind another, the shorter one filled up with zeros (X.690, 11.6).
bool isBehind(Octets first, Octets second) {
    const std::size_t common = std::min(first.size(), second.size());
    const int order = common != 0 ? std::memcmp(first.begin(), second.begin(), common) : 0;
    if (order != 0) {
        return order > 0;
    }
    const Octets rest = first.behind(common);
    return std::any_of(rest.begin(), rest.end(), [](unsigned char octet) { return octet != 0; });
}

/// Whether the contents of an INTEGER are a number that is there as text.
bool isNumber(Octets contents, const char* text) {
    ASN1CTXT reader;
    rtInitReader(&reader, contents.begin(), static_cast<unsigned>(contents.size()));
    const char* read = nullptr;
    const bool same = xd_bigint(&reader, &read, ASN1TagImplicit,
                                static_cast<int>(contents.size())) == ASN1S_SUCCESS &&
                      rtBigIntStrCompare(&reader, read, text) == 0;
    rtMemHeapRelease(&reader.memHeap);
    return same;
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

void MemberOrder::enter(const WalkElement& element) {
    const bool setOf = element.type->setOf && !element.encapsulates;
    containers_.push_back({setOf, element.type->shape == Shape::Set, nullptr, 0, 0});
}

bool MemberOrder::isOutOfOrder(const WalkElement& element) {
    if (containers_.empty() || element.assembled) {
        return false;
    }
    Container& container = containers_.back();
    if (container.setOf) {
        const Octets last(container.last, container.lastSize);
        container.last = element.data;
        container.lastSize = elementSize(element, end_);
        return isBehind(last, {container.last, container.lastSize});
    }
    if (container.set) {
        const ASN1TAG last = container.lastTag;
        ASN1Header header{};
        readHeader({element.data, element.headerLength}, header);
        container.lastTag = header.tag & ~ASN1TagConstructed;
        return container.lastTag < last;
    }
    return false;
}

bool holdsDefault(const WalkElement& element) {
    if (element.element == nullptr || element.element->presence != Presence::Default ||
        element.step->kind != StepKind::Member || isRaw(element)) {
        return false;
    }
    switch (kindOf(element.type->shape)) {
    case ShapeKind::Boolean:
        return (element.value.number != 0) == (element.element->defaultNumber != 0);
    case ShapeKind::Number:
        return element.value.number == element.element->defaultNumber;
    case ShapeKind::BigNumber:
        return element.element->defaultText != nullptr &&
               isNumber(contentsOf(element), element.element->defaultText);
    default:
        return false;
    }
}

} // namespace asn1data
