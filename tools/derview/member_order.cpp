#include "member_order.h"

#include <algorithm>
#include <cstring>
#include <limits>

#include <brevantis/asn1/text/value.h>

#include "header.h"
#include "value_text.h"

namespace derview {

using asn1data::Shape;
using asn1data::WalkElement;

namespace {

/// Whether one encoding comes behind another, the shorter one filled up with zeros (X.690, 11.6).
bool isBehind(Octets first, Octets second) {
    const std::size_t common = std::min(first.size(), second.size());
    const int order = common != 0 ? std::memcmp(first.data(), second.data(), common) : 0;
    if (order != 0) {
        return order > 0;
    }
    const Octets rest = first.subspan(common);
    return std::any_of(rest.begin(), rest.end(), [](unsigned char octet) { return octet != 0; });
}

} // namespace

void MemberOrder::enter(const WalkElement& element) {
    const bool setOf = element.type->setOf && !element.encapsulates;
    containers_.push_back({setOf, element.type->shape == Shape::Set, {}, 0});
}

bool MemberOrder::isOutOfOrder(const WalkElement& element) {
    if (containers_.empty() || element.assembled) {
        return false;
    }
    Container& container = containers_.back();
    if (container.setOf) {
        const unsigned size = asn1data::elementSize(element, message_.data() + message_.size());
        const Octets last = container.last;
        container.last = Octets(element.data, size);
        return isBehind(last, container.last);
    }
    if (container.set) {
        const unsigned last = container.lastTag;
        container.lastTag = readHeader({element.data, element.headerLength}).order;
        return container.lastTag < last;
    }
    return false;
}

bool holdsDefault(const WalkElement& element) {
    if (element.element == nullptr || element.element->presence != asn1data::Presence::Default ||
        element.step->kind != asn1data::StepKind::Member) {
        return false;
    }
    switch (valueKind(element)) {
    case ValueKind::Boolean:
        return (element.value.number != 0) == (element.element->defaultNumber != 0);
    case ValueKind::Number:
        return element.value.number == element.element->defaultNumber;
    case ValueKind::BigNumber:
        return element.element->defaultText != nullptr &&
               valueText(element, std::numeric_limits<std::size_t>::max()).text ==
                   element.element->defaultText;
    default:
        return false;
    }
}

} // namespace derview
