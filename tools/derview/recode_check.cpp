#include "recode_check.h"

#include <algorithm>

#include <brevantis/asn1/runtime/header.h>
#include <brevantis/asn1/text/value.h>

#include "header.h"

namespace derview {

using asn1data::StepKind;
using asn1data::WalkAction;
using asn1data::WalkElement;

namespace {

constexpr std::size_t LargestPiece = std::size_t{1} << 20;

/// The header that an encoder writes in front of contents.
OctetStore headerFor(ASN1TAG tag, std::size_t length) {
    unsigned char octets[ASN1LongestHeader];
    const unsigned size = rtWriteHeader(tag, static_cast<int>(length), octets);
    return {octets, octets + size};
}

} // namespace

std::size_t firstDifference(Octets one, Octets other) {
    const auto common = static_cast<std::ptrdiff_t>(std::min(one.size(), other.size()));
    const auto place = std::mismatch(one.begin(), one.begin() + common, other.begin());
    return static_cast<std::size_t>(place.first - one.begin());
}

/// Whether an encoder would write other headers, drop the element or put it elsewhere.
bool RecodeCheck::differsAround(const WalkElement& element) {
    if (order_.isOutOfOrder(element) || holdsDefault(element)) {
        difference = element.offset;
        return true;
    }
    std::size_t place = 0;
    while (place < element.headerLength) {
        const Header header = readHeader({element.data + place, element.headerLength - place});
        if (header.size == 0) {
            return false;
        }
        if (header.indefinite || header.longLength || header.longTag) {
            difference = element.offset + place + 1;
            return true;
        }
        place += header.size;
    }
    // The end of a message ends the elements that claim to be longer.
    const std::size_t left = message_.size() - std::min(message_.size(), element.offset + place);
    if (!element.assembled && element.contentLength > 0 &&
        static_cast<std::size_t>(element.contentLength) > left) {
        difference = element.valueOffset + 1;
        return true;
    }
    if (element.segmented) {
        difference = element.valueOffset;
    }
    return element.segmented;
}

RecodeCheck::Outcome RecodeCheck::comparePiece(const WalkElement& element) {
    const asn1data::TypeDescription& type = *element.type;
    const bool whole = element.step->kind == StepKind::Message;
    Octets piece = message_;
    std::size_t headerSize = 0;
    if (!whole) {
        if (type.outerTag != 0 || type.tag == 0 || (type.tag & ASN1TagNumberMask) > 30) {
            return Outcome::Unknown;
        }
        // An IMPLICIT tag gives way to the type's own.
        const auto length = static_cast<std::size_t>(element.contentLength);
        const unsigned char* const contents = element.data + element.headerLength;
        piece_ = headerFor(type.tag, length);
        headerSize = piece_.size();
        piece_.insert(piece_.end(), contents, contents + length);
        piece = piece_;
    }
    status = recoder_.recode(type, piece, policy_);
    if (status != 0) {
        // By itself a piece may be less than its place makes of it.
        status = whole ? status : 0;
        return whole ? Outcome::Different : Outcome::Unknown;
    }
    const Octets encoded = recoder_.encoded();
    const std::size_t place = firstDifference(piece, encoded);
    if (place == piece.size() && place == encoded.size()) {
        return Outcome::Same;
    }
    if (place < headerSize) {
        difference = element.valueOffset + place;
    } else {
        difference = element.offset + (whole ? 0 : element.headerLength) + place - headerSize;
    }
    return piece.size() != encoded.size() ? Outcome::OtherSize : Outcome::Different;
}

WalkAction RecodeCheck::enter(const WalkElement& element) {
    const bool whole = element.step->kind == StepKind::Message;
    const bool small = whole ? message_.size() <= LargestPiece
                             : element.contentLength != ASN1IndefiniteLength &&
                                   static_cast<std::size_t>(element.contentLength) <= LargestPiece;
    if (!(whole && small) && differsAround(element)) {
        return WalkAction::Stop;
    }
    if (small && !element.encapsulates) {
        switch (comparePiece(element)) {
        case Outcome::Same:
            return WalkAction::Skip;
        case Outcome::Different:
            return WalkAction::Stop;
        case Outcome::OtherSize:
            if (whole && differsAround(element)) {
                return WalkAction::Stop;
            }
            break;
        case Outcome::Unknown:
            break;
        }
    }
    order_.enter(element);
    return WalkAction::Continue;
}

WalkAction RecodeCheck::leave(const WalkElement& /*element*/) {
    order_.leave();
    // Nothing inside tells more about a difference that was found on the way in.
    return difference ? WalkAction::Stop : WalkAction::Continue;
}

WalkAction RecodeCheck::primitive(const WalkElement& element) {
    const bool whole = element.step->kind == StepKind::Message;
    if (!whole && differsAround(element)) {
        return WalkAction::Stop;
    }
    // Open values and octets come out as they are.
    const ValueKind kind = valueKind(element);
    const bool copied = kind == ValueKind::Raw || kind == ValueKind::OctetString;
    if (!whole && copied) {
        return WalkAction::Continue;
    }
    const Outcome outcome = comparePiece(element);
    return outcome == Outcome::Different || outcome == Outcome::OtherSize ? WalkAction::Stop
                                                                          : WalkAction::Continue;
}

} // namespace derview
