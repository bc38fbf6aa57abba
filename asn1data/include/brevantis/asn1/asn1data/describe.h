#ifndef BREVANTIS_ASN1_ASN1DATA_DESCRIBE_H
#define BREVANTIS_ASN1_ASN1DATA_DESCRIBE_H

#include <cstddef>

#include <brevantis/asn1/asn1data/shape.h>
#include <brevantis/asn1/export.h>
#include <brevantis/asn1/runtime/object_identifier.h>
#include <brevantis/asn1/runtime/value_types.h>

/// @file
/// The library's description of its own types.
///
/// One constant TypeDescription stands behind every type. It is what the encoder, the decoder, the
/// copier and the releaser walk, and what a program walks that wants to show or build values of
/// types it was not compiled for. All records here are constants: they live as long as the process
/// and may be read from any thread.

namespace asn1data {

/// How an element's tag stands to the tag of its type.
enum class Tagging : unsigned char {
    Untagged, ///< the element has no tag of its own
    Implicit, ///< its tag takes the place of the type's outermost one
    Explicit  ///< its tag stands around the type's
};

/// Whether an element must be there.
enum class Presence : unsigned char {
    Mandatory, ///< always there; it has no bit and no default
    Optional,  ///< told by a bit of `m`
    Default    ///< told by its value
};

/// No offset: the record does not have what the field would locate.
enum : unsigned { NoOffset = 0xFFFFFFFFu };

/// A range of permitted values or sizes, bounds included.
struct ValueRange {
    long long lower; ///< the least
    long long upper; ///< the greatest
};

/// Permitted values of a number, or permitted sizes of anything else (octets, bits, characters,
/// elements): any of the ranges. Without a range everything is permitted.
struct Constraint {
    const ValueRange* ranges; ///< null when there is none
    unsigned count;           ///< of `ranges`
};

/// A number of an INTEGER or ENUMERATED, or a bit of a BIT STRING, that the notation gives a name.
struct NamedNumber {
    const char* name; ///< in the notation's spelling
    long long number; ///< bit 0 is the first
};

/// The identifier octets that a value can begin with on the wire, a bit each.
struct IdentifierSet {
    unsigned long long bits[4]; ///< bit i of the set is bit i modulo 64 of number i / 64

    /// Whether a value can begin with an identifier octet.
    constexpr bool contains(unsigned char octet) const {
        return ((bits[octet >> 6] >> (octet & 63)) & 1u) != 0;
    }
};

struct TypeDescription;

/// What stands in front of the contents of a value, as the engine goes by it.
enum class Road : unsigned char {
    Primitive,   ///< a universal tag, which the coder of the type reads and writes
    Constructed, ///< one tag, and elements behind it
    Choice,      ///< the tag of an alternative
    Tagged       ///< further tags of the type's own, or a limit on nesting
};

/// An element of a SEQUENCE or SET, or an alternative of a CHOICE.
struct ElementDescription {
    const char* name; ///< name of the member of the record, or of the member of the union `u`
    const TypeDescription* type; ///< of its values, own tag and constraint apart
    unsigned offset;             ///< octets from the start of the record; of the union in a CHOICE
    ASN1TAG tag;                 ///< with its form bit; 0 without one
    Tagging tagging;             ///< how `tag` stands to the tag of `type`
    Presence presence;           ///< whether it must be there, or how it is told
    unsigned char presenceBit;   ///< number of the bit in `m` when `presence` is Optional
    bool indirect;               ///< CHOICE: the union holds a pointer to a record on the heap
    /// First identifier octet of `tag`; 0 without one.
    unsigned char identifier;
    Constraint constraint;   ///< beyond the type's own
    const char* parameter;   ///< what a broken `constraint` names, as "pvalue->millis"
    long long defaultNumber; ///< DEFAULT of a number or BOOLEAN
    const char* defaultText; ///< DEFAULT of an INTEGER in text form, null otherwise
    /// CHOICE, SET: the tag that tells the element from others. 0 where only what it can begin with
    /// does: it is itself a CHOICE, an open type, or of a type with an EXPLICIT tag of its own.
    ASN1TAG matchTag;
};

/// Where an identifier can be in a set: a chain of objects for each remainder of a hash, in table
/// order.
struct ObjectIndex {
    const unsigned* first; ///< number of the first object of a chain, counted from 1; 0 for none
    const unsigned* next;  ///< for each object the next one of its chain in the same way
    unsigned placeCount;   ///< chains, a power of two

    /// The chain of an identifier. Sets differ in their last arcs above all.
    /// @param arcCount at least 1
    static constexpr unsigned place(const unsigned* arcs, unsigned arcCount, unsigned placeCount) {
        return (arcs[arcCount - 1] + arcCount * 21U) & (placeCount - 1);
    }
};

/// A pair of an identifier and the type that goes with it.
struct ObjectDescription {
    const char* name;            ///< of the object in C++, such as "commonName"
    const unsigned* arcs;        ///< the identifier, the root's arc first
    unsigned arcCount;           ///< of `arcs`
    const TypeDescription* type; ///< null: the object has no value type
};

/// An information object set.
struct ObjectSetDescription {
    const char* name;        ///< of the set in C++, such as "SupportedAttributes"
    const char* objectClass; ///< of the class of its objects in C++, such as "ALGORITHM_ID"
    const ObjectDescription* objects; ///< in table order; the first match wins
    unsigned count;                   ///< of `objects`
    ObjectIndex index;                ///< without places the objects are looked through one by one
};

/// What a table constraint resolves.
enum class OpenValue : unsigned char {
    OpenType,    ///< the slot itself holds the raw element
    OpenTypes,   ///< a list of slots
    OctetString, ///< the raw element stands in an OCTET STRING, the slot beside it
};

/// Binds the open value of a record to an object set by an identifier in the same record.
struct TableConstraint {
    /// The set that tells the type that goes with an identifier.
    const ObjectSetDescription* objects;
    OpenValue value;           ///< where the open value stands in the record
    unsigned identifierOffset; ///< of the `ASN1TObjId`
    unsigned valueOffset;      ///< of the `Asn1TObject`, the list or the `ASN1TDynOctStr`
    unsigned slotOffset;       ///< of the `Asn1TObject`; differs from `valueOffset` for OctetString
    unsigned presenceOffset;   ///< of `m` when the value is OPTIONAL, NoOffset otherwise
    unsigned char presenceBit; ///< number of the bit in `m` when the value is OPTIONAL
};

/// A type: name, notation, storage, tags, constraints.
struct TypeDescription {
    const char* name;     ///< as in `ASN1T_name`; the notation's own name for a built-in type
    const char* notation; ///< right-hand side of the ASN.1 assignment, null for a built-in type
    const char* standard; ///< where the structure is published, null for a built-in type
    Shape shape;          ///< what a value is in memory; see value_visit.h
    bool setOf;           ///< List, Array, FixedArray: a SET OF rather than a SEQUENCE OF
    bool stepsOverEndOfContents; ///< the decoder steps over the end-of-contents of its own tag
    bool closesRecursion;        ///< values of the type can nest in values of the type
    bool holdsMemory;            ///< there is something to release
    bool copyable;               ///< false for the few types that have no deep copy
    ASN1TAG tag;                 ///< outermost tag but for `outerTag`; 0 for CHOICE and open type
    ASN1TAG outerTag;            ///< EXPLICIT tag of the type's own around `tag`, 0 without one
    unsigned valueSize;          ///< octets of the value in memory
    unsigned countOffset;        ///< of `numocts`, `numbits`, `n`, or of the selector `t`
    unsigned dataOffset;         ///< of `data`, `elem`, or of the union `u`
    unsigned capacity;           ///< octets, bits or elements of a Fixed shape
    unsigned presenceOffset;     ///< of `m`, NoOffset without OPTIONAL elements
    unsigned extensionOffset;    ///< of the list of unknown elements, NoOffset if none are kept
    IdentifierSet identifiers;   ///< what a value can begin with
    /// Of a SEQUENCE, SET or CHOICE, in the order of the notation; null otherwise.
    const ElementDescription* elements;
    unsigned elementCount;          ///< of `elements`
    unsigned mandatoryCount;        ///< elements that must be there
    Constraint constraint;          ///< of the type's own; without ranges where there is none
    const char* parameter;          ///< what a broken `constraint` names, as "pvalue->count"
    const TypeDescription* element; ///< List, Array, FixedArray: the type of the elements
    const TypeDescription* aliasOf; ///< the catalogue type that this one is another name of
    const TableConstraint* table;   ///< null unless an object set resolves an open value in it
    const NamedNumber* names;       ///< numbers and bits with a name, in the notation's order
    unsigned nameCount;             ///< of `names`
    Road road;                      ///< what stands in front of the contents
    unsigned char identifier;       ///< first identifier octet of `tag`
    bool hasDefaults;               ///< an element has a DEFAULT
};

/// Descriptions of the types that the notation itself brings along, as builtin_types.inc lists
/// them. `openType` holds an `ASN1TOpenType`, `typedOpenType` an `Asn1TObject`.
namespace builtin {
/// Declares the description of a type, as each line of builtin_types.inc lists it.
#define BREVANTIS_BUILTIN_TYPE(constant, notation, variant, shape, tag, storage)                   \
    extern BREVANTIS_ASN1_API const TypeDescription constant;
#include <brevantis/asn1/asn1data/builtin_types.inc>
} // namespace builtin

/// A range over descriptions.
struct TypeRange {
    const TypeDescription* const* first; ///< `count` pointers, none of them null
    std::size_t count;                   ///< descriptions in the range

    const TypeDescription* const* begin() const { return first; }
    const TypeDescription* const* end() const { return first + count; }
    std::size_t size() const { return count; }
    /// @param index below `count`
    const TypeDescription& operator[](std::size_t index) const { return *first[index]; }
};

/// All types of the catalogue, sorted by name.
BREVANTIS_ASN1_API TypeRange allTypes() noexcept;

/// Finds a type of the catalogue.
/// @param name as in `ASN1T_name`, without the prefix
/// @return its description, null when the catalogue has no such type
BREVANTIS_ASN1_API const TypeDescription* findType(const char* name) noexcept;

/// A range over object sets.
struct ObjectSetRange {
    const ObjectSetDescription* const* first; ///< `count` pointers, none of them null
    std::size_t count;                        ///< sets in the range

    const ObjectSetDescription* const* begin() const { return first; }
    const ObjectSetDescription* const* end() const { return first + count; }
    std::size_t size() const { return count; }
};

/// All object sets of the catalogue, sorted by name.
BREVANTIS_ASN1_API ObjectSetRange allObjectSets() noexcept;

/// A constant object identifier by name.
struct IdentifierDescription {
    const char* name;            ///< of the constant, as "id_at_commonName"
    const ASN1OBJID* identifier; ///< its arcs
};

/// A range over constant identifiers.
struct IdentifierRange {
    const IdentifierDescription* first; ///< `count` records, one behind the other
    std::size_t count;                  ///< identifiers in the range

    const IdentifierDescription* begin() const { return first; }
    const IdentifierDescription* end() const { return first + count; }
    std::size_t size() const { return count; }
};

/// All constant identifiers of the catalogue, sorted by their arcs; those with the same arcs stand
/// in the order of the notation.
BREVANTIS_ASN1_API IdentifierRange allIdentifiers() noexcept;

/// Name of the constant with the arcs of an identifier, the first one of several.
/// @return a constant text; null when no constant has these arcs
BREVANTIS_ASN1_API const char* identifierName(const ASN1OBJID& identifier) noexcept;

/// Name that a type gives a number or a bit.
/// @return a constant text; null when there is none
BREVANTIS_ASN1_API const char* numberName(const TypeDescription& type, long long number) noexcept;

/// Name of a universal type, of those too that no type of the catalogue is (X.680, 8.4).
/// @param number of the tag, as 16 for "SEQUENCE"
/// @return a constant text; null for 0, which is the end of contents, and for what is not in use
BREVANTIS_ASN1_API const char* universalTypeName(unsigned number) noexcept;

} // namespace asn1data

#endif
