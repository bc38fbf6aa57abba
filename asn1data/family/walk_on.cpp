#include <brevantis/asn1/runtime/element_walk.h>
#include <brevantis/asn1/runtime/header.h>

#include "walker.h"

// How a walk goes on behind a fault: it finds where the damaged element ends, tells the octets that
// are lost with it, and reads on there.

namespace asn1data::family {

namespace {

/// Behind the element that octets begin with; null when it does not end in front of @p end.
const unsigned char* behindElement(const unsigned char* element, const unsigned char* end) {
    ASN1CTXT reader;
    rtInitReader(&reader, element, static_cast<unsigned>(end - element));
    return xd_NextElement(&reader) == ASN1S_SUCCESS && reader.buffer.byteIndex != 0 &&
                   reader.buffer.byteIndex <= reader.buffer.size
               ? element + reader.buffer.byteIndex
               : nullptr;
}

/// The end-of-contents octets that close what goes on at a place; null without them.
const unsigned char* findEndOfContents(const unsigned char* place, const unsigned char* end) {
    while (place != nullptr && end - place >= 2) {
        if (place[0] == 0 && place[1] == 0) {
            return place;
        }
        place = behindElement(place, end);
    }
    return nullptr;
}

} // namespace

/// Whether a failure is one of the message, at a place that is looked at. What is read in silence
/// is read again, unless it fails as a whole.
bool Walker::goesOnBehind(int status) const {
    return goesOn() && status < 0 && failure_.expectation != Expectation::FewerElements &&
           silence == (here != nullptr && here->silent ? 1U : 0U);
}

int Walker::goOnBehind(int status, const unsigned char* element) {
    if (!goesOnBehind(status)) {
        return status;
    }
    const unsigned char* const end =
        element < scopeEnd ? behindElement(element, scopeEnd) : nullptr;
    if (end == nullptr) {
        return status;
    }
    // What closes the elements in front of it is nobody's.
    while (reached_ < element && *reached_ == 0) {
        ++reached_;
    }
    return goOn(status, end);
}

int Walker::goOnAtEnd(int status, int length) {
    if (!goesOnBehind(status)) {
        return status;
    }
    const unsigned char* const end =
        length == ASN1IndefiniteLength ? findEndOfContents(reached_, scopeEnd) : scopeEnd;
    return end != nullptr ? goOn(status, end) : status;
}

/// Tells the fault and goes on at a place, or behind what has been reported if that is further.
int Walker::goOn(int status, const unsigned char* end) {
    if (!goesOnBehind(status)) {
        return status;
    }
    if (first_.status == ASN1S_SUCCESS) {
        first_ = failure_;
    }
    const unsigned char* const from = std::min(reached_, end);
    const WalkFault fault{failure_, from, static_cast<unsigned>(from - base),
                          static_cast<unsigned>(end - from), assembled};
    stopped = visitor_.fault(fault) == WalkAction::Stop;
    failure_ = {};
    rtErrReset(&ctxt.errInfo);
    object = nullptr;
    number = 0;
    // Nobody tests what could not be read whole.
    stepped = true;
    reach(end);
    ctxt.buffer.byteIndex = static_cast<unsigned>(reached_ - ctxt.buffer.data);
    return stopped ? int{WalkStopped} : int{ASN1S_SUCCESS};
}

} // namespace asn1data::family
