#include "message.h"

#include "failure_text.h"
#include "header.h"

namespace derview {

using asn1data::WalkResult;

Leftover Message::leftover(const WalkResult& result) const {
    const bool walked = result.status == 0 && !result.stopped && result.consumed < octets.size();
    const std::size_t count = trailing + (walked ? octets.size() - result.consumed : 0);
    return {count, offset + octets.size() + trailing - count};
}

WalkResult decoderResult(const Message& message, const asn1data::TypeDescription& type) {
    asn1data::WalkVisitor nothing;
    return asn1data::walk(type, message.octets.data(), message.octets.size(), nothing,
                          message.policy);
}

std::vector<std::string> toleratedTexts(const Message& message,
                                        const asn1data::TypeDescription& type) {
    std::vector<std::string> texts;
    if ((message.policy.flags & ASN1F_TOLERATE_OPEN_VALUES) != 0) {
        for (const asn1data::WalkFailure& fault : asn1data::toleratedFaults(
                 type, message.octets.data(), message.octets.size(), message.policy)) {
            texts.push_back("tolerated at " + placeText(fault) + ": " + reasonText(fault));
        }
    }
    return texts;
}

std::string octetsText(std::size_t count) {
    return std::to_string(count) + (count == 1 ? " octet" : " octets");
}

std::string trailingText(std::size_t count) {
    return std::to_string(count) + " trailing " + (count == 1 ? "octet" : "octets");
}

std::string missingText(const Message& message) {
    const std::size_t missing = message.missing();
    if (message.open == 0) {
        return octetsText(missing) + " of " + std::to_string(message.shown.size()) + " missing";
    }
    const std::size_t ends = EndOfContentsSize * message.open;
    return (missing > ends ? octetsText(missing - ends) + " and " : "") + "end-of-contents" +
           (message.open > 1 ? " of " + std::to_string(message.open) + " elements" : "") +
           " missing";
}

} // namespace derview
