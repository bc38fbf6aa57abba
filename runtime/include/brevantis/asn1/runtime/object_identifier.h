#ifndef BREVANTIS_ASN1_RUNTIME_OBJECT_IDENTIFIER_H
#define BREVANTIS_ASN1_RUNTIME_OBJECT_IDENTIFIER_H

#include <cstddef>

#include <brevantis/asn1/export.h>

/// @file
/// Object identifiers (X.660) as arc arrays, and their dotted text.
///
/// A count above 128 is kept in `numids` as it was given, but no operation reads or writes an arc
/// past the array: it works on the 128 that there are.

struct ASN1CTXT;

/// Room of an object identifier, in arcs.
enum : unsigned int { ASN1MaxSubIds = 128 };

/// OBJECT IDENTIFIER: an aggregate, so that constants need no code to come into being.
struct ASN1OBJID {
    unsigned int numids;               ///< arcs in use
    unsigned int subid[ASN1MaxSubIds]; ///< the arcs, the root's first
};

/// OBJECT IDENTIFIER with arcs beyond 32 bits.
struct ASN1OID64 {
    unsigned int numids;            ///< arcs in use
    long long subid[ASN1MaxSubIds]; ///< the arcs, the root's first
};

/// ASN1OBJID with constructors; no further field, no virtual operation. Arcs at `numids` and above
/// are never set.
struct BREVANTIS_ASN1_API ASN1TObjId : ASN1OBJID {
    /// An identifier without arcs. The array is left alone: most records of the catalogue embed an
    /// identifier, and clearing it each time would be felt.
    ASN1TObjId() noexcept { numids = 0; }
    /// @param count arcs in @p arcs
    ASN1TObjId(unsigned char count, const unsigned int* arcs) noexcept;
    /// Copies the count and as many arcs as are in use.
    ASN1TObjId(const ASN1OBJID& other) noexcept; // NOLINT(google-explicit-constructor)
    ASN1TObjId(const ASN1TObjId& other) noexcept;
    ~ASN1TObjId() = default;
    ASN1TObjId& operator=(const ASN1OBJID& other) noexcept;
    ASN1TObjId& operator=(const ASN1TObjId& other) noexcept;
};

/// ASN1OID64 with constructors, as ASN1TObjId is to ASN1OBJID.
struct BREVANTIS_ASN1_API ASN1TObjId64 : ASN1OID64 {
    /// An identifier without arcs.
    ASN1TObjId64() noexcept { numids = 0; }
    /// @param count arcs in @p arcs
    ASN1TObjId64(unsigned char count, const long long* arcs) noexcept;
    /// Copies the count and as many arcs as are in use.
    ASN1TObjId64(const ASN1OID64& other) noexcept; // NOLINT(google-explicit-constructor)
    ASN1TObjId64(const ASN1TObjId64& other) noexcept;
    ~ASN1TObjId64() = default;
    ASN1TObjId64& operator=(const ASN1OID64& other) noexcept;
    ASN1TObjId64& operator=(const ASN1TObjId64& other) noexcept;
};

/// Same count and same arcs; arcs past the count are not looked at.
BREVANTIS_ASN1_API bool operator==(const ASN1OBJID& left, const ASN1OBJID& right) noexcept;

inline bool operator!=(const ASN1OBJID& left, const ASN1OBJID& right) noexcept {
    return !(left == right);
}

/// Copies the count and the arcs in use.
/// @param target record to fill, not null
/// @param source record to copy, not null; may be @p target
BREVANTIS_ASN1_API void rtSetOID(ASN1OBJID* target, const ASN1OBJID* source) noexcept;

/// The same with a result.
/// @param ctxt not used, may be null
/// @return 1; 0 when either record is null, nothing being written then
BREVANTIS_ASN1_API int rtCopyOID(ASN1CTXT* ctxt, const ASN1OBJID* source,
                                 ASN1OBJID* target) noexcept;

/// Compares two identifiers, not null.
/// @param name not used, may be null
/// @param text gets an empty text when they differ, is left alone when they do not; at least one
///        octet
/// @return 1 when equal in the sense of `operator==`, else 0
BREVANTIS_ASN1_API int rtCmpOIDValue(const char* name, const ASN1OBJID* first,
                                     const ASN1OBJID* second, char* text) noexcept;

/// The same as rtCmpOIDValue.
BREVANTIS_ASN1_API int rtCmpOID(const char* name, const ASN1OBJID* first, const ASN1OBJID* second,
                                char* text) noexcept;

/// Writes the dotted text: arcs in decimal, joined by dots, no braces.
/// @param oid the identifier, not null
/// @param text receives the text and its terminator
/// @param size octets of @p text: one more than rtOidToStrLen gives
/// @return 1; 0 when text and terminator do not fit or there are more than 128 arcs: @p text then
///         holds as many whole arcs as fitted, terminated unless @p size is 0
BREVANTIS_ASN1_API int rtOidToStr(const ASN1OBJID* oid, char* text, std::size_t size) noexcept;

/// Length of the dotted text without its terminator; 0 for no arcs.
BREVANTIS_ASN1_API std::size_t rtOidToStrLen(const ASN1OBJID* oid) noexcept;

/// Reads a dotted text, leniently: what `strtoul` takes in base 10 is an arc (leading blanks, a
/// sign, no digit at all for 0), cut to its low 32 bits, and the first two arcs are not held to
/// X.660.
/// @param text terminated text, not null
/// @param oid receives the arcs, also those in front of a failure, the failing one included
/// @return true when the whole text was read; false when an arc ends in front of something else
///         than a dot or the end, or at the 129th arc, which is not stored
BREVANTIS_ASN1_API bool rtStrToOid(const char* text, ASN1OBJID* oid) noexcept;

#endif
