#include <algorithm>
#include <climits>
#include <cstring>

#include <brevantis/asn1/asn1data/walk.h>
#include <brevantis/asn1/runtime/element_walk.h>
#include <brevantis/asn1/runtime/header.h>
#include <brevantis/asn1/runtime/measure.h>

#include "strict_reading.h"
#include "walker.h"

namespace asn1data {

namespace {

/// Room that the pieces of a string are copied to.
struct Room {
    unsigned char* next;
    std::size_t left;

    static void take(void* state, const unsigned char* octets, unsigned count) noexcept {
        auto& room = *static_cast<Room*>(state);
        const std::size_t taken = std::min<std::size_t>(count, room.left);
        if (taken != 0) {
            std::memcpy(room.next, octets, taken);
            room.next += taken;
            room.left -= taken;
        }
    }
};

bool isBitString(const TypeDescription* type) {
    return type != nullptr &&
           (type->shape == Shape::BitString || type->shape == Shape::FixedBitString);
}

} // namespace

WalkVisitor::~WalkVisitor() = default;

WalkAction WalkVisitor::enter(const WalkElement& /*element*/) {
    return WalkAction::Continue;
}

WalkAction WalkVisitor::leave(const WalkElement& /*element*/) {
    return WalkAction::Continue;
}

WalkAction WalkVisitor::primitive(const WalkElement& /*element*/) {
    return WalkAction::Continue;
}

WalkInterest WalkVisitor::interest() const {
    return {};
}

WalkAction WalkVisitor::tolerated(const WalkFailure& /*failure*/) {
    return WalkAction::Continue;
}

WalkAction WalkVisitor::fault(const WalkFault& /*fault*/) {
    return WalkAction::Continue;
}

WalkResult walk(const TypeDescription& type, const unsigned char* message, std::size_t size,
                WalkVisitor& visitor) {
    return family::walkPlainly(type, message, size, visitor, {});
}

WalkResult family::walkPlainly(const TypeDescription& type, const unsigned char* message,
                               std::size_t size, WalkVisitor& visitor,
                               const ReadingPolicy& policy) {
    WalkResult result{};
    if (size > INT_MAX || (message == nullptr && size != 0)) {
        result.status = size > INT_MAX ? ASN1S_VALUE_TOO_BIG : ASN1S_INVALID_PARAMETER;
        result.failure.status = result.status;
        result.failure.expectation = Expectation::Memory;
        return result;
    }
    family::Walker walker(message, static_cast<unsigned>(size), visitor, result.failure);
    walker.setPolicy(policy);
    if (isRefusedUnread(policy.flags, walker.bound)) {
        result.status = walker.bound;
        result.consumed = walker.position();
        result.failure.status = result.status;
        result.failure.offset = result.consumed;
        result.failure.partOffset = result.consumed;
        result.failure.expectation = Expectation::Header;
        result.failure.type = &type;
        return result;
    }
    const int status = walker.run(type);
    result.stopped = status == family::WalkStopped;
    result.status = result.stopped ? ASN1S_SUCCESS : status;
    result.failure.status = result.status;
    result.consumed = walker.position();
    return result;
}

unsigned elementSize(const WalkElement& element, const unsigned char* end) noexcept {
    ASN1CTXT reader;
    rtInitReader(&reader, element.data, static_cast<unsigned>(end - element.data));
    return xd_NextElement(&reader) == ASN1S_SUCCESS ? reader.buffer.byteIndex : 0;
}

std::size_t copyOctets(const WalkElement& element, unsigned char* target,
                       std::size_t size) noexcept {
    if (element.segmented && isBitString(element.type)) {
        return 0;
    }
    // Octets of segments that fill no 16- or 32-bit character are none of the value.
    const std::size_t count = element.value.octetCount;
    Room room{target, size < count ? size : count};
    if (!element.segmented) {
        Room::take(&room, element.value.octets, element.value.octetCount);
        return count;
    }
    // What the walk has read ends where its lengths say, so no other end is needed.
    ASN1CTXT reader;
    rtInitReader(&reader, element.data + element.headerLength, INT_MAX);
    rtCtxtSetFlag(&reader, ASN1F_CONSTRUCTED);
    const ASN1OctetSink sink{&Room::take, &room};
    ASN1Extent extent{};
    xd_measureOctets(&reader, &extent, &sink, ASN1TagImplicit, element.contentLength);
    return count;
}

} // namespace asn1data
