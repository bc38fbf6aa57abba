#ifndef BREVANTIS_ASN1_VALUES_UTIL_INSTANCES_H
#define BREVANTIS_ASN1_VALUES_UTIL_INSTANCES_H

#include <type_traits>

#include <brevantis/asn1/export.h>

/// @file
/// The instances of templates that the library has, so that programs need not make them.
///
/// Each is written once, as a line of the header that has its class or traits, behind them. In a
/// program the line declares the instance. In instances.cpp, which sees all headers and defines
/// BREVANTIS_ASN1_INSTANCE as `template`, it makes it. The macros below stand for instances of what
/// util/coding.h has, which their headers include.

#ifndef BREVANTIS_ASN1_INSTANCE
#define BREVANTIS_ASN1_INSTANCE extern template
#endif

/// asn1Encode of a value by a traits class.
#define BREVANTIS_ASN1_ENCODED(Traits, Value)                                                      \
    BREVANTIS_ASN1_INSTANCE BREVANTIS_ASN1_API CBlob asn1Encode<Traits, Value>(                    \
        std::add_const_t<Value>&);

/// asn1Decode of a value by a traits class.
#define BREVANTIS_ASN1_DECODED(Traits, Value)                                                      \
    BREVANTIS_ASN1_INSTANCE BREVANTIS_ASN1_API void asn1Decode<Traits, Value>(                     \
        const CBlob&, std::add_lvalue_reference_t<Value>);                                         \
    BREVANTIS_ASN1_INSTANCE BREVANTIS_ASN1_API void asn1Decode<Traits, Value>(                     \
        const CBlob&, std::add_lvalue_reference_t<Value>, const asn1data::ReadingPolicy&);

/// Both.
#define BREVANTIS_ASN1_CODED(Traits, Value)                                                        \
    BREVANTIS_ASN1_ENCODED(Traits, Value)                                                          \
    BREVANTIS_ASN1_DECODED(Traits, Value)

/// asn1EncodeT and asn1DecodeT of the record of a traits class.
#define BREVANTIS_ASN1_RECORD_CODED(Traits)                                                        \
    BREVANTIS_ASN1_INSTANCE BREVANTIS_ASN1_API CBlob asn1EncodeT<Traits>(const Traits::ASN1_T&);   \
    BREVANTIS_ASN1_INSTANCE BREVANTIS_ASN1_API void asn1DecodeT<Traits>(const CBlob&, ASN1CTXT*,   \
                                                                        Traits::ASN1_T&);

#endif
