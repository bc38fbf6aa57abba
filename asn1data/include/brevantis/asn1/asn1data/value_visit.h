#ifndef BREVANTIS_ASN1_ASN1DATA_VALUE_VISIT_H
#define BREVANTIS_ASN1_ASN1DATA_VALUE_VISIT_H

#include <type_traits>

#include <brevantis/asn1/asn1data/describe.h>
#include <brevantis/asn1/runtime/list.h>
#include <brevantis/asn1/runtime/object_identifier.h>
#include <brevantis/asn1/runtime/value_types.h>

/// @file
/// The one place where a shape becomes a C++ type. What is done with values that are known by their
/// description alone is an operation: a function object with an overload for each shape, or for
/// whole kinds of them. A shape that an operation does not take stops the compiler, which names it.

namespace asn1data {

/// Tells an operation which shape a value has.
template <Shape S>
using Is = std::integral_constant<Shape, S>;

/// A string inside the record: FixedOctetString and FixedBitString.
/// @tparam Octet `unsigned char`, const where the value is
template <class Octet>
struct FixedString {
    /// Type of the count, as constant as the octets.
    using Count = std::conditional_t<std::is_const_v<Octet>, const unsigned, unsigned>;
    Count& count;      ///< octets or bits in use
    Octet* data;       ///< room for `capacity`
    unsigned capacity; ///< octets or bits
};

/// What a value is in memory. `void` where its description tells: elements lie at offsets.
template <Shape>
struct Stored {
    /// What stands where the description locates the value.
    using Type = void;
};
template <>
struct Stored<Shape::Boolean> {
    using Type = unsigned char;
};
template <>
struct Stored<Shape::Integer> {
    using Type = int;
};
template <>
struct Stored<Shape::Unsigned> {
    using Type = unsigned int;
};
template <>
struct Stored<Shape::Unsigned16> {
    using Type = unsigned short;
};
template <>
struct Stored<Shape::Enumerated> {
    using Type = unsigned int;
};
template <>
struct Stored<Shape::BigInteger> {
    using Type = const char*;
};
template <>
struct Stored<Shape::BigUnsigned> {
    using Type = const char*;
};
template <>
struct Stored<Shape::ObjectIdentifier> {
    using Type = ASN1TObjId;
};
template <>
struct Stored<Shape::OctetString> {
    using Type = ASN1TDynOctStr;
};
template <>
struct Stored<Shape::FixedOctetString> {
    using Type = FixedString<unsigned char>;
};
template <>
struct Stored<Shape::BitString> {
    using Type = ASN1TDynBitStr;
};
template <>
struct Stored<Shape::FixedBitString> {
    using Type = FixedString<unsigned char>;
};
template <>
struct Stored<Shape::Text> {
    using Type = const char*;
};
template <>
struct Stored<Shape::Text16> {
    using Type = Asn116BitCharString;
};
template <>
struct Stored<Shape::Text32> {
    using Type = Asn132BitCharString;
};
template <>
struct Stored<Shape::OpenType> {
    using Type = ASN1OpenType; // an Asn1TObject begins with one
};
template <>
struct Stored<Shape::List> {
    using Type = Asn1RTDList;
};

/// Calls an operation with the shape of a type: `operation(Is<Shape::Boolean>())` and so on.
template <class Operation>
[[gnu::always_inline]] inline decltype(auto) withShape(Shape shape, Operation&& operation) {
    switch (shape) {
    case Shape::Boolean:
        return operation(Is<Shape::Boolean>());
    case Shape::Integer:
        return operation(Is<Shape::Integer>());
    case Shape::Unsigned:
        return operation(Is<Shape::Unsigned>());
    case Shape::Unsigned16:
        return operation(Is<Shape::Unsigned16>());
    case Shape::Enumerated:
        return operation(Is<Shape::Enumerated>());
    case Shape::BigInteger:
        return operation(Is<Shape::BigInteger>());
    case Shape::BigUnsigned:
        return operation(Is<Shape::BigUnsigned>());
    case Shape::Null:
        return operation(Is<Shape::Null>());
    case Shape::ObjectIdentifier:
        return operation(Is<Shape::ObjectIdentifier>());
    case Shape::OctetString:
        return operation(Is<Shape::OctetString>());
    case Shape::FixedOctetString:
        return operation(Is<Shape::FixedOctetString>());
    case Shape::BitString:
        return operation(Is<Shape::BitString>());
    case Shape::FixedBitString:
        return operation(Is<Shape::FixedBitString>());
    case Shape::Text:
        return operation(Is<Shape::Text>());
    case Shape::Text16:
        return operation(Is<Shape::Text16>());
    case Shape::Text32:
        return operation(Is<Shape::Text32>());
    case Shape::OpenType:
        return operation(Is<Shape::OpenType>());
    case Shape::Sequence:
        return operation(Is<Shape::Sequence>());
    case Shape::Set:
        return operation(Is<Shape::Set>());
    case Shape::Choice:
        return operation(Is<Shape::Choice>());
    case Shape::List:
        return operation(Is<Shape::List>());
    case Shape::Array:
        return operation(Is<Shape::Array>());
    case Shape::FixedArray:
        return operation(Is<Shape::FixedArray>());
    }
    __builtin_unreachable();
}

/// A value as its shape holds it: a reference, const where @p value is; FixedString by value for a
/// string in the record; @p value itself for SEQUENCE, SET, CHOICE, arrays and NULL.
/// @param type describes @p value, and has the shape S
template <Shape S, class Pointer>
decltype(auto) storedValue(const TypeDescription& type, Pointer* value) {
    constexpr bool reads = std::is_const_v<Pointer>;
    using Plain = typename Stored<S>::Type;
    if constexpr (isFixed(S) && isString(S)) {
        using Octet = std::conditional_t<reads, const unsigned char, unsigned char>;
        using Count = typename FixedString<Octet>::Count;
        auto* const octets = static_cast<Octet*>(value);
        Pointer* const count = octets + type.countOffset;
        return FixedString<Octet>{*static_cast<Count*>(count), octets + type.dataOffset,
                                  type.capacity};
    } else if constexpr (std::is_void_v<Plain>) {
        return value;
    } else {
        return *static_cast<std::conditional_t<reads, const Plain, Plain>*>(value);
    }
}

/// Calls an operation with the shape and the value of a type: `operation(Is<Shape::Boolean>(), b)`
/// with an `unsigned char& b`, and so on, as storedValue tells.
/// @param type describes @p value
/// @param value `void*`, or `const void*` where the operation only reads
template <class Pointer, class Operation>
[[gnu::always_inline]] inline decltype(auto) withValue(const TypeDescription& type, Pointer* value,
                                                       Operation&& operation) {
    return withShape(type.shape, [&](auto is) -> decltype(auto) {
        return operation(is, storedValue<decltype(is)::value>(type, value));
    });
}

/// The same with two values of one type, the first of which is only read.
template <class Operation>
[[gnu::always_inline]] inline decltype(auto)
withValues(const TypeDescription& type, const void* source, void* target, Operation&& operation) {
    return withShape(type.shape, [&](auto is) -> decltype(auto) {
        constexpr Shape shape = decltype(is)::value;
        return operation(is, storedValue<shape>(type, source), storedValue<shape>(type, target));
    });
}

} // namespace asn1data

#endif
