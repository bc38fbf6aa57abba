#include <brevantis/asn1/asn1data/value_visit.h>
#include <brevantis/asn1/runtime/utf8.h>

#include "value_access.h"

namespace asn1data::family {

namespace {

/// The number that a constraint of the type is about.
struct Measure {
    const TypeDescription& type;

    long long operator()(Is<Shape::OctetString>, const ASN1TDynOctStr& value) const {
        return value.numocts;
    }
    long long operator()(Is<Shape::BitString>, const ASN1TDynBitStr& value) const {
        return value.numbits;
    }
    long long operator()(Is<Shape::Text>, const char* text) const {
        // UTF8String is bounded in characters, every other 8-bit string in octets, which are its
        // characters. Text that is no UTF-8 measures as a number that no bound permits.
        return type.tag == Utf8StringTag ? static_cast<unsigned>(rtUTF8Len(text))
                                         : static_cast<unsigned>(std::strlen(text));
    }
    long long operator()(Is<Shape::Text16>, const Asn116BitCharString& value) const {
        return value.nchars;
    }
    long long operator()(Is<Shape::Text32>, const Asn132BitCharString& value) const {
        return value.nchars;
    }
    long long operator()(Is<Shape::List>, const Asn1RTDList& value) const { return value.count; }
    template <Shape S, class Value>
    long long operator()(Is<S>, const Value& value) const {
        constexpr ShapeKind kind = kindOf(S);
        if constexpr (kind == ShapeKind::Boolean || kind == ShapeKind::Number) {
            return value;
        } else if constexpr (kind == ShapeKind::Repeated) {
            return at<unsigned>(value, type.countOffset);
        } else if constexpr (isString(S) && isFixed(S)) {
            return value.count;
        } else {
            static_assert(kind == ShapeKind::BigNumber || kind == ShapeKind::Null ||
                              kind == ShapeKind::ObjectIdentifier || kind == ShapeKind::OpenType ||
                              kind == ShapeKind::Record || kind == ShapeKind::Choice,
                          "there is something to measure");
            return 0;
        }
    }
};

} // namespace

int checkRanges(ASN1CTXT* ctxt, const TypeDescription& type, const void* value,
                const Constraint& constraint, const char* parameter) {
    if (type.shape == Shape::Text && at<const char*>(value, 0) == nullptr) {
        return fail(ctxt, ASN1S_BAD_VALUE);
    }
    return checkNumber(ctxt, type, withValue(type, value, Measure{type}), constraint, parameter);
}

int checkNumber(ASN1CTXT* ctxt, const TypeDescription& type, long long number,
                const Constraint& constraint, const char* parameter) {
    for (unsigned i = 0; i < constraint.count; ++i) {
        if (number >= constraint.ranges[i].lower && number <= constraint.ranges[i].upper) {
            return ASN1S_SUCCESS;
        }
    }
    // A list of numbers is no range: who asks for one of them is to know all that can come.
    if (type.shape == Shape::Enumerated) {
        return fail(ctxt, ASN1S_INVALID_ENUM);
    }
    if ((ctxt->flags & ASN1F_TOLERATE_SIZES) != 0) {
        return ASN1S_SUCCESS;
    }
    rtErrAddStrParm(&ctxt->errInfo, parameter);
    rtErrAddIntParm(&ctxt->errInfo, static_cast<int>(number));
    return fail(ctxt, ASN1S_CONSTRAINT_VIOLATION);
}

} // namespace asn1data::family
