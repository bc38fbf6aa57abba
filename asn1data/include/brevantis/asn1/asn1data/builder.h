#ifndef BREVANTIS_ASN1_ASN1DATA_BUILDER_H
#define BREVANTIS_ASN1_ASN1DATA_BUILDER_H

#include <cstddef>

#include <brevantis/asn1/asn1data/describe.h>
#include <brevantis/asn1/export.h>
#include <brevantis/asn1/runtime/context.h>
#include <brevantis/asn1/runtime/value_types.h>

/// @file
/// Filling records that are known by their description alone.

namespace asn1data {

/// Fills values on the heap of a context, part by part: a part is asked for, which makes it present
/// and ready, and then filled in its turn. Everything lives as long as the context's heap. What
/// asks for memory returns null, or ASN1S_NO_MEMORY, when that is out; the value is then as it was.
///
/// Numbers and object identifiers are written where they stand (value_visit.h tells what stands
/// there).
class BREVANTIS_ASN1_API Builder {
public:
    /// @param ctxt the caller's, outlives the builder and what it makes
    explicit Builder(ASN1CTXT* ctxt) noexcept : ctxt_(ctxt) {}

    /// A new, empty value of a type: nothing OPTIONAL is there, every DEFAULT is in place, lists
    /// and strings have no elements, a CHOICE has no alternative.
    void* create(const TypeDescription& type) noexcept;

    /// Makes zeroed octets an empty value of a type, as `create` does.
    static void prepare(const TypeDescription& type, void* value) noexcept;

    /// The place of an element of a SEQUENCE or SET, which is there from now on and is empty.
    /// @param index in `type.elements`
    static void* element(const TypeDescription& type, void* record, unsigned index) noexcept;

    /// Makes an alternative the one that a CHOICE has.
    /// @param index in `type.elements`
    /// @return its place, empty
    void* select(const TypeDescription& type, void* choice, unsigned index) noexcept;

    /// Adds an element at the end of a SEQUENCE OF or SET OF. Elements of an Array may move for it,
    /// so the place of the one before is not to be used any more.
    /// @return its place, empty; null as well when a FixedArray is full
    void* append(const TypeDescription& type, void* list) noexcept;

    /// Adds an unknown element at the end of an extensible SEQUENCE.
    /// @return its place, empty; null as well for a type that keeps none
    ASN1OpenType* appendAddition(const TypeDescription& type, void* record) noexcept;

    /// Gives a record the identifier of an object that its table constraint may select.
    static void identify(const TypeDescription& type, void* record,
                         const ObjectDescription& object) noexcept;

    /// The slot of a record's open value; null where a list holds several.
    static Asn1TObject* slot(const TypeDescription& type, void* record) noexcept;

    /// Gives the slot of an open value a typed form, in place of octets.
    /// @param object one that has a type
    /// @return the new, empty value
    void* bind(const ObjectDescription& object, Asn1TObject& slot) noexcept;

    /// Copies octets to the heap and makes them the value of a string, an open type or a slot;
    /// for Text also their terminator, for 16- and 32-bit characters the high octet first.
    /// @param type a string or an open type
    /// @param size octets; for a BIT STRING those of @p bitCount bits
    /// @param bitCount of a BIT STRING, ignored otherwise
    /// @return 0; ASN1S_STRING_OVERFLOW when a Fixed shape has no room for so many,
    ///         ASN1S_BAD_VALUE for Text with a zero octet and for octets that fill no character,
    ///         ASN1S_VALUE_TOO_BIG above 0x7FFFFFFF octets, ASN1S_NOT_SUPPORTED for another shape
    int setOctets(const TypeDescription& type, void* value, const unsigned char* octets,
                  std::size_t size, unsigned bitCount = 0) noexcept;

    /// Makes a number in two's complement the value of an INTEGER in text form.
    /// @param octets the most significant one first, at least one; for BigUnsigned they go out as
    ///        they are
    int setInteger(const TypeDescription& type, void* value, const unsigned char* octets,
                   std::size_t size) noexcept;

    /// Tests a value against a constraint, as decoding does.
    /// @return 0; ASN1S_INVALID_ENUM for an ENUMERATED and ASN1S_CONSTRAINT_VIOLATION for anything
    ///         else outside it
    int check(const TypeDescription& type, const void* value,
              const Constraint& constraint) noexcept;

private:
    void* allocate(std::size_t size) noexcept;

    ASN1CTXT* ctxt_;
};

} // namespace asn1data

#endif
