#include "recode.h"

#include <brevantis/asn1/asn1data/object.h>

namespace derview {

int Recoder::recode(const asn1data::TypeDescription& type, Octets message) {
    encoded_ = {};
    ASN1BERDecodeBuffer input(message.data(), static_cast<int>(message.size()));
    void* const record = asn1data::family::newRecord(input.getCtxtPtr(), type);
    if (record == nullptr) {
        return ASN1S_NO_MEMORY;
    }
    asn1data::DescribedControl control(input, record, type);
    if (const int status = control.DecodeFrom(input); status != ASN1S_SUCCESS) {
        return status;
    }
    const int size = control.EncodeTo(output_);
    if (size < 0) {
        return size;
    }
    encoded_ = {output_.getMsgPtr(), static_cast<std::size_t>(size)};
    return ASN1S_SUCCESS;
}

} // namespace derview
