#include "recode.h"

#include <brevantis/asn1/asn1data/object.h>

#include "failure_text.h"
#include "message.h"

namespace derview {

namespace {

/// Octets that a value may take, as docs/hardening.md tells.
std::size_t memoryFor(Octets message) {
    return (std::size_t{1} << 20) + 64 * message.size();
}

} // namespace

int Recoder::fail(int status, const std::string& place) {
    problem_ = statusText(status) + " in " + place;
    return status;
}

int Recoder::recode(const asn1data::TypeDescription& type, Octets message,
                    const asn1data::ReadingPolicy& policy) {
    encoded_ = {};
    asn1data::ReadingPolicy limited = policy;
    limited.octetLimit = memoryFor(message);
    ASN1BERDecodeBuffer input(message.data(), static_cast<int>(message.size()));
    ASN1CTXT* const ctxt = input.getCtxtPtr();
    int status = limited.apply(ctxt);
    void* const record = status == 0 ? asn1data::family::newRecord(ctxt, type) : nullptr;
    if (record == nullptr) {
        return fail(ASN1S_NO_MEMORY, "decoding");
    }
    asn1data::DescribedControl control(input, record, type);
    status = control.DecodeFrom(input);
    if (status != 0) {
        fail(status, "decoding");
        if (rtMemHeapLimitReached(&ctxt->memHeap)) {
            problem_ += ": it asks for more than " + octetsText(limited.octetLimit) + " of memory";
        }
        return status;
    }
    rtCtxtSetFlag(output_.getCtxtPtr(), policy.flags & ASN1F_TOLERATE_SIZES);
    const int size = control.EncodeTo(output_);
    if (size < 0) {
        return fail(size, "encoding");
    }
    encoded_ = {output_.getMsgPtr(), static_cast<std::size_t>(size)};
    return ASN1S_SUCCESS;
}

} // namespace derview
