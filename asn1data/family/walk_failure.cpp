#include <brevantis/asn1/runtime/tag_length.h>

#include "walker.h"

// What is told of the place where a walk failed.

namespace asn1data::family {

[[gnu::cold]] int Walker::fail(int status, Expectation expectation, const TypeDescription* type,
                               const TypeDescription* container, unsigned first, unsigned count) {
    if (status == WalkStopped || failure_.expectation != Expectation::Nothing) {
        return status;
    }
    WalkFailure& failure = failure_;
    failure.status = status;
    failure.offset = static_cast<unsigned>(octets() - base);
    failure.partOffset = ctxt.buffer.byteIndex;
    failure.elementOffset = static_cast<unsigned>(here->element.data - base);
    failure.assembled = assembled;
    failure.expectation = expectation;
    failure.type = type;
    failure.container = container;
    failure.firstExpected = first;
    failure.expectedCount = count;
    if (status == ASN1S_TAG_NOT_FOUND) {
        expectCandidates();
    }
    failure.pathCut =
        writePath(here->step, failure.path, sizeof failure.path) >= sizeof failure.path;
    findFound(status, expectation, type);
    if (openValue != nullptr && !goesOn()) { // else its record may still be read whole
        openValue->reportRaw();
    }
    return status;
}

/// Where other elements could have stood in place of the one that is missing, all are told.
void Walker::expectCandidates() {
    const WalkPlace* place = here;
    while (place != nullptr && place->first == WalkPlace::NoElement) {
        place = place->outer();
    }
    if (place == nullptr || place->element.data != octets()) {
        return;
    }
    const TypeDescription& container = *place->element.container;
    const auto last = static_cast<unsigned>(place->element.element - container.elements);
    if (last != place->first) {
        failure_.expectation = Expectation::OneOf;
        failure_.container = &container;
        failure_.firstExpected = place->first;
        failure_.expectedCount = last + 1 - place->first;
    }
}

void Walker::findFound(int status, Expectation expectation, const TypeDescription* type) {
    const unsigned char* const end = ctxt.buffer.data + ctxt.buffer.size;
    const auto identifierAt = [&](const unsigned char* place) {
        failure_.finding = place < end ? Finding::Identifier : Finding::EndOfMessage;
        failure_.foundNumber = place < end ? *place : 0;
    };
    switch (status) {
    case ASN1S_TAG_NOT_FOUND:
    case ASN1S_EXTRA_ELEMENT:
        identifierAt(octets());
        break;
    case ASN1S_INVALID_CHOICE:
        identifierAt(valueStart);
        break;
    case ASN1S_UNKNOWN_SET_MEMBER:
        identifierAt(elementStart);
        break;
    case ASN1S_DUPLICATE_SET_MEMBER:
        identifierAt(here->element.data);
        break;
    case ASN1S_MISSING_ELEMENT:
        failure_.finding = octets() < end ? Finding::EndOfElement : Finding::EndOfMessage;
        break;
    case ASN1S_END_OF_BUFFER:
        failure_.finding = Finding::EndOfMessage;
        break;
    case ASN1S_CONSTRAINT_VIOLATION:
    case ASN1S_INVALID_ENUM: {
        const bool text = type != nullptr && type->shape == Shape::Text;
        const bool bad = text && static_cast<int>(static_cast<unsigned>(number)) < 0;
        failure_.finding = bad ? Finding::BadText : Finding::Number;
        failure_.foundNumber = number;
        break;
    }
    case ASN1S_INVALID_LENGTH:
    case ASN1S_VALUE_TOO_BIG:
    case ASN1S_STRING_OVERFLOW:
        if (expectation == Expectation::EndOfContents) {
            identifierAt(octets());
        } else if (valueStart < end) {
            ASN1CTXT reader;
            rtInitReader(&reader, valueStart, static_cast<unsigned>(end - valueStart));
            rtCtxtSetFlag(&reader, ASN1F_LENGTH_UNCHECKED);
            ASN1TAG tag = 0;
            int length = 0;
            const bool known =
                xd_tag(&reader, &tag) == ASN1S_SUCCESS && xd_len(&reader, &length) == ASN1S_SUCCESS;
            failure_.finding = known ? Finding::Length : Finding::Nothing;
            failure_.foundNumber = length == ASN1IndefiniteLength
                                       ? length
                                       : static_cast<long long>(static_cast<unsigned>(length));
        }
        break;
    default:
        break;
    }
}

} // namespace asn1data::family
