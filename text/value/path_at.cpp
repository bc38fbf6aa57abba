#include <brevantis/asn1/text/path_at.h>

namespace asn1text {

using asn1data::WalkAction;
using asn1data::WalkElement;

bool PathAtOffset::isOutside(const WalkElement& element) const {
    const bool endsBefore = element.contentLength != ASN1IndefiniteLength &&
                            std::size_t{element.offset} + element.headerLength +
                                    static_cast<unsigned>(element.contentLength) <=
                                offset_;
    return element.assembled || element.offset > offset_ || endsBefore;
}

void PathAtOffset::take(const WalkElement& element) {
    path = asn1data::pathText(*element.step);
    found = true;
}

WalkAction PathAtOffset::enter(const WalkElement& element) {
    if (isOutside(element)) {
        return WalkAction::Skip;
    }
    take(element);
    return WalkAction::Continue;
}

WalkAction PathAtOffset::primitive(const WalkElement& element) {
    if (!isOutside(element)) {
        take(element);
    }
    return WalkAction::Continue;
}

} // namespace asn1text
