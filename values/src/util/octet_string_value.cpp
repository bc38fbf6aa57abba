#include <brevantis/asn1/values/util/octet_string_value.h>

#include <brevantis/asn1/runtime/octet_string.h>
#include <brevantis/asn1/runtime/tag_length.h>
#include <brevantis/asn1/values/util/context_handle.h>
#include <brevantis/asn1/values/util/private_buffer.h>

namespace Brevantis::ASN1 {

namespace {

/// The coders count in 32 bits, and a decoder takes a size below 1 for an unknown one.
void requireCodableSize(unsigned long size) {
    if (size > 0x7FFFFFFFul) {
        ATL::AtlThrowImpl(CRYPT_E_ASN1_INTERNAL);
    }
}

} // namespace

CBlob toOctetString(const CBlob& octets) {
    requireCodableSize(octets.cbData());
    ScopedContext context;
    requireSuccess(xe_setp(context.get(), nullptr, 0));
    const int length = xe_octstr(context.get(), octets.pbData(),
                                 static_cast<unsigned>(octets.cbData()), ASN1TagExplicit);
    if (length < 0) {
        ATL::AtlThrowImpl(CRYPT_E_ASN1_INTERNAL);
    }
    return CBlob(xe_getp(context.get()), static_cast<unsigned long>(length));
}

CBlob fromOctetString(const CBlob& encoding) {
    requireCodableSize(encoding.cbData());
    if (encoding.cbData() == 0) {
        ATL::AtlThrowImpl(CRYPT_E_ASN1_INTERNAL);
    }
    ScopedContext context;
    requireSuccess(xd_setp(context.get(), encoding.pbData(), static_cast<int>(encoding.cbData()),
                           nullptr, nullptr));
    CBlob octets(encoding.cbData());
    auto size = static_cast<unsigned>(octets.cbData());
    requireSuccess(xd_octstr_s(context.get(), octets.pbData(), &size, ASN1TagExplicit, 0));
    octets.resize_to(size);
    return octets;
}

} // namespace Brevantis::ASN1
