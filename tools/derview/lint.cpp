#include "lint.h"

#include <algorithm>

#include <brevantis/asn1/text/value.h>

#include "header.h"

namespace derview {

using asn1data::WalkAction;
using asn1data::WalkElement;

namespace {

struct Rule {
    const char* what;
    const char* clause;
};

constexpr Rule LongLength{"length in more octets than it needs", "10.1"};
constexpr Rule IndefiniteLength{"indefinite length", "10.1"};
constexpr Rule LongTag{"tag number in more octets than it needs", "8.1.2"};
constexpr Rule PrimitiveForm{"identifier of a primitive in front of other elements", "8.1.2.5"};
constexpr Rule ConstructedForm{"identifier of a constructed element in front of a value",
                               "8.1.2.5"};
constexpr Rule WrongLength{"length that is not that of the elements inside", "8.1.3"};
constexpr Rule HiddenOctets{"octets behind the value in an OCTET STRING", "8.1.1"};
constexpr Rule ConstructedString{"string in constructed form", "10.2"};
constexpr Rule SetOrder{"elements of a SET out of order", "10.3"};
constexpr Rule BadTruth{"TRUE is not FF", "11.1"};
constexpr Rule UnusedBits{"unused bits are not zero", "11.2.1"};
constexpr Rule TrailingZeroBits{"zero bits at the end of a named bit list", "11.2.2"};
constexpr Rule DefaultValue{"a DEFAULT value is encoded", "11.5"};
constexpr Rule SetOfOrder{"elements of a SET OF out of order", "11.6"};
constexpr Rule GeneralizedTimeForm{"GeneralizedTime not in the form YYYYMMDDhhmmss[.f]Z", "11.7"};
constexpr Rule UtcTimeForm{"UTCTime not in the form YYMMDDhhmmssZ", "11.8"};
constexpr Rule LongInteger{"integer in more octets than it needs", "8.3.2"};
constexpr Rule LongArc{"arc of an identifier in more octets than it needs", "8.19.2"};

bool isLongInteger(Octets contents) {
    return contents.size() > 1 && ((contents[0] == 0 && (contents[1] & 0x80u) == 0) ||
                                   (contents[0] == 0xFF && (contents[1] & 0x80u) != 0));
}

bool hasLongArc(Octets contents) {
    bool begins = true;
    for (const unsigned char octet : contents) {
        if (begins && octet == 0x80) {
            return true;
        }
        begins = (octet & 0x80u) == 0;
    }
    return false;
}

bool isDerTime(Octets text, bool generalized) {
    const std::size_t digits = generalized ? 14 : 12;
    const auto isDigit = [](unsigned char octet) { return octet >= '0' && octet <= '9'; };
    if (text.size() <= digits || text.back() != 'Z' ||
        !std::all_of(text.begin(), text.begin() + static_cast<std::ptrdiff_t>(digits), isDigit)) {
        return false;
    }
    const Octets fraction = text.subspan(digits, text.size() - digits - 1);
    if (fraction.empty()) {
        return true;
    }
    return generalized && fraction.size() > 1 && fraction[0] == '.' && fraction.back() != '0' &&
           std::all_of(fraction.begin() + 1, fraction.end(), isDigit);
}

/// The contents of a primitive in primitive form.
Octets contentsOf(const WalkElement& element) {
    return element.contentLength > 0 ? Octets(element.data + element.headerLength,
                                              static_cast<std::size_t>(element.contentLength))
                                     : Octets();
}

/// What is wrong with identifier and length octets.
template <class Report>
void lookAtHeader(const Header& header, Report report) {
    if (header.longTag) {
        report(LongTag);
    }
    if (header.indefinite) {
        report(IndefiniteLength);
    } else if (header.longLength) {
        report(LongLength);
    }
}

} // namespace

void Lint::report(const WalkElement& element, const char* what, const char* clause) {
    report_({element.offset, element.assembled, asn1data::pathText(*element.step), what, clause});
}

void Lint::lookAtHeaders(const WalkElement& element, bool entered) {
    const bool known = entered || valueKind(element) != ValueKind::Raw;
    const bool constructed = element.segmented || (entered && !element.encapsulates);
    // EXPLICIT tags stand in front of the innermost header.
    WalkElement place = element;
    const auto tell = [&](const Rule& rule) { report(place, rule.what, rule.clause); };
    for (Octets headers(element.data, element.headerLength); !headers.empty();) {
        const Header header = readHeader(headers);
        if (header.size == 0) {
            break;
        }
        lookAtHeader(header, tell);
        headers = headers.subspan(header.size);
        const bool innermost = headers.empty();
        if (!header.constructed && (!innermost || constructed)) {
            tell(PrimitiveForm);
        } else if (header.constructed && innermost && known && !constructed) {
            tell(ConstructedForm);
        }
        if (!innermost && !header.indefinite && element.contentLength != ASN1IndefiniteLength &&
            header.length != headers.size() + static_cast<unsigned>(element.contentLength)) {
            tell(WrongLength);
        }
        place.offset += static_cast<unsigned>(header.size);
    }
}

void Lint::look(const WalkElement& element, bool entered) {
    if (order_.isOutOfOrder(element)) {
        const Rule& rule = order_.inSetOf() ? SetOfOrder : SetOrder;
        report(element, rule.what, rule.clause);
    }
    const auto tell = [&](const Rule& rule) { report(element, rule.what, rule.clause); };
    lookAtHeaders(element, entered);
    if (element.segmented) {
        tell(ConstructedString);
    }
    if (holdsDefault(element)) {
        tell(DefaultValue);
    }
}

void Lint::lookAtBits(const WalkElement& element) {
    const Octets contents = contentsOf(element);
    if (element.segmented || contents.empty()) {
        return;
    }
    const unsigned unused = contents[0];
    const unsigned mask = (1u << std::min(unused, 7u)) - 1;
    if ((contents.back() & mask) != 0 && contents.size() > 1) {
        report(element, UnusedBits.what, UnusedBits.clause);
    }
    const unsigned count = element.value.bitCount;
    if (element.type->nameCount != 0 && count != 0 &&
        (element.value.octets[(count - 1) / 8] & (0x80u >> (count - 1) % 8)) == 0) {
        report(element, TrailingZeroBits.what, TrailingZeroBits.clause);
    }
}

void Lint::lookAtValue(const WalkElement& element) {
    const Octets contents = contentsOf(element);
    const auto tellIf = [&](bool broken, const Rule& rule) {
        if (broken) {
            report(element, rule.what, rule.clause);
        }
    };
    switch (valueKind(element)) {
    case ValueKind::Boolean:
        tellIf(!contents.empty() && contents[0] != 0 && contents[0] != 0xFF, BadTruth);
        break;
    case ValueKind::Number:
    case ValueKind::BigNumber:
        tellIf(isLongInteger(contents), LongInteger);
        break;
    case ValueKind::Identifier:
        tellIf(hasLongArc(contents), LongArc);
        break;
    case ValueKind::Bits:
        lookAtBits(element);
        break;
    case ValueKind::Time: {
        constexpr ASN1TAG generalizedTime = 24;
        const bool generalized = element.type->tag == generalizedTime;
        OctetStore store;
        tellIf(!isDerTime(valueOctets(element, 64, store), generalized),
               generalized ? GeneralizedTimeForm : UtcTimeForm);
        break;
    }
    case ValueKind::Raw:
        lookAtRaw(element);
        break;
    default:
        break;
    }
}

void Lint::lookAtRaw(const WalkElement& element) {
    const Octets octets(element.value.octets, element.value.octetCount);
    WalkElement place = element;
    for (std::size_t position = 0; position < octets.size();) {
        const Header header = readHeader(octets.subspan(position));
        if (header.size == 0) {
            return;
        }
        place.offset = element.valueOffset + static_cast<unsigned>(position);
        const auto tell = [&](const Rule& rule) { report(place, rule.what, rule.clause); };
        // The first header is the element's own, which has been looked at.
        if (position != 0) {
            lookAtHeader(header, tell);
        }
        position += header.size;
        if (header.constructed) {
            continue;
        }
        const Octets rest = octets.subspan(position);
        const Octets contents = rest.first(std::min(rest.size(), header.length));
        if (header.identifier == 0x01 && contents.size() == 1 && contents[0] != 0 &&
            contents[0] != 0xFF) {
            tell(BadTruth);
        } else if ((header.identifier == 0x02 || header.identifier == 0x0A) &&
                   isLongInteger(contents)) {
            tell(LongInteger);
        } else if (header.identifier == 0x06 && hasLongArc(contents)) {
            tell(LongArc);
        }
        position += contents.size();
    }
}

WalkAction Lint::enter(const WalkElement& element) {
    look(element, true);
    order_.enter(element);
    ends_.enter(element);
    return WalkAction::Continue;
}

WalkAction Lint::leave(const WalkElement& element) {
    order_.leave();
    const asn1data::ContentsEnd::Gap gap = ends_.leave(element);
    if (gap.hidden != 0) {
        WalkElement place = element;
        place.offset = static_cast<unsigned>(gap.offset);
        place.assembled = element.assembled || element.segmented;
        report(place, HiddenOctets.what, HiddenOctets.clause);
    } else if (gap.octets != 0) {
        report(element, WrongLength.what, WrongLength.clause);
    }
    return WalkAction::Continue;
}

WalkAction Lint::primitive(const WalkElement& element) {
    look(element, false);
    ends_.primitive(element);
    lookAtValue(element);
    return WalkAction::Continue;
}

} // namespace derview
