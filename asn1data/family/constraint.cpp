#include <brevantis/asn1/runtime/utf8.h>

#include "value_access.h"

namespace asn1data::family {

namespace {

/// The number that a constraint of the type is about.
long long measured(const TypeDescription& type, const void* value) {
    switch (type.shape) {
    case Shape::Boolean:
        return at<unsigned char>(value, 0);
    case Shape::Integer:
        return at<int>(value, 0);
    case Shape::Unsigned:
    case Shape::Enumerated:
        return at<unsigned>(value, 0);
    case Shape::Unsigned16:
        return at<unsigned short>(value, 0);
    case Shape::OctetString:
    case Shape::BitString:
    case Shape::Text16:
    case Shape::Text32:
    case Shape::List:
        // The count comes first in each of these records.
        return at<unsigned>(value, 0);
    case Shape::FixedOctetString:
    case Shape::FixedBitString:
    case Shape::Array:
    case Shape::FixedArray:
        return at<unsigned>(value, type.countOffset);
    case Shape::Text: {
        const char* text = at<const char*>(value, 0);
        // UTF8String is bounded in characters, every other 8-bit string in octets, which are its
        // characters. Text that is no UTF-8 measures as a number that no bound permits.
        if (type.tag == Utf8StringTag) {
            return static_cast<unsigned>(rtUTF8Len(text));
        }
        return static_cast<long long>(static_cast<unsigned>(std::strlen(text)));
    }
    default:
        return 0;
    }
}

} // namespace

int checkRanges(ASN1CTXT* ctxt, const TypeDescription& type, const void* value,
                const Constraint& constraint, const char* parameter) {
    if (type.shape == Shape::Text && at<const char*>(value, 0) == nullptr) {
        return fail(ctxt, ASN1S_BAD_VALUE);
    }
    return checkNumber(ctxt, type, measured(type, value), constraint, parameter);
}

int checkNumber(ASN1CTXT* ctxt, const TypeDescription& type, long long number,
                const Constraint& constraint, const char* parameter) {
    for (unsigned i = 0; i < constraint.count; ++i) {
        if (number >= constraint.ranges[i].lower && number <= constraint.ranges[i].upper) {
            return ASN1S_SUCCESS;
        }
    }
    if (type.shape == Shape::Enumerated) {
        return fail(ctxt, ASN1S_INVALID_ENUM);
    }
    rtErrAddStrParm(&ctxt->errInfo, parameter);
    rtErrAddIntParm(&ctxt->errInfo, static_cast<int>(number));
    return fail(ctxt, ASN1S_CONSTRAINT_VIOLATION);
}

} // namespace asn1data::family
