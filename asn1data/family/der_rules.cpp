#include <algorithm>

#include <brevantis/asn1/asn1data/reading_policy.h>
#include <brevantis/asn1/asn1data/walk_rules.h>

#include "octets.h"

namespace asn1data {

namespace {

using family::contentsOf;
using family::isRaw;
using family::Octets;
using family::readHeader;

struct Rule {
    const char* what;
    const char* clause;
    int status;
};

constexpr Rule LongLength{"length in more octets than it needs", "10.1", ASN1S_INVALID_LENGTH};
constexpr Rule IndefiniteLength{"indefinite length", "10.1", ASN1S_INVALID_LENGTH};
constexpr Rule LongTag{"tag number in more octets than it needs", "8.1.2", ASN1S_BAD_TAG};
constexpr Rule PrimitiveForm{"identifier of a primitive in front of other elements", "8.1.2.5",
                             ASN1S_BAD_TAG};
constexpr Rule ConstructedForm{"identifier of a constructed element in front of a value", "8.1.2.5",
                               ASN1S_BAD_TAG};
constexpr Rule WrongLength{"length that is not that of the elements inside", "8.1.3",
                           ASN1S_INVALID_LENGTH};
constexpr Rule HiddenOctets{"octets behind the value in an OCTET STRING", "8.1.1",
                            ASN1S_EXTRA_ELEMENT};
constexpr Rule ConstructedString{"string in constructed form", "10.2", ASN1S_BAD_TAG};
constexpr Rule SetOrder{"elements of a SET out of order", "10.3", ASN1S_BAD_VALUE};
constexpr Rule BadTruth{"TRUE is not FF", "11.1", ASN1S_BAD_VALUE};
constexpr Rule UnusedBits{"unused bits are not zero", "11.2.1", ASN1S_BAD_VALUE};
constexpr Rule TrailingZeroBits{"zero bits at the end of a named bit list", "11.2.2",
                                ASN1S_BAD_VALUE};
constexpr Rule DefaultValue{"a DEFAULT value is encoded", "11.5", ASN1S_BAD_VALUE};
constexpr Rule SetOfOrder{"elements of a SET OF out of order", "11.6", ASN1S_BAD_VALUE};
constexpr Rule GeneralizedTimeForm{"GeneralizedTime not in the form YYYYMMDDhhmmss[.f]Z", "11.7",
                                   ASN1S_INVALID_FORMAT};
constexpr Rule UtcTimeForm{"UTCTime not in the form YYMMDDhhmmssZ", "11.8", ASN1S_INVALID_FORMAT};
constexpr Rule LongInteger{"integer in more octets than it needs", "8.3.2", ASN1S_BAD_VALUE};
constexpr Rule LongArc{"arc of an identifier in more octets than it needs", "8.19.2",
                       ASN1S_INVALID_OBJID};

enum : ASN1TAG { UtcTimeTag = 23, GeneralizedTimeTag = 24 };

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
        !std::all_of(text.begin(), text.begin() + digits, isDigit)) {
        return false;
    }
    const Octets fraction = text.behind(digits).first(text.size() - digits - 1);
    if (fraction.empty()) {
        return true;
    }
    return generalized && fraction.size() > 1 && fraction[0] == '.' && fraction.back() != '0' &&
           std::all_of(fraction.begin() + 1, fraction.end(), isDigit);
}

} // namespace

/// The rules, and what they have to remember of the elements around.
class DerVisitor::Rules {
public:
    Rules(DerVisitor& visitor, Octets message)
        : visitor_(visitor), order_(message.begin(), message.size()) {}

    WalkAction enter(const WalkElement& element) {
        look(element, true);
        order_.enter(element);
        ends_.enter(element);
        return action();
    }

    WalkAction leave(const WalkElement& element) {
        order_.leave();
        const ContentsEnd::Gap gap = ends_.leave(element);
        if (gap.hidden != 0) {
            tell(element, HiddenOctets, static_cast<unsigned>(gap.offset),
                 element.assembled || element.segmented);
        } else if (gap.octets != 0) {
            tell(element, WrongLength);
        }
        return action();
    }

    WalkAction primitive(const WalkElement& element) {
        look(element, false);
        ends_.primitive(element);
        if (isRaw(element)) {
            lookAtRaw(element);
        } else {
            lookAtValue(element);
        }
        return action();
    }

private:
    void tell(const WalkElement& element, const Rule& rule, unsigned offset, bool assembled) {
        if (!stopped_) {
            stopped_ = visitor_.deviates({element.step, offset, assembled, rule.what, rule.clause,
                                          rule.status}) == WalkAction::Stop;
        }
    }
    void tell(const WalkElement& element, const Rule& rule) {
        tell(element, rule, element.offset, element.assembled);
    }
    void tellIf(bool broken, const WalkElement& element, const Rule& rule) {
        if (broken) {
            tell(element, rule);
        }
    }
    WalkAction action() const { return stopped_ ? WalkAction::Stop : WalkAction::Continue; }

    void lookAtHeader(const WalkElement& element, const ASN1Header& header, unsigned offset) {
        const auto tellHere = [&](const Rule& rule) {
            tell(element, rule, offset, element.assembled);
        };
        if (header.tagSize > rtTagSize(header.tag)) {
            tellHere(LongTag);
        }
        if (header.length == ASN1IndefiniteLength) {
            tellHere(IndefiniteLength);
        } else if (header.size - header.tagSize > rtLengthSize(header.length)) {
            tellHere(LongLength);
        }
    }

    /// Looks at the identifier and length octets of an element and of the EXPLICIT tags around it.
    void lookAtHeaders(const WalkElement& element, bool entered) {
        const bool constructed = element.segmented || (entered && !element.encapsulates);
        unsigned offset = element.offset;
        ASN1Header header{};
        for (Octets headers(element.data, element.headerLength);
             !headers.empty() && readHeader(headers, header); offset += header.size) {
            lookAtHeader(element, header, offset);
            headers = headers.behind(header.size);
            const bool innermost = headers.empty();
            const bool isConstructed = (header.tag & ASN1TagConstructed) != 0;
            const bool definite = header.length != ASN1IndefiniteLength &&
                                  element.contentLength != ASN1IndefiniteLength;
            if (!isConstructed && (!innermost || constructed)) {
                tell(element, PrimitiveForm, offset, element.assembled);
            } else if (isConstructed && innermost && !constructed && (entered || !isRaw(element))) {
                tell(element, ConstructedForm, offset, element.assembled);
            }
            if (!innermost && definite &&
                static_cast<std::size_t>(header.length) !=
                    headers.size() + static_cast<unsigned>(element.contentLength)) {
                tell(element, WrongLength, offset, element.assembled);
            }
        }
    }

    /// @param entered other values are reported of it
    void look(const WalkElement& element, bool entered) {
        tellIf(order_.isOutOfOrder(element), element, order_.inSetOf() ? SetOfOrder : SetOrder);
        lookAtHeaders(element, entered);
        tellIf(element.segmented, element, ConstructedString);
        tellIf(holdsDefault(element), element, DefaultValue);
    }

    void lookAtBits(const WalkElement& element) {
        const Octets contents = contentsOf(element);
        if (element.segmented || contents.empty()) {
            return;
        }
        const unsigned mask = (1u << std::min<unsigned>(contents[0], 7u)) - 1;
        tellIf((contents.back() & mask) != 0 && contents.size() > 1, element, UnusedBits);
        const unsigned count = element.value.bitCount;
        tellIf(element.type->nameCount != 0 && count != 0 &&
                   (element.value.octets[(count - 1) / 8] & (0x80u >> (count - 1) % 8)) == 0,
               element, TrailingZeroBits);
    }

    void lookAtTime(const WalkElement& element) {
        constexpr unsigned longest = 64; // no time of DER is as long
        unsigned char joined[longest];
        Octets text(element.value.octets, element.value.octetCount);
        if (element.segmented) {
            text = Octets(joined, std::min<std::size_t>(copyOctets(element, joined, sizeof joined),
                                                        sizeof joined));
        }
        const bool generalized = element.type->tag == GeneralizedTimeTag;
        tellIf(!isDerTime(text.first(longest), generalized), element,
               generalized ? GeneralizedTimeForm : UtcTimeForm);
    }

    void lookAtValue(const WalkElement& element) {
        const Octets contents = contentsOf(element);
        switch (kindOf(element.type->shape)) {
        case ShapeKind::Boolean:
            tellIf(!contents.empty() && contents[0] != 0 && contents[0] != 0xFF, element, BadTruth);
            break;
        case ShapeKind::Number:
        case ShapeKind::BigNumber:
            tellIf(isLongInteger(contents), element, LongInteger);
            break;
        case ShapeKind::ObjectIdentifier:
            tellIf(hasLongArc(contents), element, LongArc);
            break;
        case ShapeKind::BitString:
            lookAtBits(element);
            break;
        case ShapeKind::Text:
            if (element.type->tag == UtcTimeTag || element.type->tag == GeneralizedTimeTag) {
                lookAtTime(element);
            }
            break;
        case ShapeKind::Null:
        case ShapeKind::OctetString:
        case ShapeKind::OpenType:
        case ShapeKind::Record:
        case ShapeKind::Choice:
        case ShapeKind::Repeated:
            break; // one form of contents, or none of their own
        }
    }

    /// Looks at octets of no known type: headers, and the values of universal tags.
    void lookAtRaw(const WalkElement& element) {
        const Octets octets(element.value.octets, element.value.octetCount);
        ASN1Header header{};
        for (std::size_t position = 0; position < octets.size();) {
            if (!readHeader(octets.behind(position), header)) {
                return;
            }
            const unsigned offset = element.valueOffset + static_cast<unsigned>(position);
            // The first header is the element's own, which has been looked at.
            if (position != 0) {
                lookAtHeader(element, header, offset);
            }
            const unsigned char identifier = octets[position];
            position += header.size;
            if ((header.tag & ASN1TagConstructed) != 0) {
                continue;
            }
            const Octets contents = octets.behind(position).first(
                header.length > 0 ? static_cast<std::size_t>(header.length) : 0);
            const Rule* rule = nullptr;
            if (identifier == 0x01 && contents.size() == 1 && contents[0] != 0 &&
                contents[0] != 0xFF) {
                rule = &BadTruth;
            } else if ((identifier == 0x02 || identifier == 0x0A) && isLongInteger(contents)) {
                rule = &LongInteger;
            } else if (identifier == 0x06 && hasLongArc(contents)) {
                rule = &LongArc;
            }
            if (rule != nullptr) {
                tell(element, *rule, offset, element.assembled);
            }
            position += contents.size();
        }
    }

    DerVisitor& visitor_;
    MemberOrder order_;
    ContentsEnd ends_;
    bool stopped_ = false;
};

DerVisitor::DerVisitor(const unsigned char* message, std::size_t size)
    : rules_(std::make_unique<Rules>(*this, Octets(message, size))) {}

DerVisitor::~DerVisitor() = default;

WalkAction DerVisitor::enter(const WalkElement& element) {
    return rules_->enter(element);
}

WalkAction DerVisitor::leave(const WalkElement& element) {
    return rules_->leave(element);
}

WalkAction DerVisitor::primitive(const WalkElement& element) {
    return rules_->primitive(element);
}

WalkFailure firstDeviation(const TypeDescription& type, const unsigned char* message,
                           std::size_t size) {
    return explain(type, message, size, ASN1F_DER);
}

} // namespace asn1data
