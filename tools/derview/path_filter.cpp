#include "path_filter.h"

namespace derview {

using asn1data::WalkAction;
using asn1data::WalkElement;

namespace {

/// Whether an element ends in front of an offset or at it, as far as its own header tells.
bool endsBefore(const WalkElement& element, std::size_t offset) {
    return element.contentLength != ASN1IndefiniteLength &&
           std::size_t{element.offset} + element.headerLength +
                   static_cast<unsigned>(element.contentLength) <=
               offset;
}

/// Whether an element lies in front of an offset wholly.
bool isWhole(const WalkElement& element, std::size_t end) {
    if (element.assembled || element.contentLength != ASN1IndefiniteLength) {
        return element.assembled || endsBefore(element, end);
    }
    const bool begun = element.offset < end;
    return begun && asn1data::elementSize(element, element.data + (end - element.offset)) != 0;
}

} // namespace

WalkAction PathFilter::enter(const WalkElement& element) {
    if (depth_ != 0 || begins(element)) {
        const WalkAction action = visitor_.enter(element);
        depth_ += action == WalkAction::Continue ? 1 : 0;
        return action;
    }
    const bool before = !element.assembled && endsBefore(element, first_);
    return before || element.offset >= end_ ? WalkAction::Skip : WalkAction::Continue;
}

WalkAction PathFilter::leave(const WalkElement& element) {
    if (depth_ == 0) {
        return WalkAction::Continue;
    }
    --depth_;
    const WalkAction action = visitor_.leave(element);
    return depth_ == 0 ? WalkAction::Stop : action;
}

WalkAction PathFilter::primitive(const WalkElement& element) {
    if (depth_ != 0) {
        return visitor_.primitive(element);
    }
    if (begins(element)) {
        visitor_.primitive(element);
        return WalkAction::Stop;
    }
    return WalkAction::Continue;
}

WalkAction PathFilter::fault(const asn1data::WalkFault& fault) {
    const bool inside =
        depth_ != 0 || (!fault.assembled && fault.offset >= first_ && fault.offset < end_);
    return inside ? visitor_.fault(fault) : WalkAction::Continue;
}

WalkAction EndFilter::enter(const WalkElement& element) {
    const bool whole = element.offset + std::size_t{element.headerLength} <= end_;
    return whole || element.assembled ? visitor_.enter(element) : WalkAction::Stop;
}

WalkAction EndFilter::leave(const WalkElement& element) {
    // Nothing but zeros was read where the element goes on behind the end.
    return isWhole(element, end_) ? visitor_.leave(element) : WalkAction::Stop;
}

WalkAction EndFilter::primitive(const WalkElement& element) {
    return isWhole(element, end_) ? visitor_.primitive(element) : WalkAction::Stop;
}

WalkAction EndFilter::fault(const asn1data::WalkFault& fault) {
    // The failure may be one of the octets that are not there.
    if (!fault.assembled && (fault.failure.offset >= end_ || fault.offset >= end_)) {
        return WalkAction::Stop;
    }
    if (fault.assembled || fault.offset + std::size_t{fault.size} <= end_) {
        return visitor_.fault(fault);
    }
    visitor_.fault({fault.failure, fault.data, fault.offset,
                    static_cast<unsigned>(end_ - fault.offset), fault.assembled});
    return WalkAction::Stop;
}

} // namespace derview
