#ifndef BREVANTIS_ASN1_ASN1DATA_SHAPE_H
#define BREVANTIS_ASN1_ASN1DATA_SHAPE_H

/// @file
/// How values of the catalogue are held in memory: the shapes, and what each of them is. This file
/// includes nothing, so that the schema compiler works from the same list as the engine.

namespace asn1data {

/// How the value of a type is held in memory and coded. Nothing goes by the order, and programs
/// have the numbers compiled in: a further shape stands at the end.
enum class Shape : unsigned char {
    Boolean,          ///< `unsigned char`, 0 is false
    Integer,          ///< `int`
    Unsigned,         ///< `unsigned int`
    Unsigned16,       ///< `unsigned short`
    Enumerated,       ///< `unsigned int`
    BigInteger,       ///< `char const*`, the text form of a signed INTEGER of any size
    BigUnsigned,      ///< `char const*`, the text form of an INTEGER taken as a magnitude
    Null,             ///< no value
    ObjectIdentifier, ///< `ASN1TObjId`
    OctetString,      ///< `ASN1TDynOctStr`
    FixedOctetString, ///< a count `numocts` and an array `data` of `capacity` octets
    BitString,        ///< `ASN1TDynBitStr`
    FixedBitString,   ///< a count `numbits` and an array `data` for `capacity` bits
    Text,             ///< `char const*`, 8-bit characters
    Text16,           ///< `Asn116BitCharString`
    Text32,           ///< `Asn132BitCharString`
    OpenType,         ///< `ASN1TOpenType`, or `Asn1TObject` where an object set resolves it
    Sequence,         ///< a record with a member an element
    Set,              ///< a record with a member an element, in any order on the wire
    Choice,           ///< a selector `t` and a union `u`
    List,             ///< a doubly linked list whose nodes point to element records
    Array,            ///< a count `n` and `elem`, a pointer to an array on the heap
    FixedArray        ///< a count `n` and `elem`, an array of `capacity` elements in the record
};

/// What a value is, whatever holds it.
enum class ShapeKind : unsigned char {
    Boolean,          ///< BOOLEAN
    Number,           ///< INTEGER or ENUMERATED in a machine word
    BigNumber,        ///< INTEGER of any size, as text
    Null,             ///< NULL: no member of a record stands for it
    ObjectIdentifier, ///< OBJECT IDENTIFIER
    OctetString,      ///< OCTET STRING
    BitString,        ///< BIT STRING, with named bits or without
    Text,             ///< any character string or time
    OpenType,         ///< any value, as a whole element
    Record,           ///< SEQUENCE or SET
    Choice,           ///< CHOICE
    Repeated          ///< SEQUENCE OF or SET OF
};

/// What is known of a shape.
struct ShapeTraits {
    Shape shape;           ///< whose row it is
    ShapeKind kind;        ///< what a value is in the notation
    bool scalar;           ///< a number, a BOOLEAN or a pointer to text: a union holds it by value
    bool holdsMemory;      ///< the value itself points to a block of the heap that is released
    const char* name;      ///< of the enumerator
    const char* countName; ///< member with the count that a size constraint is about; empty if none
    const char* dataName;  ///< member that the count is of; empty if none
    long long lower;       ///< Number, BigNumber: least value that can be told in 64 bits
    long long upper;       ///< Number, BigNumber: greatest such value
};

/// Every shape, in the order of the enumerators.
inline constexpr ShapeTraits shapeTraits[] = {
    {Shape::Boolean, ShapeKind::Boolean, true, false, "Boolean", "", "", 0, 1},
    {Shape::Integer, ShapeKind::Number, true, false, "Integer", "", "", -0x7FFFFFFFLL - 1,
     0x7FFFFFFFLL},
    {Shape::Unsigned, ShapeKind::Number, true, false, "Unsigned", "", "", 0, 0xFFFFFFFFLL},
    {Shape::Unsigned16, ShapeKind::Number, true, false, "Unsigned16", "", "", 0, 0xFFFFLL},
    {Shape::Enumerated, ShapeKind::Number, true, false, "Enumerated", "", "", 0, 0xFFFFFFFFLL},
    {Shape::BigInteger, ShapeKind::BigNumber, true, false, "BigInteger", "", "",
     -0x7FFFFFFFFFFFFFFFLL - 1, 0x7FFFFFFFFFFFFFFFLL},
    {Shape::BigUnsigned, ShapeKind::BigNumber, true, false, "BigUnsigned", "", "", 0,
     0x7FFFFFFFFFFFFFFFLL},
    {Shape::Null, ShapeKind::Null, true, false, "Null", "", "", 0, 0},
    {Shape::ObjectIdentifier, ShapeKind::ObjectIdentifier, false, false, "ObjectIdentifier", "", "",
     0, 0},
    {Shape::OctetString, ShapeKind::OctetString, false, true, "OctetString", "numocts", "data", 0,
     0},
    {Shape::FixedOctetString, ShapeKind::OctetString, false, false, "FixedOctetString", "numocts",
     "data", 0, 0},
    {Shape::BitString, ShapeKind::BitString, false, true, "BitString", "numbits", "data", 0, 0},
    {Shape::FixedBitString, ShapeKind::BitString, false, false, "FixedBitString", "numbits", "data",
     0, 0},
    {Shape::Text, ShapeKind::Text, true, true, "Text", "", "", 0, 0},
    {Shape::Text16, ShapeKind::Text, false, true, "Text16", "nchars", "data", 0, 0},
    {Shape::Text32, ShapeKind::Text, false, true, "Text32", "nchars", "data", 0, 0},
    {Shape::OpenType, ShapeKind::OpenType, false, true, "OpenType", "", "", 0, 0},
    {Shape::Sequence, ShapeKind::Record, false, false, "Sequence", "", "", 0, 0},
    {Shape::Set, ShapeKind::Record, false, false, "Set", "", "", 0, 0},
    {Shape::Choice, ShapeKind::Choice, false, false, "Choice", "t", "u", 0, 0},
    {Shape::List, ShapeKind::Repeated, false, true, "List", "count", "", 0, 0},
    {Shape::Array, ShapeKind::Repeated, false, true, "Array", "n", "elem", 0, 0},
    {Shape::FixedArray, ShapeKind::Repeated, false, false, "FixedArray", "n", "elem", 0, 0},
};

/// What is known of a shape.
constexpr const ShapeTraits& traitsOf(Shape shape) {
    return shapeTraits[static_cast<unsigned char>(shape)];
}

/// What a value of the shape is.
constexpr ShapeKind kindOf(Shape shape) {
    return traitsOf(shape).kind;
}

namespace shape_detail {

/// Whether values have no elements, as isPrimitive tells it of shapes.
constexpr bool isPrimitiveKind(ShapeKind kind) {
    return kind != ShapeKind::Record && kind != ShapeKind::Choice && kind != ShapeKind::Repeated;
}

/// Whether values are strings, as isString tells it of shapes.
constexpr bool isStringKind(ShapeKind kind) {
    return kind == ShapeKind::OctetString || kind == ShapeKind::BitString ||
           kind == ShapeKind::Text;
}

/// Some of the shapes.
struct ShapeSet {
    bool has[sizeof shapeTraits / sizeof *shapeTraits] = {}; ///< in the order of the enumerators
};

/// The shapes of some kinds.
constexpr ShapeSet shapesOf(bool (*isOne)(ShapeKind)) {
    ShapeSet shapes;
    for (const ShapeTraits& row : shapeTraits) {
        shapes.has[static_cast<unsigned char>(row.shape)] = isOne(row.kind);
    }
    return shapes;
}

inline constexpr ShapeSet primitives = shapesOf(isPrimitiveKind); ///< as isPrimitive tells
inline constexpr ShapeSet strings = shapesOf(isStringKind);       ///< as isString tells

/// Whether traitsOf finds the row of a shape.
constexpr bool orderHolds() {
    unsigned place = 0;
    for (const ShapeTraits& row : shapeTraits) {
        if (static_cast<unsigned char>(row.shape) != place++) {
            return false;
        }
    }
    return true;
}
static_assert(orderHolds(), "a row for each shape, in the order of the enumerators");

} // namespace shape_detail

/// Whether values have no elements.
constexpr bool isPrimitive(Shape shape) {
    return shape_detail::primitives.has[static_cast<unsigned char>(shape)];
}

/// Whether values are a string of octets, bits or characters, which BER may cut into segments
/// (X.690, 8.6.4, 8.7.3, 8.23).
constexpr bool isString(Shape shape) {
    return shape_detail::strings.has[static_cast<unsigned char>(shape)];
}

/// Whether values hold a fixed number of octets, bits or elements inside the record.
constexpr bool isFixed(Shape shape) {
    return shape == Shape::FixedOctetString || shape == Shape::FixedBitString ||
           shape == Shape::FixedArray;
}

} // namespace asn1data

#endif
