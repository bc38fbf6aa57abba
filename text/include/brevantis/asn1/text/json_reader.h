#ifndef BREVANTIS_ASN1_TEXT_JSON_READER_H
#define BREVANTIS_ASN1_TEXT_JSON_READER_H

#include <cstddef>
#include <functional>
#include <string>
#include <string_view>

#include <brevantis/asn1/asn1data/describe.h>
#include <brevantis/asn1/runtime/context.h>
#include <brevantis/asn1/text/export.h>
#include <brevantis/asn1/text/names.h>
#include <brevantis/asn1/text/octets.h>

/// @file
/// Messages from JSON, in the form that docs/derview-json.md tells.

namespace asn1text {

/// Why a JSON text is no value of a type.
struct JsonFailure {
    /// ASN1S_CONSTRAINT_VIOLATION or ASN1S_INVALID_ENUM for a value outside of its bounds,
    /// ASN1S_NO_MEMORY, ASN1S_STRING_OVERFLOW for a text above its limit, the encoder's status
    /// where that fails, ASN1S_BAD_VALUE for anything else.
    int status = 0;
    std::size_t offset = 0; ///< in the text, in octets
    std::size_t line = 1;   ///< from 1
    std::size_t column = 1; ///< in octets, from 1
    std::string path;       ///< of the value, as asn1data::writePath writes it
    std::string expected;   ///< in English
    std::string found;      ///< in English; empty where there is nothing to add
};

/// The whole failure: "validity.notBefore at line 3, column 20: expected a time as
/// 2026-11-21T14:57:02Z, found a number".
/// @throws std::bad_alloc
BREVANTIS_ASN1_TEXT_API std::string failureText(const JsonFailure& failure);

/// What a text may take.
struct JsonLimits {
    std::size_t textSize = std::size_t{256} << 20; ///< octets
    std::size_t depth = 512;                       ///< objects and arrays in each other
};

/// Reads a value into a new record. Nothing but the record and one string of the text at a time is
/// held in memory.
/// @param ctxt gives the heap that the value lies on
/// @param type what the value is
/// @param json one value, or one object of derview with the value in it
/// @param failure receives why there is none
/// @param names that identifiers may have
/// @return the record that @p type describes, which lives as long as the heap; null after a
/// failure,
///         and then what was read so far lies on the heap
/// @throws std::bad_alloc
BREVANTIS_ASN1_TEXT_API void* readJson(ASN1CTXT* ctxt, const asn1data::TypeDescription& type,
                                       std::string_view json, JsonFailure& failure,
                                       const JsonLimits& limits = {},
                                       const IdentifierNames& names = IdentifierNames::ofLibrary());

/// Encodes what a text tells.
/// @param der receives the message; empty after a failure
/// @return whether there is one
/// @throws std::bad_alloc
BREVANTIS_ASN1_TEXT_API bool
encodeJson(const asn1data::TypeDescription& type, std::string_view json, OctetStore& der,
           JsonFailure& failure, const JsonLimits& limits = {},
           const IdentifierNames& names = IdentifierNames::ofLibrary());

/// A string in an object, as it stands there: "type" of an object of derview tells what its value
/// is.
/// @return nothing when the text is no object, or the object has no string of the name
/// @throws std::bad_alloc
BREVANTIS_ASN1_TEXT_API std::string jsonMember(std::string_view object, std::string_view name);

/// A message that an object of derview tells.
struct JsonMessage {
    const asn1data::TypeDescription* type = nullptr; ///< null for octets of no known type
    OctetStore octets;                               ///< of the message
    std::string problem;                             ///< why there are none; empty when there are
};

/// Encodes the message that an object of derview tells: the value of the type that it names, or the
/// octets in its `hex` where it names none.
/// @param findType gives the type that a name stands for, or null
/// @throws std::bad_alloc, and what @p findType throws
BREVANTIS_ASN1_TEXT_API JsonMessage encodeJsonMessage(
    std::string_view object,
    const std::function<const asn1data::TypeDescription*(const char*)>& findType,
    const JsonLimits& limits = {}, const IdentifierNames& names = IdentifierNames::ofLibrary());

} // namespace asn1text

#endif
