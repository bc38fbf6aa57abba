#include <brevantis/asn1/runtime/control.h>

#include "shared_context.h"

ASN1CType::ASN1CType() : context(runtime_detail::makeContext()) {}

ASN1CType::ASN1CType(ASN1MessageBufferIF& buffer) : context(buffer.getContext()), msgBuf(&buffer) {}

ASN1CType::ASN1CType(ASN1Context& sharedContext) : context(&sharedContext) {}

ASN1CType::ASN1CType(const ASN1CType& other) = default;

ASN1CType::~ASN1CType() = default;

int ASN1CType::Encode() {
    return msgBuf != nullptr ? EncodeTo(*msgBuf) : ASN1S_INVALID_PARAMETER;
}

int ASN1CType::Decode() {
    return msgBuf != nullptr ? DecodeFrom(*msgBuf) : ASN1S_INVALID_PARAMETER;
}

int ASN1CType::EncodeTo(ASN1MessageBufferIF& /*buffer*/) {
    return 0;
}

int ASN1CType::DecodeFrom(ASN1MessageBufferIF& /*buffer*/) {
    return 0;
}

void ASN1CType::setMsgBuf(ASN1MessageBufferIF& buffer) {
    msgBuf = &buffer;
    if (context) {
        context->joinMemHeap(buffer.getCtxtPtr());
    }
}
