#ifndef BREVANTIS_ASN1_RUNTIME_MEASURE_H
#define BREVANTIS_ASN1_RUNTIME_MEASURE_H

#include <brevantis/asn1/export.h>
#include <brevantis/asn1/runtime/context.h>
#include <brevantis/asn1/runtime/value_types.h>

/// @file
/// Decoding of values of any size without storing them.
///
/// Each function reads as the decoder that it names reads without ASN1F_NO_COPY: it takes the same
/// octets, gives the same status and leaves the same position, but needs no memory, so it cannot
/// run out of it. The context need not have a heap.

/// Where a value stands and how big it is.
struct ASN1Extent {
    /// The octets of the value where they stand in one piece; null where they come in segments. The
    /// octet that counts the unused bits of a BIT STRING is not among them.
    const unsigned char* data;
    unsigned int count; ///< octets, bits or characters, as the decoder would count them
};

/// Is shown the octets of a string where they stand, a segment at a time and in order.
struct ASN1OctetSink {
    /// @param count octets in @p octets, never 0
    void (*take)(void* state, const unsigned char* octets, unsigned int count) noexcept;
    void* state; ///< handed to `take`
};

/// Measures an OCTET STRING as xd_octstr reads it.
/// @param sink is shown the octets; may be null
BREVANTIS_ASN1_API int xd_measureOctets(ASN1CTXT* ctxt, ASN1Extent* extent,
                                        const ASN1OctetSink* sink, ASN1TagType tagging,
                                        int length) noexcept;

/// Measures an OCTET STRING as xd_octstr_s reads it into a buffer.
/// @param capacity octets of that buffer
BREVANTIS_ASN1_API int xd_measureFixedOctets(ASN1CTXT* ctxt, ASN1Extent* extent,
                                             unsigned int capacity, ASN1TagType tagging,
                                             int length) noexcept;

/// Measures a BIT STRING as xd_bitstr reads it.
BREVANTIS_ASN1_API int xd_measureBits(ASN1CTXT* ctxt, ASN1Extent* extent, ASN1TagType tagging,
                                      int length) noexcept;

/// Measures a BIT STRING as xd_bitstr_s reads it into a buffer.
/// @param capacity bits of that buffer
BREVANTIS_ASN1_API int xd_measureFixedBits(ASN1CTXT* ctxt, ASN1Extent* extent,
                                           unsigned int capacity, ASN1TagType tagging,
                                           int length) noexcept;

/// Measures text of 8-bit characters as xd_charstr reads it, in octets; zero octets count as well.
/// @param sink is shown the octets; may be null
BREVANTIS_ASN1_API int xd_measureText(ASN1CTXT* ctxt, ASN1Extent* extent, const ASN1OctetSink* sink,
                                      ASN1TagType tagging, ASN1TAG tag, int length) noexcept;

/// Measures text of wide characters as xd_16BitCharStr and xd_32BitCharStr read it.
/// @param width octets of a character, 2 or 4
BREVANTIS_ASN1_API int xd_measureWideText(ASN1CTXT* ctxt, ASN1Extent* extent, unsigned int width,
                                          ASN1TagType tagging, ASN1TAG tag, int length) noexcept;

/// Measures an INTEGER as xd_bigint reads it; the octets are the whole contents.
BREVANTIS_ASN1_API int xd_measureBigInt(ASN1CTXT* ctxt, ASN1Extent* extent, ASN1TagType tagging,
                                        int length) noexcept;

#endif
